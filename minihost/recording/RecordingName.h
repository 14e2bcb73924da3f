#pragma once

#include <QString>

/// True for the names of raw recordings, "out.h264" and "out.264".
bool fx_IsRecordingName(QString const& fileName);

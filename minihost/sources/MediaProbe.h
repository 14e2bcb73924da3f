#pragma once

#include <QByteArray>
#include <QString>

/// What FFmpeg calls a file that begins with \p head, "Matroska / WebM", when the bytes alone speak for it
/// and the sources can read it; else empty, as for raw H.264, whose units say more. Nothing is opened or
/// decoded.
QString fx_MediaName(QByteArray const& head);

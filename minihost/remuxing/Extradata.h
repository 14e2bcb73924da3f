#pragma once

#include <QByteArray>

struct AVCodecParameters;

/// Gives a stream that has none its parameter sets, as FFmpeg keeps them. False without memory.
bool fx_SetExtradata(AVCodecParameters& stream, QByteArray const& bytes);

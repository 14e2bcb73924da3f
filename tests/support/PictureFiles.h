#pragma once

#include <QByteArray>
#include <QString>

extern "C" {
#include <libavcodec/codec_id.h>
#include <libavutil/pixfmt.h>
}

#include "support/FileBytes.h"

/// Small picture and video files for tests, written where a test needs them.

/// A binary PGM or PPM: \p components 1 or 3, \p highest up to 255 for bytes, above for big-endian words.
QByteArray fx_PnmFile(int width, int height, int components, int highest, QByteArray const& samples);

/// A Y4M stream of \p count pictures with the given planes (4:2:0, or 4:4:4 when \p chroma is "444").
QByteArray fx_Y4mFile(int width, int height, QByteArray const& chroma, QByteArray const& picture, int count);

/// As above, with every picture full of noise that no encoder can predict.
QByteArray fx_NoiseY4mFile(int width, int height, int count);

/// A Y4M stream of a moving ramp, each sample of luma up to \p noise brighter or darker.
QByteArray fx_NoisyY4mFile(int width, int height, int count, int noise);

/// One picture in a format of FFmpeg's, coded by its encoder: the bytes of a PNG, TIFF, JPEG or BMP
/// file. \p samples holds the picture's planes without gaps. Empty when FFmpeg refuses.
QByteArray fx_CodedPicture(AVCodecID codec, AVPixelFormat format, int width, int height,
                           QByteArray const& samples);

#pragma once

#include <QString>

extern "C" {
#include <libavcodec/codec_id.h>
}

/// Writes a video of 64 x 48 pixels, 30 places for pictures a second, every picture different.
///
/// \param muxer  FFmpeg's name of the container, "avi"; MP4 and MOV have their index at the front.
/// \param codec  one whose encoder FFmpeg brings itself.
/// \param count  pictures.
/// \param step  a picture in every place, every second, ...
/// \return false when FFmpeg refuses
bool fx_WriteVideo(QString const& fileName, char const* muxer, AVCodecID codec, int count, int step = 1);

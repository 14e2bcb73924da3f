#pragma once

#include <QByteArray>
#include <QSize>
#include <memory>
#include <vector>

#include "SxPicBuf.h"

/// A picture with its memory.
struct SxPictureDeleter
{
    void operator()(SxPicBuf* picture) const;
};
using PicturePtr = std::unique_ptr<SxPicBuf, SxPictureDeleter>;

/// The first \p count pictures of the test camera as RGB32.
std::vector<PicturePtr> fx_CameraPictures(QSize size, int count);

/// The same as a stream of our encoder, with a key frame every \p keyFrameInterval.
QByteArray fx_EncodeCamera(QSize size, int count, int keyFrameInterval);

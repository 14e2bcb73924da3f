#pragma once

#include "FFmpegHandles.h"
#include "PictureRate.h"
#include "PixelShape.h"

/// Where a reader has a stream's rate from, when the stream itself has none.
enum class RateOrigin {
    Stream, ///< nowhere: the reader knows the time of each picture
    Offer,  ///< kPicturesASecond was offered to it, and it took that
    User,   ///< the user told it
};

/// What a stream says of how its pictures are to be shown.
struct SxStreamFacts
{
    SxPictureRate rate;    ///< unknown when it says none
    bool hasClock = false; ///< its pictures have times of their own
    int rotation = 0;      ///< degrees clockwise, 0, 90, 180 or 270, to make them stand upright
};

SxStreamFacts fx_StreamFacts(AVStream const& stream, RateOrigin origin);

/// The same rotation for one picture: what it says itself, as cameras write it into each JPEG, else \p
/// ofStream.
int fx_FrameRotation(AVFrame const& frame, int ofStream);

/// The shape of its pixels, as the container says, else the coded pictures.
SxPixelShape fx_FramePixelShape(AVFormatContext& format, AVStream& stream, AVFrame& frame);

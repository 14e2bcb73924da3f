#pragma once

#include "FFmpegHandles.h"
#include "SxPicBuf.h"

/// Turns FFmpeg's decoded frames into host pictures, keeping the depth that they have:
/// - grey and blue-green-red samples of more than 8 bits are taken as they are, as words;
/// - 8-bit grey becomes 8-bit grey, 8-bit colour blue-green-red with or without a fourth byte;
/// - video (YUV) becomes 8-bit colour with the stream's matrix and range, or words when deeper.
/// Grey samples are never rescaled, whatever range the stream claims.
class CxFFmpegConverter
{
public:
    /// Fills \p picture as IxPictureSource::next() describes; its time stamp stays.
    /// \return false when the pixel format is one that nothing here converts, or without memory.
    bool convert(AVFrame const& frame, SxPicBuf& picture);

    /// For the last picture: false when its bits are only the size of its words.
    bool knowsSignificantBits() const { return m_knowsBits; }

    int sourceBits() const { return m_sourceBits; } ///< of the last picture, see IxPictureSource

private:
    bool scaleInto(AVFrame const& frame, AVPixelFormat target, SxPicBuf& picture);

    ScalerPtr m_scaler; ///< kept between frames of one format
    bool m_knowsBits = true;
    int m_sourceBits = 0;
};

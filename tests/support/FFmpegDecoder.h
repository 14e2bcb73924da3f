#pragma once

#include <QString>
#include <cstdint>
#include <vector>

/// One decoded picture in I420 order: Y, then U and V at half size both ways (rounded down), without
/// gaps. Sizes are even in every stream that our encoder writes.
struct SxDecodedPicture
{
    int width = 0;
    int height = 0;
    bool isKeyFrame = false;
    std::vector<std::uint8_t> i420; ///< (width * height) + 2 * (width / 2) * (height / 2) bytes
};

/// Decodes a whole Annex B file with FFmpeg's own H.264 decoder, in output order.
/// Empty, with \p error set, when the file cannot be read or any part of it does not decode cleanly.
std::vector<SxDecodedPicture> fx_DecodeH264File(QString const& fileName, QString& error);

/// Peak signal-to-noise ratio over all bytes of two pictures of one size, in dB; 100 when they are equal.
double fx_Psnr(std::vector<std::uint8_t> const& a, std::vector<std::uint8_t> const& b);

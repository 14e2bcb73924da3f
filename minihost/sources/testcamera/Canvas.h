#pragma once

#include <QtGlobal>
#include <cstddef>
#include <vector>

/// A colour, 16 bits a sample.
struct SxColour48
{
    quint16 blue;
    quint16 green;
    quint16 red;
};

/// A picture to draw on: 16-bit blue, green, red, pixel after pixel, rows without a gap.
struct SxCanvas
{
    int width = 0;
    int height = 0;
    std::vector<quint16> samples; ///< width * height * 3

    quint16* pixel(int x, int y)
    {
        return samples.data() +
               (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 3;
    }
    bool contains(int x, int y) const { return x >= 0 && y >= 0 && x < width && y < height; }
};

/// Mixes \p colour into a pixel; \p cover 0 leaves it, 256 replaces it.
inline void fx_Blend(quint16* pixel, SxColour48 const& colour, int cover)
{
    if (cover == 256) { // most pixels
        pixel[0] = colour.blue;
        pixel[1] = colour.green;
        pixel[2] = colour.red;
        return;
    }
    pixel[0] = static_cast<quint16>(pixel[0] + (colour.blue - pixel[0]) * cover / 256);
    pixel[1] = static_cast<quint16>(pixel[1] + (colour.green - pixel[1]) * cover / 256);
    pixel[2] = static_cast<quint16>(pixel[2] + (colour.red - pixel[2]) * cover / 256);
}

/// A colour from 8-bit samples, as colours are usually written.
inline SxColour48 fx_Rgb(int red, int green, int blue)
{
    return {static_cast<quint16>(blue * 257), static_cast<quint16>(green * 257),
            static_cast<quint16>(red * 257)};
}

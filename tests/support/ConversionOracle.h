#pragma once

#include <cstddef>
#include <vector>

#include "SxPicBuf.h"

/// The conversions once more, a byte at a time and straight from their definition, so that the tests do
/// not compare the plug-in with itself.

/// Blue, green and red, a byte each.
struct SxColour
{
    int blue, green, red;
};

uchar fx_OracleY(SxColour colour);
uchar fx_OracleU(SxColour colour);
uchar fx_OracleV(SxColour colour);

/// Converts to planar YUV into \p bytes, whose size is the capacity: the pair walk, every write checked
/// against it and every read against pitch * height.
/// \return false, \p bytes untouched, where the planes do not fit.
bool fx_OracleToIYUV(SxPicBuf const& source, std::vector<uchar>& bytes);

/// Planes in I420 order.
struct SxPlanes
{
    std::vector<uchar> y;
    std::vector<uchar> u;
    std::vector<uchar> v;

    bool operator==(SxPlanes const& other) const { return y == other.y && u == other.u && v == other.v; }
};

/// The same for a picture of even size, in memory that it just fills, as planes.
SxPlanes fx_ExpectedPlanes(SxPicBuf const& picture);

/// One pixel back to blue, green, red and 255.
void fx_OracleToRGB32(int y, int u, int v, uchar* pixel);

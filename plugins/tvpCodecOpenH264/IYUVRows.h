#pragma once

#include <QtGlobal>

/// Row kernels: one row of one picture format to or from planar YUV. Checks, pitch and the parity of
/// rows live in IYUVConversion; a kernel gets a row whose every byte exists, and touches no other.

/// Luma bytes of a row: \p y, \p width bytes. \p shift (0 to 31) brings 16-bit samples, native words
/// at any address, down to bytes; 8-bit formats ignore it. The rows do not overlap.
using FxLumaRow = void (*)(uchar const* src, uchar* y, unsigned width, unsigned shift);

/// The same, and the chroma of the left pixel of each pair: \p u and \p v, width / 2 bytes each.
/// \p width is even.
using FxColourRow = void (*)(uchar const* src, uchar* y, uchar* u, uchar* v, unsigned width, unsigned shift);

/// The two kernels of a colour format: odd rows give luma only.
struct SxColourRows
{
    FxLumaRow luma;
    FxColourRow lumaAndChroma;
};

/// A row of RGB32, width * 4 bytes at \p dst, from \p width luma samples and width / 2 of each chroma.
/// \p width is even.
using FxRGB32Row = void (*)(uchar const* y, uchar const* u, uchar const* v, uchar* dst, unsigned width);

/// The kernels for one instruction set.
struct SxIYUVRows
{
    char const* name;
    SxColourRows rgb24; ///< blue, green, red bytes
    SxColourRows rgb32; ///< those and an ignored fourth byte
    SxColourRows rgb48; ///< blue, green, red words
    SxColourRows rgb64; ///< those and an ignored fourth word
    FxLumaRow mono16;   ///< grey words
    FxRGB32Row toRGB32;
};

/// The definition, written to be read; every other table gives the same bytes.
SxIYUVRows const& fx_GetScalarIYUVRows();

/// The table that the converters use.
SxIYUVRows const& fx_GetIYUVRows();

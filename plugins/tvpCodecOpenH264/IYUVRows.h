#pragma once

#include <cstdint>

#include "VectorTargets.h"

/// Row kernels: one row of one picture format to or from planar YUV. Checks, pitch and the parity of
/// rows live in IYUVConversion; a kernel gets rows whose every byte exists, and touches no other.
/// They need neither Qt nor the host, so that a bare program can prove them on any processor.

/// Luma bytes of a row: \p y, \p width bytes. \p shift (0 to 31) brings 16-bit samples, native words
/// at any address, down to bytes; 8-bit formats ignore it. The rows do not overlap.
using FxLumaRow = void (*)(std::uint8_t const* src, std::uint8_t* y, unsigned width, unsigned shift);

/// The same, and the chroma of the left pixel of each pair: \p u and \p v, width / 2 bytes each.
/// \p width is even.
using FxColourRow = void (*)(std::uint8_t const* src, std::uint8_t* y, std::uint8_t* u, std::uint8_t* v,
                             unsigned width, unsigned shift);

/// The two kernels of a colour format: odd rows give luma only.
struct SxColourRows
{
    FxLumaRow luma;
    FxColourRow lumaAndChroma;
};

/// The two picture rows that share a row of chroma. A lone last row is both of them.
struct SxPlaneRows
{
    std::uint8_t const* y[2]; ///< a sample a pixel
    std::uint8_t const* u;    ///< a sample a pair of pixels
    std::uint8_t const* v;
};

/// Two rows of RGB32, width * 4 bytes at \p top and at \p bottom, which are the same row or do not
/// overlap. \p width is even.
using FxRGB32Rows = void (*)(SxPlaneRows const& planes, std::uint8_t* top, std::uint8_t* bottom,
                             unsigned width);

/// The kernels for one instruction set.
struct SxIYUVRows
{
    SxColourRows rgb24; ///< blue, green, red bytes
    SxColourRows rgb32; ///< those and an ignored fourth byte
    SxColourRows rgb48; ///< blue, green, red words
    SxColourRows rgb64; ///< those and an ignored fourth word
    FxLumaRow mono16;   ///< grey words
    FxRGB32Rows toRGB32;
    /// The same past the cache, for pictures that would only drive out what is needed sooner. The rows
    /// start at multiples of kStreamAlignment. fx_FinishStreams() ends a picture.
    FxRGB32Rows toRGB32Streamed;
};

constexpr unsigned kStreamAlignment = 64;

/// Makes streamed rows readable for other threads. Once a picture: it waits for the memory.
void fx_FinishStreams();

/// The definition, written to be read; every other table gives the same bytes.
SxIYUVRows const& fx_GetScalarIYUVRows();

/// The table of an instruction set, which this machine must have.
SxIYUVRows const& fx_GetIYUVRows(VectorTarget target);

/// The table that the converters use, fx_GetVectorTarget()'s.
SxIYUVRows const& fx_GetIYUVRows();

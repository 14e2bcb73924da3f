#pragma once

#include <cstdint>

#include "VectorTargets.h"

/// Row kernels: one row of one picture format to or from planar YUV. Checks, pitch and the parity of
/// rows live in IYUVConversion; a kernel gets rows whose every byte exists, and touches no other.
/// They need neither Qt nor the host, so that a bare program can prove them on any processor.

/// Luma bytes of a row: \p y, \p width bytes. \p shift (0 to 31) brings 16-bit samples, native words
/// at any address, down to bytes; 8-bit formats ignore it. The rows do not overlap.
using FxLumaKernel = void (*)(std::uint8_t const* src, std::uint8_t* y, unsigned width, unsigned shift);

/// The same, and the chroma of the left pixel of each pair: \p u and \p v, width / 2 bytes each.
/// \p width is even.
using FxColourKernel = void (*)(std::uint8_t const* src, std::uint8_t* y, std::uint8_t* u, std::uint8_t* v,
                                unsigned width, unsigned shift);

/// The two kernels of a colour format: odd rows give luma only.
struct SxColourKernels
{
    FxLumaKernel luma;
    FxColourKernel lumaAndChroma;
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
using FxRGB32Kernel = void (*)(SxPlaneRows const& planes, std::uint8_t* top, std::uint8_t* bottom,
                               unsigned width);

/// The kernels for one instruction set.
struct SxIYUVKernels
{
    SxColourKernels rgb24; ///< blue, green, red bytes
    SxColourKernels rgb32; ///< those and an ignored fourth byte
    SxColourKernels rgb48; ///< blue, green, red words
    SxColourKernels rgb64; ///< those and an ignored fourth word
    FxLumaKernel mono16;   ///< grey words
    FxRGB32Kernel toRGB32;
    /// The same past the cache, for pictures that would only drive out what is needed sooner. The rows
    /// start at multiples of kNonTemporalAlignment. fx_FinishNonTemporalStores() ends a picture.
    FxRGB32Kernel toRGB32NonTemporal;
};

constexpr unsigned kNonTemporalAlignment = 64;

/// Makes non-temporal stores readable for other threads. Once a picture: it waits for the memory.
void fx_FinishNonTemporalStores();

/// The definition, written to be read; every other table gives the same bytes.
SxIYUVKernels const& fx_GetScalarIYUVKernels();

/// The table of an instruction set, which this machine must have.
SxIYUVKernels const& fx_GetIYUVKernels(VectorTarget target);

/// The table that the converters use, fx_GetVectorTarget()'s.
SxIYUVKernels const& fx_GetIYUVKernels();

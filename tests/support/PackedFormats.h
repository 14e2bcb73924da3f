#pragma once

#include "IYUVRows.h"

/// A packed picture format: what the proofs and benches of the conversions walk. Without Qt, as the kernels.
struct SxPackedFormat
{
    char const* name;
    unsigned sampleType; ///< 2: bytes; 4: words
    unsigned components;
    SxColourKernels SxIYUVKernels::*colour = nullptr; ///< none: grey

    constexpr bool isWords() const { return sampleType == 4; }
    constexpr unsigned pixelBytes() const { return components * (isWords() ? 2 : 1); }
};

constexpr SxPackedFormat kPackedFormats[] = {
    {"mono8", 2, 1},  {"rgb24", 2, 3, &SxIYUVKernels::rgb24}, {"rgb32", 2, 4, &SxIYUVKernels::rgb32},
    {"mono16", 4, 1}, {"rgb48", 4, 3, &SxIYUVKernels::rgb48}, {"rgb64", 4, 4, &SxIYUVKernels::rgb64},
};

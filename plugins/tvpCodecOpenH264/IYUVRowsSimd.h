#pragma once

#include <vector>

#include "IYUVRows.h"

/// The tables of the instruction sets that the compiler knows and this machine reports, the fastest
/// first: of "avx512", "avx2" and "sse4" on x86-64, "neon" on 64-bit Arm. Empty where none fits.
std::vector<SxIYUVRows const*> fx_GetSimdIYUVRows();

#pragma once

#include <vector>

/// The one place for the processor's vectors: which instruction sets the row kernels (IYUVRows) and the
/// search for start codes (StartCodeSearch) are compiled for, which of them this machine can run, and which
/// is used.

/// The fastest first. Each asks for the whole list of what its compiler flags may use:
/// - AVX512: F, CD, BW, DQ, VL, VBMI and VNNI, as every maker's second generation has them; what has less
///   is served by AVX2
/// - AVX2: with BMI, BMI2 and FMA
/// - SSE4: SSSE3, SSE4.1 and SSE4.2
/// - NEON: every 64-bit Arm
/// - Scalar: the definition of every result, on any machine
enum class VectorTarget { AVX512, AVX2, SSE4, NEON, Scalar };

/// Of each VectorTarget, for the build option TARN_VECTORS, tests, benchmarks and docs/kernels.md.
constexpr char const* kVectorTargetNames[] = {"avx512", "avx2", "sse4", "neon", "scalar"};

char const* fx_GetName(VectorTarget target);

/// Those that were compiled and that this machine can run, the fastest first and Scalar last.
std::vector<VectorTarget> const& fx_GetVectorTargets();

/// The one in use: the fastest, unless TARN_VECTORS or fx_ForceVectorTarget() names another.
VectorTarget fx_GetVectorTarget();

/// Makes the whole process use the target \p name, for tests and benchmarks.
/// \return false, and nothing changes, when fx_GetVectorTargets() has none of that name.
bool fx_ForceVectorTarget(char const* name);

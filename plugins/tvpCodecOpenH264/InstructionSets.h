#pragma once

/// What the processor has and the operating system saves: for each instruction set the whole list of
/// what its compiler flags may use.
struct SxInstructionSets
{
#if defined(__x86_64__)
    bool const sse4 = __builtin_cpu_supports("ssse3") && __builtin_cpu_supports("sse4.1") &&
                      __builtin_cpu_supports("sse4.2");
    bool const avx2 = sse4 && __builtin_cpu_supports("avx") && __builtin_cpu_supports("avx2") &&
                      __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
                      __builtin_cpu_supports("fma");
    bool const avx512 = avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
                        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw");
    /// With permutations of bytes and dot products of words and bytes.
    bool const avx512Bytes =
        avx512 && __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vnni");
#endif
};

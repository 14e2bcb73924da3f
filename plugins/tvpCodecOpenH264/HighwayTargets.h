#pragma once

/// Which of Highway's targets our vector code is compiled for: include this before any of its headers. Only
/// headers of Highway are used, of version 1.0.3 or later; its library is not.

// Baselines of other kinds that the compiler may have been given (-march=native) change nothing in that.
#define HWY_COMPILE_ALL_ATTAINABLE

// Highway's checks of arguments would need its library. Ours are the tests, under sanitizers.
#define HWY_IS_DEBUG_BUILD 0

// The wanted targets, so that one that is new in Highway stays off until our code was tried with it. Off are
// scalable vectors as well: they have no size that a struct or a constant could take. Without a wanted target
// the scalar code serves; Highway counts that among its targets.
#if defined(__x86_64__)
#define TARN_HIGHWAY_TARGETS (HWY_AVX3 | HWY_AVX2 | HWY_SSE4)
#elif defined(__aarch64__)
// One of these is what every such processor has: the former since Highway asks for AES with the latter.
#define TARN_HIGHWAY_TARGETS TARN_HIGHWAY_NEON
#else
#define TARN_HIGHWAY_TARGETS 0
#endif
#define HWY_DISABLED_TARGETS (~(TARN_HIGHWAY_TARGETS | HWY_EMU128 | HWY_SCALAR))

#include "hwy/detect_targets.h"

#ifdef HWY_NEON_WITHOUT_AES
#define TARN_HIGHWAY_NEON HWY_NEON_WITHOUT_AES
#define TARN_NEON_NAMESPACE N_NEON_WITHOUT_AES
#else
#define TARN_HIGHWAY_NEON HWY_NEON
#define TARN_NEON_NAMESPACE N_NEON
#endif

/// { pointers to \p symbol in the namespace of each VectorTarget }; null where the compiler is too old for
/// one, or it is another processor's.
#define TARN_EACH_TARGET(symbol)                                                              \
    {                                                                                         \
        TARN_AVX512(symbol), TARN_AVX2(symbol), TARN_SSE4(symbol), TARN_NEON(symbol), nullptr \
    }

#if HWY_TARGETS & HWY_AVX3
#define TARN_AVX512(symbol) &N_AVX3::symbol
#else
#define TARN_AVX512(symbol) nullptr
#endif
#if HWY_TARGETS & HWY_AVX2
#define TARN_AVX2(symbol) &N_AVX2::symbol
#else
#define TARN_AVX2(symbol) nullptr
#endif
#if HWY_TARGETS & HWY_SSE4
#define TARN_SSE4(symbol) &N_SSE4::symbol
#else
#define TARN_SSE4(symbol) nullptr
#endif
#if HWY_TARGETS & TARN_HIGHWAY_NEON
#define TARN_NEON(symbol) &TARN_NEON_NAMESPACE::symbol
#else
#define TARN_NEON(symbol) nullptr
#endif

// What the rows for vectors have in common: types, sizes, permutations. Once for each instruction set.

#if defined(TARN_IYUVROWSVECTORS_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TARN_IYUVROWSVECTORS_INL_H_
#undef TARN_IYUVROWSVECTORS_INL_H_
#else
#define TARN_IYUVROWSVECTORS_INL_H_
#endif

#include "IYUVRows.h"

#include "hwy/highway.h"

#undef TARN_HAS_VECTORS
#undef TARN_BEFORE_NAMESPACE

// Highway's stand-ins for machines without vectors are slower than our scalar rows.
#if HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR
#define TARN_HAS_VECTORS 1
#else
#define TARN_HAS_VECTORS 0
#endif

// With AVX-512 go its byte permutations and dot products: every maker's second generation has them, and what
// has not is served by AVX2.
#if HWY_TARGET == HWY_AVX3
#define TARN_BEFORE_NAMESPACE()                                  \
    HWY_PUSH_ATTRIBUTES(HWY_TARGET_STR ",avx512vbmi,avx512vnni") \
    static_assert(true, "takes a semicolon")
#else
#define TARN_BEFORE_NAMESPACE() HWY_BEFORE_NAMESPACE()
#endif

#if TARN_HAS_VECTORS
TARN_BEFORE_NAMESPACE();
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;
using std::uint8_t;

using D8 = hn::ScalableTag<uint8_t>;
using DU16 = hn::ScalableTag<std::uint16_t>;
using D16 = hn::ScalableTag<std::int16_t>;
using D32 = hn::ScalableTag<std::int32_t>;
using V8 = hn::Vec<D8>;
using VU16 = hn::Vec<DU16>;
using V16 = hn::Vec<D16>;
using V32 = hn::Vec<D32>;
using Permutation = decltype(hn::SetTableIndices(D32(), static_cast<std::int32_t const*>(nullptr)));

constexpr unsigned kVector = static_cast<unsigned>(hn::MaxLanes(D8())); ///< bytes
constexpr unsigned kBlocks = kVector / 16; ///< most instructions work within blocks of 16 bytes
constexpr unsigned kDwords = kVector / 4;
constexpr unsigned kStep = 4 * kDwords; ///< pixels a step

/// Four vectors of pixels: blue, green, red and an ignored byte.
struct SxPixels
{
    V32 v[4];
};

// Indices for permutations. All are constants: a row is too short to make tables for it.

struct SxDwordShuffle
{
    HWY_INLINE Permutation load() const { return hn::SetTableIndices(D32(), dwords); }

    alignas(64) std::int32_t dwords[kDwords];
};

struct SxByteShuffle
{
    HWY_INLINE V8 load() const { return hn::Load(D8(), bytes); }

    alignas(64) uint8_t bytes[kVector];
};

/// Order of dwords; with one block a vector there is none to change.
template<class V>
HWY_INLINE V fx_Permute(V v, Permutation order)
{
    if (kBlocks == 1)
        return v;
    return hn::BitCast(hn::DFromV<V>(), hn::TableLookupLanes(hn::BitCast(D32(), v), order));
}

/// Which byte of pixels of 24 bits becomes byte i of pixels of 32. The fourth is anything: no weight is on
/// it.
constexpr unsigned fx_From24(unsigned i) { return i / 4 * 3 + (i % 4 < 3 ? i % 4 : 2); }

/// Words \p low and \p high, again and again.
HWY_INLINE V16 fx_SetPairs(int low, int high)
{
    return hn::BitCast(D16(),
                       hn::Set(D32(), static_cast<std::int32_t>((static_cast<std::uint32_t>(high) << 16) |
                                                                (static_cast<std::uint32_t>(low) & 0xFFFF))));
}

/// Pixels as pairs of words: blue and red are masked, green is shifted down. The fourth byte weighs nothing.
struct SxPairs
{
    explicit HWY_INLINE SxPairs(V32 pixels)
        : blueRed(hn::BitCast(D16(), hn::And(pixels, hn::Set(D32(), 0x00FF00FF))))
        , green(hn::BitCast(D16(), hn::ShiftRight<8>(hn::BitCast(DU16(), pixels))))
    {}

    V16 blueRed, green;
};

} // namespace
} // namespace HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#endif

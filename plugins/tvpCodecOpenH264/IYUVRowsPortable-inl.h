// The work on vectors of any width, in Highway's terms, once for each instruction set without rows of its
// own.

#if defined(TARN_IYUVROWSPORTABLE_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TARN_IYUVROWSPORTABLE_INL_H_
#undef TARN_IYUVROWSPORTABLE_INL_H_
#else
#define TARN_IYUVROWSPORTABLE_INL_H_
#endif

#include "IYUVRowsVectors-inl.h"

#if TARN_HAS_VECTORS && HWY_TARGET != HWY_AVX3
TARN_BEFORE_NAMESPACE();
namespace HWY_NAMESPACE {
namespace {

// What Highway 1.0.3 has no name for, or only in an order that costs another permutation: each of these
// works within blocks, and one permutation at the end puts everything right.

#if HWY_TARGET == HWY_AVX2
HWY_INLINE V8 fx_PackBytes(V16 a, V16 b) { return V8{_mm256_packus_epi16(a.raw, b.raw)}; }
HWY_INLINE V32 fx_EvenDwords(V32 a, V32 b)
{
    return V32{
        _mm256_castps_si256(_mm256_shuffle_ps(_mm256_castsi256_ps(a.raw), _mm256_castsi256_ps(b.raw), 0x88))};
}
#elif HWY_ARCH_ARM
HWY_INLINE V8 fx_PackBytes(V16 a, V16 b) { return V8{vcombine_u8(vqmovun_s16(a.raw), vqmovun_s16(b.raw))}; }
HWY_INLINE V32 fx_EvenDwords(V32 a, V32 b) { return V32{vuzp1q_s32(a.raw, b.raw)}; }
#else
HWY_INLINE V8 fx_PackBytes(V16 a, V16 b) { return V8{_mm_packus_epi16(a.raw, b.raw)}; }
HWY_INLINE V32 fx_EvenDwords(V32 a, V32 b)
{
    return V32{_mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a.raw), _mm_castsi128_ps(b.raw), 0x88))};
}
#endif

/// a[2i] * b[2i] + a[2i + 1] * b[2i + 1].
HWY_INLINE V32 fx_MulPairs(V16 a, V16 b)
{
#if HWY_ARCH_ARM
    return V32{vpaddq_s32(vmull_s16(vget_low_s16(a.raw), vget_low_s16(b.raw)), vmull_high_s16(a.raw, b.raw))};
#else
    V32 unused = hn::Zero(D32());
    return hn::ReorderWidenMulAccumulate(D32(), a, b, hn::Zero(D32()), unused);
#endif
}

/// Signed dwords to words, saturated.
HWY_INLINE V16 fx_PackWords(V32 a, V32 b) { return hn::ReorderDemote2To(D16(), a, b); }

/// Where dword i of a sequence lies after CxWords::pack().
constexpr unsigned fx_Packed(unsigned i)
{
    unsigned const half = kDwords / 2;
    return i < half ? i / 2 * 4 + i % 2 : (i - half) / 2 * 4 + 2 + i % 2;
}

/// Each block gets the three dwords of its four pixels.
constexpr SxDwordShuffle fx_SpreadDwords(unsigned first, bool isPacked)
{
    SxDwordShuffle shuffle = {};
    for (unsigned i = 0; i < kDwords && kBlocks > 1; ++i) {
        unsigned const dword = first / 4 + i / 4 * 3 + (i % 4 < 3 ? i % 4 : 2);
        shuffle.dwords[i] = static_cast<std::int32_t>(isPacked ? fx_Packed(dword) : dword);
    }
    return shuffle;
}

/// Each pixel gets its bytes.
constexpr SxByteShuffle fx_SpreadBytes(unsigned first)
{
    SxByteShuffle shuffle = {};
    for (unsigned i = 0; i < kVector; ++i)
        shuffle.bytes[i] = static_cast<uint8_t>((kBlocks > 1 ? 0 : first) + fx_From24(i % 16));
    return shuffle;
}

template<unsigned kFirst, bool kIsPacked>
class CxSpread
{
public:
    CxSpread()
        : m_dwords(kDwordShuffle.load())
        , m_bytes(kByteShuffle.load())
    {}

    HWY_INLINE V32 operator()(V8 pixels) const
    {
        return hn::BitCast(D32(), hn::TableLookupBytes(fx_Permute(pixels, m_dwords), m_bytes));
    }

private:
    static constexpr SxDwordShuffle kDwordShuffle = fx_SpreadDwords(kFirst, kIsPacked);
    static constexpr SxByteShuffle kByteShuffle = fx_SpreadBytes(kFirst);

    Permutation m_dwords;
    V8 m_bytes;
};

class CxWords
{
public:
    static constexpr unsigned kMaxShift = 31;

    explicit CxWords(unsigned shift)
        : m_shift(static_cast<int>(shift))
    {}

    HWY_INLINE V8 pack(uint8_t const* src) const { return fx_PackBytes(word(src), word(src + kVector)); }

private:
    HWY_INLINE V16 word(uint8_t const* src) const
    {
        VU16 const words = hn::BitCast(DU16(), hn::LoadU(D8(), src));
        return hn::BitCast(D16(), hn::And(hn::ShiftRightSame(words, m_shift), hn::Set(DU16(), 0xFF)));
    }

    int m_shift;
};

class CxWeights
{
public:
    CxWeights(int blue, int green, int red)
        : m_blueRed(fx_SetPairs(blue, red))
        , m_green(fx_SetPairs(green, 0))
    {}

    HWY_INLINE V32 sum(SxPairs const& pixels) const
    {
        return hn::Add(fx_MulPairs(pixels.blueRed, m_blueRed), fx_MulPairs(pixels.green, m_green));
    }

private:
    V16 m_blueRed, m_green;
};

/// From blocks whose dword q belongs to part q to one part after the other.
constexpr SxDwordShuffle fx_FromBlocks()
{
    SxDwordShuffle shuffle = {};
    for (unsigned i = 0; i < kDwords; ++i)
        shuffle.dwords[i % 4 * kBlocks + i / 4] = static_cast<std::int32_t>(i);
    return shuffle;
}
constexpr SxDwordShuffle kFromBlocks = fx_FromBlocks();

class CxLuma
{
public:
    CxLuma()
        : m_weights(114, 587, 299)
        , m_order(kFromBlocks.load())
    {}

    HWY_INLINE void store(SxPixels const& pixels, uint8_t* y) const
    {
        V8 const bytes = fx_PackBytes(quotient(pixels.v[0], pixels.v[1]), quotient(pixels.v[2], pixels.v[3]));
        hn::StoreU(fx_Permute(bytes, m_order), D8(), y);
    }

private:
    /// The sums, at most 255000, divided by 1000: by 8, which leaves 15 bits, and by 125, which is exactly
    /// one high product for every dividend up to 59123.
    HWY_INLINE V16 quotient(V32 a, V32 b) const
    {
        V16 const eighths = fx_PackWords(hn::ShiftRight<3>(m_weights.sum(SxPairs(a))),
                                         hn::ShiftRight<3>(m_weights.sum(SxPairs(b))));
        VU16 const product = hn::MulHigh(hn::BitCast(DU16(), eighths), hn::Set(DU16(), 33555));
        return hn::BitCast(D16(), hn::ShiftRight<6>(product));
    }

    CxWeights m_weights;
    Permutation m_order;
};

/// Blocks hold U of eight pixels, two from each of four vectors, and V of those. In two vectors' worth of
/// dwords the first are U of two vectors' pixels, of one block and the next, and so on.
constexpr SxDwordShuffle fx_ChromaDwords()
{
    SxDwordShuffle shuffle = {};
    for (unsigned i = 0; i < kDwords; ++i)
        shuffle.dwords[i] = static_cast<std::int32_t>(i / 4 * 2 + i % 2 * 4 + i % 4 / 2);
    return shuffle;
}

/// Then two samples of each block come after each other: words 0 2 1 3.
constexpr SxByteShuffle fx_ChromaBytes()
{
    SxByteShuffle shuffle = {};
    for (unsigned i = 0; i < kVector; ++i) {
        unsigned const word = i % 8 / 2;
        shuffle.bytes[i] = static_cast<uint8_t>(i % 16 / 8 * 8 + (word % 2 * 2 + word / 2) * 2 + i % 2);
    }
    return shuffle;
}

class CxChroma
{
    static_assert(kBlocks <= 2, "the orders below are made for one and two blocks");

public:
    CxChroma()
        : m_u(500, -331, -169)
        , m_v(-81, -419, 500)
        , m_dwords(kDwordShuffle.load())
        , m_bytes(kByteShuffle.load())
    {}

    HWY_INLINE void store(SxPixels const& pixels, uint8_t* u, uint8_t* v) const
    {
        SxPairs const a(fx_EvenDwords(pixels.v[0], pixels.v[1])), b(fx_EvenDwords(pixels.v[2], pixels.v[3]));
        V8 bytes = fx_PackBytes(quotient(m_u.sum(a), m_u.sum(b)), quotient(m_v.sum(a), m_v.sum(b)));
        if (kBlocks > 1)
            bytes = hn::TableLookupBytes(fx_Permute(bytes, m_dwords), m_bytes);
        hn::Half<D8> const half;
        hn::StoreU(hn::LowerHalf(half, bytes), half, u);
        hn::StoreU(hn::UpperHalf(half, bytes), half, v);
    }

private:
    static constexpr SxDwordShuffle kDwordShuffle = fx_ChromaDwords();
    static constexpr SxByteShuffle kByteShuffle = fx_ChromaBytes();

    /// The sums, at most 127500 either way, divided by 1000 toward zero, and 128: by 8 toward zero, then by
    /// 125 with one high product, which rounds down; a negative quotient is one too low.
    static HWY_INLINE V16 quotient(V32 a, V32 b)
    {
        V16 const eighths = fx_PackWords(eighth(a), eighth(b));
        V16 const product = hn::ShiftRight<5>(hn::MulHigh(eighths, hn::Set(D16(), 16778)));
        return hn::Add(hn::Sub(product, hn::ShiftRight<15>(eighths)), hn::Set(D16(), 128));
    }

    /// Seven more for a negative sum, which has them in its top three bits.
    static HWY_INLINE V32 eighth(V32 sum)
    {
        auto const seven = hn::ShiftRight<29>(hn::BitCast(hn::ScalableTag<std::uint32_t>(), sum));
        return hn::ShiftRight<3>(hn::Add(sum, hn::BitCast(D32(), seven)));
    }

    CxWeights m_u, m_v;
    Permutation m_dwords;
    V8 m_bytes;
};

/// From one part after the other to blocks whose dword q belongs to part q.
constexpr SxDwordShuffle fx_ToBlocks()
{
    SxDwordShuffle shuffle = {};
    for (unsigned i = 0; i < kDwords; ++i)
        shuffle.dwords[i] = static_cast<std::int32_t>(i % 4 * kBlocks + i / 4);
    return shuffle;
}

constexpr SxByteShuffle fx_LowBytesTwice()
{
    SxByteShuffle shuffle = {};
    for (unsigned i = 0; i < kVector; ++i)
        shuffle.bytes[i] = static_cast<uint8_t>(i % 16 / 2 * 2);
    return shuffle;
}

/// trunc(x / 1000) and the clamp to a byte give clamp(Y + floor(c / 1000)), c being the chroma's part of x.
/// So that part is computed once for two pixels of two rows; kept as what it adds and what it takes away,
/// either at most 226, the clamp is a saturating addition and subtraction of bytes.
class CxToRGB32
{
public:
    explicit CxToRGB32(SxPlaneRows const&)
        : m_order(kOrder.load())
        , m_twice(kTwice.load())
    {}

    /// kVector pixels of both rows at pixel x.
    template<bool kIsNonTemporal>
    HWY_INLINE void store(SxPlaneRows const& planes, std::size_t x, std::size_t, uint8_t* top,
                          uint8_t* bottom) const
    {
        V16 const u = samples(planes.u + x / 2), v = samples(planes.v + x / 2);
        SxChange const blue = change(fx_Blue(u)), green = change(fx_Green(u, v)), red = change(fx_Red(v));
        row<kIsNonTemporal>(planes.y[0] + x, blue, green, red, top + 4 * x);
        row<kIsNonTemporal>(planes.y[1] + x, blue, green, red, bottom + 4 * x);
    }

private:
    static constexpr SxDwordShuffle kOrder = fx_ToBlocks();
    static constexpr SxByteShuffle kTwice = fx_LowBytesTwice();

    /// What chroma does to one component of kVector pixels.
    struct SxChange
    {
        HWY_INLINE V8 applyTo(V8 luma) const { return hn::SaturatedSub(hn::SaturatedAdd(luma, more), less); }

        V8 more, less;
    };

    HWY_INLINE V16 samples(uint8_t const* src) const
    {
        hn::Half<D8> const half;
        return fx_Permute(hn::PromoteTo(D16(), hn::LoadU(half, src)), m_order);
    }

    // The factors were searched for: with them the high product rounds down exactly for all 256 samples.

    /// floor(1765 * (u - 128) / 1000)
    static HWY_INLINE V16 fx_Blue(V16 u)
    {
        return hn::MulHigh(hn::Sub(hn::ShiftLeft<2>(u), hn::Set(D16(), 4 * 128)), hn::Set(D16(), 28917));
    }

    /// floor(1400 * (v - 128) / 1000)
    static HWY_INLINE V16 fx_Red(V16 v)
    {
        return hn::MulHigh(hn::Sub(hn::ShiftLeft<4>(v), hn::Set(D16(), 16 * 128 - 1)), hn::Set(D16(), 5734));
    }

    /// floor((-343 * (u - 128) - 711 * (v - 128)) / 1000): by 8, then by 125 as for luma, lifted by
    /// 17000 = 136 * 125 so that nothing is negative.
    static HWY_INLINE V16 fx_Green(V16 u, V16 v)
    {
        V16 const centre = hn::Set(D16(), 128), weights = fx_SetPairs(-343, -711);
        V16 const cb = hn::Sub(u, centre), cr = hn::Sub(v, centre);
        V32 const lower = fx_MulPairs(hn::InterleaveLower(D16(), cb, cr), weights);
        V32 const upper = fx_MulPairs(hn::InterleaveUpper(D16(), cb, cr), weights);
        V16 const eighths = fx_PackWords(hn::ShiftRight<3>(lower), hn::ShiftRight<3>(upper));
        VU16 const lifted = hn::BitCast(DU16(), hn::Add(eighths, hn::Set(D16(), 17000)));
        VU16 const quotient = hn::ShiftRight<6>(hn::MulHigh(lifted, hn::Set(DU16(), 33555)));
        return hn::Sub(hn::BitCast(D16(), quotient), hn::Set(D16(), 136));
    }

    HWY_INLINE SxChange change(V16 value) const
    {
        V16 const more = hn::Max(value, hn::Zero(D16()));
        return {twice(more), twice(hn::Sub(more, value))};
    }

    /// The low byte of each word for two pixels.
    HWY_INLINE V8 twice(V16 words) const { return hn::TableLookupBytes(hn::BitCast(D8(), words), m_twice); }

    template<bool kIsNonTemporal>
    HWY_INLINE void row(uint8_t const* y, SxChange const& blue, SxChange const& green, SxChange const& red,
                        uint8_t* dst) const
    {
        V8 const luma = fx_Permute(hn::LoadU(D8(), y), m_order);
        V8 const b = blue.applyTo(luma), g = green.applyTo(luma), r = red.applyTo(luma);
        V8 const opaque = hn::Set(D8(), 255);
        VU16 const bgLower = hn::BitCast(DU16(), hn::InterleaveLower(D8(), b, g));
        VU16 const bgUpper = hn::BitCast(DU16(), hn::InterleaveUpper(D8(), b, g));
        VU16 const raLower = hn::BitCast(DU16(), hn::InterleaveLower(D8(), r, opaque));
        VU16 const raUpper = hn::BitCast(DU16(), hn::InterleaveUpper(D8(), r, opaque));
        put<kIsNonTemporal>(hn::InterleaveLower(DU16(), bgLower, raLower), dst);
        put<kIsNonTemporal>(hn::InterleaveUpper(DU16(), bgLower, raLower), dst + kVector);
        put<kIsNonTemporal>(hn::InterleaveLower(DU16(), bgUpper, raUpper), dst + 2 * kVector);
        put<kIsNonTemporal>(hn::InterleaveUpper(DU16(), bgUpper, raUpper), dst + 3 * kVector);
    }

    template<bool kIsNonTemporal>
    static HWY_INLINE void put(VU16 pixels, uint8_t* dst)
    {
        if (kIsNonTemporal)
            hn::Stream(hn::BitCast(D8(), pixels), D8(), dst);
        else
            hn::StoreU(hn::BitCast(D8(), pixels), D8(), dst);
    }

    Permutation m_order;
    V8 m_twice;
};

} // namespace
} // namespace HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#endif

// The work on vectors of 64 bytes, for AVX-512 with its permutations of bytes and its dot products. It does
// in two thirds of the instructions what the portable form does; docs/kernels.md has the figures.

#if defined(TARN_IYUVROWSAVX512_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TARN_IYUVROWSAVX512_INL_H_
#undef TARN_IYUVROWSAVX512_INL_H_
#else
#define TARN_IYUVROWSAVX512_INL_H_
#endif

#include "IYUVRowsVectors-inl.h"

#if HWY_TARGET == HWY_AVX3
TARN_BEFORE_NAMESPACE();
namespace HWY_NAMESPACE {
namespace {

/// Every other dword, block by block.
HWY_INLINE __m512i fx_EvenDwords(V32 a, V32 b)
{
    return _mm512_castps_si512(
        _mm512_shuffle_ps(_mm512_castsi512_ps(a.raw), _mm512_castsi512_ps(b.raw), 0x88));
}

constexpr __mmask64 kUpperDwords = 0xF0F0F0F0F0F0F0F0; ///< the second dword of each two

/// Where dword i of a sequence lies after CxWords::pack().
constexpr unsigned fx_Packed(unsigned i)
{
    unsigned const half = kDwords / 2;
    return i < half ? 2 * i : 2 * (i - half) + 1;
}

constexpr SxByteShuffle fx_SpreadBytes(unsigned first, bool isPacked)
{
    SxByteShuffle shuffle = {};
    for (unsigned i = 0; i < kVector; ++i) {
        unsigned const byte = first + fx_From24(i);
        shuffle.bytes[i] = static_cast<uint8_t>(isPacked ? fx_Packed(byte / 4) * 4 + byte % 4 : byte);
    }
    return shuffle;
}

template<unsigned kFirst, bool kIsPacked>
class CxSpread
{
public:
    CxSpread()
        : m_shuffle(kShuffle.load())
    {}

    HWY_INLINE V32 operator()(V8 pixels) const
    {
        return V32{_mm512_permutexvar_epi8(m_shuffle.raw, pixels.raw)};
    }

private:
    static constexpr SxByteShuffle kShuffle = fx_SpreadBytes(kFirst, kIsPacked);

    V8 m_shuffle;
};

/// One instruction a vector takes the bytes from any bits of each four words, those of the second vector into
/// the upper dwords; shifts, masks and a pack would be five for the two.
class CxWords
{
public:
    static constexpr unsigned kMaxShift = 8; ///< further down, the wanted bits leave their word

    explicit CxWords(unsigned shift)
        : m_bits(_mm512_add_epi8(_mm512_set1_epi32(0x30201000), _mm512_set1_epi8(static_cast<char>(shift))))
    {}

    HWY_INLINE V8 pack(uint8_t const* src) const
    {
        __m512i const lower = _mm512_multishift_epi64_epi8(m_bits, _mm512_loadu_si512(src));
        return V8{_mm512_mask_multishift_epi64_epi8(lower, kUpperDwords, m_bits,
                                                    _mm512_loadu_si512(src + kVector))};
    }

private:
    __m512i m_bits;
};

/// Weights for dot products of pixels.
HWY_INLINE __m512i fx_Weights(int blue, int green, int red)
{
    return _mm512_set1_epi32(red << 16 | green << 8 | blue);
}

/// The upper bytes of words that packing of four vectors left in two: lane by lane, four of each.
constexpr SxByteShuffle fx_LumaBytes()
{
    SxByteShuffle shuffle = {};
    for (unsigned i = 0; i < kVector; ++i) {
        unsigned const vector = i / 16, lane = i % 16 / 4;
        unsigned const word = vector / 2 * kVector / 2 + lane * 8 + vector % 2 * 4 + i % 4;
        shuffle.bytes[i] = static_cast<uint8_t>(2 * word + 1);
    }
    return shuffle;
}

class CxLuma
{
public:
    CxLuma()
        : m_rest(fx_Weights(2, 79, 3))
        , m_quarters(fx_Weights(28, 127, 74))
        , m_shuffle(kShuffle.load())
    {}

    HWY_INLINE void store(SxPixels const& pixels, uint8_t* y) const
    {
        _mm512_storeu_si512(y, _mm512_permutex2var_epi8(quotients(pixels.v[0], pixels.v[1]), m_shuffle.raw,
                                                        quotients(pixels.v[2], pixels.v[3])));
    }

private:
    static constexpr SxByteShuffle kShuffle = fx_LumaBytes();

    /// Quarters by 250, in the upper bytes: times 67109 / 65536, exact for every dividend that a word holds.
    HWY_INLINE __m512i quotients(V32 a, V32 b) const
    {
        __m512i const quarters = _mm512_packus_epi32(quarter(a), quarter(b));
        return _mm512_add_epi16(quarters, _mm512_mulhi_epu16(quarters, _mm512_set1_epi16(67109 - 65536)));
    }

    /// (114 B + 587 G + 299 R) / 4 = 28 B + 127 G + 74 R + (2 B + 79 G + 3 R) / 4, in weights that fit a
    /// byte.
    HWY_INLINE __m512i quarter(V32 pixels) const
    {
        __m512i const rest = _mm512_dpbusd_epi32(_mm512_setzero_si512(), pixels.raw, m_rest);
        return _mm512_dpbusd_epi32(_mm512_srli_epi32(rest, 2), pixels.raw, m_quarters);
    }

    __m512i m_rest, m_quarters;
    V8 m_shuffle;
};

/// Pairs of samples of vector and block (0, 0), (0, 1) ... (3, 3), the lower bytes of words: out of a vector
/// of U and one of V, which hold four vectors' pairs block by block. All of U, then all of V.
constexpr SxByteShuffle fx_ChromaBytes()
{
    SxByteShuffle shuffle = {};
    for (unsigned i = 0; i < kVector / 2; ++i) {
        unsigned const vector = i / 8, block = i / 2 % 4;
        unsigned const word = block * 8 + vector * 2 + i % 2;
        shuffle.bytes[i] = static_cast<uint8_t>(2 * word);
        shuffle.bytes[kVector / 2 + i] = static_cast<uint8_t>(2 * word + kVector);
    }
    return shuffle;
}

class CxChroma
{
public:
    CxChroma()
        : m_u(500, -331, -169)
        , m_v(-81, -419, 500)
        , m_shuffle(kShuffle.load())
    {}

    HWY_INLINE void store(SxPixels const& pixels, uint8_t* u, uint8_t* v) const
    {
        SxPairs const a(V32{fx_EvenDwords(pixels.v[0], pixels.v[1])}),
            b(V32{fx_EvenDwords(pixels.v[2], pixels.v[3])});
        __m512i const quotients =
            _mm512_permutex2var_epi8(_mm512_packs_epi32(m_u.quotient(a), m_u.quotient(b)), m_shuffle.raw,
                                     _mm512_packs_epi32(m_v.quotient(a), m_v.quotient(b)));
        __m512i const bytes = _mm512_xor_si512(quotients, _mm512_set1_epi8(-128)); // + 128
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(u), _mm512_castsi512_si256(bytes));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(v), _mm512_extracti64x4_epi64(bytes, 1));
    }

private:
    static constexpr SxByteShuffle kShuffle = fx_ChromaBytes();

    struct SxWeights
    {
        SxWeights(int blue, int green, int red)
            : blueRed(fx_SetPairs(blue, red).raw)
            , onlyGreen(fx_SetPairs(green, 0).raw)
        {}

        /// The weighted sum by 1000, toward zero. Floating point holds the sum; the factor is the least that
        /// is not below 1 / 1000, so that multiples of 1000 stay whole, and nothing else reaches one. The
        /// thread's rounding mode and exceptions have no part in it.
        HWY_INLINE __m512i quotient(SxPairs const& pairs) const
        {
            __m512i const sum = _mm512_dpwssd_epi32(_mm512_madd_epi16(pairs.blueRed.raw, blueRed),
                                                    pairs.green.raw, onlyGreen);
            __m512 const quotient = _mm512_mul_round_ps(_mm512_cvtepi32_ps(sum), _mm512_set1_ps(0.001F),
                                                        _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC);
            return _mm512_cvtt_roundps_epi32(quotient, _MM_FROUND_NO_EXC);
        }

        __m512i blueRed, onlyGreen;
    };

    SxWeights m_u, m_v;
    V8 m_shuffle;
};

/// U and V in turn, from a half vector of each.
constexpr SxByteShuffle fx_InTurn()
{
    SxByteShuffle shuffle = {};
    for (unsigned i = 0; i < kVector; ++i)
        shuffle.bytes[i] = static_cast<uint8_t>(i / 2 + i % 2 * kVector);
    return shuffle;
}

/// Each of the sixteen samples of \p block four times.
constexpr SxByteShuffle fx_FourTimes(unsigned block)
{
    SxByteShuffle shuffle = {};
    for (unsigned i = 0; i < kVector; ++i)
        shuffle.bytes[i] = static_cast<uint8_t>(block * 16 + i / 4);
    return shuffle;
}

/// Sixteen pixels out of \p block of two vectors: eight samples of blue and of green in the first, of red and
/// of the fourth byte in the second.
constexpr SxByteShuffle fx_Change(unsigned block)
{
    SxByteShuffle shuffle = {};
    for (unsigned i = 0; i < kVector; ++i) {
        unsigned const component[] = {0, 8, kVector, kVector + 8};
        shuffle.bytes[i] = static_cast<uint8_t>(block * 16 + component[i % 4] + i / 8);
    }
    return shuffle;
}

/// As the portable form, but what chroma adds and takes away is brought into the order of the pixels once for
/// two rows, so that a row is luma four times, an addition and a subtraction. And it is computed a step
/// ahead: a step is longer than what the processor looks ahead, which would wait for it.
class CxToRGB32
{
public:
    explicit CxToRGB32(SxPlaneRows const& planes)
        : m_inTurn(kInTurn.load())
        , m_change(change(planes, 0))
    {}

    /// kVector pixels of both rows at pixel x; those at pixel \p next come next.
    template<bool kIsNonTemporal>
    HWY_INLINE void store(SxPlaneRows const& planes, std::size_t x, std::size_t next, uint8_t* top,
                          uint8_t* bottom)
    {
        SxChange const now = m_change;
        m_change = change(planes, next);
        SxLuma const luma = {_mm512_loadu_si512(planes.y[0] + x), _mm512_loadu_si512(planes.y[1] + x)};
        block<kIsNonTemporal, 0>(luma, now, top + 4 * x, bottom + 4 * x);
        block<kIsNonTemporal, 1>(luma, now, top + 4 * x, bottom + 4 * x);
        block<kIsNonTemporal, 2>(luma, now, top + 4 * x, bottom + 4 * x);
        block<kIsNonTemporal, 3>(luma, now, top + 4 * x, bottom + 4 * x);
    }

private:
    static constexpr SxByteShuffle kInTurn = fx_InTurn();
    static constexpr SxByteShuffle kFourTimes[4] = {fx_FourTimes(0), fx_FourTimes(1), fx_FourTimes(2),
                                                    fx_FourTimes(3)};
    static constexpr SxByteShuffle kShuffle[4] = {fx_Change(0), fx_Change(1), fx_Change(2), fx_Change(3)};

    struct SxLuma
    {
        __m512i top, bottom;
    };

    /// What chroma adds and what it takes away: blue and green, red and the fourth byte.
    struct SxChange
    {
        __m512i more, moreRed, less, lessRed;
    };

    HWY_INLINE SxChange change(SxPlaneRows const& planes, std::size_t x) const
    {
        __m512i const uv =
            _mm512_permutex2var_epi8(samples(planes.u + x / 2), m_inTurn.raw, samples(planes.v + x / 2));
        __m512i const zero = _mm512_setzero_si512();
        __m512i const blue = fx_Blue(uv), green = fx_Green(uv), red = fx_Red(uv);
        // Packing makes what is negative 0. The fourth byte is lifted to 255 and nothing is taken from it.
        return {_mm512_packus_epi16(blue, green), _mm512_packus_epi16(red, _mm512_set1_epi16(0x7FFF)),
                _mm512_packus_epi16(_mm512_sub_epi16(zero, blue), _mm512_sub_epi16(zero, green)),
                _mm512_packus_epi16(_mm512_sub_epi16(zero, red), zero)};
    }

    static HWY_INLINE __m512i samples(uint8_t const* src)
    {
        return _mm512_castsi256_si512(_mm256_loadu_si256(reinterpret_cast<__m256i const*>(src)));
    }

    /// u * U + v * V of each pair of samples.
    static HWY_INLINE __m512i fx_Sum(__m512i uv, int u, int v)
    {
        return _mm512_maddubs_epi16(uv, _mm512_set1_epi16(static_cast<short>(v << 8 | u)));
    }

    // The factors are those of the portable form.

    static HWY_INLINE __m512i fx_Blue(__m512i uv)
    {
        return _mm512_mulhi_epi16(_mm512_sub_epi16(fx_Sum(uv, 4, 0), _mm512_set1_epi16(4 * 128)),
                                  _mm512_set1_epi16(28917));
    }

    static HWY_INLINE __m512i fx_Red(__m512i uv)
    {
        return _mm512_mulhi_epi16(_mm512_sub_epi16(fx_Sum(uv, 0, 16), _mm512_set1_epi16(16 * 128 - 1)),
                                  _mm512_set1_epi16(5734));
    }

    /// floor((134912 - 343 U - 711 V) / 8) = 16864 - 40 U - 88 V - (23 U + 7 V + 7) / 8, in weights that fit
    /// a byte; the lift of 17000 is in the constant.
    static HWY_INLINE __m512i fx_Green(__m512i uv)
    {
        __m512i const rest = _mm512_srli_epi16(_mm512_add_epi16(fx_Sum(uv, 23, 7), _mm512_set1_epi16(7)), 3);
        __m512i const whole =
            _mm512_sub_epi16(_mm512_set1_epi16(static_cast<short>(16864 + 17000)), fx_Sum(uv, 40, 88));
        __m512i const product =
            _mm512_mulhi_epu16(_mm512_sub_epi16(whole, rest), _mm512_set1_epi16(static_cast<short>(33555)));
        return _mm512_sub_epi16(_mm512_srli_epi16(product, 6), _mm512_set1_epi16(136));
    }

    /// Sixteen pixels of both rows.
    template<bool kIsNonTemporal, unsigned kBlock>
    static HWY_INLINE void block(SxLuma const& luma, SxChange const& change, uint8_t* top, uint8_t* bottom)
    {
        __m512i const order = kShuffle[kBlock].load().raw;
        __m512i const add = _mm512_permutex2var_epi8(change.more, order, change.moreRed);
        __m512i const subtract = _mm512_permutex2var_epi8(change.less, order, change.lessRed);
        put<kIsNonTemporal, kBlock>(luma.top, add, subtract, top);
        put<kIsNonTemporal, kBlock>(luma.bottom, add, subtract, bottom);
    }

    template<bool kIsNonTemporal, unsigned kBlock>
    static HWY_INLINE void put(__m512i luma, __m512i add, __m512i subtract, uint8_t* dst)
    {
        __m512i const grey = _mm512_permutexvar_epi8(kFourTimes[kBlock].load().raw, luma);
        __m512i const pixels = _mm512_subs_epu8(_mm512_adds_epu8(grey, add), subtract);
        if (kIsNonTemporal)
            _mm512_stream_si512(reinterpret_cast<__m512i*>(dst + kBlock * kVector), pixels);
        else
            _mm512_storeu_si512(dst + kBlock * kVector, pixels);
    }

    V8 m_inTurn;
    SxChange m_change;
};

} // namespace
} // namespace HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#endif

// The rows of IYUVRows, written once with Highway and compiled for each instruction set, each time in
// that set's namespace.

#include "CompiledTargets.h"
#include "HighwayTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "IYUVRowsSimd.cpp"
#include "hwy/foreach_target.h" // IWYU pragma: keep

#include "hwy/cache_control.h"
#include "hwy/highway.h"

// The work on one vector comes in two forms, which give the same bytes:
//   CxSpread   pixels of 24 bits to 32; with kIsPacked, the pixels as CxWords leaves them
//   CxWords    words down to bytes, two vectors to one, in the order of fx_Packed()
//   CxLuma     SxPixels to luma
//   CxChroma   SxPixels to the chroma of the even ones
//   CxToRGB32  planes to pixels

// Each header takes part in every pass, if only to keep its include guard in step.
#include "IYUVRowsAVX512-inl.h"
#include "IYUVRowsPortable-inl.h"

#if TARN_HAS_VECTORS

TARN_BEFORE_NAMESPACE();
namespace HWY_NAMESPACE {
namespace {

constexpr SxDwordShuffle fx_FromPacked()
{
    SxDwordShuffle shuffle = {};
    for (unsigned i = 0; i < kDwords; ++i)
        shuffle.dwords[i] = static_cast<std::int32_t>(fx_Packed(i));
    return shuffle;
}
constexpr SxDwordShuffle kFromPacked = fx_FromPacked();

// The formats: vector i of the four that a step of pixels fills.

class CxRGB32
{
public:
    static constexpr unsigned kPixelBytes = 4;
    static SxColourKernels const& scalar() { return fx_GetScalarIYUVKernels().rgb32; }
    explicit CxRGB32(unsigned) {}

    HWY_INLINE V32 vector(uint8_t const* src, unsigned i) const
    {
        return hn::BitCast(D32(), hn::LoadU(D8(), src + i * kVector));
    }
};

/// Each vector is loaded where its pixels start, the last one earlier, so that it ends with them.
class CxRGB24
{
public:
    static constexpr unsigned kPixelBytes = 3;
    static SxColourKernels const& scalar() { return fx_GetScalarIYUVKernels().rgb24; }
    explicit CxRGB24(unsigned) {}

    HWY_INLINE V32 vector(uint8_t const* src, unsigned i) const
    {
        return i < 3 ? m_early(hn::LoadU(D8(), src + i * kDwords * kPixelBytes))
                     : m_late(hn::LoadU(D8(), src + kStep * kPixelBytes - kVector));
    }

private:
    CxSpread<0, false> m_early;
    CxSpread<kVector / 4, false> m_late;
};

class CxRGB48
{
public:
    static constexpr unsigned kPixelBytes = 6;
    static SxColourKernels const& scalar() { return fx_GetScalarIYUVKernels().rgb48; }
    explicit CxRGB48(unsigned shift)
        : m_words(shift)
    {}

    HWY_INLINE V32 vector(uint8_t const* src, unsigned i) const
    {
        return i < 3 ? m_early(m_words.pack(src + i * kDwords * kPixelBytes))
                     : m_late(m_words.pack(src + kStep * kPixelBytes - 2 * kVector));
    }

private:
    CxWords m_words;
    CxSpread<0, true> m_early;
    CxSpread<kVector / 4, true> m_late;
};

class CxRGB64
{
public:
    static constexpr unsigned kPixelBytes = 8;
    static SxColourKernels const& scalar() { return fx_GetScalarIYUVKernels().rgb64; }
    explicit CxRGB64(unsigned shift)
        : m_words(shift)
        , m_order(kFromPacked.load())
    {}

    HWY_INLINE V32 vector(uint8_t const* src, unsigned i) const
    {
        return hn::BitCast(D32(), fx_Permute(m_words.pack(src + i * 2 * kVector), m_order));
    }

private:
    CxWords m_words;
    Permutation m_order;
};

/// kStep pixels. The compiler is held to the order of the addresses: out of order, the processor's prefetcher
/// loses track, and a large picture takes up to a third longer.
template<class Format>
HWY_INLINE SxPixels fx_Load(Format const& format, uint8_t const* src)
{
    V32 const first = format.vector(src, 0);
    HWY_FENCE;
    V32 const second = format.vector(src, 1);
    HWY_FENCE;
    V32 const third = format.vector(src, 2);
    HWY_FENCE;
    V32 const fourth = format.vector(src, 3);
    HWY_FENCE;
    return {{first, second, third, fourth}};
}

// The rows. What is too short for a vector goes to the scalar twin; what is no multiple of one ends with a
// vector that overlaps its neighbour.

template<class Format>
void fx_LumaRow(uint8_t const* src, uint8_t* y, unsigned width, unsigned shift)
{
    if (width < kStep || shift > CxWords::kMaxShift)
        return Format::scalar().luma(src, y, width, shift);

    Format const format(shift);
    CxLuma const luma;
    std::size_t const end = width - kStep;
    for (std::size_t x = 0; x < end; x += kStep)
        luma.store(fx_Load(format, src + x * Format::kPixelBytes), y + x);
    luma.store(fx_Load(format, src + end * Format::kPixelBytes), y + end);
}

template<class Format>
void fx_ColourRow(uint8_t const* src, uint8_t* y, uint8_t* u, uint8_t* v, unsigned width, unsigned shift)
{
    if (width < kStep || shift > CxWords::kMaxShift)
        return Format::scalar().lumaAndChroma(src, y, u, v, width, shift);

    Format const format(shift);
    CxLuma const luma;
    CxChroma const chroma;
    std::size_t const end = width - kStep;
    for (std::size_t x = 0;; x = x + kStep < end ? x + kStep : end) {
        SxPixels const pixels = fx_Load(format, src + x * Format::kPixelBytes);
        luma.store(pixels, y + x);
        chroma.store(pixels, u + x / 2, v + x / 2);
        if (x == end)
            break;
    }
}

void fx_Mono16Row(uint8_t const* src, uint8_t* y, unsigned width, unsigned shift)
{
    if (width < kVector || shift > CxWords::kMaxShift)
        return fx_GetScalarIYUVKernels().mono16(src, y, width, shift);

    CxWords const words(shift);
    Permutation const order = kFromPacked.load();
    std::size_t const end = width - kVector;
    for (std::size_t x = 0; x < end; x += kVector)
        hn::StoreU(fx_Permute(words.pack(src + 2 * x), order), D8(), y + x);
    hn::StoreU(fx_Permute(words.pack(src + 2 * end), order), D8(), y + end);
}

template<bool kIsNonTemporal>
void fx_ToRGB32Rows(SxPlaneRows const& source, uint8_t* top, uint8_t* bottom, unsigned width)
{
    if (width < kVector)
        return fx_GetScalarIYUVKernels().toRGB32(source, top, bottom, width);

    SxPlaneRows const planes = source; // which no store to the picture can change

    CxToRGB32 toRGB32(planes);
    std::size_t const end = width - kVector;
    for (std::size_t x = 0; x < end;) {
        std::size_t const next = x + kVector < end ? x + kVector : end;
        toRGB32.store<kIsNonTemporal>(planes, x, next, top, bottom);
        x = next;
    }
    toRGB32.store<false>(planes, end, end, top, bottom); // non-temporal stores need an aligned address
}

template<class Format>
constexpr SxColourKernels fx_ColourKernels()
{
    return {fx_LumaRow<Format>, fx_ColourRow<Format>};
}

} // namespace

constexpr SxIYUVKernels kIYUVKernels = {
    fx_ColourKernels<CxRGB24>(),
    fx_ColourKernels<CxRGB32>(),
    fx_ColourKernels<CxRGB48>(),
    fx_ColourKernels<CxRGB64>(),
    fx_Mono16Row,
    fx_ToRGB32Rows<false>,
    fx_ToRGB32Rows<true>,
};

} // namespace HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif

#if HWY_ONCE

SxIYUVKernels const* fx_GetCompiledIYUVKernels(VectorTarget target)
{
    static constexpr SxIYUVKernels const* tables[] = TARN_EACH_TARGET(kIYUVKernels);
    return tables[static_cast<int>(target)];
}

void fx_FinishNonTemporalStores() { hwy::FlushStream(); }

#endif

#include "IYUVRows.h"

#include <algorithm>
#include <cstring>

namespace {

struct SxPixel
{
    int b, g, r;
};

/// ITU-R BT.601 luma weights in per-mille; at most 255, so nothing is clamped.
uchar fx_Luma(SxPixel p) { return static_cast<uchar>((114 * p.b + 587 * p.g + 299 * p.r) / 1000); }

// The quotients are truncated toward zero before 128 is added, so U and V stay within 1 to 255.
uchar fx_ChromaU(SxPixel p) { return static_cast<uchar>((500 * p.b - 331 * p.g - 169 * p.r) / 1000 + 128); }

uchar fx_ChromaV(SxPixel p) { return static_cast<uchar>((500 * p.r - 419 * p.g - 81 * p.b) / 1000 + 128); }

/// Rows may start at odd addresses: the pitch is the host's to choose.
int fx_Word(uchar const* src, unsigned shift)
{
    quint16 word;
    std::memcpy(&word, src, sizeof word);
    return (word >> shift) & 255;
}

/// Pixels of samples of one byte.
template<unsigned kComponents>
struct SxBytes
{
    static constexpr unsigned kPixelBytes = kComponents;
    static SxPixel pixel(uchar const* src, unsigned) { return {src[0], src[1], src[2]}; }
};

/// Pixels of samples of one native word.
template<unsigned kComponents>
struct SxWords
{
    static constexpr unsigned kPixelBytes = 2 * kComponents;
    static SxPixel pixel(uchar const* src, unsigned shift)
    {
        return {fx_Word(src, shift), fx_Word(src + 2, shift), fx_Word(src + 4, shift)};
    }
};

template<class Format>
void fx_LumaRow(uchar const* src, uchar* y, unsigned width, unsigned shift)
{
    for (unsigned x = 0; x < width; ++x)
        y[x] = fx_Luma(Format::pixel(src + size_t(x) * Format::kPixelBytes, shift));
}

template<class Format>
void fx_ColourRow(uchar const* src, uchar* y, uchar* u, uchar* v, unsigned width, unsigned shift)
{
    fx_LumaRow<Format>(src, y, width, shift);
    // Deliberate: chroma is picked from the left pixel, not averaged over the pair.
    for (unsigned pair = 0; pair < width / 2; ++pair) {
        SxPixel const left = Format::pixel(src + size_t(pair) * 2 * Format::kPixelBytes, shift);
        u[pair] = fx_ChromaU(left);
        v[pair] = fx_ChromaV(left);
    }
}

void fx_Mono16Row(uchar const* src, uchar* y, unsigned width, unsigned shift)
{
    for (unsigned x = 0; x < width; ++x)
        y[x] = static_cast<uchar>(fx_Word(src + size_t(x) * 2, shift));
}

uchar fx_Clamp(int value) { return static_cast<uchar>(std::clamp(value, 0, 255)); }

/// BT.601 back to colour, in per-mille; the quotients truncate toward zero.
void fx_ToRGB32Row(uchar const* y, uchar const* u, uchar const* v, uchar* dst, unsigned width)
{
    for (unsigned x = 0; x < width; ++x) {
        int const luma = 1000 * y[x];
        int const cb = u[x / 2] - 128;
        int const cr = v[x / 2] - 128;
        uchar* const pixel = dst + size_t(x) * 4;
        pixel[0] = fx_Clamp((luma + 1765 * cb) / 1000);
        pixel[1] = fx_Clamp((luma - 343 * cb - 711 * cr) / 1000);
        pixel[2] = fx_Clamp((luma + 1400 * cr) / 1000);
        pixel[3] = 255;
    }
}

template<class Format>
constexpr SxColourRows fx_ColourRows()
{
    return {fx_LumaRow<Format>, fx_ColourRow<Format>};
}

} // namespace

SxIYUVRows const& fx_GetScalarIYUVRows()
{
    static constexpr SxIYUVRows rows = {
        "scalar",
        fx_ColourRows<SxBytes<3>>(),
        fx_ColourRows<SxBytes<4>>(),
        fx_ColourRows<SxWords<3>>(),
        fx_ColourRows<SxWords<4>>(),
        fx_Mono16Row,
        fx_ToRGB32Row,
    };
    return rows;
}

SxIYUVRows const& fx_GetIYUVRows() { return fx_GetScalarIYUVRows(); }

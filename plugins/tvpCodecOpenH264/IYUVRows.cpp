#include "IYUVRows.h"

#include <algorithm>
#include <cstring>

#include "CompiledTargets.h"

using std::uint8_t;

namespace {

struct SxPixel
{
    int b, g, r;
};

/// ITU-R BT.601 luma weights in per-mille; at most 255, so nothing is clamped.
uint8_t fx_Luma(SxPixel p) { return static_cast<uint8_t>((114 * p.b + 587 * p.g + 299 * p.r) / 1000); }

// The quotients are truncated toward zero before 128 is added, so U and V stay within 1 to 255.
uint8_t fx_ChromaU(SxPixel p)
{
    return static_cast<uint8_t>((500 * p.b - 331 * p.g - 169 * p.r) / 1000 + 128);
}

uint8_t fx_ChromaV(SxPixel p)
{
    return static_cast<uint8_t>((500 * p.r - 419 * p.g - 81 * p.b) / 1000 + 128);
}

/// Rows may start at odd addresses: the pitch is the host's to choose.
int fx_Word(uint8_t const* src, unsigned shift)
{
    std::uint16_t word;
    std::memcpy(&word, src, sizeof word);
    return (word >> shift) & 255;
}

/// Pixels of samples of one byte.
template<unsigned kComponents>
struct SxBytes
{
    static constexpr unsigned kPixelBytes = kComponents;
    static SxPixel pixel(uint8_t const* src, unsigned) { return {src[0], src[1], src[2]}; }
};

/// Pixels of samples of one native word.
template<unsigned kComponents>
struct SxWords
{
    static constexpr unsigned kPixelBytes = 2 * kComponents;
    static SxPixel pixel(uint8_t const* src, unsigned shift)
    {
        return {fx_Word(src, shift), fx_Word(src + 2, shift), fx_Word(src + 4, shift)};
    }
};

template<class Format>
void fx_LumaRow(uint8_t const* src, uint8_t* y, unsigned width, unsigned shift)
{
    for (unsigned x = 0; x < width; ++x)
        y[x] = fx_Luma(Format::pixel(src + std::size_t(x) * Format::kPixelBytes, shift));
}

template<class Format>
void fx_ColourRow(uint8_t const* src, uint8_t* y, uint8_t* u, uint8_t* v, unsigned width, unsigned shift)
{
    fx_LumaRow<Format>(src, y, width, shift);
    // Deliberate: chroma is picked from the left pixel, not averaged over the pair.
    for (unsigned pair = 0; pair < width / 2; ++pair) {
        SxPixel const left = Format::pixel(src + std::size_t(pair) * 2 * Format::kPixelBytes, shift);
        u[pair] = fx_ChromaU(left);
        v[pair] = fx_ChromaV(left);
    }
}

void fx_Mono16Row(uint8_t const* src, uint8_t* y, unsigned width, unsigned shift)
{
    for (unsigned x = 0; x < width; ++x)
        y[x] = static_cast<uint8_t>(fx_Word(src + std::size_t(x) * 2, shift));
}

uint8_t fx_Clamp(int value) { return static_cast<uint8_t>(std::clamp(value, 0, 255)); }

/// BT.601 back to colour, in per-mille; the quotients truncate toward zero.
void fx_ToRGB32Row(uint8_t const* y, uint8_t const* u, uint8_t const* v, uint8_t* dst, unsigned width)
{
    for (unsigned x = 0; x < width; ++x) {
        int const luma = 1000 * y[x];
        int const cb = u[x / 2] - 128;
        int const cr = v[x / 2] - 128;
        uint8_t* const pixel = dst + std::size_t(x) * 4;
        pixel[0] = fx_Clamp((luma + 1765 * cb) / 1000);
        pixel[1] = fx_Clamp((luma - 343 * cb - 711 * cr) / 1000);
        pixel[2] = fx_Clamp((luma + 1400 * cr) / 1000);
        pixel[3] = 255;
    }
}

void fx_ToRGB32Rows(SxPlaneRows const& planes, uint8_t* top, uint8_t* bottom, unsigned width)
{
    fx_ToRGB32Row(planes.y[0], planes.u, planes.v, top, width);
    if (bottom != top)
        fx_ToRGB32Row(planes.y[1], planes.u, planes.v, bottom, width);
}

template<class Format>
constexpr SxColourKernels fx_ColourKernels()
{
    return {fx_LumaRow<Format>, fx_ColourRow<Format>};
}

} // namespace

SxIYUVKernels const& fx_GetScalarIYUVKernels()
{
    static constexpr SxIYUVKernels rows = {
        fx_ColourKernels<SxBytes<3>>(),
        fx_ColourKernels<SxBytes<4>>(),
        fx_ColourKernels<SxWords<3>>(),
        fx_ColourKernels<SxWords<4>>(),
        fx_Mono16Row,
        fx_ToRGB32Rows,
        fx_ToRGB32Rows,
    };
    return rows;
}

SxIYUVKernels const& fx_GetIYUVKernels(VectorTarget target)
{
    SxIYUVKernels const* const compiled = fx_GetCompiledIYUVKernels(target);
    return compiled ? *compiled : fx_GetScalarIYUVKernels();
}

SxIYUVKernels const& fx_GetIYUVKernels() { return fx_GetIYUVKernels(fx_GetVectorTarget()); }

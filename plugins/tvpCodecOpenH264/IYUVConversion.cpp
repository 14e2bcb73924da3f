#include "IYUVConversion.h"

#include <algorithm>
#include <cstring>

#include "IYUVRows.h"

namespace {

constexpr unsigned kMaxPixelBytes = 8;

/// The source as rows that never leave pitch * height bytes, and the planes as offsets that never
/// reach the capacity.
struct SxConversion
{
    SxConversion(SxPicBuf const& source, unsigned pixelSize, uchar* target, quint64 targetSize)
        : data(source.data)
        , width(source.width)
        , height(source.height)
        , pitch(source.pitch)
        , pixelBytes(pixelSize)
        , dst(target)
        , capacity(targetSize)
        , planeU(width * height)
        , planeV(planeU + width * height / 4)
    {}

    /// In 64 bits, unlike GetIYUVSize(): 65536 * 65536 pixels do not fit into 0 bytes.
    bool fits() const
    {
        if (!dst || (height != 0 && (width + width / 2) > capacity / height))
            return false;
        return isEmpty() || (data && pitch >= pixelBytes);
    }

    bool isEmpty() const { return width == 0 || height == 0; }
    uchar const* row(quint64 r) const { return data + r * pitch; }
    quint64 readablePixels(quint64 r) const { return pitch * (height - r) / pixelBytes; }

    /// Copies pixel x of row r, or the nearest one before it that can be read.
    void fetch(quint64 r, quint64 x, uchar* pixel) const
    {
        std::memcpy(pixel, row(r) + std::min(x, readablePixels(r) - 1) * pixelBytes, pixelBytes);
    }

    void put(quint64 offset, uchar value) const
    {
        if (offset < capacity)
            dst[offset] = value;
    }

    uchar const* data;
    quint64 width, height, pitch;
    unsigned pixelBytes;
    uchar* dst;
    quint64 capacity;
    quint64 planeU, planeV; ///< offsets in dst
};

/// A decoded picture on its way to RGB32.
struct SxDecoded
{
    bool isLastRow(quint64 r) const { return r + 1 == target.height; }
    uchar* row(quint64 r) const { return target.data + r * target.pitch; }

    SxPlaneRows planes(quint64 r) const
    {
        uchar const* const top = y + r * yStride;
        quint64 const chroma = r / 2 * uvStride;
        return {{top, isLastRow(r) ? top : top + yStride}, u + chroma, v + chroma};
    }

    SxPicBuf const& target;
    uchar const* y;
    uchar const* u;
    uchar const* v;
    unsigned yStride, uvStride;
};

/// Shift that leaves the eight highest significant bits; the host's counts wrap.
unsigned fx_Shift(SxPicBuf const& source) { return (source.bitsPerSample - 8u) & 31u; }

/// Luma of row r, where some of its pixels may lie outside the source.
void fx_LumaByPixel(SxConversion const& c, FxLumaKernel luma, quint64 r, unsigned shift)
{
    for (quint64 x = 0; x < c.width; ++x) {
        uchar pixel[kMaxPixelBytes];
        c.fetch(r, x, pixel);
        luma(pixel, c.dst + r * c.width + x, 1, shift);
    }
}

/// The pair walk of even row r from pixel x on, in its defining order and each byte checked: for pairs
/// whose order matters because planes overlap, or which lie partly outside source or capacity.
void fx_ColourByPair(SxConversion const& c, FxColourKernel lumaAndChroma, quint64 r, quint64 x,
                     unsigned shift)
{
    quint64 const chroma = r / 2 * (c.width / 2);
    for (; x < c.width; x += 2) {
        uchar pixels[2 * kMaxPixelBytes];
        c.fetch(r, x, pixels);
        c.fetch(r, x + 1, pixels + c.pixelBytes);
        uchar y[2], u, v;
        lumaAndChroma(pixels, y, &u, &v, 2, shift);

        c.put(r * c.width + x, y[0]);
        c.put(c.planeU + chroma + x / 2, u);
        c.put(c.planeV + chroma + x / 2, v);
        c.put(r * c.width + x + 1, y[1]);
    }
}

bool fx_ConvertColour(SxConversion const& c, SxColourKernels const& rows, unsigned shift)
{
    if (!c.fits())
        return false;
    if (c.isEmpty())
        return true;

    quint64 const chromaWidth = c.width / 2;
    // A row of U must not reach the row of V that is written with it (pictures of one row).
    bool const rowsAreDisjoint = c.planeV - c.planeU >= chromaWidth;
    unsigned const width = static_cast<unsigned>(c.width);
    unsigned const wholePairs = width & ~1u;
    for (quint64 r = 0; r < c.height; ++r) {
        bool const isReadable = c.readablePixels(r) >= c.width;
        uchar* const y = c.dst + r * c.width;
        if (r % 2 != 0) {
            if (isReadable)
                rows.luma(c.row(r), y, width, shift);
            else
                fx_LumaByPixel(c, rows.luma, r, shift);
            continue;
        }

        quint64 const u = c.planeU + r / 2 * chromaWidth;
        quint64 const v = c.planeV + r / 2 * chromaWidth;
        unsigned done = 0;
        if (isReadable && rowsAreDisjoint && v + chromaWidth <= c.capacity) {
            rows.lumaAndChroma(c.row(r), y, c.dst + u, c.dst + v, wholePairs, shift);
            done = wholePairs;
        }
        fx_ColourByPair(c, rows.lumaAndChroma, r, done, shift);
    }
    return true;
}

bool fx_ConvertMono(SxConversion const& c, FxLumaKernel luma, unsigned shift)
{
    if (!c.fits())
        return false;
    if (c.isEmpty())
        return true;

    for (quint64 r = 0; r < c.height; ++r) {
        if (c.readablePixels(r) >= c.width)
            luma(c.row(r), c.dst + r * c.width, static_cast<unsigned>(c.width), shift);
        else
            fx_LumaByPixel(c, luma, r, shift);
    }
    // Neutral chroma: both planes by their offsets, whose sum can pass the size of an odd picture.
    quint64 const chromaBytes = std::min(c.width * c.height / 4 * 2, c.capacity - c.planeU);
    std::memset(c.dst + c.planeU, 128, chromaBytes);
    return true;
}

/// Converts the last pair of row r of odd width: the row's last pixel and the one behind it, which is
/// written where the pitch has room and read where its plane has it. What a later row overwrites is not
/// written at all.
void fx_LastPairToRGB32(SxDecoded const& picture, FxRGB32Kernel toRGB32, quint64 r)
{
    quint64 const x = picture.target.width - 1;
    quint64 const room = picture.target.pitch - std::min<quint64>(x * 4, picture.target.pitch);
    bool const isLastRow = picture.isLastRow(r);
    quint64 const bytes = isLastRow ? (room >= 8 ? 8 : 4) : std::clamp<quint64>(room, 4, 8);

    SxPlaneRows const planes = picture.planes(r);
    bool const isBehindPlane = isLastRow && x + 1 >= picture.yStride;
    uchar const* const luma = planes.y[0] + x;
    uchar const y[2] = {luma[0], bytes == 4 || isBehindPlane ? luma[0] : luma[1]};
    // Chroma rows may be half the width, rounded down, long.
    bool const isLastChromaRow = r / 2 == (picture.target.height - 1) / 2;
    quint64 const chroma =
        isLastChromaRow && picture.uvStride > 0 ? std::min<quint64>(x / 2, picture.uvStride - 1) : x / 2;

    uchar pixels[8];
    toRGB32({{y, y}, planes.u + chroma, planes.v + chroma}, pixels, pixels, 2);
    std::memcpy(picture.row(r) + x * 4, pixels, bytes);
}

/// Pictures of a megapixel and more are written past the cache. They would drive out the decoder's reference
/// pictures, and be driven out themselves before anybody reads them.
constexpr quint64 kNonTemporalBytes = 1u << 22;

bool fx_IsNonTemporal(SxPicBuf const& target)
{
    return quint64(target.pitch) * target.height >= kNonTemporalBytes &&
           target.pitch % kNonTemporalAlignment == 0 &&
           reinterpret_cast<quintptr>(target.data) % kNonTemporalAlignment == 0;
}

void fx_CopyRow(uchar const* src, uchar* y, unsigned width, unsigned) { std::memcpy(y, src, width); }

} // namespace

unsigned long GetIYUVSize(SxPicBufInfo const& format)
{
    return (format.width + format.width / 2) * format.height;
}

bool ConvertRGB24toIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity)
{
    return fx_ConvertColour({source, 3, dst, capacity}, fx_GetIYUVKernels().rgb24, 0);
}

bool ConvertRGB32toIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity)
{
    return fx_ConvertColour({source, 4, dst, capacity}, fx_GetIYUVKernels().rgb32, 0);
}

bool ConvertRGB48toIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity)
{
    return fx_ConvertColour({source, 6, dst, capacity}, fx_GetIYUVKernels().rgb48, fx_Shift(source));
}

bool ConvertRGB64toIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity)
{
    return fx_ConvertColour({source, 8, dst, capacity}, fx_GetIYUVKernels().rgb64, fx_Shift(source));
}

bool ConvertMono8toIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity)
{
    return fx_ConvertMono({source, 1, dst, capacity}, fx_CopyRow, 0);
}

bool ConvertMono16toIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity)
{
    return fx_ConvertMono({source, 2, dst, capacity}, fx_GetIYUVKernels().mono16, fx_Shift(source));
}

bool ConvertPicBuftoIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity)
{
    if (source.layout != 1)
        return false;
    switch (source.sampleType) {
    case 2:
        switch (source.components) {
        case 1:
            return ConvertMono8toIYUV(source, dst, capacity);
        case 3:
            return ConvertRGB24toIYUV(source, dst, capacity);
        case 4:
            return ConvertRGB32toIYUV(source, dst, capacity);
        default:
            return false;
        }
    case 4:
        switch (source.components) {
        case 1:
            return ConvertMono16toIYUV(source, dst, capacity);
        case 3:
            return ConvertRGB48toIYUV(source, dst, capacity);
        case 4:
            return ConvertRGB64toIYUV(source, dst, capacity);
        default:
            return false;
        }
    default:
        return false;
    }
}

bool ConvertIYUVtoRGB32(SxPicBuf& target, unsigned char const* y, unsigned char const* u,
                        unsigned char const* v, unsigned long, unsigned int yStride, unsigned int uvStride)
{
    if (target.width == 0)
        return true;

    SxIYUVKernels const& rows = fx_GetIYUVKernels();
    bool const isNonTemporal = fx_IsNonTemporal(target);
    FxRGB32Kernel const toRGB32 = isNonTemporal ? rows.toRGB32NonTemporal : rows.toRGB32;
    SxDecoded const picture = {target, y, u, v, yStride, uvStride};
    for (quint64 r = 0; r < target.height; r += 2) {
        bool const isLone = picture.isLastRow(r);
        toRGB32(picture.planes(r), picture.row(r), picture.row(isLone ? r : r + 1), target.width & ~1u);
        if (target.width % 2 != 0) {
            fx_LastPairToRGB32(picture, rows.toRGB32, r);
            if (!isLone)
                fx_LastPairToRGB32(picture, rows.toRGB32, r + 1);
        }
    }
    if (isNonTemporal)
        fx_FinishNonTemporalStores();
    return true;
}

#include "ShownPicture.h"

#include <algorithm>

#include "PictureFormat.h"

static uchar const* fx_Row(SxPicBuf const& picture, quint32 y)
{
    return picture.data + static_cast<size_t>(y) * picture.pitch;
}

/// The format in which Qt paints packed bytes as they are.
static QImage::Format fx_ByteFormat(quint32 components)
{
    switch (components) {
    case 1:
        return QImage::Format_Grayscale8;
    case 3:
        return QImage::Format_BGR888;
    case 4:
        return QImage::Format_RGB32;
    default:
        return QImage::Format_Invalid;
    }
}

static QImage fx_ImageOnBytes(std::shared_ptr<CxImageData const> const& data, QImage::Format format)
{
    SxPicBuf const& picture = *data->picBuf();
    using Keeper = std::shared_ptr<CxImageData const>;
    auto const release = [](void* keeper) { delete static_cast<Keeper*>(keeper); };
    return QImage(static_cast<uchar const*>(picture.data), static_cast<int>(picture.width),
                  static_cast<int>(picture.height), static_cast<int>(picture.pitch), format, release,
                  new Keeper(data));
}

/// The eight bits of a word sample that a screen shows; samples above their claimed bits are white.
static uchar fx_ShownByte(quint16 sample, quint32 bits)
{
    return static_cast<uchar>(std::min(bits > 8 ? sample >> (bits - 8) : sample, 255));
}

static QImage fx_ImageOfWords(SxPicBuf const& picture)
{
    bool const isGrey = picture.components == 1;
    QImage image(static_cast<int>(picture.width), static_cast<int>(picture.height),
                 isGrey ? QImage::Format_Grayscale8 : QImage::Format_RGB32);
    if (image.isNull())
        return image;
    quint32 const bits = std::min(picture.bitsPerSample, 16u);
    for (quint32 y = 0; y < picture.height; ++y) {
        auto const* source = reinterpret_cast<quint16 const*>(fx_Row(picture, y));
        uchar* const row = image.scanLine(static_cast<int>(y));
        if (isGrey) {
            std::transform(source, source + picture.width, row,
                           [bits](quint16 sample) { return fx_ShownByte(sample, bits); });
            continue;
        }
        auto* const pixels = reinterpret_cast<QRgb*>(row);
        for (quint32 x = 0; x < picture.width; ++x, source += picture.components)
            pixels[x] = qRgb(fx_ShownByte(source[2], bits), fx_ShownByte(source[1], bits),
                             fx_ShownByte(source[0], bits));
    }
    return image;
}

int fx_SourceShift(SxShownPicture const& picture)
{
    return static_cast<int>(picture.data->picBuf()->bitsPerSample - picture.bits);
}

SxShownPicture fx_ShownPicture(int number, std::unique_ptr<CxImageData> data, int sourceBits)
{
    SxShownPicture shown;
    shown.number = number;
    shown.data = std::move(data);
    SxPicBuf const& picture = *shown.data->picBuf();
    shown.bits = sourceBits > 0 ? static_cast<quint32>(sourceBits) : picture.bitsPerSample;
    QImage::Format const format = fx_ByteFormat(picture.components);
    if (!picture.data || format == QImage::Format_Invalid)
        return shown;
    shown.image = fx_IsWordFormat(picture) ? fx_ImageOfWords(picture) : fx_ImageOnBytes(shown.data, format);
    return shown;
}

SxPixel fx_Pixel(SxShownPicture const& picture, QPoint const& position)
{
    SxPixel pixel;
    if (!picture.image.rect().contains(position))
        return pixel;
    SxPicBuf const& samples = *picture.data->picBuf();
    size_t const first = static_cast<size_t>(position.x()) * samples.components;
    uchar const* const row = fx_Row(samples, static_cast<quint32>(position.y()));
    int const shift = fx_SourceShift(picture);
    auto const sample = [&](size_t i) -> int {
        return fx_IsWordFormat(samples) ? reinterpret_cast<quint16 const*>(row)[first + i] >> shift
                                        : row[first + i];
    };
    pixel.components = samples.components == 1 ? 1 : 3;
    if (pixel.components == 1)
        pixel.samples[0] = sample(0);
    else
        pixel.samples = {sample(2), sample(1), sample(0)}; // they lie blue, green, red
    return pixel;
}

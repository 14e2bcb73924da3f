#include "PictureLook.h"

#include <algorithm>

#include "Samples.h"

static QRgb const kTooDark = qRgb(0x30, 0x70, 0xff);
static QRgb const kTooBright = qRgb(0xff, 0x20, 0x20);

template<class Sample, int kComponents>
static QImage fx_Levelled(SxShownPicture const& picture, SxLevels const& levels)
{
    SxPicBuf const& samples = *picture.data->picBuf();
    int const shift = fx_SourceShift(picture);
    std::vector<uchar> const shown = fx_LevelTable(levels, std::min(picture.bits, 16u));
    uchar const* const table = shown.data();
    auto const highest = static_cast<quint32>(shown.size() - 1);
    auto const look = [=](Sample sample) -> quint32 {
        return table[std::min<quint32>(quint32{sample} >> shift, highest)];
    };
    QImage image(picture.image.size(), kComponents == 1 ? QImage::Format_Grayscale8 : QImage::Format_RGB32);
    int const width = image.width();
    for (int y = 0; y < image.height(); ++y) {
        Sample const* pixel = fx_SampleRow<Sample>(samples, y);
        uchar* const row = image.scanLine(y);
        if constexpr (kComponents == 1) {
            for (int x = 0; x < width; ++x)
                row[x] = static_cast<uchar>(look(pixel[x]));
        } else {
            auto* const pixels = reinterpret_cast<QRgb*>(row);
            for (int x = 0; x < width; ++x, pixel += kComponents)
                pixels[x] = 0xff000000U | look(pixel[2]) << 16 | look(pixel[1]) << 8 | look(pixel[0]);
        }
    }
    return image;
}

template<class Sample, int kComponents>
static void fx_MarkClipping(SxShownPicture const& picture, int stripe, QImage& image)
{
    SxPicBuf const& samples = *picture.data->picBuf();
    int const shift = fx_SourceShift(picture);
    quint32 const full = (1u << std::min(picture.bits, 16u)) - 1;
    int const width = image.width();
    for (int y = 0; y < image.height(); ++y) {
        Sample const* pixel = fx_SampleRow<Sample>(samples, y);
        auto* const row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x, pixel += kComponents) {
            quint32 highest = pixel[0];
            if constexpr (kComponents > 1)
                highest = std::max<quint32>({pixel[0], pixel[1], pixel[2]});
            highest >>= shift;
            bool const isClipped = highest == 0 || highest >= full;
            if (isClipped && (x + y) / stripe % 2 == 0)
                row[x] = highest == 0 ? kTooDark : kTooBright;
        }
    }
}

QImage fx_LookedAt(SxShownPicture const& picture, SxPictureLook const& look, int stripe)
{
    if (picture.image.isNull())
        return {};
    QImage image = picture.image;
    fx_WithSamples(*picture.data->picBuf(), [&](auto sample, auto components) {
        using Sample = decltype(sample);
        static constexpr int kComponents = decltype(components)::value;
        if (look.levels)
            image = fx_Levelled<Sample, kComponents>(picture, *look.levels);
        if (look.marksClipping) {
            image = image.convertToFormat(QImage::Format_RGB32);
            fx_MarkClipping<Sample, kComponents>(picture, stripe, image);
        }
    });
    return image;
}

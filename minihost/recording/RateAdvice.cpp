#include "RateAdvice.h"

#include <algorithm>

#include "PictureRate.h"

/// Highest bit rate of a level: MaxBR of ITU-T H.264, Table A-1, times 1200.
static qint64 fx_HighestBitRate(int level)
{
    switch (level) {
    case 9:
        return 153600;
    case 10:
        return 76800;
    case 11:
        return 230400;
    case 12:
        return 460800;
    case 13:
        return 921600;
    case 20:
        return 2400000;
    case 21:
    case 22:
        return 4800000;
    case 30:
        return 12000000;
    case 31:
        return 16800000;
    case 32:
    case 40:
        return 24000000;
    case 41:
    case 42:
        return 60000000;
    case 50:
        return 162000000;
    default:
        return 288000000;
    }
}

qint64 fx_TargetBitRate(quint32 width, quint32 height, int level, int quality)
{
    qint64 const pictureBytes = static_cast<qint64>(width + width / 2) * height;
    qint64 const most = std::min(pictureBytes * kPicturesASecond, fx_HighestBitRate(level));
    qint64 const least = pictureBytes / 4;
    return most < least ? most : least + (most - least) / 9 * (quality - 1);
}

std::optional<int> fx_QualityThatKeepsAll(quint32 width, quint32 height, SxEncoderOptions const& used,
                                          qint64 bytes, int coded, int skipped)
{
    double const margin = skipped * 6 < coded + skipped ? 1.4 : 2.1;
    double const needed = margin * static_cast<double>(bytes) * 8 * kPicturesASecond / coded;
    for (int better = used.quality + 1; better <= SxEncoderOptions::kQualityMax; ++better) {
        if (static_cast<double>(fx_TargetBitRate(width, height, used.level, better)) >= needed)
            return better;
    }
    return std::nullopt;
}

#include "RegionStatistics.h"

#include <algorithm>
#include <cmath>

#include "Histogram.h"

static SxSampleStatistics fx_Statistics(std::vector<quint32> const& counts)
{
    SxSampleStatistics statistics;
    statistics.lowest = static_cast<int>(counts.size());
    double count = 0.0;
    double sum = 0.0; // whole numbers far below 2^53: exact
    for (size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] == 0)
            continue;
        statistics.lowest = std::min(statistics.lowest, static_cast<int>(i));
        statistics.highest = static_cast<int>(i);
        count += counts[i];
        sum += double(counts[i]) * double(i);
    }
    statistics.mean = sum / count;
    double squares = 0.0;
    for (size_t i = 0; i < counts.size(); ++i)
        squares += counts[i] * std::pow(double(i) - statistics.mean, 2);
    statistics.deviation = std::sqrt(squares / count);
    return statistics;
}

std::vector<SxSampleStatistics> fx_RegionStatistics(SxShownPicture const& picture, QRect const& region)
{
    std::vector<SxSampleStatistics> statistics;
    SxHistogram const histogram = fx_Histogram(picture, region);
    statistics.reserve(static_cast<size_t>(histogram.components));
    for (int c = 0; c < histogram.components; ++c)
        statistics.push_back(fx_Statistics(histogram.counts[static_cast<size_t>(c)]));
    return statistics;
}

std::vector<SxPixel> fx_Profile(SxShownPicture const& picture, QLine const& line)
{
    std::vector<SxPixel> profile;
    int const steps = std::max(std::abs(line.dx()), std::abs(line.dy()));
    for (int i = 0; i <= steps; ++i) {
        double const share = steps > 0 ? double(i) / steps : 0.0;
        SxPixel const pixel =
            fx_Pixel(picture, {line.x1() + static_cast<int>(std::lround(share * line.dx())),
                               line.y1() + static_cast<int>(std::lround(share * line.dy()))});
        if (pixel.components > 0)
            profile.push_back(pixel);
    }
    return profile;
}

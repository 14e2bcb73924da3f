#include "Histogram.h"

#include <algorithm>
#include <numeric>

#include "Samples.h"

/// Two sets of counters in turn: equal neighbours would wait for each other.
template<class Sample, int kComponents>
static void fx_Count(SxShownPicture const& picture, QRect const& region, SxHistogram& histogram)
{
    static constexpr size_t kCounted = kComponents == 1 ? 1 : 3;
    SxPicBuf const& samples = *picture.data->picBuf();
    int const shift = fx_SourceShift(picture);
    quint32 const highest = (1u << histogram.bits) - 1;
    std::vector<quint32> second(kCounted * (size_t{highest} + 1));
    quint32* counters[2][kCounted];
    for (size_t c = 0; c < kCounted; ++c) { // they lie blue, green, red
        counters[0][c] = histogram.counts[kCounted - 1 - c].data();
        counters[1][c] = second.data() + c * (size_t{highest} + 1);
    }
    for (int y = region.top(); y <= region.bottom(); ++y) {
        Sample const* pixel = fx_SampleRow<Sample>(samples, y) + region.left() * kComponents;
        for (int x = 0; x < region.width(); ++x, pixel += kComponents) {
            for (size_t c = 0; c < kCounted; ++c)
                ++counters[x & 1][c][std::min<quint32>(quint32{pixel[c]} >> shift, highest)];
        }
    }
    for (size_t c = 0; c < kCounted; ++c)
        std::transform(counters[0][c], counters[0][c] + highest + 1, counters[1][c], counters[0][c],
                       std::plus<>());
}

SxHistogram fx_Histogram(SxShownPicture const& picture)
{
    return fx_Histogram(picture, picture.image.rect());
}

SxHistogram fx_Histogram(SxShownPicture const& picture, QRect const& region)
{
    SxHistogram histogram;
    QRect const inside = region & picture.image.rect();
    if (inside.isEmpty())
        return histogram;
    SxPicBuf const& samples = *picture.data->picBuf();
    histogram.components = samples.components == 1 ? 1 : 3;
    histogram.bits = std::min(picture.bits, 16u);
    for (int c = 0; c < histogram.components; ++c)
        histogram.counts[static_cast<size_t>(c)].resize(size_t{1} << histogram.bits);
    fx_WithSamples(samples, [&](auto sample, auto components) {
        fx_Count<decltype(sample), decltype(components)::value>(picture, inside, histogram);
    });
    return histogram;
}

static double fx_Share(SxHistogram const& histogram, size_t sample)
{
    double at = 0.0;
    double all = 0.0;
    for (std::vector<quint32> const& counts : histogram.counts) {
        if (counts.empty())
            continue;
        at += counts[sample];
        all += std::accumulate(counts.begin(), counts.end(), 0.0);
    }
    return all > 0.0 ? at / all : 0.0;
}

double fx_ShareAtBlack(SxHistogram const& histogram) { return fx_Share(histogram, 0); }

double fx_ShareAtFullScale(SxHistogram const& histogram)
{
    return fx_Share(histogram, (size_t{1} << histogram.bits) - 1);
}

#include "Levels.h"

#include <algorithm>
#include <cmath>

static constexpr double kIgnoredShare = 0.001;

SxLevels fx_NeutralLevels(quint32 bits) { return {0, (1 << bits) - 1, 1.0}; }

SxLevels fx_AutoLevels(SxHistogram const& histogram)
{
    SxLevels levels = fx_NeutralLevels(histogram.bits);
    std::vector<double> all(static_cast<size_t>(levels.white) + 1);
    double total = 0.0;
    for (std::vector<quint32> const& counts : histogram.counts) {
        for (size_t i = 0; i < counts.size(); ++i) {
            all[i] += counts[i];
            total += counts[i];
        }
    }
    if (total == 0.0)
        return levels;
    int const highest = levels.white;
    double const ignored = total * kIgnoredShare;
    double below = all[0];
    while (levels.black < highest - 1 && below <= ignored)
        below += all[static_cast<size_t>(++levels.black)];
    double above = all[static_cast<size_t>(highest)];
    while (levels.white > levels.black + 1 && above <= ignored)
        above += all[static_cast<size_t>(--levels.white)];
    return levels;
}

std::vector<uchar> fx_LevelTable(SxLevels const& levels, quint32 bits)
{
    std::vector<uchar> table(size_t{1} << bits);
    double const span = std::max(levels.white - levels.black, 1);
    for (size_t i = 0; i < table.size(); ++i) {
        double const share = std::clamp((static_cast<double>(i) - levels.black) / span, 0.0, 1.0);
        table[i] = static_cast<uchar>(std::lround(255.0 * std::pow(share, 1.0 / levels.gamma)));
    }
    return table;
}

#pragma once

#include <vector>

#include "Histogram.h"

/// Which samples the screen shows black and white, and how those between.
struct SxLevels
{
    int black = 0;      ///< samples up to this, in the scale of their source, are black
    int white = 0;      ///< samples from this on are white; above black
    double gamma = 1.0; ///< 1: evenly between; more: dark ones brighter

    bool operator==(SxLevels const& other) const
    {
        return black == other.black && white == other.white && gamma == other.gamma;
    }
};

/// Those that change nothing for samples of \p bits.
SxLevels fx_NeutralLevels(quint32 bits);

/// Those that spread what is there over the whole screen: a thousandth of the samples at either end, over
/// all components, does not count, as dead pixels and stray lights are no part of the scene.
SxLevels fx_AutoLevels(SxHistogram const& histogram);

/// What the screen shows of each sample of \p bits, 0 to 255.
std::vector<uchar> fx_LevelTable(SxLevels const& levels, quint32 bits);

#pragma once

#include <QRect>
#include <array>
#include <vector>

#include "ShownPicture.h"

/// How often each sample occurs in a picture, in the scale of its source.
struct SxHistogram
{
    int components = 0; ///< 1 grey; 3 red, green, blue; 0: of no picture
    quint32 bits = 0;   ///< of a sample
    /// By component, then by sample, 0 to full scale; those above their bits count as full scale.
    std::array<std::vector<quint32>, 3> counts;
};

/// Of every pixel, or of those in \p region. A fourth component does not count.
SxHistogram fx_Histogram(SxShownPicture const& picture);
SxHistogram fx_Histogram(SxShownPicture const& picture, QRect const& region);

/// Share of the samples that are 0, or full scale, of all components; 0 to 1.
double fx_ShareAtBlack(SxHistogram const& histogram);
double fx_ShareAtFullScale(SxHistogram const& histogram);

#pragma once

#include <QLine>
#include <QRect>
#include <vector>

#include "ShownPicture.h"

/// Of one component's samples in a part of a picture, in the scale of their source.
struct SxSampleStatistics
{
    int lowest = 0;
    int highest = 0;
    double mean = 0.0;
    double deviation = 0.0; ///< standard deviation of all samples there are, not estimated from some
};

/// Of grey, or of red, green and blue; empty when no pixel of the picture lies in \p region.
std::vector<SxSampleStatistics> fx_RegionStatistics(SxShownPicture const& picture, QRect const& region);

/// The pixels of the picture that the line goes through, one for each step of its longer side, both ends
/// included; those outside the picture are left out.
std::vector<SxPixel> fx_Profile(SxShownPicture const& picture, QLine const& line);

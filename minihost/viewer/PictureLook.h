#pragma once

#include <optional>

#include "Levels.h"

/// How the screen shows a picture. The picture itself, which is saved and copied, stays as it is.
struct SxPictureLook
{
    std::optional<SxLevels> levels; ///< none: as the picture is
    bool marksClipping = false;     ///< stripes over pixels at 0 (blue) and at full scale (red)

    bool operator==(SxPictureLook const& other) const
    {
        return levels == other.levels && marksClipping == other.marksClipping;
    }
};

/// The picture for the screen; its own image where \p look changes nothing. Clipped are pixels with all
/// samples 0, and those with any sample at full scale.
///
/// \param stripe  pixels that a stripe is wide; at least 1.
QImage fx_LookedAt(SxShownPicture const& picture, SxPictureLook const& look, int stripe);

#pragma once

#include <QTransform>

#include "ShownPicture.h"

/// How a picture lies on the screen.
struct SxOrientation
{
    int quarterTurns = 0;    ///< clockwise, 0 to 3
    bool isMirrored = false; ///< left and right, as seen once it is turned
    SxPixelShape pixelShape; ///< before it is turned

    bool operator==(SxOrientation const& other) const
    {
        return quarterTurns == other.quarterTurns && isMirrored == other.isMirrored &&
               pixelShape.width == other.pixelShape.width && pixelShape.height == other.pixelShape.height;
    }
};

/// What the user wants beyond what the picture asks for.
struct SxTurning
{
    int quarterTurns = 0; ///< clockwise, 0 to 3
    bool isMirrored = false;
    bool keepsPixelShape = true; ///< that of the source; else pixels are square
};

SxOrientation fx_OrientationOf(SxShownPicture const& picture, SxTurning const& turning);

/// From pixels of a picture of \p size to where they lie: from 0, 0 on, a row 1 high before it is turned.
QTransform fx_Oriented(QSize const& size, SxOrientation const& orientation);

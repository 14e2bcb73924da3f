#pragma once

#include <QImage>
#include <QMetaType>
#include <array>
#include <memory>

#include "CxImageData.h"
#include "PixelShape.h"

/// A picture on its way to the screen. Number and picture travel together, so that the number shown is
/// always that of the picture shown. Cheap to copy; the pixels are shared and never change.
struct SxShownPicture
{
    int number = -1;                         ///< counted from 0; -1 for no picture
    std::shared_ptr<CxImageData const> data; ///< the samples as they were delivered
    quint32 bits = 0; ///< of a sample in its source: data may hold it shifted up from these to more
    int rotation = 0; ///< degrees clockwise, 0, 90, 180 or 270, by which it is to be turned to stand upright
    SxPixelShape pixelShape;
    QImage image; ///< the same for painting, on the samples themselves where Qt can
};

Q_DECLARE_METATYPE(SxShownPicture)

/// How far the samples are shifted up from their source's scale.
int fx_SourceShift(SxShownPicture const& picture);

/// Takes \p data over. Packed bytes are painted where they lie; words lose the bits that a screen does not
/// show, in a copy. The image is null for any other format.
///
/// \param sourceBits  see IxPictureSource; 0: those of \p data.
SxShownPicture fx_ShownPicture(int number, std::unique_ptr<CxImageData> data, int sourceBits = 0);

/// Samples of one pixel in the scale of their source.
struct SxPixel
{
    int components = 0;           ///< 0: outside the picture; 1 grey; 3 colour
    std::array<int, 3> samples{}; ///< grey; or red, green, blue
};

SxPixel fx_Pixel(SxShownPicture const& picture, QPoint const& position);

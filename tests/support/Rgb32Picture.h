#pragma once

#include <cstring>

#include "PictureFormat.h"

/// Makes \p picture one of RGB32 whose pixels all are \p blue, \p green and \p red. False without memory.
inline bool fx_FillRgb32(CxOwnedPicture& picture, quint32 width, quint32 height, uchar blue, uchar green,
                         uchar red)
{
    if (!fx_PreparePicture(picture.get(), fx_PackedFormat(width, height, 4, 8)))
        return false;
    uchar const pixel[4] = {blue, green, red, 255};
    for (quint32 y = 0; y < height; ++y) {
        for (quint32 x = 0; x < width; ++x)
            std::memcpy(picture.get().data + y * picture.get().pitch + x * sizeof pixel, pixel, sizeof pixel);
    }
    return true;
}

#pragma once

#include "SxPicBufInfo.h"

/// Makes \p format RGB32, packed blue, green, red and a fourth byte; sizes and pitch stay.
inline void fx_SetRGB32(SxPicBufInfo& format)
{
    format.components = 4;
    format.bitsPerSample = 8;
    format.sampleType = 2; // bytes
    format.layout = 1;
    format.formatVariant = 0;
    format.formatFlag = true;
}

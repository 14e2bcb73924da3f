#pragma once

#include "CxPicBufAPI.h"

/// A packed format of 8-bit pictures, or of words with \p sampleType 4.
inline SxPicBufInfo fx_Format(quint32 width, quint32 height, quint32 sampleType = 2, quint32 components = 4)
{
    SxPicBufInfo format;
    format.width = width;
    format.height = height;
    format.sampleType = sampleType;
    format.components = components;
    format.bitsPerSample = 8;
    format.formatFlag = true;
    return format;
}

/// A picture with memory of the host's, to be freed by CxPicBufAPI; without any where it gives none.
inline SxPicBuf fx_Allocated(SxPicBufInfo const& format)
{
    SxPicBuf picture;
    return CxPicBufAPI::AllocPicBufFromHeap(picture, format, false, 0) ? picture : SxPicBuf();
}

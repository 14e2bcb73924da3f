#pragma once

#include "CxPicBufAPI.h"
#include "PictureFormat.h"
#include "ShownPicture.h"

/// A picture whose pixels all differ from their neighbours.
inline SxShownPicture fx_PatternPicture(SxPicBufInfo const& format, int number = 0)
{
    SxPicBuf picture;
    if (!CxPicBufAPI::AllocPicBufFromHeap(picture, format, false, 0))
        return {};
    for (quint32 y = 0; y < picture.height; ++y) {
        for (quint32 i = 0; i < picture.width * picture.components; ++i) {
            quint32 const sample = (i * 37 + y * 101) & ((1u << picture.bitsPerSample) - 1);
            uchar* const row = picture.data + y * picture.pitch;
            if (fx_IsWordFormat(picture))
                reinterpret_cast<quint16*>(row)[i] = static_cast<quint16>(sample);
            else
                row[i] = static_cast<uchar>(sample);
        }
    }
    auto data = std::make_unique<CxImageData>();
    data->setPicBuf(picture);
    return fx_ShownPicture(number, std::move(data));
}

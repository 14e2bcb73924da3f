#include "PictureFormat.h"

#include <algorithm>

#include "CxPicBufAPI.h"

static constexpr quint32 kByteSamples = 2;
static constexpr quint32 kWordSamples = 4;

CxOwnedPicture::~CxOwnedPicture() { CxPicBufAPI::FreePicBuf(m_picture, true); }

SxPicBufInfo fx_PackedFormat(quint32 width, quint32 height, quint32 components, quint32 bits)
{
    SxPicBufInfo format;
    format.width = width;
    format.height = height;
    format.components = components;
    format.bitsPerSample = bits;
    format.sampleType = bits > 8 ? kWordSamples : kByteSamples;
    format.formatFlag = true;
    return format;
}

bool fx_IsWordFormat(SxPicBufInfo const& format) { return format.sampleType == kWordSamples; }

bool fx_PreparePicture(SxPicBuf& picture, SxPicBufInfo const& format)
{
    bool const fits = picture.data && picture.width == format.width && picture.height == format.height &&
                      picture.components == format.components && picture.sampleType == format.sampleType &&
                      picture.layout == format.layout;
    if (fits) {
        SxPicBufInfo kept = format;
        kept.pitch = picture.pitch;
        picture.setPicFormat(kept);
        return true;
    }
    CxPicBufAPI::FreePicBuf(picture, true);
    return CxPicBufAPI::AllocPicBufFromHeap(picture, format, false, 0);
}

quint16 fx_HighestSample(SxPicBuf const& picture)
{
    quint16 highest = 0;
    for (quint32 y = 0; y < picture.height; ++y) {
        auto const* const row =
            reinterpret_cast<quint16 const*>(picture.data + static_cast<size_t>(y) * picture.pitch);
        size_t const samples = static_cast<size_t>(picture.width) * picture.components;
        if (picture.components == 4) {
            // The fourth at 0 changes nothing: one pass over all samples, which vectors like better.
            static quint16 const kCounts[4] = {0xFFFF, 0xFFFF, 0xFFFF, 0};
            for (size_t i = 0; i < samples; ++i)
                highest = std::max(highest, static_cast<quint16>(row[i] & kCounts[i % 4]));
        } else {
            for (size_t i = 0; i < samples; ++i)
                highest = std::max(highest, row[i]);
        }
    }
    return highest;
}

#include <cstring>
#include <limits>

#include "BlockStore.h"
#include "CxPicBufAPI.h"

static constexpr quint64 kAutomaticPitchStep = 256;
/// The largest picture: 16384 x 16384 pixels of 8 bytes. More is a damaged format rather than a picture.
static constexpr quint64 kMaxPictureBytes = quint64(1) << 31;

/// Bytes of one sample, see SxPicBufInfo::sampleType.
static unsigned fx_SampleBytes(quint32 sampleType)
{
    switch (sampleType) {
    case 3:
    case 4:
    case 11:
        return 2;
    case 5:
    case 6:
    case 9:
        return 4;
    case 7:
    case 8:
    case 10:
        return 8;
    default:
        return 1;
    }
}

/// The pitch of a picture of this format: its own or, where that is 0, the automatic one. 0 when the
/// format is none that memory is given for.
static quint64 fx_Pitch(SxPicBufInfo const& format)
{
    if (format.width == 0 || format.height == 0 || format.components < 1 || format.components > 4)
        return 0;
    quint64 const rowBytes = quint64(format.width) * format.components * fx_SampleBytes(format.sampleType);
    quint64 const pitch =
        format.pitch != 0 ? format.pitch
                          : (rowBytes + kAutomaticPitchStep - 1) / kAutomaticPitchStep * kAutomaticPitchStep;
    return pitch < rowBytes || pitch > std::numeric_limits<quint32>::max() ? 0 : pitch;
}

SxPicBuf::SxPicBuf()
    : data(nullptr)
    , timestamp(0)
    , allocatedSize(0)
{}

void SxPicBuf::setPicFormat(SxPicBufInfo const& format) { static_cast<SxPicBufInfo&>(*this) = format; }

bool CxPicBufAPI::AllocPicBufFromHeap(SxPicBuf& picture, SxPicBufInfo const& format, bool zeroFill,
                                      unsigned long extraSize)
{
    quint64 const pitch = fx_Pitch(format);
    quint64 const pixelBytes = pitch * format.height;
    if (pitch == 0 || pixelBytes > kMaxPictureBytes || extraSize > kMaxPictureBytes - pixelBytes)
        return false;

    std::size_t const bytes = static_cast<std::size_t>(pixelBytes + extraSize);
    unsigned char* const data = CxBlockStore::instance().take(bytes);
    if (!data)
        return false;
    if (zeroFill)
        std::memset(data, 0, bytes);

    picture.setPicFormat(format);
    picture.pitch = static_cast<quint32>(pitch);
    picture.data = data;
    picture.allocatedSize = bytes;
    return true;
}

void CxPicBufAPI::FreePicBuf(SxPicBuf& picture, bool resetFormat)
{
    // Foreign memory, which has no size of ours, is only forgotten.
    if (picture.data && picture.allocatedSize != 0)
        CxBlockStore::instance().giveBack(picture.data, static_cast<std::size_t>(picture.allocatedSize));
    picture.data = nullptr;
    picture.allocatedSize = 0;
    if (resetFormat)
        picture.setPicFormat(SxPicBufInfo());
}

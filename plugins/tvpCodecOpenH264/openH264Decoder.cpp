#include "openH264Decoder.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "AnnexB.h"
#include "CriticalMessage.h"
#include "CxPicBufAPI.h"
#include "FourCC.h"
#include "IYUVConversion.h"
#include "IxVideoAccessor.h"
#include "RGB32Format.h"

/// What OpenH264 says of one picture: where its planes are, and whether there is one.
struct CxOpenH264Decoder::SxPlanes
{
    SxPlanes() { clear(); }
    void clear()
    {
        std::fill(std::begin(data), std::end(data), nullptr);
        std::memset(&info, 0, sizeof info);
    }
    bool isReady() const { return info.iBufferStatus == 1; }

    uchar* data[3];
    SBufferInfo info;
};

CxOpenH264Decoder::~CxOpenH264Decoder()
{
    if (!m_decoder)
        return;
    int endOfStream = 1;
    m_decoder->SetOption(DECODER_OPTION_END_OF_STREAM, &endOfStream);
}

QString CxOpenH264Decoder::name() { return QStringLiteral("OpenH264"); }

unsigned int CxOpenH264Decoder::fourCC() { return kFourCCH264; }

static SDecodingParam fx_DecodingParam()
{
    SDecodingParam param;
    std::memset(&param, 0, sizeof param);
    param.uiTargetDqLayer = 255; // every layer
    param.eEcActiveIdc = ERROR_CON_SLICE_COPY;
    param.sVideoProperty.size = sizeof(SVideoProperty);
    param.sVideoProperty.eVideoBsType = VIDEO_BITSTREAM_SVC; // the library's default
    return param;
}

bool CxOpenH264Decoder::createDecoder()
{
    if (!m_decoder) {
        ISVCDecoder* created = nullptr;
        long const error = WelsCreateDecoder(&created);
        std::unique_ptr<ISVCDecoder, SxDecoderDeleter> decoder(created); // freed on the return below
        if (error != 0 || !created) {
            // Deliberate: the message names decode(), the operation that the host called.
            TVP_CRITICAL("CxOpenH264Decoder::decode(): %1", "Cannot create the OpenH264 decoder.");
            return false;
        }
        m_decoder = std::move(decoder);
    }

    SDecodingParam const param = fx_DecodingParam();
    if (m_decoder->Initialize(&param) != cmResultSuccess)
        m_decoder.reset();
    return m_decoder != nullptr;
}

/// The format in which pictures are delivered, but for the size.
static SxPicBufInfo fx_RGB32Format()
{
    SxPicBufInfo format;
    fx_SetRGB32(format);
    return format;
}

/// Whether the decoder can fill a picture of this format: packed four-component bytes.
static bool fx_IsRGB32(SxPicBufInfo const& format)
{
    bool const hasByteSamples = format.sampleType < 3 || format.sampleType > 11;
    return format.components == 4 && hasByteSamples && format.layout == 1 && format.formatFlag;
}

static void fx_ReportCode(int code)
{
    TVP_CRITICAL("CxOpenH264Decoder::decode(): %1",
                 QStringLiteral("The decoder failed with code: %1").arg(code));
}

/// Whether a unit, start code included, is a slice of a coded picture (nal_unit_type 1 to 5).
static bool fx_IsSlice(uchar const* unit, size_t size)
{
    size_t const header = fx_StartCodeLength(unit, size, 0);
    int const nal_unit_type = header < size ? unit[header] & 0x1F : 0;
    return nal_unit_type >= 1 && nal_unit_type <= 5;
}

/// In streams whose pictures may be reordered the library keeps one back. Ours never are, so a
/// picture that it holds is the one of the unit just fed.
bool CxOpenH264Decoder::takeHeldPicture(SxPlanes& planes)
{
    int held = 0;
    m_decoder->GetOption(DECODER_OPTION_NUM_OF_FRAMES_REMAINING_IN_BUFFER, &held);
    if (held <= 0)
        return true;
    planes.clear();
    int const code = m_decoder->FlushFrame(planes.data, &planes.info);
    if (code != 0)
        fx_ReportCode(code);
    return code == 0;
}

/// Feeds one unit with its start code and asks for the picture that it completes.
bool CxOpenH264Decoder::feedUnit(uchar const* unit, int size, SxPlanes& planes)
{
    planes.clear();
    int code = m_decoder->DecodeFrame2(unit, size, planes.data, &planes.info);
    if (code == 0 && !planes.isReady()) {
        planes.clear();
        code = m_decoder->DecodeFrame2(nullptr, 0, planes.data, &planes.info);
    }
    if (code != 0) {
        fx_ReportCode(code);
        return false;
    }
    return planes.isReady() || !fx_IsSlice(unit, static_cast<size_t>(size)) || takeHeldPicture(planes);
}

/// Feeds a coded frame unit by unit until a picture is ready. False when none came.
bool CxOpenH264Decoder::feed(uchar const* data, size_t size, SxPlanes& planes)
{
    for (size_t start = 0; start < size;) {
        // From its third byte on a start code, be it of three bytes or of four, is none any more.
        size_t const end = fx_FindStartCode(data, size, start + 2);
        if (end - start > INT_MAX || !feedUnit(data + start, static_cast<int>(end - start), planes))
            return false;
        if (planes.isReady())
            return true;
        start = end;
    }
    return false;
}

/// Whether the caller's picture, which gets memory if it has none, can take a decoded one.
static bool fx_Prepare(SSysMEMBuffer const& decoded, SxPicBuf& picture)
{
    quint32 const width = static_cast<quint32>(decoded.iWidth);
    quint32 const height = static_cast<quint32>(decoded.iHeight);
    bool const isOurs = !picture.data;
    if (isOurs) {
        SxPicBufInfo format = fx_RGB32Format();
        format.width = width;
        format.height = height;
        if (!CxPicBufAPI::AllocPicBufFromHeap(picture, format, false, 0)) {
            TVP_CRITICAL("CxOpenH264Decoder::decode(): %1", "Out of memory.");
            return false;
        }
    }

    if (picture.width == width && picture.height == height && picture.pitch / 4 >= width)
        return true;
    if (isOurs)
        CxPicBufAPI::FreePicBuf(picture, true);
    return false;
}

/// Converts a decoded picture into the caller's, which is prepared for it.
bool CxOpenH264Decoder::deliver(SxPlanes const& planes, SxPicBuf& picture)
{
    SSysMEMBuffer const& decoded = planes.info.UsrData.sSystemBuffer;
    unsigned long const size =
        static_cast<unsigned long>(decoded.iHeight) * static_cast<unsigned long>(decoded.iStride[0]) +
        static_cast<unsigned long>(decoded.iHeight / 2) * static_cast<unsigned long>(decoded.iStride[1]);
    return ConvertIYUVtoRGB32(picture, planes.data[0], planes.data[1], planes.data[2], size,
                              static_cast<unsigned>(decoded.iStride[0]),
                              static_cast<unsigned>(decoded.iStride[1]));
}

/// Feeds one frame. \p latest becomes its picture, which the library keeps until it is fed again; it stays
/// what it was for a frame that has none to decode.
bool CxOpenH264Decoder::feedFrame(int frame, IxVideoAccessor* accessor, SxPicBuf& picture, SxPlanes& latest)
{
    if (!m_decoder && !createDecoder())
        return false;
    if (picture.data && !fx_IsRGB32(picture))
        return false;

    unsigned long const capacity = accessor->frameDataSize(frame);
    if (capacity == 0)
        return true; // Deliberate: an empty frame is nothing to decode.
    // Zeroed, so that what a short read leaves out is no coded data of an earlier frame.
    std::unique_ptr<uchar, void (*)(void*)> const buffer(static_cast<uchar*>(std::calloc(capacity, 1)),
                                                         std::free);
    if (!buffer) {
        m_isInStep = false;
        return true; // Deliberate: without memory the frame is skipped.
    }

    unsigned long size = capacity;
    if (!accessor->frameData(frame, buffer.get(), size) || size > capacity ||
        !fx_BeginsWithStartCode(buffer.get(), size))
        return false;

    m_hasFed = true;
    return feed(buffer.get(), size, latest) && fx_Prepare(latest.info.UsrData.sSystemBuffer, picture);
}

/// Decodes frames first to last, each of which must go into the picture; only the last that has one is
/// converted.
bool CxOpenH264Decoder::decodeFrames(int first, int last, IxVideoAccessor* accessor, SxPicBuf& picture)
{
    SxPlanes latest;
    for (int frame = first; frame <= last; ++frame)
        if (!feedFrame(frame, accessor, picture, latest))
            return false;
    return !latest.isReady() || deliver(latest, picture);
}

/// The first frame to feed for \p frame, given the key frames (not empty, ascending) and what the
/// reference pictures hold. -1 when the list makes no sense.
static int fx_FirstFrameToFeed(QList<int> const& keys, int frame, int last, bool isInStep)
{
    auto const key = std::lower_bound(keys.constBegin(), keys.constEnd(), frame);
    if (key != keys.constEnd() && *key == frame)
        return frame;
    int const groupStart = key == keys.constBegin() ? 0 : *(key - 1); // frames before any key frame: from 0
    if (groupStart < 0 || groupStart > frame)
        return -1;
    if (!isInStep)
        return groupStart;
    if (last >= 0 && last == frame - 1)
        return frame;

    // Deliberate: a last frame that is itself a later key frame counts to the group before it.
    auto const lastKey = std::lower_bound(keys.constBegin(), keys.constEnd(), last);
    int const lastGroup = lastKey == keys.constBegin() ? *lastKey : *(lastKey - 1);
    bool const goesOn = lastGroup == groupStart && last < frame && last >= -1;
    return goesOn ? last + 1 : groupStart;
}

bool CxOpenH264Decoder::decode(int frame, IxVideoAccessor* accessor, SxPicBuf& picture)
{
    if (!accessor || frame < 0 || accessor->framesCount() <= frame)
        return false;
    QList<int> keys;
    accessor->keyFrames(keys);
    if (keys.isEmpty())
        return false;
    int const first = fx_FirstFrameToFeed(keys, frame, accessor->lastProcessedFrame(), m_isInStep);
    if (first < 0)
        return false;

    // What a failed call left in the library, a picture held or half of one, would come out as the
    // picture of a later frame: start it afresh.
    if (!m_isInStep && m_decoder && !createDecoder())
        return false;
    bool const wasInStep = m_isInStep;
    m_hasFed = false;
    m_isInStep = true;
    bool const isDecoded = decodeFrames(first, frame, accessor, picture);
    if (!isDecoded)
        m_isInStep = wasInStep && !m_hasFed;
    return isDecoded;
}

void decoderLog(void*, int, char const*) {}

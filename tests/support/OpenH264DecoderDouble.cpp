#include "support/OpenH264DecoderDouble.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <vector>

extern "C" {
long __wrap_WelsCreateDecoder(ISVCDecoder** decoder);
void __wrap_WelsDestroyDecoder(ISVCDecoder* decoder);
}

SxOpenH264DecoderDouble& fx_OpenH264DecoderDouble()
{
    static SxOpenH264DecoderDouble theDouble;
    return theDouble;
}

namespace {

struct SxPicture
{
    int width = 0;
    int height = 0;
    int stride = 0;
    std::vector<unsigned char> planes[3];
};

class CxDecoderDouble : public ISVCDecoder
{
public:
    long EXTAPI Initialize(SDecodingParam const* param) override;
    long EXTAPI Uninitialize() override;
    DECODING_STATE EXTAPI DecodeFrame2(unsigned char const* source, int length, unsigned char** planes,
                                       SBufferInfo* info) override;
    DECODING_STATE EXTAPI FlushFrame(unsigned char** planes, SBufferInfo* info) override;
    long EXTAPI SetOption(DECODER_OPTION option, void* value) override;
    long EXTAPI GetOption(DECODER_OPTION option, void* value) override;

    DECODING_STATE EXTAPI DecodeFrame(unsigned char const*, int, unsigned char**, int*, int&, int&) override
    {
        return refuse();
    }
    DECODING_STATE EXTAPI DecodeFrameNoDelay(unsigned char const*, int, unsigned char**,
                                             SBufferInfo*) override
    {
        return refuse();
    }
    DECODING_STATE EXTAPI DecodeParser(unsigned char const*, int, SParserBsInfo*) override
    {
        return refuse();
    }
    DECODING_STATE EXTAPI DecodeFrameEx(unsigned char const*, int, unsigned char*, int, int&, int&, int&,
                                        int&) override
    {
        return refuse();
    }

private:
    DECODING_STATE refuse()
    {
        ++fx_OpenH264DecoderDouble().otherCalls;
        return dsInvalidArgument;
    }
    void checkOutputs(unsigned char** planes, SBufferInfo const* info);
    void give(std::deque<SxPicture>& from, unsigned char** planes, SBufferInfo* info);

    std::deque<SxPicture> m_open; ///< decoded and not yet ended by an empty call
    std::deque<SxPicture> m_held; ///< waiting for FlushFrame()
    SxPicture m_shown;            ///< keeps the bytes of the last picture given out
    bool m_isErrorDue = false;    ///< the next empty call fails
};

} // namespace

static bool fx_IsZero(void const* data, size_t size)
{
    auto const* const bytes = static_cast<unsigned char const*>(data);
    return std::all_of(bytes, bytes + size, [](unsigned char b) { return b == 0; });
}

long CxDecoderDouble::Initialize(SDecodingParam const* param)
{
    SxOpenH264DecoderDouble& record = fx_OpenH264DecoderDouble();
    ++record.initialised;
    record.param = *param;
    SDecodingParam rest;
    std::memcpy(&rest, param, sizeof rest);
    rest.uiTargetDqLayer = 0;
    rest.eEcActiveIdc = ERROR_CON_DISABLE;
    rest.sVideoProperty.size = 0;
    rest.sVideoProperty.eVideoBsType = VIDEO_BITSTREAM_AVC;
    record.isParamZeroBeside = fx_IsZero(&rest, sizeof rest);
    m_open.clear();
    m_held.clear();
    return record.initError;
}

long CxDecoderDouble::Uninitialize()
{
    ++fx_OpenH264DecoderDouble().uninitialised;
    return 0;
}

void CxDecoderDouble::checkOutputs(unsigned char** planes, SBufferInfo const* info)
{
    if (!fx_IsZero(planes, 3 * sizeof *planes) || !fx_IsZero(info, sizeof *info))
        fx_OpenH264DecoderDouble().areOutputsCleared = false;
}

void CxDecoderDouble::give(std::deque<SxPicture>& from, unsigned char** planes, SBufferInfo* info)
{
    m_shown = std::move(from.front());
    from.pop_front();
    for (int i = 0; i < 3; ++i)
        planes[i] = m_shown.planes[i].data();
    info->iBufferStatus = 1;
    info->UsrData.sSystemBuffer.iWidth = m_shown.width;
    info->UsrData.sSystemBuffer.iHeight = m_shown.height;
    info->UsrData.sSystemBuffer.iStride[0] = m_shown.stride;
    info->UsrData.sSystemBuffer.iStride[1] = m_shown.stride / 2;
}

/// The picture of a slice: its payload's first byte is the luma.
static SxPicture fx_Picture(QByteArray const& payload)
{
    SxOpenH264DecoderDouble const& script = fx_OpenH264DecoderDouble();
    SxPicture picture;
    bool const hasSize = payload.size() == 3;
    picture.width = hasSize ? 16 * static_cast<uchar>(payload[1]) : script.width;
    picture.height = hasSize ? 16 * static_cast<uchar>(payload[2]) : script.height;
    picture.stride = picture.width + script.stridePadding;
    for (int i = 0; i < 3; ++i) {
        int const shift = i == 0 ? 0 : 1;
        int const stride = picture.stride >> shift;
        // The last row ends with its last pixel: what reads on is seen by the address sanitizer.
        int const rows = picture.height >> shift;
        int const bytes = rows > 0 ? stride * (rows - 1) + (picture.width >> shift) : 0;
        picture.planes[i].assign(static_cast<size_t>(bytes), 77);
        unsigned char const value = i == 0 ? static_cast<unsigned char>(payload[0]) : 128;
        for (int row = 0; row < rows; ++row)
            std::fill_n(picture.planes[i].data() + row * stride, picture.width >> shift, value);
    }
    return picture;
}

DECODING_STATE CxDecoderDouble::DecodeFrame2(unsigned char const* source, int length, unsigned char** planes,
                                             SBufferInfo* info)
{
    SxOpenH264DecoderDouble& record = fx_OpenH264DecoderDouble();
    checkOutputs(planes, info);
    if (!source || length == 0) {
        record.calls.append(QStringLiteral("empty"));
        if (m_isErrorDue) {
            m_isErrorDue = false;
            return static_cast<DECODING_STATE>(record.emptyError);
        }
        if (!m_open.empty() && record.delivery == Delivery::AtEmptyCall)
            give(m_open, planes, info);
        while (!m_open.empty()) {
            m_held.push_back(std::move(m_open.front()));
            m_open.pop_front();
        }
        return dsErrorFree;
    }

    QByteArray const unit(reinterpret_cast<char const*>(source), length);
    record.units.append(unit);
    int const header = unit.at(2) == 1 ? 3 : 4;
    QByteArray const payload = unit.mid(header + 1);
    record.calls.append(QStringLiteral("unit ") + QString::fromLatin1(unit.mid(header, 1).toHex()));
    int const type = header < unit.size() ? unit.at(header) & 0x1F : 0;
    if ((type == 1 || type == 5) && !payload.isEmpty() && record.delivery != Delivery::Never) {
        m_open.push_back(fx_Picture(payload));
        if (record.delivery == Delivery::AtUnit)
            give(m_open, planes, info);
    }
    if (payload.isEmpty() || record.errorAt != static_cast<uchar>(payload.at(0)))
        return dsErrorFree;
    m_isErrorDue = record.emptyError != 0;
    return static_cast<DECODING_STATE>(record.unitError);
}

DECODING_STATE CxDecoderDouble::FlushFrame(unsigned char** planes, SBufferInfo* info)
{
    SxOpenH264DecoderDouble& record = fx_OpenH264DecoderDouble();
    checkOutputs(planes, info);
    record.calls.append(QStringLiteral("flush"));
    if (!record.isFlushStuck && !m_held.empty())
        give(m_held, planes, info);
    return static_cast<DECODING_STATE>(record.flushError);
}

long CxDecoderDouble::SetOption(DECODER_OPTION option, void* value)
{
    SxOpenH264DecoderDouble& record = fx_OpenH264DecoderDouble();
    if (option == DECODER_OPTION_END_OF_STREAM && *static_cast<int*>(value) == 1)
        record.calls.append(QStringLiteral("end"));
    else
        ++record.otherCalls;
    return 0;
}

long CxDecoderDouble::GetOption(DECODER_OPTION option, void* value)
{
    SxOpenH264DecoderDouble& record = fx_OpenH264DecoderDouble();
    if (option != DECODER_OPTION_NUM_OF_FRAMES_REMAINING_IN_BUFFER)
        ++record.otherCalls;
    record.calls.append(QStringLiteral("held?"));
    *static_cast<int*>(value) = static_cast<int>(m_held.size());
    return 0;
}

long __wrap_WelsCreateDecoder(ISVCDecoder** decoder)
{
    SxOpenH264DecoderDouble& record = fx_OpenH264DecoderDouble();
    *decoder = nullptr;
    if (record.givesHandle) {
        *decoder = new CxDecoderDouble;
        ++record.created;
    }
    return record.createError;
}

void __wrap_WelsDestroyDecoder(ISVCDecoder* decoder)
{
    SxOpenH264DecoderDouble& record = fx_OpenH264DecoderDouble();
    ++record.destroyed;
    record.calls.append(QStringLiteral("destroy"));
    delete decoder;
}

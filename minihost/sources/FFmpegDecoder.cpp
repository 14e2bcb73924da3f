#include "FFmpegDecoder.h"

static bool fx_IsFailure(int error) { return error < 0 && error != AVERROR(EAGAIN) && error != AVERROR_EOF; }

/// True when a JPEG file's marker segments and scans (ITU-T T.81, B.1.1) go on until its end marker.
static bool fx_IsWholeJpeg(uint8_t const* data, int size)
{
    static constexpr int kEoi = 0xD9;
    static constexpr int kSos = 0xDA;
    int at = 2; // behind the start marker
    while (at + 2 <= size) {
        int const marker = data[at] == 0xFF ? data[at + 1] : -1;
        if (marker == kEoi)
            return true;
        if (marker < 0 || marker == 0xFF || at + 4 > size) {
            ++at; // fill bytes
            continue;
        }
        at += 2 + (data[at + 2] << 8 | data[at + 3]);
        if (marker != kSos)
            continue;
        // Within a scan 0xFF is data when a zero follows, or a restart marker.
        while (at + 1 < size &&
               (data[at] != 0xFF || data[at + 1] == 0 || (data[at + 1] >= 0xD0 && data[at + 1] <= 0xD7)))
            ++at;
    }
    return false;
}

int CxFFmpegDecoder::openContext(CodecContextPtr& codec, int recognition)
{
    codec.reset(avcodec_alloc_context3(m_decoder));
    if (!codec)
        return AVERROR(ENOMEM);
    int const error = avcodec_parameters_to_context(codec.get(), m_stream->codecpar);
    if (error < 0)
        return error;
    codec->pkt_timebase = m_stream->time_base;
    codec->err_recognition = recognition;
    // Several pictures at a time would lose sound ones beside a damaged one, and mix up which it was.
    codec->thread_type = FF_THREAD_SLICE;
    codec->thread_count = m_isPictureFile ? 1 : 0; // 0: one for each processor
    return avcodec_open2(codec.get(), m_decoder, nullptr);
}

int CxFFmpegDecoder::open(AVStream const& stream, AVCodec const* decoder, bool isPictureFile)
{
    close();
    m_stream = &stream;
    m_decoder = decoder;
    m_isPictureFile = isPictureFile;
    // This decoder makes a picture of anything and tells damage only by refusing it.
    m_isJpeg = stream.codecpar->codec_id == AV_CODEC_ID_MJPEG;
    m_packet.reset(av_packet_alloc());
    if (!m_packet)
        return AVERROR(ENOMEM);
    return openContext(m_codec, m_isJpeg ? AV_EF_EXPLODE : 0);
}

void CxFFmpegDecoder::close()
{
    m_codec.reset();
    m_lenient.reset();
    m_packet.reset();
    m_isSentAgain = false;
}

int CxFFmpegDecoder::sendAgain()
{
    int const error = m_lenient ? 0 : openContext(m_lenient, 0);
    if (error < 0)
        return error;
    m_isSentAgain = true;
    m_isOwed = true;
    return avcodec_send_packet(m_lenient.get(), m_packet.get());
}

int CxFFmpegDecoder::send(AVPacket const* packet)
{
    m_isSentAgain = false;
    av_packet_unref(m_packet.get());
    if (m_isJpeg && packet) {
        int const error = av_packet_ref(m_packet.get(), packet);
        if (error < 0)
            return error;
    }
    int const error = avcodec_send_packet(m_codec.get(), packet);
    return fx_IsFailure(error) && m_packet->size > 0 ? sendAgain() : error;
}

int CxFFmpegDecoder::receive(AVFrame& frame)
{
    int error = avcodec_receive_frame((m_isSentAgain ? m_lenient : m_codec).get(), &frame);
    if (fx_IsFailure(error) && m_packet->size > 0 && !m_isSentAgain) {
        error = sendAgain();
        if (error >= 0)
            error = avcodec_receive_frame(m_lenient.get(), &frame);
    }
    if (error == AVERROR(EAGAIN) && m_isSentAgain && m_isOwed)
        error = AVERROR_INVALIDDATA; // it was swallowed
    m_isOwed = false;
    bool const isCutJpeg =
        m_isPictureFile && m_packet->size > 0 && !fx_IsWholeJpeg(m_packet->data, m_packet->size);
    m_isDamaged = m_isSentAgain || isCutJpeg || frame.decode_error_flags != 0 ||
                  (frame.flags & AV_FRAME_FLAG_CORRUPT) != 0;
    return error;
}

#include "support/X264Stream.h"

#include <cstdint>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/opt.h>
}

namespace {

struct SxAvDeleter
{
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

} // namespace

/// Sends one picture (null at the end) and appends what comes out.
static bool fx_Encode(AVCodecContext& codec, AVFrame const* frame, AVPacket& packet, QByteArray& stream)
{
    if (avcodec_send_frame(&codec, frame) < 0)
        return false;
    for (;;) {
        int const result = avcodec_receive_packet(&codec, &packet);
        if (result < 0)
            return result == AVERROR(EAGAIN) || result == AVERROR_EOF;
        stream.append(reinterpret_cast<char const*>(packet.data), packet.size);
        av_packet_unref(&packet);
    }
}

static bool fx_Draw(AVFrame& frame, int number)
{
    if (av_frame_make_writable(&frame) < 0)
        return false;
    frame.pts = number;
    for (int plane = 0; plane < 3; ++plane) {
        int const shift = plane == 0 ? 0 : 1;
        for (int y = 0; y < frame.height >> shift; ++y)
            for (int x = 0; x < frame.width >> shift; ++x)
                frame.data[plane][y * frame.linesize[plane] + x] =
                    static_cast<std::uint8_t>(plane == 0 ? (x * x / 8 + y * 3 + number * 7) : 100 + x - y);
    }
    return true;
}

QByteArray fx_X264Stream(int count, int width, int height, char const* profile, char const* options)
{
    AVCodec const* const encoder = avcodec_find_encoder_by_name("libx264");
    if (!encoder)
        return QByteArray();
    std::unique_ptr<AVCodecContext, SxAvDeleter> const codec(avcodec_alloc_context3(encoder));
    std::unique_ptr<AVFrame, SxAvDeleter> const frame(av_frame_alloc());
    std::unique_ptr<AVPacket, SxAvDeleter> const packet(av_packet_alloc());
    codec->width = frame->width = width;
    codec->height = frame->height = height;
    codec->pix_fmt = AV_PIX_FMT_YUV420P;
    frame->format = AV_PIX_FMT_YUV420P;
    codec->time_base = {1, 30};
    codec->gop_size = 8;
    codec->thread_count = 1;
    av_log_set_level(AV_LOG_ERROR);
    bool isGood = av_opt_set(codec->priv_data, "profile", profile, 0) == 0 &&
                  av_opt_set(codec->priv_data, "x264-params", options, 0) == 0 &&
                  avcodec_open2(codec.get(), encoder, nullptr) == 0 &&
                  av_frame_get_buffer(frame.get(), 0) == 0;
    QByteArray stream;
    for (int number = 0; isGood && number < count; ++number)
        isGood = fx_Draw(*frame, number) && fx_Encode(*codec, frame.get(), *packet, stream);
    isGood = isGood && fx_Encode(*codec, nullptr, *packet, stream);
    return isGood ? stream : QByteArray();
}

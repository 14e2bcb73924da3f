#include "VideoFile.h"

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace {

struct SxDeleter
{
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFormatContext* output) const
    {
        avio_closep(&output->pb);
        avformat_free_context(output);
    }
};

using OutputPtr = std::unique_ptr<AVFormatContext, SxDeleter>;
using CodecPtr = std::unique_ptr<AVCodecContext, SxDeleter>;

CodecPtr fx_Encoder(AVCodecID codec, bool isGlobal)
{
    AVCodec const* const encoder = avcodec_find_encoder(codec);
    CodecPtr context(avcodec_alloc_context3(encoder));
    context->width = 64;
    context->height = 48;
    context->pix_fmt = codec == AV_CODEC_ID_GIF     ? AV_PIX_FMT_GRAY8
                       : codec == AV_CODEC_ID_MJPEG ? AV_PIX_FMT_YUVJ420P
                                                    : AV_PIX_FMT_YUV420P;
    context->time_base = {1, 30};
    context->thread_count = 1;
    if (isGlobal)
        context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    return avcodec_open2(context.get(), encoder, nullptr) < 0 ? nullptr : std::move(context);
}

void fx_Fill(AVFrame& frame, int number)
{
    for (int plane = 0; plane < 3 && frame.data[plane]; ++plane) {
        int const height = plane == 0 ? frame.height : frame.height / 2;
        for (int i = 0; i < height * frame.linesize[plane]; ++i)
            frame.data[plane][i] = static_cast<uint8_t>((i + number * 7) * 40503 >> 7);
    }
}

bool fx_WritePackets(AVFormatContext& output, AVCodecContext& codec)
{
    std::unique_ptr<AVPacket, SxDeleter> const packet(av_packet_alloc());
    while (avcodec_receive_packet(&codec, packet.get()) >= 0) {
        packet->duration = 1;
        av_packet_rescale_ts(packet.get(), codec.time_base, output.streams[0]->time_base);
        if (av_write_frame(&output, packet.get()) < 0)
            return false;
    }
    return true;
}

} // namespace

bool fx_WriteVideo(QString const& fileName, char const* muxer, AVCodecID codec, int count, int step)
{
    QByteArray const name = fileName.toLocal8Bit();
    AVFormatContext* made = nullptr;
    if (avformat_alloc_output_context2(&made, nullptr, muxer, name.constData()) < 0)
        return false;
    OutputPtr const output(made);
    CodecPtr const encoder = fx_Encoder(codec, (output->oformat->flags & AVFMT_GLOBALHEADER) != 0);
    AVStream* const stream = avformat_new_stream(output.get(), nullptr);
    if (!encoder || avcodec_parameters_from_context(stream->codecpar, encoder.get()) < 0)
        return false;
    stream->time_base = encoder->time_base;
    stream->avg_frame_rate = {30, 1};
    AVDictionary* options = nullptr;
    av_dict_set(&options, "movflags", "faststart", 0);
    bool isWritten = avio_open(&output->pb, name.constData(), AVIO_FLAG_WRITE) >= 0 &&
                     avformat_write_header(output.get(), &options) >= 0;
    av_dict_free(&options);

    for (int i = 0; isWritten && i < count; ++i) {
        std::unique_ptr<AVFrame, SxDeleter> const frame(av_frame_alloc());
        frame->width = encoder->width;
        frame->height = encoder->height;
        frame->format = encoder->pix_fmt;
        isWritten = av_frame_get_buffer(frame.get(), 0) >= 0;
        if (!isWritten)
            break;
        fx_Fill(*frame, i);
        frame->pts = qint64{i} * step;
        isWritten = avcodec_send_frame(encoder.get(), frame.get()) >= 0 && fx_WritePackets(*output, *encoder);
    }
    if (isWritten)
        avcodec_send_frame(encoder.get(), nullptr);
    return isWritten && fx_WritePackets(*output, *encoder) && av_write_trailer(output.get()) >= 0;
}

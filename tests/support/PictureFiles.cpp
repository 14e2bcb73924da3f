#include "PictureFiles.h"

#include <QFile>
#include <memory>
#include <random>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/imgutils.h>
}

QByteArray fx_PnmFile(int width, int height, int components, int highest, QByteArray const& samples)
{
    return QByteArray(components == 1 ? "P5\n" : "P6\n") + QByteArray::number(width) + ' ' +
           QByteArray::number(height) + '\n' + QByteArray::number(highest) + '\n' + samples;
}

QByteArray fx_Y4mFile(int width, int height, QByteArray const& chroma, QByteArray const& picture, int count)
{
    QByteArray file = "YUV4MPEG2 W" + QByteArray::number(width) + " H" + QByteArray::number(height) +
                      " F30:1 Ip A1:1 C" + chroma + '\n';
    for (int i = 0; i < count; ++i)
        file += "FRAME\n" + picture;
    return file;
}

QByteArray fx_NoiseY4mFile(int width, int height, int count)
{
    std::mt19937 random(7);
    QByteArray file = fx_Y4mFile(width, height, "420jpeg", QByteArray(), 0);
    for (int i = 0; i < count; ++i) {
        file += "FRAME\n";
        for (int sample = 0; sample < width * height * 3 / 2; ++sample)
            file += static_cast<char>(random() & 0xFF);
    }
    return file;
}

QByteArray fx_NoisyY4mFile(int width, int height, int count, int noise)
{
    std::mt19937 random(7);
    QByteArray file = fx_Y4mFile(width, height, "420jpeg", QByteArray(), 0);
    for (int i = 0; i < count; ++i) {
        file += "FRAME\n";
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                int const added = static_cast<int>(random() % static_cast<unsigned>(2 * noise + 1)) - noise;
                file += static_cast<char>(64 + (x + y + 3 * i) % 128 + added);
            }
        }
        file += QByteArray(width * height / 2, char(128));
    }
    return file;
}

QByteArray fx_CodedPicture(AVCodecID codec, AVPixelFormat format, int width, int height,
                           QByteArray const& samples)
{
    struct SxDeleter
    {
        void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
        void operator()(AVFrame* frame) const { av_frame_free(&frame); }
        void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    };
    AVCodec const* const encoder = avcodec_find_encoder(codec);
    std::unique_ptr<AVCodecContext, SxDeleter> const context(avcodec_alloc_context3(encoder));
    std::unique_ptr<AVFrame, SxDeleter> const frame(av_frame_alloc());
    std::unique_ptr<AVPacket, SxDeleter> const packet(av_packet_alloc());
    context->width = frame->width = width;
    context->height = frame->height = height;
    context->pix_fmt = format;
    frame->format = format;
    context->time_base = {1, 30};
    context->thread_count = 1;
    context->flags |= AV_CODEC_FLAG_QSCALE;
    context->global_quality = FF_QP2LAMBDA; // the best that JPEG has
    frame->quality = FF_QP2LAMBDA;
    if (av_image_get_buffer_size(format, width, height, 1) != samples.size() ||
        av_image_fill_arrays(frame->data, frame->linesize,
                             reinterpret_cast<std::uint8_t const*>(samples.constData()), format, width,
                             height, 1) < 0 ||
        avcodec_open2(context.get(), encoder, nullptr) < 0 ||
        avcodec_send_frame(context.get(), frame.get()) < 0)
        return QByteArray();
    avcodec_send_frame(context.get(), nullptr);
    if (avcodec_receive_packet(context.get(), packet.get()) < 0)
        return QByteArray();
    return QByteArray(reinterpret_cast<char const*>(packet->data), packet->size);
}

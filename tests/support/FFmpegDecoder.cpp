#include "FFmpegDecoder.h"

#include <QFile>
#include <cmath>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace {

struct SxDeleter
{
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVCodecParserContext* parser) const { av_parser_close(parser); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

void fx_AppendPlane(std::vector<std::uint8_t>& bytes, std::uint8_t const* plane, int pitch, int width,
                    int height)
{
    for (int y = 0; y < height; ++y)
        bytes.insert(bytes.end(), plane + static_cast<std::ptrdiff_t>(y) * pitch,
                     plane + static_cast<std::ptrdiff_t>(y) * pitch + width);
}

SxDecodedPicture fx_Copy(AVFrame const& frame)
{
    SxDecodedPicture picture;
    picture.width = frame.width;
    picture.height = frame.height;
#ifdef AV_FRAME_FLAG_KEY // FFmpeg 6.1
    picture.isKeyFrame = (frame.flags & AV_FRAME_FLAG_KEY) != 0;
#else
    picture.isKeyFrame = frame.key_frame != 0;
#endif
    fx_AppendPlane(picture.i420, frame.data[0], frame.linesize[0], frame.width, frame.height);
    fx_AppendPlane(picture.i420, frame.data[1], frame.linesize[1], frame.width / 2, frame.height / 2);
    fx_AppendPlane(picture.i420, frame.data[2], frame.linesize[2], frame.width / 2, frame.height / 2);
    return picture;
}

/// Sends one packet (null at the end) and takes what comes out; false when the decoder complains.
bool fx_Decode(AVCodecContext& codec, AVPacket const* packet, AVFrame& frame,
               std::vector<SxDecodedPicture>& pictures)
{
    if (avcodec_send_packet(&codec, packet) < 0)
        return false;
    for (;;) {
        int const result = avcodec_receive_frame(&codec, &frame);
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return true;
        if (result < 0 || frame.decode_error_flags != 0 ||
            (frame.format != AV_PIX_FMT_YUV420P && frame.format != AV_PIX_FMT_YUVJ420P))
            return false;
        pictures.push_back(fx_Copy(frame));
    }
}

} // namespace

std::vector<SxDecodedPicture> fx_DecodeH264File(QString const& fileName, QString& error)
{
    std::vector<SxDecodedPicture> pictures;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        error = fileName + QStringLiteral(": ") + file.errorString();
        return pictures;
    }
    QByteArray const stream = file.readAll() + QByteArray(AV_INPUT_BUFFER_PADDING_SIZE, '\0');

    AVCodec const* const decoder = avcodec_find_decoder(AV_CODEC_ID_H264);
    std::unique_ptr<AVCodecContext, SxDeleter> const codec(avcodec_alloc_context3(decoder));
    std::unique_ptr<AVCodecParserContext, SxDeleter> const parser(av_parser_init(AV_CODEC_ID_H264));
    std::unique_ptr<AVFrame, SxDeleter> const frame(av_frame_alloc());
    std::unique_ptr<AVPacket, SxDeleter> const packet(av_packet_alloc());
    codec->err_recognition = AV_EF_CAREFUL | AV_EF_EXPLODE;
    codec->thread_count = 1;
    bool isClean = avcodec_open2(codec.get(), decoder, nullptr) == 0;

    auto const* position = reinterpret_cast<std::uint8_t const*>(stream.constData());
    int left = static_cast<int>(stream.size()) - AV_INPUT_BUFFER_PADDING_SIZE;
    bool atEnd = false;
    while (isClean && !atEnd) {
        atEnd = left == 0; // one empty call makes the parser hand out its last packet
        int const used = av_parser_parse2(parser.get(), codec.get(), &packet->data, &packet->size, position,
                                          left, AV_NOPTS_VALUE, AV_NOPTS_VALUE, 0);
        position += used;
        left -= used;
        if (packet->size > 0)
            isClean = fx_Decode(*codec, packet.get(), *frame, pictures);
    }
    isClean = isClean && fx_Decode(*codec, nullptr, *frame, pictures);
    if (!isClean) {
        error = QStringLiteral("%1: damaged behind picture %2").arg(fileName).arg(pictures.size());
        pictures.clear();
    } else if (pictures.empty()) {
        error = fileName + QStringLiteral(": no picture in it");
    }
    return pictures;
}

double fx_Psnr(std::vector<std::uint8_t> const& a, std::vector<std::uint8_t> const& b)
{
    if (a.size() != b.size() || a.empty())
        return 0;
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        double const difference = double{1} * a[i] - b[i];
        sum += difference * difference;
    }
    return sum == 0 ? 100 : 10 * std::log10(255.0 * 255.0 * static_cast<double>(a.size()) / sum);
}

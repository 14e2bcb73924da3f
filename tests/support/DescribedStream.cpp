#include "DescribedStream.h"

#include <cstring>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
}

QByteArray fx_DescribedStream(QByteArray const& stream, int rate)
{
    QByteArray const filter = "h264_metadata=video_full_range_flag=1:colour_primaries=1:"
                              "transfer_characteristics=13:matrix_coefficients=6:tick_rate=" +
                              QByteArray::number(2 * rate);
    AVBSFContext* made = nullptr;
    if (av_bsf_list_parse_str(filter.constData(), &made) < 0)
        return QByteArray();
    struct SxDeleter
    {
        void operator()(AVBSFContext* context) const { av_bsf_free(&context); }
        void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    };
    std::unique_ptr<AVBSFContext, SxDeleter> const context(made);
    std::unique_ptr<AVPacket, SxDeleter> const packet(av_packet_alloc());
    context->par_in->codec_type = AVMEDIA_TYPE_VIDEO;
    context->par_in->codec_id = AV_CODEC_ID_H264;
    if (av_bsf_init(context.get()) < 0 || av_new_packet(packet.get(), static_cast<int>(stream.size())) < 0)
        return QByteArray();
    std::memcpy(packet->data, stream.constData(), static_cast<size_t>(stream.size()));
    if (av_bsf_send_packet(context.get(), packet.get()) < 0 ||
        av_bsf_receive_packet(context.get(), packet.get()) < 0)
        return QByteArray();
    return QByteArray(reinterpret_cast<char const*>(packet->data), packet->size);
}

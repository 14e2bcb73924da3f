#include "StreamFacts.h"

#include <cmath>

extern "C" {
#include <libavutil/display.h>
}

/// The stream's display matrix (libavutil/display.h); null when it has none.
static int32_t const* fx_DisplayMatrix(AVStream const& stream)
{
    constexpr size_t kSize = 9 * sizeof(int32_t);
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 102)
    AVPacketSideData const* const data = av_packet_side_data_get(
        stream.codecpar->coded_side_data, stream.codecpar->nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    return data && data->size >= kSize ? reinterpret_cast<int32_t const*>(data->data) : nullptr;
#else
    for (int i = 0; i < stream.nb_side_data; ++i) {
        AVPacketSideData const& data = stream.side_data[i];
        if (data.type == AV_PKT_DATA_DISPLAYMATRIX && static_cast<size_t>(data.size) >= kSize)
            return reinterpret_cast<int32_t const*>(data.data);
    }
    return nullptr;
#endif
}

static int fx_Rotation(int32_t const* matrix)
{
    double const counterclockwise = matrix ? av_display_rotation_get(matrix) : 0.0;
    if (std::isnan(counterclockwise))
        return 0;
    int const quarters = static_cast<int>(std::lround(-counterclockwise / 90.0));
    return (quarters % 4 + 4) % 4 * 90;
}

/// The rate that a raw stream of H.264 names. Since FFmpeg 6.1 the average is what was offered, and what the
/// stream says is the rate of its fields, or of the time base when it says nothing.
static SxPictureRate fx_NamedRate(AVStream const& stream)
{
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 102)
    bool const isNamed = stream.codecpar->codec_id == AV_CODEC_ID_H264 &&
                         av_cmp_q(stream.r_frame_rate, av_inv_q(stream.time_base)) != 0;
    AVRational const rate = av_mul_q(stream.r_frame_rate, {1, 2});
    return isNamed ? SxPictureRate{rate.num, rate.den} : SxPictureRate();
#else
    static_cast<void>(stream);
    return SxPictureRate();
#endif
}

SxStreamFacts fx_StreamFacts(AVStream const& stream, RateOrigin origin)
{
    SxStreamFacts facts;
    facts.rotation = fx_Rotation(fx_DisplayMatrix(stream));
    facts.hasClock = origin == RateOrigin::Stream;
    bool const hasAverage = stream.avg_frame_rate.num > 0 && stream.avg_frame_rate.den > 0;
    bool const isNamedOnly = origin == RateOrigin::User && !hasAverage;
    AVRational const said = isNamedOnly ? stream.r_frame_rate : stream.avg_frame_rate;
    SxPictureRate const rate{said.num, said.den};
    bool const isOffered =
        origin == RateOrigin::Offer && rate.numerator == kPicturesASecond * rate.denominator;
    SxPictureRate const named = isOffered ? fx_NamedRate(stream) : rate;
    if (fx_IsSane(named))
        facts.rate = named;
    return facts;
}

int fx_FrameRotation(AVFrame const& frame, int ofStream)
{
    AVFrameSideData const* const data = av_frame_get_side_data(&frame, AV_FRAME_DATA_DISPLAYMATRIX);
    bool const isWhole = data && static_cast<size_t>(data->size) >= 9 * sizeof(int32_t);
    return isWhole ? fx_Rotation(reinterpret_cast<int32_t const*>(data->data)) : ofStream;
}

SxPixelShape fx_FramePixelShape(AVFormatContext& format, AVStream& stream, AVFrame& frame)
{
    AVRational const said = av_guess_sample_aspect_ratio(&format, &stream, &frame);
    SxPixelShape shape;
    if (said.num > 0 && said.den > 0)
        av_reduce(&shape.width, &shape.height, said.num, said.den, INT_MAX);
    return shape;
}

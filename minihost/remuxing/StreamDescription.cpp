#include "StreamDescription.h"

#include <climits>

#include "CodedUnits.h"
#include "Extradata.h"

extern "C" {
#include <libavcodec/bsf.h>
#include <libavutil/opt.h>
}

static constexpr int kMostRangesTold = 200;

namespace {

struct SxFilterDeleter
{
    void operator()(AVBSFContext* filter) const { av_bsf_free(&filter); }
};
using FilterPtr = std::unique_ptr<AVBSFContext, SxFilterDeleter>;

bool fx_Set(AVBSFContext& filter, SxStreamDescription const& description)
{
    // Two ticks a picture, one for each field that it might have (E.2.1). fixed_frame_rate_flag stays what it
    // is: with it FFmpeg writes no set of OpenH264's.
    AVRational const ticks = {2 * description.rate.num, description.rate.den};
    void* const options = filter.priv_data;
    return av_opt_set_int(options, "video_full_range_flag", 1, 0) >= 0 &&
           av_opt_set_int(options, "colour_primaries", SxStreamDescription::kPrimaries, 0) >= 0 &&
           av_opt_set_int(options, "transfer_characteristics", SxStreamDescription::kTransfer, 0) >= 0 &&
           av_opt_set_int(options, "matrix_coefficients", SxStreamDescription::kMatrix, 0) >= 0 &&
           av_opt_set_q(options, "tick_rate", ticks, 0) >= 0;
}

} // namespace

void SxStreamDescription::takeRate(SxPictureRate const& told)
{
    if (!told.isKnown())
        return;
    av_reduce(&rate.num, &rate.den, told.numerator, told.denominator, INT_MAX);
    isRateAssumed = false;
}

QByteArray fx_SkippedComment(QVector<SxPictureRange> const& skipped, int count, int pictures)
{
    if (count == 0)
        return QByteArray();
    QString const numbers = fx_RangesText(skipped, kMostRangesTold);
    return QStringLiteral("%1 of %2 pictures were skipped by the encoder%3")
        .arg(count)
        .arg(pictures)
        .arg(numbers.isEmpty() ? QString() : QStringLiteral(": ") + numbers)
        .toUtf8();
}

std::optional<QByteArray> fx_DescribeSps(QByteArray const& sps, SxStreamDescription const& description)
{
    // The filter sees the set alone, as what goes before a stream: the pictures stay as they are.
    AVBSFContext* made = nullptr;
    if (av_bsf_alloc(av_bsf_get_by_name("h264_metadata"), &made) < 0)
        return std::nullopt;
    FilterPtr const filter(made);
    filter->par_in->codec_type = AVMEDIA_TYPE_VIDEO;
    filter->par_in->codec_id = AV_CODEC_ID_H264;
    if (!fx_SetExtradata(*filter->par_in, fx_WithStartCode(sps)) || !fx_Set(*filter, description) ||
        av_bsf_init(filter.get()) < 0)
        return std::nullopt;
    AVCodecParameters const& out = *filter->par_out;
    QVector<SxCodedUnit> const units =
        fx_UnitsOf(QByteArray(reinterpret_cast<char const*>(out.extradata), out.extradata_size));
    if (units.size() != 1 || units[0].type() != SxCodedUnit::kSps)
        return std::nullopt;
    return units[0].bytes;
}

#include "RecordTexts.h"

#include "RateAdvice.h"

QString CxRecordTexts::skipped(SxEncoderOptions const& used, SxRecordSummary const& summary)
{
    int const pictures = static_cast<int>(summary.skipped.size());
    if (pictures == 0)
        return {};
    QString const what = tr("%n picture(s) skipped by the encoder to keep the bit rate.", nullptr, pictures) +
                         QLatin1Char(' ');
    auto const sufficientQuality = [&](SxEncoderOptions const& options) -> std::optional<int> {
        if (summary.coded == 0)
            return std::nullopt;
        return fx_QualityThatKeepsAll(summary.savedWidth, summary.savedHeight, options, summary.bytes,
                                      summary.coded, pictures);
    };
    if (std::optional<int> const quality = sufficientQuality(used))
        return what + tr("Quality %1 probably keeps them all.").arg(*quality);
    SxEncoderOptions unlimited = used;
    unlimited.level = SxEncoderOptions().level; // the highest
    if (sufficientQuality(unlimited))
        return what + tr("Level %1 allows no more, a higher one does.").arg(fx_LevelName(used.level));
    return what +
           tr("Not even the highest quality keeps them all; fewer key frames or smaller pictures may.");
}

QString CxRecordTexts::sourceDamage(SxRecordSummary const& summary)
{
    return summary.isSourceDamaged ? tr("The source is damaged or broken off: some of its pictures are "
                                        "missing or not as they were.")
                                   : QString();
}

QString CxRecordTexts::notNoted(SxRecordSummary const& summary)
{
    return summary.sidecarError.isEmpty()
               ? QString()
               : tr("Its own speed, rotation and skipped pictures could not be noted beside it.");
}

QString CxRecordTexts::shrunk(SxPicBufInfo const& input, quint32 width, quint32 height, int level)
{
    if (width == input.width && height == input.height)
        return {};
    bool const isOnlyOdd = width == (input.width & ~1U) && height == (input.height & ~1U);
    QString const why = isOnlyOdd ? tr("a recording's sides are even")
                                  : tr("level %1 allows no larger ones").arg(fx_LevelName(level));
    return tr("Pictures are saved as %1 × %2 instead of %3 × %4: %5.")
        .arg(width)
        .arg(height)
        .arg(input.width)
        .arg(input.height)
        .arg(why);
}

QString CxRecordTexts::otherLevel(SxRecordSummary const& summary, int level)
{
    QString const asked = fx_LevelName(level);
    return summary.level.isEmpty() || summary.level == asked
               ? QString()
               : tr("OpenH264 made the recording level %1, not level %2 as asked.").arg(summary.level, asked);
}

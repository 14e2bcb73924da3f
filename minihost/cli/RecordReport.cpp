#include "RecordReport.h"

#include <QJsonArray>

#include "PictureRanges.h"
#include "PictureRate.h"
#include "QualityTrial.h"
#include "RateAdvice.h"
#include "Readable.h"

static constexpr int kMostRanges = 8;

static double fx_Seconds(SxRecordSummary const& summary) { return summary.coded / summary.rate.orAssumed(); }

static double fx_MeanBitRate(SxRecordSummary const& summary)
{
    return summary.coded == 0 ? 0 : static_cast<double>(summary.bytes) * 8 / fx_Seconds(summary);
}

static double fx_MsPerPicture(qint64 ns, int pictures)
{
    return pictures == 0 ? 0 : static_cast<double>(ns) / 1e6 / pictures;
}

/// "200 of 795 pictures" when that is what a stop or an error left of them.
static QString fx_PictureCount(SxRecordSummary const& summary)
{
    bool const isPart = summary.isCutShort || !summary.error.isEmpty();
    return isPart && summary.expected > 0
               ? QStringLiteral("%1 of %2").arg(summary.given).arg(fx_Count(summary.expected, "picture"))
               : fx_Count(summary.given, "picture");
}

/// Pictures that the saver took and the file does not hold: the disk was full.
static int fx_LostBehindSaver(SxRecordSummary const& summary)
{
    return summary.given - summary.coded - static_cast<int>(summary.skipped.size() + summary.lost.size());
}

/// What the sidecar is there for.
static QString fx_NotedText(SxRecordSummary const& summary)
{
    QStringList noted;
    if (summary.rate.isKnown())
        noted += QStringLiteral("the rate");
    if (summary.rotation != 0)
        noted += QStringLiteral("that the pictures are to be turned by %1 degrees").arg(summary.rotation);
    if (!summary.skipped.isEmpty())
        noted += QStringLiteral("the skipped pictures");
    if (!summary.lost.isEmpty())
        noted += QStringLiteral("the lost pictures");
    QString const last = noted.takeLast();
    return noted.isEmpty() ? last : noted.join(QStringLiteral(", ")) + QStringLiteral(" and ") + last;
}

QString fx_RecordSummaryText(SxRecordRequest const& request, SxRecordSummary const& summary)
{
    QStringList lines;
    QString first = QStringLiteral("%1: %2").arg(request.outputFile, fx_PictureCount(summary));
    if (summary.savedWidth != 0)
        first += QStringLiteral(" of %1 x %2").arg(summary.savedWidth).arg(summary.savedHeight);
    if (summary.wasStopped)
        first += QStringLiteral(", stopped");
    lines += first;
    QString coded = QStringLiteral("  %1 coded, %2 skipped").arg(summary.coded).arg(summary.skipped.size());
    if (!summary.skipped.isEmpty())
        coded += QStringLiteral(" (%1)").arg(fx_ReadableRanges(summary.skipped, kMostRanges));
    if (int const lost = fx_LostBehindSaver(summary); lost > 0)
        coded += QStringLiteral(", %1 lost").arg(lost);
    lines += coded;
    if (!summary.lost.isEmpty())
        lines += QStringLiteral("  %1 lost before the encoder (%2)")
                     .arg(summary.lost.size())
                     .arg(fx_ReadableRanges(summary.lost, kMostRanges));
    if (summary.missedByCamera > 0)
        lines +=
            QStringLiteral("  %1 lost by the camera, as its time stamps say").arg(summary.missedByCamera);
    lines += QStringLiteral("  %1, %2 on average, plays %3 s at %4")
                 .arg(fx_ReadableSize(summary.bytes), fx_ReadableBitRate(fx_MeanBitRate(summary)))
                 .arg(fx_Seconds(summary), 0, 'f', 1)
                 .arg(summary.rate.described());
    if (!summary.sidecar.isEmpty())
        lines += QStringLiteral("  %1 notes %2").arg(summary.sidecar, fx_NotedText(summary));
    lines += QStringLiteral("  took %1 s, %2 ms a picture, %3 of it for encoding")
                 .arg(static_cast<double>(summary.elapsedNs) / 1e9, 0, 'f', 1)
                 .arg(fx_MsPerPicture(summary.elapsedNs, summary.given), 0, 'f', 1)
                 .arg(fx_MsPerPicture(summary.savingNs, summary.given), 0, 'f', 1);
    return lines.join(QLatin1Char('\n'));
}

static QJsonArray fx_Array(QVector<int> const& numbers)
{
    QJsonArray array;
    for (int const number : numbers)
        array.append(number);
    return array;
}

QJsonObject fx_RecordSummaryJson(SxRecordRequest const& request, SxRecordSummary const& summary,
                                 QStringList const& warnings)
{
    QJsonObject json{
        {QStringLiteral("output"), request.outputFile},
        {QStringLiteral("expected"), summary.expected < 0 ? QJsonValue() : QJsonValue(summary.expected)},
        {QStringLiteral("given"), summary.given},
        {QStringLiteral("coded"), summary.coded},
        {QStringLiteral("lost"), fx_LostBehindSaver(summary)},
        {QStringLiteral("elapsedSeconds"), static_cast<double>(summary.elapsedNs) / 1e9},
        {QStringLiteral("msPerPicture"), fx_MsPerPicture(summary.elapsedNs, summary.given)},
        {QStringLiteral("encodingMsPerPicture"), fx_MsPerPicture(summary.savingNs, summary.given)},
        {QStringLiteral("stopped"), summary.wasStopped},
        {QStringLiteral("sourceDamaged"), summary.isSourceDamaged},
        {QStringLiteral("interrupted"), fx_IsInterrupted(summary)},
        {QStringLiteral("warnings"), QJsonArray::fromStringList(warnings)},
        {QStringLiteral("error"), summary.error.isEmpty() ? QJsonValue() : QJsonValue(summary.error)},
        {QStringLiteral("quality"), request.encoder.quality},
        {QStringLiteral("keyframeRate"), request.encoder.keyFrameInterval},
        {QStringLiteral("skipped"), summary.skipped.size()},
        {QStringLiteral("skippedPictures"), fx_Array(summary.skipped)},
        {QStringLiteral("lostBeforeEncoder"), summary.lost.size()},
        {QStringLiteral("lostPictures"), fx_Array(summary.lost)},
        {QStringLiteral("lostByCamera"), summary.missedByCamera},
        {QStringLiteral("bytes"), summary.bytes},
        {QStringLiteral("meanBitRate"), fx_MeanBitRate(summary)},
    };
    if (summary.rate.isKnown()) {
        json[QStringLiteral("fps")] = summary.rate.perSecond();
        json[QStringLiteral("fpsIsAverage")] = summary.rate.isAverage;
    }
    json[QStringLiteral("rotation")] = summary.rotation;
    if (!summary.sidecar.isEmpty())
        json[QStringLiteral("sidecar")] = summary.sidecar;
    if (!summary.level.isEmpty())
        json[QStringLiteral("level")] = summary.level;
    if (summary.savedWidth != 0) {
        json[QStringLiteral("width")] = static_cast<int>(summary.savedWidth);
        json[QStringLiteral("height")] = static_cast<int>(summary.savedHeight);
    }
    return json;
}

ExitCode fx_RecordExitCode(SxRecordSummary const& summary, bool isStrict)
{
    switch (summary.failure) {
    case RecordFailure::Source:
        return kBadInput;
    case RecordFailure::Output:
        return kOutputFailed;
    case RecordFailure::Other:
        return kFailed;
    case RecordFailure::None:
        break;
    }
    if (summary.isSourceDamaged)
        return kBadInput; // what was good is written
    return isStrict && !(summary.skipped.isEmpty() && summary.lost.isEmpty()) ? kNotWhole : kDone;
}

bool fx_IsInterrupted(SxRecordSummary const& summary)
{
    return summary.isCutShort || (summary.wasStopped && summary.given == 0);
}

QString fx_InterruptionText(SxRecordRequest const& request, SxRecordSummary const& summary)
{
    if (summary.given == 0)
        return QStringLiteral("Interrupted before the first picture; nothing was recorded.");
    return QStringLiteral("%1: interrupted after %2; the rest is missing, what is written is complete.")
        .arg(request.outputFile, fx_PictureCount(summary));
}

/// The quality above that in \p from that keeps every picture: estimated, then tried if that can be.
static std::optional<int> fx_SufficientQuality(SxEncoderOptions const& from, SxRecordSummary const& summary,
                                               CxQualityTrial* trial)
{
    std::optional<int> const estimated =
        fx_QualityThatKeepsAll(summary.savedWidth, summary.savedHeight, from, summary.bytes, summary.coded,
                               static_cast<int>(summary.skipped.size()));
    if (!trial)
        return estimated;
    SxEncoderOptions tried = from;
    tried.quality = estimated.value_or(SxEncoderOptions::kQualityMax);
    std::optional<int> const seen = trial->lowestQuality(tried);
    return trial->isBrokenOff() ? estimated : seen;
}

QString fx_SkipAdvice(SxRecordRequest const& request, SxRecordSummary const& summary, CxQualityTrial* trial)
{
    if (summary.skipped.isEmpty() || summary.coded == 0)
        return QString();
    QString advice = QStringLiteral("The encoder skipped %1 of %2 pictures to keep to its bit rate; ")
                         .arg(summary.skipped.size())
                         .arg(summary.given);
    auto const keeps = [trial] {
        bool const isSeen = trial && trial->seesAll() && !trial->isBrokenOff();
        return isSeen ? QStringLiteral("keeps them all.") : QStringLiteral("probably keeps them all.");
    };
    if (std::optional<int> const quality = fx_SufficientQuality(request.encoder, summary, trial))
        return advice + QStringLiteral("--quality %1 %2").arg(*quality).arg(keeps());

    SxEncoderOptions unlimited = request.encoder;
    unlimited.level = SxEncoderOptions().level; // the highest
    if (unlimited.level != request.encoder.level) {
        if (std::optional<int> const quality = fx_SufficientQuality(unlimited, summary, trial))
            return advice + QStringLiteral("level %1 allows no more, --level %2 with --quality %3 %4")
                                .arg(fx_LevelName(request.encoder.level), fx_LevelName(unlimited.level))
                                .arg(*quality)
                                .arg(keeps());
    }
    advice += QStringLiteral("not even --quality 10 would keep them all");
    return advice + (request.encoder.keyFrameInterval > 1
                         ? QStringLiteral(", but --keyframe-rate 1 does: key frames are never skipped.")
                         : QStringLiteral("."));
}

QString fx_LossWarning(SxRecordSummary const& summary)
{
    return QStringLiteral(
               "pictures are lost before the encoder, from picture %1 on: it is slower than the source. "
               "Smaller pictures (--scale) or --complexity low are faster, a larger --buffer takes longer "
               "bursts.")
        .arg(summary.lost.first());
}

QString fx_MissingWarning(SxRecordRequest const& request, SxRecordSummary const& summary)
{
    QString text = QStringLiteral("PICTURES ARE MISSING in ") + request.outputFile +
                   QStringLiteral(": the encoder skipped %1 of %2 (%3), although none "
                                  "may be, and the source comes only once.")
                       .arg(summary.skipped.size())
                       .arg(summary.given)
                       .arg(fx_ReadableRanges(summary.skipped, kMostRanges));
    if (request.encoder.keyFrameInterval > 1)
        text += QStringLiteral(
            " With --may-change keyframe-rate every picture is a key frame, and none is skipped.");
    return text;
}

QString fx_BitsAdvice(SxRecordSummary const& summary)
{
    if (summary.highestSample == 0)
        return QString();
    // Cameras deliver one of these.
    quint32 likely = 16;
    for (quint32 const bits : {14U, 12U, 10U, 8U}) {
        if (summary.highestSample >> bits == 0)
            likely = bits;
    }
    if (likely == summary.input.bitsPerSample ||
        (summary.highestSample >> summary.input.bitsPerSample == 0 && likely > summary.input.bitsPerSample))
        return QString();
    return QStringLiteral("highest value seen %1: did you mean --bits %2?")
        .arg(summary.highestSample)
        .arg(likely);
}

#include "RemuxReport.h"

#include <QJsonArray>

#include "PictureRanges.h"
#include "Readable.h"

static constexpr int kMostRanges = 8; // of frame numbers in a sentence

/// "frames 5-12 of the recording, coded as they were"
static QString fx_TakenText(SxRemuxRequest const& request, SxRemuxSummary const& summary)
{
    QString const frames = summary.first == summary.last
                               ? QStringLiteral("frame %1").arg(summary.first)
                               : QStringLiteral("frames %1-%2").arg(summary.first).arg(summary.last);
    int const anew = request.front.size();
    QString const coded = anew == 0                  ? QStringLiteral("coded as they were")
                          : anew == summary.pictures ? QStringLiteral("coded anew")
                                                     : QStringLiteral("the first %1 coded anew").arg(anew);
    return QStringLiteral("%1 of the recording, %2").arg(frames, coded);
}

QString fx_RemuxText(SxRemuxRequest const& request, SxRemuxSummary const& summary)
{
    double const rate = av_q2d(request.description.rate);
    return QStringList{
        request.output +
            QStringLiteral(": %1 of %2 x %3, ")
                .arg(fx_Count(summary.pictures, "picture"))
                .arg(summary.size.width())
                .arg(summary.size.height()) +
            fx_TakenText(request, summary),
        QStringLiteral("  %1, plays %2 s at %3 pictures a second%4")
            .arg(fx_ReadableSize(summary.bytes))
            .arg(summary.pictures / rate, 0, 'f', 1)
            .arg(rate)
            .arg(request.description.isRateAssumed ? QStringLiteral(" (assumed)") : QString()),
    }
        .join(QLatin1Char('\n'));
}

QStringList fx_RemuxWarnings(QString const& recording, SxRemuxSummary const& summary)
{
    QStringList warnings;
    if (summary.leftOutAtFront > 0)
        warnings += QStringLiteral("%1: %2 before the first key frame cannot be decoded and were left out.")
                        .arg(recording, fx_Count(summary.leftOutAtFront, "frame"));
    if (summary.isEndCutOff)
        warnings += QStringLiteral("%1: its last picture is cut off and was left out.").arg(recording);
    if (!summary.damaged.isEmpty())
        warnings +=
            QStringLiteral("%1: damaged at frames %2, handed on as they are; 'minihost verify' says more.")
                .arg(recording, fx_ReadableRanges(summary.damaged, kMostRanges));
    return warnings;
}

QString fx_RotationWarning(SxRemuxRequest const& request, SxRemuxSummary const& summary)
{
    if (request.description.rotation == 0 || summary.hasRotation)
        return QString();
    return request.output +
           QStringLiteral(": its pictures are to be turned by %1 degrees clockwise, which it does not say.")
               .arg(request.description.rotation);
}

QJsonObject fx_RemuxJson(QString const& recording, SxRemuxRequest const& request,
                         SxRemuxSummary const& summary)
{
    QJsonArray damaged;
    for (int const frame : summary.damaged)
        damaged.append(frame);
    AVRational const rate = request.description.rate;
    return {
        {QStringLiteral("file"), recording},
        {QStringLiteral("output"), request.output},
        {QStringLiteral("pictures"), summary.pictures},
        {QStringLiteral("keyFrames"), summary.keyFrames},
        {QStringLiteral("firstFrame"), summary.first},
        {QStringLiteral("lastFrame"), summary.last},
        {QStringLiteral("codedAnew"), request.front.size()},
        {QStringLiteral("width"), summary.size.width()},
        {QStringLiteral("height"), summary.size.height()},
        {QStringLiteral("fps"), av_q2d(rate)},
        {QStringLiteral("fpsIsAssumed"), request.description.isRateAssumed},
        {QStringLiteral("rate"), QStringLiteral("%1/%2").arg(rate.num).arg(rate.den)},
        {QStringLiteral("rotation"), request.description.rotation},
        {QStringLiteral("bytes"), summary.bytes},
        {QStringLiteral("leftOutAtFront"), summary.leftOutAtFront},
        {QStringLiteral("endCutOff"), summary.isEndCutOff},
        {QStringLiteral("damagedFrames"), damaged},
        {QStringLiteral("error"), summary.error.isEmpty() ? QJsonValue() : QJsonValue(summary.error)},
    };
}

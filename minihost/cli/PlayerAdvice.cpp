#include "PlayerAdvice.h"

#include <QFileInfo>
#include <QStringList>
#include <cmath>

#include "PictureChanges.h"
#include "RecordingReader.h"
#include "ShellWord.h"
#include "StreamKind.h"

namespace {

constexpr int kPlayersRate = 25; // FFmpeg's, and so that of most players, for raw streams

/// How players take a recording that does not say it.
struct SxMisreading
{
    SxPictureRate rate; ///< the right one
    int rotation = 0;
    bool isRateWrong = false;
    bool areColoursWrong = false;
    bool isTakenForHd = false; ///< so that players count on BT.709

    bool isAny() const { return isRateWrong || areColoursWrong || rotation != 0; }
};

SxMisreading fx_Misreading(CxRecordingReader const& recording, SxStreamKind const& kind)
{
    SxMisreading misreading;
    auto const& sidecar = recording.sidecar().sidecar;
    misreading.rate = recording.rate().isKnown() ? recording.rate() : SxPictureRate{kPicturesASecond};
    misreading.rotation = sidecar ? sidecar->rotation : 0;
    double const taken = kind.rate.isKnown() ? kind.rate.perSecond() : kPlayersRate;
    misreading.isRateWrong = std::abs(misreading.rate.perSecond() - taken) > 0.01;
    misreading.areColoursWrong = !kind.saysColours;
    misreading.isTakenForHd = kind.width >= 1280 || kind.height > 576;
    return misreading;
}

QString fx_Mpv(SxMisreading const& misreading, QString const& file)
{
    QStringList words{QStringLiteral("mpv")};
    if (misreading.isRateWrong)
        words += QStringLiteral("--demuxer-lavf-o=framerate=%1").arg(misreading.rate.exact());
    if (misreading.areColoursWrong)
        words += QStringLiteral("--vf=format:colorlevels=full:colormatrix=bt.601:primaries=bt.709");
    if (misreading.rotation != 0)
        words += QStringLiteral("--video-rotate=%1").arg(misreading.rotation);
    return (words << fx_ShellWord(file)).join(QLatin1Char(' '));
}

QString fx_Ffplay(SxMisreading const& misreading, QString const& file)
{
    QStringList filters;
    if (misreading.areColoursWrong)
        filters += QStringLiteral("setparams=range=pc:colorspace=smpte170m");
    if (misreading.rotation != 0)
        filters += QString::fromLatin1(fx_TurnFilter(misreading.rotation));
    QStringList words{QStringLiteral("ffplay")};
    if (misreading.isRateWrong)
        words += QStringLiteral("-framerate %1").arg(misreading.rate.exact());
    if (!filters.isEmpty())
        words += QStringLiteral("-vf ") + filters.join(QLatin1Char(','));
    return (words << fx_ShellWord(file)).join(QLatin1Char(' '));
}

/// Makes a file that says it all.
QString fx_Remux(QString const& file)
{
    QFileInfo const info(file);
    bool const isHere = !file.contains(QLatin1Char('/'));
    QString const mp4 = info.completeBaseName() + QStringLiteral(".mp4");
    return QStringLiteral("minihost remux %1 %2")
        .arg(fx_ShellWord(file), fx_ShellWord(isHere ? mp4 : info.path() + QLatin1Char('/') + mp4));
}

} // namespace

QString fx_PlayerLines(CxRecordingReader const& recording, SxStreamKind const& kind)
{
    SxMisreading const misreading = fx_Misreading(recording, kind);
    if (!misreading.isAny())
        return QString();
    QStringList wrongs;
    if (misreading.isRateWrong)
        wrongs += QStringLiteral("too %1, at %2 pictures a second")
                      .arg(misreading.rate.perSecond() > kPlayersRate ? QStringLiteral("slow")
                                                                      : QStringLiteral("fast"))
                      .arg(kPlayersRate);
    if (misreading.areColoursWrong)
        wrongs += QStringLiteral("in wrong colours, full-range BT.601 being taken for limited-range %1")
                      .arg(misreading.isTakenForHd ? QStringLiteral("BT.709") : QStringLiteral("BT.601"));
    if (misreading.rotation != 0)
        wrongs += QStringLiteral("turned");
    QString const& file = recording.fileName();
    return QStringLiteral("\n  other players show it %1; right are")
               .arg(wrongs.join(QStringLiteral(",\n  and "))) +
           QStringLiteral("\n    %1").arg(fx_Remux(file)) +
           QStringLiteral("\n    %1").arg(fx_Mpv(misreading, file)) +
           QStringLiteral("\n    %1").arg(fx_Ffplay(misreading, file));
}

QJsonObject fx_PlayerJson(CxRecordingReader const& recording, SxStreamKind const& kind)
{
    SxMisreading const misreading = fx_Misreading(recording, kind);
    QString const& file = recording.fileName();
    return {
        {QStringLiteral("rateIsMisread"), misreading.isRateWrong},
        {QStringLiteral("fpsTheyAssume"), kind.rate.isKnown() ? kind.rate.perSecond() : kPlayersRate},
        {QStringLiteral("coloursAreMisread"), misreading.areColoursWrong},
        {QStringLiteral("matrixTheyAssume"),
         misreading.isTakenForHd ? QStringLiteral("bt709") : QStringLiteral("smpte170m")},
        {QStringLiteral("matrix"), QStringLiteral("smpte170m")},
        {QStringLiteral("range"), QStringLiteral("pc")},
        {QStringLiteral("rotation"), misreading.rotation},
        {QStringLiteral("remux"), fx_Remux(file)},
        {QStringLiteral("mpv"), fx_Mpv(misreading, file)},
        {QStringLiteral("ffplay"), fx_Ffplay(misreading, file)},
    };
}

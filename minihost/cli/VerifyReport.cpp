#include "VerifyReport.h"

#include <QJsonArray>
#include <QStringList>

#include "Readable.h"

namespace {

/// Bytes at the file's end that belong to no frame.
qint64 fx_LooseBytes(SxFindings const& findings)
{
    bool const isWhole = findings.frames > 0 && findings.examined() == findings.frames;
    return isWhole ? findings.fileBytes - findings.endOfFrames : 0;
}

/// "frames 12-14 at byte 4711 (815 bytes)"
QString fx_Place(SxDamagedRange const& range)
{
    QString const frames = range.first == range.last
                               ? QStringLiteral("frame %1").arg(range.first)
                               : QStringLiteral("frames %1-%2").arg(range.first).arg(range.last);
    return QStringLiteral("%1 at byte %2 (%3 bytes)").arg(frames).arg(range.offset).arg(range.size);
}

QString fx_DamageText(SxFindings const& findings)
{
    QVector<SxDamagedRange> const& damage = findings.damage;
    if (damage.size() == 1)
        return QStringLiteral("%1 cannot be decoded: %2.").arg(fx_Place(damage[0]), damage[0].cause);
    QString text = QStringLiteral("%1 of %2 cannot be decoded, in %3 places:")
                       .arg(findings.failed)
                       .arg(fx_Count(findings.frames, "frame"))
                       .arg(damage.size());
    for (SxDamagedRange const& range : damage)
        text += QStringLiteral("\n  %1: %2.").arg(fx_Place(range), range.cause);
    return text;
}

/// "2 pictures", "about 15 pictures, 3 key frames among them,"
QString fx_HowManyVanished(SxFindings const& findings)
{
    int keyFrames = 0;
    for (SxVanishedPictures const& place : findings.vanished)
        keyFrames += place.keyFrames;
    QString const pictures = fx_Count(findings.vanishedForCertain(), "picture");
    return keyFrames == 0
               ? pictures
               : QStringLiteral("about %1, %2 among them,").arg(pictures, fx_Count(keyFrames, "key frame"));
}

/// "2 pictures vanished, the first before frame 12: ..."; empty when none did for certain.
QString fx_VanishedText(SxFindings const& findings)
{
    for (SxVanishedPictures const& place : findings.vanished) {
        if (place.isCertain)
            return QStringLiteral(
                       "%1 vanished, the first before frame %2; numbers are too small from there on.")
                .arg(fx_HowManyVanished(findings))
                .arg(place.beforeFrame);
    }
    return QString();
}

QJsonObject fx_VanishedJson(SxVanishedPictures const& place)
{
    return {{QStringLiteral("beforeFrame"), place.beforeFrame},
            {QStringLiteral("pictures"), place.pictures},
            {QStringLiteral("keyFrames"), place.keyFrames},
            {QStringLiteral("certain"), place.isCertain}};
}

QJsonObject fx_RangeJson(SxDamagedRange const& range)
{
    return {{QStringLiteral("frame"), range.first},
            {QStringLiteral("lastFrame"), range.last},
            {QStringLiteral("offset"), range.offset},
            {QStringLiteral("size"), range.size},
            {QStringLiteral("cause"), range.cause}};
}

} // namespace

QString fx_Complaint(SxFindings const& findings)
{
    if (!findings.refusal.isEmpty())
        return findings.refusal;
    QString const file = findings.file + QStringLiteral(": ");
    QString const vanished = fx_VanishedText(findings);
    if (!findings.damage.isEmpty()) {
        QStringList lines{file + fx_DamageText(findings)};
        if (!vanished.isEmpty())
            lines += QStringLiteral("  ") + vanished;
        if (findings.wasStopped)
            lines += QStringLiteral("  Stopped after %1 of %2 frames.")
                         .arg(findings.examined())
                         .arg(findings.frames);
        return lines.join(QLatin1Char('\n'));
    }
    if (!vanished.isEmpty() && !findings.wasStopped)
        return file + vanished;
    if (findings.wasStopped && findings.frames == 0)
        return file + QStringLiteral("stopped before it was open.");
    if (findings.wasStopped)
        return file + QStringLiteral("stopped after %1 of %2 frames, which all decode.")
                          .arg(findings.decoded)
                          .arg(findings.frames);
    qint64 const loose = fx_LooseBytes(findings);
    if (loose > 0)
        return file + QStringLiteral("the last %1 bytes, from byte %2 on, belong to no frame; the file seems "
                                     "cut off.")
                          .arg(loose)
                          .arg(findings.endOfFrames);
    return QString();
}

QString fx_Caution(SxFindings const& findings)
{
    int pictures = 0;
    int before = 0;
    for (SxVanishedPictures const& place : findings.vanished) {
        if (place.isCertain)
            continue;
        before = pictures == 0 ? place.beforeFrame : before;
        pictures += place.pictures;
    }
    if (pictures == 0)
        return QString();
    return QStringLiteral(
               "%1 may be missing, the first before frame %2: the group of pictures there is shorter than "
               "others, as also where the scene changes.")
        .arg(fx_Count(pictures, "picture"))
        .arg(before);
}

QString fx_Praise(SxFindings const& findings)
{
    QString const decoded = findings.decoded == 1
                                ? QStringLiteral("its one frame decodes")
                                : QStringLiteral("all %1 frames decode").arg(findings.decoded);
    return findings.file + QStringLiteral(": %1, plays %2 s at %3.")
                               .arg(decoded)
                               .arg(findings.decoded / findings.rate.orAssumed(), 0, 'f', 1)
                               .arg(findings.rate.described());
}

QJsonObject fx_FindingsJson(SxFindings const& findings)
{
    QString const complaint = fx_Complaint(findings);
    QJsonValue const error = complaint.isEmpty() ? QJsonValue() : QJsonValue(complaint);
    if (findings.frames == 0)
        return {{QStringLiteral("file"), findings.file}, {QStringLiteral("error"), error}};
    QJsonArray damage;
    for (SxDamagedRange const& range : findings.damage)
        damage.append(fx_RangeJson(range));
    QJsonArray vanished;
    for (SxVanishedPictures const& place : findings.vanished)
        vanished.append(fx_VanishedJson(place));
    QJsonArray warnings;
    QString const caution = fx_Caution(findings);
    if (!caution.isEmpty())
        warnings.append(caution);
    return {
        {QStringLiteral("file"), findings.file},
        {QStringLiteral("frames"), findings.frames},
        {QStringLiteral("decoded"), findings.decoded},
        {QStringLiteral("failed"), damage.isEmpty() ? QJsonValue() : damage.first()},
        {QStringLiteral("damage"), damage},
        {QStringLiteral("vanished"), vanished},
        {QStringLiteral("looseBytes"), fx_LooseBytes(findings)},
        {QStringLiteral("stopped"), findings.wasStopped},
        {QStringLiteral("warnings"), warnings},
        {QStringLiteral("error"), error},
    };
}

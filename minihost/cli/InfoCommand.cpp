#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <algorithm>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "PictureRate.h"
#include "PlayCommand.h"
#include "PlayerAdvice.h"
#include "Readable.h"
#include "StreamKind.h"
#include "UnfinishedRecording.h"

namespace {

constexpr int kMostRanges = 8; // of picture numbers in a line

/// What `info` tells of a recording.
struct SxRecordingInfo
{
    SxStreamKind kind;
    int smallestSpacing = 0; ///< frames from one key frame to the next; 0 when there are no two
    int largestSpacing = 0;
    int largest = 0; ///< frame numbers
    int smallest = 0;
    double seconds = 0;
    double meanBitRate = 0;
};

QVector<SxOption> fx_Options()
{
    QVector<SxOption> const own{
        {"frames", 0, nullptr, QStringLiteral("number, offset and size of every frame; which are keys")}};
    return own + fx_RunOptions(QStringLiteral("as JSON"));
}

QString fx_Help()
{
    return QStringLiteral("Tells what a raw H.264 recording holds.\n"
                          "\n"
                          "  minihost info test.h264            size, frames, duration, bit rate\n"
                          "  minihost info --frames test.h264   also a line for every frame\n"
                          "  minihost info --json test.h264     the same for a program\n"
                          "\n"
                          "Usage: minihost info [options] FILE\n"
                          "\n") +
           fx_OptionsHelp(fx_Options()) +
           QStringLiteral("\n"
                          "A raw stream carries no frame rate: durations and bit rates assume %1 pictures a\n"
                          "second, unless FILE.json, which record writes, notes the source's.\n")
               .arg(kPicturesASecond) +
           fx_ExitCodesHelp({kDone, kFailed, kWrongUsage, kBadInput, kOutputFailed});
}

void fx_ReadIndex(CxRecordingReader const& recording, SxRecordingInfo& info)
{
    QList<int> const& keys = recording.keyFrames();
    for (int i = 1; i < keys.size(); ++i) {
        int const spacing = keys[i] - keys[i - 1];
        info.smallestSpacing = i == 1 ? spacing : std::min(info.smallestSpacing, spacing);
        info.largestSpacing = std::max(info.largestSpacing, spacing);
    }
    auto const& frames = recording.frames();
    auto const [smallest, largest] =
        std::minmax_element(frames.begin(), frames.end(),
                            [](SxCodedFrame const& a, SxCodedFrame const& b) { return a.size < b.size; });
    info.smallest = static_cast<int>(smallest - frames.begin());
    info.largest = static_cast<int>(largest - frames.begin());
    info.seconds = recording.frameCount() / recording.fps();
    info.meanBitRate = static_cast<double>(recording.fileBytes()) * 8 / info.seconds;
}

QString fx_SpacingText(SxRecordingInfo const& info)
{
    if (info.largestSpacing == 0)
        return QString();
    if (info.smallestSpacing == info.largestSpacing)
        return info.largestSpacing == 1 ? QStringLiteral(", every frame")
                                        : QStringLiteral(", one every %1").arg(info.largestSpacing);
    return QStringLiteral(", one every %1 to %2").arg(info.smallestSpacing).arg(info.largestSpacing);
}

QString fx_FrameSizeText(CxRecordingReader const& recording, int frame)
{
    auto const size = static_cast<qint64>(recording.frames()[static_cast<size_t>(frame)].size);
    return QStringLiteral("frame %1 (%2)").arg(frame).arg(fx_ReadableSize(size));
}

/// " baseline, level 5.2"; empty when the stream does not say.
QString fx_ProfileText(SxStreamKind const& kind)
{
    return kind.profile.isEmpty() ? QString() : QStringLiteral(" %1, level %2").arg(kind.profile, kind.level);
}

QString fx_PictureSizeText(SxStreamKind const& kind)
{
    return kind.width == 0 ? QStringLiteral("picture size unknown")
                           : QStringLiteral("%1 x %2").arg(kind.width).arg(kind.height);
}

/// What is known beyond the stream; a newline before each line.
QString fx_SidecarLines(std::optional<SxSidecar> const& sidecar)
{
    if (!sidecar)
        return QString();
    QString lines;
    if (!sidecar->source.isEmpty()) // somebody may only have noted its rate
        lines = QStringLiteral("\n  recorded from %1 by %2").arg(sidecar->source, sidecar->program);
    if (sidecar->rotation != 0)
        lines += QStringLiteral("\n  to be turned by %1 degrees clockwise").arg(sidecar->rotation);
    if (sidecar->skippedCount > 0)
        lines += QStringLiteral("\n  %1 of the source's %2 skipped")
                     .arg(sidecar->skippedCount)
                     .arg(fx_Count(sidecar->pictures, "picture"));
    if (!sidecar->skipped.isEmpty())
        lines += QStringLiteral(": ") + fx_RangesText(sidecar->skipped, kMostRanges);
    if (sidecar->lostCount > 0)
        lines += QStringLiteral("\n  %1 lost before the encoder: %2")
                     .arg(sidecar->lostCount)
                     .arg(fx_RangesText(sidecar->lost, kMostRanges));
    return lines;
}

QString fx_Text(CxRecordingReader const& recording, SxRecordingInfo const& info)
{
    return QStringList{
               QStringLiteral("%1: H.264%2, %3")
                   .arg(recording.fileName(), fx_ProfileText(info.kind), fx_PictureSizeText(info.kind)),
               QStringLiteral("  %1, %2%3")
                   .arg(fx_Count(recording.frameCount(), "frame"),
                        fx_Count(recording.keyFrames().size(), "key frame"), fx_SpacingText(info)),
               QStringLiteral("  plays %1 s at %2")
                   .arg(info.seconds, 0, 'f', 1)
                   .arg(recording.rate().described()),
               QStringLiteral("  %1, %2 on average")
                   .arg(fx_ReadableSize(recording.fileBytes()), fx_ReadableBitRate(info.meanBitRate)),
               QStringLiteral("  largest: %1, smallest: %2")
                   .arg(fx_FrameSizeText(recording, info.largest),
                        fx_FrameSizeText(recording, info.smallest)),
           }
               .join(QLatin1Char('\n')) +
           fx_SidecarLines(recording.sidecar().sidecar) + fx_PlayerLines(recording, info.kind);
}

/// Of a file that is only on the way to a container; a newline before it.
QString fx_UnfinishedLine(QString const& fileName)
{
    QString const container = fx_ContainerOf(fileName);
    if (container.isEmpty())
        return QString();
    return fx_IsBeingRecorded(fileName)
               ? QStringLiteral("\n  a recording to %1 that goes on").arg(container)
               : QStringLiteral("\n  a recording to %1 that was not finished; '%2' finishes it")
                     .arg(container, fx_CommandToFinish(fileName));
}

QString fx_FrameLines(CxRecordingReader const& recording)
{
    QString lines = QStringLiteral("\n   frame        offset      size");
    int number = 0;
    for (SxCodedFrame const& frame : recording.frames())
        lines += QStringLiteral("\n%1  %2  %3%4")
                     .arg(number++, 8)
                     .arg(frame.offset, 12)
                     .arg(frame.size, 8)
                     .arg(frame.isKey ? QStringLiteral("  key") : QString());
    return lines;
}

QJsonObject fx_FrameJson(CxRecordingReader const& recording, int number)
{
    SxCodedFrame const& frame = recording.frames()[static_cast<size_t>(number)];
    return {{QStringLiteral("frame"), number},
            {QStringLiteral("offset"), frame.offset},
            {QStringLiteral("size"), static_cast<qint64>(frame.size)},
            {QStringLiteral("key"), frame.isKey}};
}

QJsonValue fx_OrNull(bool isKnown, QJsonValue const& value) { return isKnown ? value : QJsonValue(); }

/// What is told of every stream.
QJsonObject fx_KindJson(QString const& fileName, SxStreamKind const& kind)
{
    return {{QStringLiteral("file"), fileName},
            {QStringLiteral("recording"), !kind.isForeign},
            {QStringLiteral("codec"), kind.codecName()},
            {QStringLiteral("profile"), fx_OrNull(!kind.profile.isEmpty(), kind.profile)},
            {QStringLiteral("level"), fx_OrNull(!kind.level.isEmpty(), kind.level)},
            {QStringLiteral("width"), fx_OrNull(kind.width != 0, kind.width)},
            {QStringLiteral("height"), fx_OrNull(kind.height != 0, kind.height)}};
}

QJsonValue fx_SidecarJson(std::optional<SxSidecar> const& sidecar)
{
    if (!sidecar)
        return QJsonValue();
    return QJsonObject{
        {QStringLiteral("rate"), fx_OrNull(sidecar->rate.isKnown(), sidecar->rate.exact())},
        {QStringLiteral("rateIsAverage"), sidecar->rate.isAverage},
        {QStringLiteral("rotation"), sidecar->rotation},
        {QStringLiteral("source"), sidecar->source},
        {QStringLiteral("options"), sidecar->options},
        {QStringLiteral("pictures"), sidecar->pictures},
        {QStringLiteral("skippedCount"), sidecar->skippedCount},
        {QStringLiteral("skipped"), fx_RangesText(sidecar->skipped, 0)},
        {QStringLiteral("lostCount"), sidecar->lostCount},
        {QStringLiteral("lost"), fx_RangesText(sidecar->lost, 0)},
        {QStringLiteral("program"), sidecar->program},
    };
}

QJsonObject fx_Json(CxRecordingReader const& recording, SxRecordingInfo const& info, bool withFrames)
{
    QJsonObject json = fx_KindJson(recording.fileName(), info.kind);
    QJsonObject const own{
        {QStringLiteral("frames"), recording.frameCount()},
        {QStringLiteral("keyFrames"), recording.keyFrames().size()},
        {QStringLiteral("smallestKeyFrameSpacing"),
         fx_OrNull(info.smallestSpacing != 0, info.smallestSpacing)},
        {QStringLiteral("largestKeyFrameSpacing"), fx_OrNull(info.largestSpacing != 0, info.largestSpacing)},
        {QStringLiteral("fps"), recording.fps()},
        {QStringLiteral("fpsIsAssumed"), !recording.rate().isKnown()},
        {QStringLiteral("otherPlayers"), fx_PlayerJson(recording, info.kind)},
        {QStringLiteral("sidecar"), fx_SidecarJson(recording.sidecar().sidecar)},
        {QStringLiteral("seconds"), info.seconds},
        {QStringLiteral("bytes"), recording.fileBytes()},
        {QStringLiteral("meanBitRate"), info.meanBitRate},
        {QStringLiteral("largestFrame"), fx_FrameJson(recording, info.largest)},
        {QStringLiteral("smallestFrame"), fx_FrameJson(recording, info.smallest)},
    };
    for (auto it = own.begin(); it != own.end(); ++it)
        json[it.key()] = it.value();
    if (withFrames) {
        QJsonArray frames;
        for (int number = 0; number < recording.frameCount(); ++number)
            frames.append(fx_FrameJson(recording, number));
        json[QStringLiteral("frameList")] = frames;
    }
    return json;
}

int fx_Tell(CxRecordingReader& recording, SxStreamKind const& kind, bool asJson, bool withFrames)
{
    SxRecordingInfo info;
    info.kind = kind;
    fx_ReadIndex(recording, info);
    if (asJson)
        Console::data(QJsonDocument(fx_Json(recording, info, withFrames)));
    else
        Console::data(fx_Text(recording, info) + fx_UnfinishedLine(recording.fileName()) +
                      (withFrames ? fx_FrameLines(recording) : QString()));
    return kDone;
}

/// Tells of a stream that is no recording, which the plug-in need not open.
int fx_TellForeign(QString const& fileName, SxStreamKind const& kind, bool asJson)
{
    qint64 const pictures = fx_CountPictures(fileName, kind.codec);
    qint64 const bytes = QFileInfo(fileName).size();
    QString const command = fx_CommandToRecord(fileName);
    if (asJson) {
        QJsonObject json = fx_KindJson(fileName, kind);
        json[QStringLiteral("features")] = QJsonArray::fromStringList(kind.features);
        json[QStringLiteral("pictures")] = pictures;
        json[QStringLiteral("bytes")] = bytes;
        json[QStringLiteral("toRecord")] = command;
        Console::data(QJsonDocument(json));
        return kDone;
    }
    Console::data(QStringList{
        QStringLiteral("%1: %2%3, %4")
            .arg(fileName, kind.codecName(), fx_ProfileText(kind), fx_PictureSizeText(kind)),
        QStringLiteral("  %1, %2").arg(fx_Count(pictures, "picture"), fx_ReadableSize(bytes)),
        QStringLiteral("  no recording but %1, whose pictures cannot be had by their numbers")
            .arg(fx_ForeignStreamText(kind)),
        QStringLiteral("  %1 makes a recording of it").arg(command),
    }
                      .join(QLatin1Char('\n')));
    return kDone;
}

} // namespace

int fx_RunInfo(QStringList const& arguments)
{
    QCommandLineParser parser;
    fx_AddOptions(parser, fx_Options());
    SxPlayArguments parsed;
    QString error;
    if (!fx_ParsePlayArguments(parser, arguments, parsed, error))
        return fx_WrongUsage(QStringLiteral("info"), error);
    if (parsed.run.help) {
        Console::data(fx_Help());
        return kDone;
    }
    QString const unfinished = fx_UnfinishedText(parsed.file());
    if (!unfinished.isEmpty() && !QFileInfo::exists(parsed.file()))
        return fx_Failed(unfinished, kBadInput);
    SxStreamKind const kind = fx_StreamKindOf(parsed.file());
    if (kind.isForeign)
        return fx_TellForeign(parsed.file(), kind, parsed.run.json);
    return fx_RunOnRecording(parsed, [&](CxRecordingReader& recording) {
        return fx_Tell(recording, kind, parsed.run.json, parser.isSet(QStringLiteral("frames")));
    });
}

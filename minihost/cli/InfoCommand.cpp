#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "PictureRate.h"
#include "PlayCommand.h"
#include "ProfileAndLevel.h"
#include "Readable.h"

namespace {

/// What `info` tells of a recording.
struct SxRecordingInfo
{
    QString profile; ///< empty when the stream does not say
    QString level;
    quint32 width = 0; ///< 0 when no picture could be decoded
    quint32 height = 0;
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
                          "second.\n")
               .arg(kPicturesASecond) +
           fx_ExitCodesHelp({kDone, kFailed, kWrongUsage, kBadInput, kOutputFailed});
}

void fx_ReadProfile(CxRecordingReader& recording, SxRecordingInfo& info)
{
    QByteArray const bytes =
        recording.keyFrames().isEmpty() ? QByteArray() : recording.codedFrame(recording.keyFrames().first());
    SxProfileAndLevel const named = fx_ProfileAndLevel(bytes);
    info.profile = named.profile;
    info.level = named.level;
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
    info.seconds = recording.frameCount() / recording.assumedFps();
    info.meanBitRate = static_cast<double>(recording.fileBytes()) * 8 / info.seconds;
}

SxRecordingInfo fx_Collect(CxRecordingReader& recording)
{
    SxRecordingInfo info;
    fx_ReadProfile(recording, info);
    fx_ReadIndex(recording, info);
    // Only a decoded picture tells its size through the host's interfaces.
    int const first = recording.keyFrames().value(0, 0);
    QString cause;
    if (std::unique_ptr<CxImageData> const image = recording.picture(first, cause)) {
        info.width = image->picBuf()->width;
        info.height = image->picBuf()->height;
    } else {
        Console::warning(recording.fileName() +
                         QStringLiteral(": frame %1 cannot be decoded: %2.").arg(first).arg(cause));
    }
    return info;
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

QString fx_Text(CxRecordingReader const& recording, SxRecordingInfo const& info)
{
    QString first = QStringLiteral("%1: H.264").arg(recording.fileName());
    if (!info.profile.isEmpty())
        first += QStringLiteral(" %1, level %2").arg(info.profile, info.level);
    first += info.width == 0 ? QStringLiteral(", picture size unknown")
                             : QStringLiteral(", %1 x %2").arg(info.width).arg(info.height);
    return QStringList{
        first,
        QStringLiteral("  %1, %2%3")
            .arg(fx_Count(recording.frameCount(), "frame"),
                 fx_Count(recording.keyFrames().size(), "key frame"), fx_SpacingText(info)),
        QStringLiteral("  plays %1 s at %2 pictures a second (assumed)")
            .arg(info.seconds, 0, 'f', 1)
            .arg(recording.assumedFps()),
        QStringLiteral("  %1, %2 on average")
            .arg(fx_ReadableSize(recording.fileBytes()), fx_ReadableBitRate(info.meanBitRate)),
        QStringLiteral("  largest: %1, smallest: %2")
            .arg(fx_FrameSizeText(recording, info.largest), fx_FrameSizeText(recording, info.smallest)),
    }
        .join(QLatin1Char('\n'));
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

QString fx_Json(CxRecordingReader const& recording, SxRecordingInfo const& info, bool withFrames)
{
    auto const orNull = [](bool isKnown, QJsonValue const& value) { return isKnown ? value : QJsonValue(); };
    QJsonObject json{
        {QStringLiteral("file"), recording.fileName()},
        {QStringLiteral("codec"), QStringLiteral("H.264")},
        {QStringLiteral("profile"), orNull(!info.profile.isEmpty(), info.profile)},
        {QStringLiteral("level"), orNull(!info.level.isEmpty(), info.level)},
        {QStringLiteral("width"), orNull(info.width != 0, static_cast<int>(info.width))},
        {QStringLiteral("height"), orNull(info.height != 0, static_cast<int>(info.height))},
        {QStringLiteral("frames"), recording.frameCount()},
        {QStringLiteral("keyFrames"), recording.keyFrames().size()},
        {QStringLiteral("smallestKeyFrameSpacing"), orNull(info.smallestSpacing != 0, info.smallestSpacing)},
        {QStringLiteral("largestKeyFrameSpacing"), orNull(info.largestSpacing != 0, info.largestSpacing)},
        {QStringLiteral("fps"), recording.assumedFps()},
        {QStringLiteral("fpsIsAssumed"), true},
        {QStringLiteral("seconds"), info.seconds},
        {QStringLiteral("bytes"), recording.fileBytes()},
        {QStringLiteral("meanBitRate"), info.meanBitRate},
        {QStringLiteral("largestFrame"), fx_FrameJson(recording, info.largest)},
        {QStringLiteral("smallestFrame"), fx_FrameJson(recording, info.smallest)},
    };
    if (withFrames) {
        QJsonArray frames;
        for (int number = 0; number < recording.frameCount(); ++number)
            frames.append(fx_FrameJson(recording, number));
        json[QStringLiteral("frameList")] = frames;
    }
    return QString::fromUtf8(QJsonDocument(json).toJson(QJsonDocument::Indented)).trimmed();
}

int fx_Tell(CxRecordingReader& recording, bool asJson, bool withFrames)
{
    SxRecordingInfo const info = fx_Collect(recording);
    if (asJson)
        Console::data(fx_Json(recording, info, withFrames));
    else
        Console::data(fx_Text(recording, info) + (withFrames ? fx_FrameLines(recording) : QString()));
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
    return fx_RunOnRecording(parsed, [&](CxRecordingReader& recording) {
        return fx_Tell(recording, parsed.run.json, parser.isSet(QStringLiteral("frames")));
    });
}

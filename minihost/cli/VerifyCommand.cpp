#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "Interrupt.h"
#include "PlayCommand.h"
#include "ProgressLine.h"
#include "Readable.h"

namespace {

/// What `verify` found.
struct SxFindings
{
    int decoded = 0;
    int failedFrame = -1;
    QString cause;         ///< half a sentence; empty when no frame failed
    int crowdedFrames = 0; ///< frames that hold more than one picture
    int picturesInThem = 0;
    bool wasStopped = false;
};

QVector<SxOption> fx_Options()
{
    return fx_RunOptions(QStringLiteral("what was found as JSON on standard output"));
}

QString fx_Help()
{
    return QStringLiteral(
               "Decodes a raw H.264 recording from front to back and reports the first frame that\n"
               "fails.\n"
               "\n"
               "  minihost verify test.h264\n"
               "  for f in *.h264; do minihost verify -q \"$f\"; done   only what is wrong\n"
               "\n"
               "Usage: minihost verify [options] FILE\n"
               "\n") +
           fx_OptionsHelp(fx_Options()) + QLatin1Char('\n') +
           fx_ExitCodesHelp({kDone, kFailed, kWrongUsage, kBadInput, kOutputFailed, kInterrupted});
}

/// Pictures that begin in these coded bytes: slices (nal_unit_type 1 and 5) with first_mb_in_slice 0,
/// which is coded as a single one bit (ITU-T H.264, 7.3.3).
int fx_PicturesIn(QByteArray const& bytes)
{
    QByteArray const startCode("\0\0\1", 3);
    int pictures = 0;
    for (auto at = bytes.indexOf(startCode); at >= 0 && at + 4 < bytes.size();
         at = bytes.indexOf(startCode, at + 3)) {
        int const nal_unit_type = bytes[at + 3] & 0x1F;
        bool const isSlice = nal_unit_type == 1 || nal_unit_type == 5;
        if (isSlice && (static_cast<uchar>(bytes[at + 4]) & 0x80) != 0)
            ++pictures;
    }
    return pictures;
}

SxFindings fx_Examine(CxRecordingReader& recording)
{
    std::atomic<bool> const& stop = fx_CatchInterrupts();
    CxProgressLine line(recording.frameCount());
    SxFindings found;
    std::unique_ptr<CxImageData> picture;
    for (int frame = 0; frame < recording.frameCount(); ++frame) {
        found.wasStopped = stop.load();
        if (found.wasStopped)
            break;
        std::unique_ptr<CxImageData> next = recording.picture(frame, found.cause);
        if (!next) {
            found.failedFrame = frame;
            break;
        }
        picture = std::move(next); // the one before lived until now: its memory is reused
        ++found.decoded;
        int const pictures = fx_PicturesIn(recording.codedFrame(frame));
        if (pictures > 1) {
            ++found.crowdedFrames;
            found.picturesInThem += pictures;
        }
        line.update(found.decoded, -1, QString());
    }
    Console::transient(QString());
    return found;
}

/// Bytes at the file's end that belong to no frame.
qint64 fx_LooseBytes(CxRecordingReader const& recording)
{
    SxCodedFrame const& last = recording.frames().back();
    return recording.fileBytes() - last.offset - static_cast<qint64>(last.size);
}

/// What is wrong, one sentence; empty when nothing is.
QString fx_Complaint(CxRecordingReader const& recording, SxFindings const& found)
{
    QString const file = recording.fileName() + QStringLiteral(": ");
    if (found.failedFrame >= 0) {
        SxCodedFrame const& frame = recording.frames()[static_cast<size_t>(found.failedFrame)];
        return file + QStringLiteral("frame %1 at byte %2 (%3 bytes) cannot be decoded: %4.")
                          .arg(found.failedFrame)
                          .arg(frame.offset)
                          .arg(frame.size)
                          .arg(found.cause);
    }
    if (found.wasStopped)
        return file + QStringLiteral("stopped after %1 of %2 frames, which all decode.")
                          .arg(found.decoded)
                          .arg(recording.frameCount());
    qint64 const loose = fx_LooseBytes(recording);
    if (loose > 0)
        return file + QStringLiteral("the last %1 bytes, from byte %2 on, belong to no frame; the file seems "
                                     "cut off.")
                          .arg(loose)
                          .arg(recording.fileBytes() - loose);
    return QString();
}

/// What a plain decode would not notice, one sentence; empty when there is nothing.
QString fx_Caution(SxFindings const& found)
{
    if (found.crowdedFrames == 0)
        return QString();
    return QStringLiteral("%1 hold %2 pictures, of which only the first in each can be shown; the recording "
                          "was made by another encoder.")
        .arg(fx_Count(found.crowdedFrames, "frame"))
        .arg(found.picturesInThem);
}

QString fx_Json(CxRecordingReader const& recording, SxFindings const& found, QString const& complaint,
                QString const& caution)
{
    QJsonValue failed;
    if (found.failedFrame >= 0) {
        SxCodedFrame const& frame = recording.frames()[static_cast<size_t>(found.failedFrame)];
        failed = QJsonObject{{QStringLiteral("frame"), found.failedFrame},
                             {QStringLiteral("offset"), frame.offset},
                             {QStringLiteral("size"), static_cast<qint64>(frame.size)},
                             {QStringLiteral("cause"), found.cause}};
    }
    QJsonArray warnings;
    if (!caution.isEmpty())
        warnings.append(caution);
    QJsonObject const json{
        {QStringLiteral("file"), recording.fileName()},
        {QStringLiteral("frames"), recording.frameCount()},
        {QStringLiteral("decoded"), found.decoded},
        {QStringLiteral("failed"), failed},
        {QStringLiteral("looseBytes"), fx_LooseBytes(recording)},
        {QStringLiteral("stopped"), found.wasStopped},
        {QStringLiteral("warnings"), warnings},
        {QStringLiteral("error"), complaint.isEmpty() ? QJsonValue() : QJsonValue(complaint)},
    };
    return QString::fromUtf8(QJsonDocument(json).toJson(QJsonDocument::Indented)).trimmed();
}

int fx_Verify(CxRecordingReader& recording, bool asJson)
{
    SxFindings const found = fx_Examine(recording);
    QString const complaint = fx_Complaint(recording, found);
    QString const caution = fx_Caution(found);
    if (asJson)
        Console::data(fx_Json(recording, found, complaint, caution));
    if (!caution.isEmpty())
        Console::warning(QStringLiteral("%1: %2").arg(recording.fileName(), caution));
    if (found.failedFrame < 0 && found.wasStopped)
        return fx_Interrupted(complaint);
    if (!complaint.isEmpty())
        return fx_Failed(complaint, kBadInput);
    QString const decoded = found.decoded == 1 ? QStringLiteral("its one frame decodes")
                                               : QStringLiteral("all %1 frames decode").arg(found.decoded);
    Console::message(recording.fileName() +
                     QStringLiteral(": %1, plays %2 s at %3 pictures a second (assumed).")
                         .arg(decoded)
                         .arg(found.decoded / recording.assumedFps(), 0, 'f', 1)
                         .arg(recording.assumedFps()));
    return kDone;
}

} // namespace

int fx_RunVerify(QStringList const& arguments)
{
    QCommandLineParser parser;
    fx_AddOptions(parser, fx_Options());
    SxPlayArguments parsed;
    QString error;
    if (!fx_ParsePlayArguments(parser, arguments, parsed, error))
        return fx_WrongUsage(QStringLiteral("verify"), error);
    if (parsed.run.help) {
        Console::data(fx_Help());
        return kDone;
    }
    return fx_RunOnRecording(
        parsed, [&](CxRecordingReader& recording) { return fx_Verify(recording, parsed.run.json); });
}

#include <QJsonDocument>
#include <QJsonObject>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "ExportArguments.h"
#include "ExportSink.h"
#include "Interrupt.h"
#include "NumberedFileName.h"
#include "ProgressLine.h"
#include "Readable.h"

namespace {

enum class Outcome { Done, ReaderGone, Interrupted, BadInput, OutputFailed };

Outcome fx_OutcomeOf(IxExportSink::Result result)
{
    switch (result) {
    case IxExportSink::Result::Taken:
        return Outcome::Done;
    case IxExportSink::Result::ReaderGone:
        return Outcome::ReaderGone;
    case IxExportSink::Result::Error:
        break;
    }
    return Outcome::OutputFailed;
}

/// Decodes the frames in their order and gives each to the sink; \p error one sentence when that fails.
Outcome fx_Feed(CxRecordingReader& recording, QVector<int> const& frames, IxExportSink& sink,
                SxExportRequest const& request, QString& error)
{
    // Hashes are lines, which share a terminal with the progress line.
    bool const prints = request.kind == SxExportRequest::Kind::Hashes;
    bool const isOneFile =
        request.kind == SxExportRequest::Kind::Sheet ||
        (request.kind == SxExportRequest::Kind::Stream && request.output != QLatin1String("-"));
    std::atomic<bool> const& stop = fx_CatchInterrupts();
    CxProgressLine line(static_cast<int>(frames.size()));
    std::unique_ptr<CxImageData> picture;
    int done = 0;
    for (int const frame : frames) {
        if (stop.load()) {
            error = recording.fileName() +
                    QStringLiteral(": stopped after %1 of %2 pictures.").arg(done).arg(frames.size());
            if (isOneFile)
                error += QStringLiteral(" Nothing was written.");
            return Outcome::Interrupted;
        }
        QString cause;
        std::unique_ptr<CxImageData> next = recording.picture(frame, cause);
        if (!next) {
            error = recording.fileName() +
                    QStringLiteral(": frame %1 cannot be decoded: %2.").arg(frame).arg(cause);
            return Outcome::BadInput;
        }
        picture = std::move(next); // the one before lived until now: its memory is reused
        if (prints)
            Console::transient(QString());
        Outcome const outcome = fx_OutcomeOf(sink.take(frame, *picture->picBuf(), error));
        if (outcome != Outcome::Done)
            return outcome;
        line.update(++done, -1, QString());
    }
    return fx_OutcomeOf(sink.finish(error));
}

QString fx_Summary(SxExportRequest::Kind kind, SxExported const& exported)
{
    QString const form = kind == SxExportRequest::Kind::Sheet ? QStringLiteral("%1: a sheet of %2, %3 x %4.")
                                                              : QStringLiteral("%1: %2 of %3 x %4 written.");
    return form.arg(exported.target, fx_Count(exported.pictures, "picture"))
        .arg(exported.size.width())
        .arg(exported.size.height());
}

QString fx_Json(SxExportArguments const& arguments, IxExportSink const& sink, QString const& error)
{
    QJsonObject const json{
        {QStringLiteral("file"), arguments.common.file},
        {QStringLiteral("exported"), sink.exportedJson()},
        {QStringLiteral("error"), error.isEmpty() ? QJsonValue() : QJsonValue(error)},
    };
    return QString::fromUtf8(QJsonDocument(json).toJson(QJsonDocument::Indented)).trimmed();
}

int fx_Export(CxRecordingReader& recording, SxExportArguments const& arguments)
{
    QString error;
    std::optional<QVector<int>> const frames =
        arguments.frames->frames(recording.frameCount(), recording.keyFrames(), error);
    if (!frames || frames->isEmpty())
        return fx_Failed(
            QStringLiteral("%1: %2").arg(recording.fileName(),
                                         frames ? QStringLiteral("the recording has no key frames.") : error),
            kNoSuchFrame);
    if (arguments.request.kind == SxExportRequest::Kind::Files &&
        frames->count(frames->first()) != frames->size() && !fx_HasPlaceForNumber(arguments.request.output))
        return fx_WrongUsage(QStringLiteral("export"),
                             QStringLiteral("'%1' needs a place for the frame number, as in frame_%05d.png.")
                                 .arg(arguments.request.output));
    std::unique_ptr<IxExportSink> const sink = fx_MakeExportSink(arguments.request, *frames, error);
    if (!sink)
        return fx_Failed(error, kOutputFailed);

    Outcome const outcome = fx_Feed(recording, *frames, *sink, arguments.request, error);
    Console::transient(QString());
    if (outcome == Outcome::ReaderGone)
        return kDone; // "| head" has seen enough
    if (arguments.common.run.json)
        Console::data(fx_Json(arguments, *sink, error));
    if (outcome == Outcome::Interrupted)
        return fx_Interrupted(error);
    if (outcome != Outcome::Done)
        return fx_Failed(error, outcome == Outcome::BadInput ? kBadInput : kOutputFailed);
    if (!sink->exported().target.isEmpty())
        Console::message(fx_Summary(arguments.request.kind, sink->exported()));
    return kDone;
}

} // namespace

int fx_RunExport(QStringList const& arguments)
{
    SxExportArguments parsed;
    QString error;
    if (!fx_ParseExportArguments(arguments, parsed, error))
        return fx_WrongUsage(QStringLiteral("export"), error);
    if (parsed.common.run.help) {
        Console::data(fx_ExportHelp());
        return kDone;
    }
    return fx_RunOnRecording(parsed.common,
                             [&](CxRecordingReader& recording) { return fx_Export(recording, parsed); });
}

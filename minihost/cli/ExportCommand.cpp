#include <QJsonObject>
#include <algorithm>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "ExportArguments.h"
#include "ExportFeeder.h"
#include "ExportSink.h"
#include "Interrupt.h"
#include "NumberedFileName.h"
#include "PictureRanges.h"
#include "ProgressLine.h"
#include "Readable.h"

namespace {

QString fx_Summary(SxExportRequest::Kind kind, SxExported const& exported)
{
    QString const form = kind == SxExportRequest::Kind::Sheet ? QStringLiteral(": a sheet of %1, %2 x %3.")
                                                              : QStringLiteral(": %1 of %2 x %3 written.");
    return exported.target + form.arg(fx_Count(exported.pictures, "picture"))
                                 .arg(exported.size.width())
                                 .arg(exported.size.height());
}

/// What was exported, with the time at which the recording shows it.
QJsonArray fx_ExportedJson(CxRecordingReader const& recording, IxExportSink const& sink)
{
    QJsonArray timed;
    QJsonArray const exported = sink.exportedJson();
    for (int i = 0; i < exported.size(); ++i) {
        QJsonObject entry = exported.at(i).toObject();
        entry[QStringLiteral("seconds")] = entry.value(QStringLiteral("frame")).toInt() / recording.fps();
        timed.append(entry);
    }
    return timed;
}

QJsonObject fx_Json(CxRecordingReader const& recording, IxExportSink const& sink,
                    CxExportFeeder const& feeder)
{
    QJsonArray leftOut;
    for (int const frame : feeder.leftOut())
        leftOut.append(frame);
    QString const& error = feeder.error();
    return {
        {QStringLiteral("file"), recording.fileName()},
        {QStringLiteral("fps"), recording.fps()},
        {QStringLiteral("fpsIsAssumed"), !recording.rate().isKnown()},
        {QStringLiteral("exported"), fx_ExportedJson(recording, sink)},
        {QStringLiteral("leftOut"), leftOut},
        {QStringLiteral("error"), error.isEmpty() ? QJsonValue() : QJsonValue(error)},
    };
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
    SxExportRequest request = arguments.request;
    request.rate = recording.rate();
    std::unique_ptr<IxExportSink> const sink = fx_MakeExportSink(request, *frames, error);
    if (!sink)
        return fx_Failed(error, kOutputFailed);

    CxExportFeeder feeder(recording, arguments, *sink);
    ExportOutcome const outcome = feeder.feed(*frames);
    Console::transient(QString());
    if (outcome == ExportOutcome::ReaderGone)
        return kDone; // "| head" has seen enough
    if (arguments.common.run.json)
        Console::data(QJsonDocument(fx_Json(recording, *sink, feeder)));
    if (outcome == ExportOutcome::Interrupted)
        return fx_Interrupted(feeder.error());
    if (outcome != ExportOutcome::Done)
        return fx_Failed(feeder.error(), outcome == ExportOutcome::BadInput ? kBadInput : kOutputFailed);
    if (!sink->exported().target.isEmpty())
        Console::message(fx_Summary(arguments.request.kind, sink->exported()));
    if (feeder.leftOut().isEmpty())
        return kDone;
    Console::warning(feeder.leftOutText());
    return arguments.isStrict ? kNotWhole : kDone;
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

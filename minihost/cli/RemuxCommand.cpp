#include <QFileInfo>

#include "Commands.h"
#include "Console.h"
#include "ContainerWriter.h"
#include "ExitCode.h"
#include "ExportRequest.h"
#include "Interrupt.h"
#include "OutputFile.h"
#include "ProgressLine.h"
#include "RemuxArguments.h"
#include "RemuxReport.h"
#include "Sidecar.h"
#include "UnfinishedRecording.h"

namespace {

/// What stands in the way of writing the output, one sentence; empty when nothing does.
QString fx_OutputObstacle(SxRemuxArguments const& arguments)
{
    SxExportRequest request;
    request.recording = arguments.common.file();
    request.overwrite = arguments.overwrite;
    QString obstacle = fx_Obstacle(arguments.output, request);
    QString const& input = arguments.common.file();
    if (obstacle.isEmpty() && arguments.removesInput && fx_IsBeingRecorded(input))
        return QStringLiteral("%1: a recording is being written to it, so it cannot be removed.").arg(input);
    return obstacle.isEmpty() ? fx_ObstacleToIndex(arguments.output) : obstacle;
}

/// What the user says of the recording, or else what stands beside it or in it.
SxStreamDescription fx_DescriptionFor(CxRecordingReader const& recording, SxRemuxArguments const& arguments)
{
    SxStreamDescription description;
    description.takeRate(arguments.rate.value_or(recording.rate()));
    if (std::optional<SxSidecar> const& sidecar = recording.sidecar().sidecar) {
        description.rotation = sidecar->rotation;
        description.comment = fx_SkippedComment(sidecar->skipped, sidecar->skippedCount, sidecar->pictures);
    }
    return description;
}

/// Decides which frames are wanted; one sentence when they are no range of the recording.
QString fx_ChooseFrames(CxRecordingReader const& recording, SxRemuxArguments const& arguments,
                        SxRemuxRequest& request, ExitCode& code)
{
    request.first = 0;
    request.last = recording.frameCount() - 1;
    if (!arguments.frames)
        return QString();
    QString error;
    std::optional<QVector<int>> const frames =
        arguments.frames->frames(recording.frameCount(), recording.keyFrames(), error);
    code = kNoSuchFrame;
    if (!frames)
        return QStringLiteral("%1: %2").arg(recording.fileName(), error);
    code = kWrongUsage;
    for (int i = 0; i < frames->size(); ++i) {
        if (frames->at(i) != frames->at(0) + i)
            return QStringLiteral("--frames takes one range here, as 100-250 or 100-.");
    }
    request.first = frames->value(0);
    request.last = request.first + static_cast<int>(frames->size()) - 1;
    return QString();
}

/// With the output on the disk.
int fx_RemoveInput(SxRemuxArguments const& arguments, SxRemuxSummary const& summary, int code)
{
    QString const& input = arguments.common.file();
    QString error;
    if (summary.leftOutAtFront > 0 || !summary.damaged.isEmpty())
        Console::warning(QStringLiteral("%1: it stays, since it is damaged.").arg(input));
    else if (!summary.hasRotation &&
             fx_ContainerKindOf(arguments.output)) // a raw stream has it noted beside it
        Console::warning(
            QStringLiteral("%1: it stays, since %2 does not say how its pictures are to be turned.")
                .arg(input, arguments.output));
    else if (!fx_RemoveHandedOn(input, arguments.output, error))
        return fx_Failed(error);
    return code;
}

int fx_ExitCodeOf(SxRemuxSummary const& summary)
{
    switch (summary.failure) {
    case RemuxFailure::Input:
        return kBadInput;
    case RemuxFailure::Output:
        return kOutputFailed;
    case RemuxFailure::Interrupted:
    case RemuxFailure::None:
        break;
    }
    return summary.isInputDamaged() ? kBadInput : kDone; // what was good is written
}

/// A raw stream holds no rotation, and its loader reads no rate: they are noted beside it, as `record` does.
void fx_NoteBeside(CxRecordingReader const& recording, SxRemuxArguments const& arguments,
                   SxRemuxRequest const& request, SxRemuxSummary const& summary)
{
    QString error = fx_RotationWarning(request, summary);
    if (!fx_ContainerKindOf(request.output)) {
        std::optional<SxSidecar> const& found = recording.sidecar().sidecar;
        SxSidecar sidecar = found.value_or(SxSidecar());
        sidecar.rate = arguments.rate.value_or(sidecar.rate);
        if (!found)
            sidecar.program = QStringLiteral("minihost " MINIHOST_VERSION);
        if (!found || arguments.frames) { // whose numbers are others
            sidecar.pictures = summary.pictures;
            sidecar.skippedCount = 0;
            sidecar.skipped.clear();
        }
        error.clear();
        if (sidecar.rate.isKnown() || sidecar.rotation != 0 || sidecar.skippedCount > 0)
            fx_WriteSidecar(request.output, sidecar, error);
        else
            fx_RemoveSidecar(request.output);
    }
    if (!error.isEmpty())
        Console::warning(error);
}

int fx_Remux(CxRecordingReader& recording, SxRemuxArguments const& arguments)
{
    SxRemuxRequest request;
    request.output = arguments.output;
    request.stop = &fx_CatchInterrupts();
    request.description = fx_DescriptionFor(recording, arguments);
    ExitCode code = kDone;
    QString const error = fx_ChooseFrames(recording, arguments, request, code);
    if (!error.isEmpty())
        return code == kWrongUsage ? fx_WrongUsage(QStringLiteral("remux"), error) : fx_Failed(error, code);

    if (arguments.isExact) {
        SxCodingFailure failure;
        Console::transient(QStringLiteral("Coding the first frames anew..."));
        request.front = fx_CodeFrontAnew(recording, request.first, request.last, request.stop, failure);
        Console::transient(QString());
        if (failure.wasInterrupted)
            return fx_Interrupted(
                QStringLiteral("%1: interrupted; nothing was written.").arg(request.output));
        if (!failure.error.isEmpty())
            return fx_Failed(failure.error, failure.isInput ? kBadInput : kFailed);
    }
    CxProgressLine line(request.last - request.first + 1);
    SxRemuxSummary const summary = fx_Remux(recording, request, [&line](SxRemuxSummary const& soFar) {
        line.update(soFar.pictures, soFar.bytes, QString());
    });
    Console::transient(QString());
    if (summary.failure == RemuxFailure::None) {
        for (QString const& warning : fx_RemuxWarnings(recording.fileName(), summary))
            Console::warning(warning);
        fx_NoteBeside(recording, arguments, request, summary);
        if (summary.first < request.first)
            Console::message(request.output + QStringLiteral(": begins at frame %1, the key frame before %2.")
                                                  .arg(summary.first)
                                                  .arg(request.first));
        Console::message(fx_RemuxText(request, summary));
    }
    if (arguments.common.run.json)
        Console::data(QJsonDocument(fx_RemuxJson(recording.fileName(), request, summary)));
    if (summary.failure == RemuxFailure::Interrupted)
        return fx_Interrupted(summary.error);
    if (!summary.error.isEmpty())
        Console::error(summary.error);
    int const ended = fx_ExitCodeOf(summary);
    return arguments.removesInput && summary.failure == RemuxFailure::None
               ? fx_RemoveInput(arguments, summary, ended)
               : ended;
}

} // namespace

int fx_RunRemux(QStringList const& arguments)
{
    SxRemuxArguments parsed;
    QString error;
    if (!fx_ParseRemuxArguments(arguments, parsed, error))
        return fx_WrongUsage(QStringLiteral("remux"), error);
    if (parsed.common.run.help) {
        Console::data(fx_RemuxHelp());
        return kDone;
    }
    error = fx_OutputObstacle(parsed);
    if (!error.isEmpty())
        return fx_Failed(error, kOutputFailed);
    return fx_RunOnRecording(parsed.common,
                             [&](CxRecordingReader& recording) { return fx_Remux(recording, parsed); });
}

#include <QFileInfo>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "ExportRequest.h"
#include "Interrupt.h"
#include "OutputFile.h"
#include "ProgressLine.h"
#include "RemuxArguments.h"
#include "RemuxReport.h"

namespace {

/// What stands in the way of writing the output, one sentence; empty when nothing does.
QString fx_OutputObstacle(SxRemuxArguments const& arguments)
{
    SxExportRequest request;
    request.recording = arguments.common.file();
    request.overwrite = arguments.overwrite;
    QString const obstacle = fx_Obstacle(arguments.output, request);
    QFileInfo const output(arguments.output);
    if (obstacle.isEmpty() && output.exists() && !output.isFile())
        return QStringLiteral("%1: this is no regular file, and an index can be put into no other.")
            .arg(arguments.output);
    return obstacle;
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

int fx_Remux(CxRecordingReader& recording, SxRemuxArguments const& arguments)
{
    SxRemuxRequest request;
    request.output = arguments.output;
    request.stop = &fx_CatchInterrupts();
    if (arguments.rate)
        request.description.rate = fx_Rational(*arguments.rate);
    ExitCode code = kDone;
    QString const error = fx_ChooseFrames(recording, arguments, request, code);
    if (!error.isEmpty())
        return code == kWrongUsage ? fx_WrongUsage(QStringLiteral("remux"), error) : fx_Failed(error, code);

    CxProgressLine line(request.last - request.first + 1);
    SxRemuxSummary const summary = fx_Remux(recording, request, [&line](SxRemuxSummary const& soFar) {
        line.update(soFar.pictures, soFar.bytes, QString());
    });
    Console::transient(QString());
    if (summary.failure == RemuxFailure::None) {
        for (QString const& warning : fx_RemuxWarnings(recording.fileName(), summary))
            Console::warning(warning);
        if (summary.first < request.first)
            Console::message(QStringLiteral("%1: begins at frame %2, the key frame before %3.")
                                 .arg(request.output)
                                 .arg(summary.first)
                                 .arg(request.first));
        Console::message(fx_RemuxText(request, summary));
    }
    if (arguments.common.run.json)
        Console::data(fx_RemuxJson(recording.fileName(), request, summary));
    if (summary.failure == RemuxFailure::Interrupted)
        return fx_Interrupted(summary.error);
    if (!summary.error.isEmpty())
        Console::error(summary.error);
    return fx_ExitCodeOf(summary);
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

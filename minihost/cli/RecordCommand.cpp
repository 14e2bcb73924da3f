#include <QFileInfo>
#include <algorithm>
#include <memory>
#include <optional>

#include "Commands.h"
#include "Console.h"
#include "ContainerRecording.h"
#include "ContainerWriter.h"
#include "EncoderTrial.h"
#include "ExitCode.h"
#include "FFmpegSource.h"
#include "FilteredSource.h"
#include "Interrupt.h"
#include "KeepAll.h"
#include "NotedRecording.h"
#include "PictureRate.h"
#include "PictureSizes.h"
#include "QualityTrial.h"
#include "RecordArguments.h"
#include "RecordReport.h"
#include "RecordWatcher.h"
#include "RecordingName.h"
#include "SameFile.h"
#include "Session.h"
#include "Sidecar.h"
#include "SourceAhead.h"
#include "SourceFiles.h"
#include "SplitRecording.h"

namespace {

/// A recording as the source: what its stream does not say stands in the sidecar.
void fx_TakeSidecar(SxRecordArguments& arguments)
{
    QString const framerate = QStringLiteral("framerate"); // of FFmpeg's reader of raw streams
    if (arguments.sources.size() != 1 || !fx_IsRecordingName(arguments.sources.first()) ||
        !arguments.input.format.isEmpty() || arguments.input.options.contains(framerate))
        return;
    SxFoundSidecar const found = fx_FindSidecar(arguments.sources.first());
    if (!found.warning.isEmpty())
        arguments.warnings += found.warning;
    if (!found.sidecar)
        return;
    if (found.sidecar->rate.isKnown())
        arguments.input.options.insert(framerate, found.sidecar->rate.exact());
    SxPictureChanges& changes = arguments.changes;
    if (changes.turnsItself) {
        changes.turnsItself = false;
        changes.rotation = found.sidecar->rotation;
    } else if (found.sidecar->rotation != 0 && changes.rotation == 0) {
        Console::message(
            arguments.sources.first() +
            QStringLiteral(": its pictures are to be turned clockwise by %1 degrees, which is left "
                           "out: --rotate auto turns them.")
                .arg(found.sidecar->rotation));
    }
}

/// Finds the files that the sources stand for, and says what is to be said of them. \return what stands in
/// the way of reading them, one sentence; empty when nothing is known to.
QString fx_TakeSources(SxRecordArguments& arguments)
{
    bool const isReaderChosen = !arguments.input.format.isEmpty();
    SxSourceFiles const found = fx_FindSources(arguments.sources, isReaderChosen);
    if (!found.obstacle.isEmpty())
        return found.obstacle;
    for (QString const& note : found.notes)
        Console::message(note);
    arguments.sources = found.names;
    arguments.warnings = found.warnings;
    fx_TakeSidecar(arguments);
    return QString();
}

/// What of the sources is known not to come out at one size, one sentence; else empty.
QString fx_MixedSizes(SxRecordArguments const& arguments)
{
    if (arguments.sources.size() < 2 || !arguments.input.format.isEmpty() ||
        !arguments.input.options.isEmpty())
        return QString();
    SxSourcePart const& part = arguments.part;
    // What has no clock of its own counts kPicturesASecond.
    auto const pictures = [](SxPlayLength const& length) {
        return length.isPictures ? length.value : (length.value * kPicturesASecond + 999999) / 1000000;
    };
    qint64 const first = part.start ? pictures(*part.start) : 0;
    qint64 count = part.duration ? pictures(*part.duration) : LLONG_MAX - first;
    if (arguments.request.maxPictures > 0)
        count = std::min<qint64>(count, arguments.request.maxPictures);
    return fx_SizeObstacle(arguments.sources, arguments.changes, arguments.request.stop, first,
                           first + count);
}

/// What stands in the way of writing the output, one sentence; empty when nothing does.
QString fx_OutputObstacle(SxRecordArguments const& arguments)
{
    QString const& output = arguments.request.outputFile;
    for (QString const& source : arguments.sources) {
        if (fx_IsSameFile(source, output))
            return QStringLiteral("%1: the recording would replace its own source.").arg(output);
    }
    if (output == QLatin1String(kStandardOutputName))
        return QString();
    bool const isSplit = arguments.isSplit();
    QString splitObstacle = isSplit ? fx_SplitObstacle(arguments) : QString();
    if (!splitObstacle.isEmpty())
        return splitObstacle;
    QFileInfo const info(isSplit ? fx_NumberedRecording(output, 1) : output);
    if (info.isDir())
        return QStringLiteral("%1: this is a folder.").arg(output);
    QString unfinished = fx_ContainerObstacle(output);
    if (!unfinished.isEmpty())
        return unfinished;
    bool const isList =
        QStringList{QStringLiteral("concat"), QStringLiteral("dash"), QStringLiteral("hls")}.contains(
            arguments.input.format);
    if (isList && info.isFile() && info.size() > 0)
        return QStringLiteral("%1: the list may name it as a source; take a name that is not there yet.")
            .arg(output);
    if (info.isFile() && !arguments.overwrite)
        return QStringLiteral("%1: the file exists; --overwrite replaces it.").arg(output);
    if (info.exists())
        return info.isWritable() ? QString() : QStringLiteral("%1: no permission to write it.").arg(output);
    QFileInfo const folder(info.absolutePath());
    if (!folder.isDir())
        return QStringLiteral("%1: there is no folder %2.").arg(output, folder.filePath());
    if (!folder.isWritable())
        return QStringLiteral("%1: no permission to write in the folder %2.").arg(output, folder.filePath());
    return QString();
}

std::unique_ptr<IxPictureSource> fx_MakeReader(SxRecordArguments const& arguments,
                                               std::atomic<bool> const* stop)
{
    std::unique_ptr<IxPictureSource> source;
    if (arguments.isCamera)
        source = std::make_unique<CxTestCamera>(arguments.camera);
    else
        source = std::make_unique<CxFFmpegSource>(arguments.sources, arguments.bits, stop, arguments.input);
    if (arguments.part.start || arguments.part.duration)
        source = std::make_unique<CxPartOfSource>(std::move(source), arguments.part, stop);
    return source;
}

/// Reads in one thread, changes the pictures in another where that is work, and leaves this one to the
/// encoder.
std::unique_ptr<IxPictureSource> fx_MakeSource(SxRecordArguments const& arguments)
{
    SxPictureChanges const& changes = arguments.changes;
    auto const read = [&arguments](std::atomic<bool> const* stop) { return fx_MakeReader(arguments, stop); };
    bool const isWork =
        changes.rotation != 0 || changes.turnsItself || !changes.crop.isNull() || !changes.scale.isEmpty();
    auto const change = [&](std::atomic<bool> const* stop) {
        std::unique_ptr<IxPictureSource> source;
        if (isWork)
            source = std::make_unique<CxSourceAhead>(read, stop, arguments.buffer);
        else
            source = read(stop);
        return std::make_unique<CxFilteredSource>(std::move(source), changes);
    };
    std::optional<SxLiveBuffer> buffer; // where the source is read
    if (!isWork)
        buffer = arguments.buffer;
    return std::make_unique<CxSourceAhead>(change, arguments.request.stop, buffer);
}

/// What is wrong with --scale for the encoder, one sentence; empty when nothing is. Needs the plug-in.
QString fx_ScaleObstacle(SxRecordArguments const& arguments)
{
    QSize const size = arguments.changes.scale;
    if (size.isEmpty())
        return QString();
    SxPicBufInfo const saved = fx_SavedFormat(
        fx_PackedFormat(static_cast<quint32>(size.width()), static_cast<quint32>(size.height()), 3, 8),
        arguments.request.encoder);
    if (QSize(static_cast<int>(saved.width), static_cast<int>(saved.height)) == size)
        return QString();
    return QStringLiteral("--scale %1x%2 is more than level %3 allows, which at that shape is %4x%5.")
        .arg(size.width())
        .arg(size.height())
        .arg(fx_LevelName(arguments.request.encoder.level))
        .arg(saved.width)
        .arg(saved.height);
}

/// True when all sources can be read again from the beginning and are the same then.
bool fx_IsRepeatable(SxRecordArguments const& arguments)
{
    return std::all_of(arguments.sources.begin(), arguments.sources.end(),
                       [](QString const& source) { return QFileInfo(source).isFile(); });
}

/// Records once, and tries what would have kept skipped pictures.
SxRecordSummary fx_RecordOnce(SxRecordArguments const& arguments, QStringList& warnings)
{
    std::unique_ptr<IxPictureSource> const source = fx_MakeSource(arguments);
    CxRecordWatcher watcher(*source, arguments.request);
    for (QString const& warning : arguments.warnings)
        watcher.warn(warning);
    if (arguments.part.start)
        Console::transient(QStringLiteral("Going to the start..."));
    SxRecordSummary summary =
        fx_RecordWithSidecar(*source, fx_RawRequest(arguments.request),
                             [&watcher](SxRecordSummary const& soFar) { watcher.onPicture(soFar); });
    fx_PutIntoContainer(arguments.request, *source, summary);
    bool const isTried = fx_IsRepeatable(arguments) && summary.error.isEmpty() && !summary.wasStopped;
    CxQualityTrial trial([&arguments] { return fx_MakeSource(arguments); }, arguments.request, summary);
    watcher.onEnd(summary, isTried ? &trial : nullptr);
    warnings = watcher.warnings();
    return summary;
}

/// Records until nothing is skipped; the arguments' encoder options are then those with which that was so.
SxRecordSummary fx_RecordEvery(SxRecordArguments& arguments, QStringList& warnings)
{
    IxPictureSource* source = nullptr;
    auto const make = [&] {
        auto made = fx_MakeSource(arguments);
        source = made.get();
        return made;
    };
    SxEncoderOptions const asked = arguments.request.encoder;
    CxKeepAll keeper(make, fx_RawRequest(arguments.request), arguments.keepAll.consent);
    std::optional<CxRecordWatcher> watcher;
    for (QString const& warning : arguments.warnings)
        Console::warning(warning);
    for (QString const& left : keeper.leftAttempts())
        Console::message(left + QStringLiteral(": left by a recording with --keep-all that was killed; "
                                               "nothing needs it any more."));
    SxRecordSummary summary = keeper.run([&](SxRecordSummary const& soFar) {
        if (soFar.given == 1) {
            auto const tells = watcher ? CxRecordWatcher::Tells::News : CxRecordWatcher::Tells::NoSkips;
            QStringList const told = watcher ? watcher->warnings() : arguments.warnings;
            watcher.emplace(*source, keeper.request(), tells, told);
        }
        watcher->onPicture(soFar);
    });
    if (watcher) {
        if (summary.coded > 0)
            fx_PutIntoContainer(arguments.request, *source, summary);
        watcher->onEnd(summary, nullptr);
        warnings = watcher->warnings();
    }
    arguments.request.encoder = keeper.request().encoder;
    QString const changed = fx_ChangedOptions(asked, arguments.request.encoder);
    if (summary.coded > 0 && !changed.isEmpty())
        Console::message(QStringLiteral("Every picture is kept with %1, found in %2 attempts.")
                             .arg(changed)
                             .arg(keeper.attempts()));
    return summary;
}

/// Whether a recording that skips pictures can be made anew, with other options and the same source.
bool fx_CanStartAnew(SxRecordArguments const& arguments)
{
    QFileInfo const output(arguments.request.outputFile);
    bool const isEndless = arguments.isCamera && arguments.camera.frames == 0;
    bool const isStandard = arguments.request.outputFile == QLatin1String(kStandardOutputName);
    return fx_IsRepeatable(arguments) && !isEndless && !isStandard && (!output.exists() || output.isFile());
}

int fx_RecordAndReport(SxRecordArguments arguments)
{
    QStringList warnings;
    bool const isEvery = arguments.keepAll.isWanted && fx_CanStartAnew(arguments);
    bool const isAtOnce = arguments.keepAll.isWanted && !isEvery;
    if (isAtOnce)
        arguments.request.encoder = fx_MostKeeping(arguments.request.encoder, arguments.keepAll.consent);
    SxRecordSummary summary =
        isEvery ? fx_RecordEvery(arguments, warnings) : fx_RecordOnce(arguments, warnings);
    bool const isInterrupted = summary.error.isEmpty() && fx_IsInterrupted(summary);
    if (isInterrupted)
        summary.error =
            isEvery
                ? QStringLiteral("%1: interrupted; nothing was written.").arg(arguments.request.outputFile)
                : fx_InterruptionText(arguments.request, summary);
    if (summary.given > 0 && (!isEvery || summary.coded > 0))
        Console::message(fx_RecordSummaryText(arguments.request, summary));
    bool const isAnyMissing = isAtOnce && !summary.skipped.isEmpty();
    if (isAnyMissing) {
        warnings += fx_MissingWarning(arguments.request, summary);
        Console::warning(warnings.last());
    }
    if (arguments.run.json)
        Console::data(QJsonDocument(fx_RecordSummaryJson(arguments.request, summary, warnings)));
    if (isInterrupted)
        return fx_Interrupted(summary.error);
    if (!summary.error.isEmpty())
        Console::error(summary.error);
    ExitCode const code = fx_RecordExitCode(summary, arguments.isStrict);
    return code == kDone && isAnyMissing ? kNotWhole : code;
}

} // namespace

int fx_RunRecord(QStringList const& arguments)
{
    SxRecordArguments parsed;
    QString error;
    if (!fx_ParseRecordArguments(arguments, parsed, error))
        return fx_WrongUsage(QStringLiteral("record"), error);
    if (parsed.run.help) {
        Console::data(fx_RecordHelp());
        return kDone;
    }
    CxSession session(parsed.run);
    if (!parsed.run.verbose)
        Console::hideLibraryOutput();

    error = fx_TakeSources(parsed);
    if (!error.isEmpty())
        return fx_Failed(error, kBadInput);
    error = fx_OutputObstacle(parsed);
    if (!error.isEmpty())
        return fx_Failed(error, kOutputFailed);
    if (!session.load(error))
        return fx_Failed(error);
    error = fx_ScaleObstacle(parsed);
    if (!error.isEmpty())
        return fx_WrongUsage(QStringLiteral("record"), error);
    parsed.request.stop = &fx_CatchInterrupts();
    error = fx_MixedSizes(parsed);
    if (!error.isEmpty())
        return fx_Failed(error, kBadInput);
    if (parsed.isSplit())
        return fx_RecordSplit(*fx_MakeSource(parsed), parsed);
    return fx_RecordAndReport(parsed);
}

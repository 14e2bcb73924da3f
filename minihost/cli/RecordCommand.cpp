#include <QFileInfo>
#include <algorithm>
#include <memory>

#include "Commands.h"
#include "Console.h"
#include "ContainerRecording.h"
#include "EncoderTrial.h"
#include "ExitCode.h"
#include "FFmpegSource.h"
#include "FilteredSource.h"
#include "Interrupt.h"
#include "NotedRecording.h"
#include "PictureRate.h"
#include "PictureSizes.h"
#include "ProgressLine.h"
#include "QualityTrial.h"
#include "RecordArguments.h"
#include "RecordReport.h"
#include "SameFile.h"
#include "Session.h"
#include "SourceFiles.h"
#include "SourceNotes.h"

namespace {

constexpr int kProfileExtended = 88;          // profile_idc (ITU-T H.264, A.2.3)
constexpr int kPicturesBeforeBitsAdvice = 30; // enough to have seen something bright

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
    QFileInfo const info(output);
    if (info.isDir())
        return QStringLiteral("%1: this is a folder.").arg(output);
    QString const unfinished = fx_ContainerObstacle(output);
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

/// What the user reads while a recording runs.
class CxRecordWatcher
{
public:
    CxRecordWatcher(CxFilteredSource& source, SxRecordRequest const& request)
        : m_source(source)
        , m_request(request)
    {}

    void onPicture(SxRecordSummary const& summary)
    {
        if (summary.given == 1)
            onFirstPicture(summary);
        if (summary.skipped.size() == 1 && summary.skipped.last() == summary.given - 1)
            warn(QStringLiteral("the encoder begins to skip pictures, at picture %1.")
                     .arg(summary.skipped.last()));
        if (summary.given == kPicturesBeforeBitsAdvice)
            adviseBits(summary);
        passWarnings();
        m_line.update(summary.given, summary.bytes,
                      summary.skipped.isEmpty() ? QString()
                                                : QStringLiteral("%1 skipped").arg(summary.skipped.size()));
    }

    /// \param trial  null when the source cannot be read again
    void onEnd(SxRecordSummary const& summary, CxQualityTrial* trial)
    {
        Console::transient(QString());
        passWarnings();
        if (summary.given < kPicturesBeforeBitsAdvice)
            adviseBits(summary);
        QString const asked = fx_LevelName(m_request.encoder.level);
        if (!summary.level.isEmpty() && summary.level != asked)
            warn(QStringLiteral("OpenH264 made the recording level %1, not level %2 as asked.")
                     .arg(summary.level, asked));
        if (!summary.sidecarError.isEmpty())
            warn(summary.sidecarError);
        if (trial && !summary.skipped.isEmpty())
            Console::transient(QStringLiteral("Trying which quality keeps every picture..."));
        QString const advice = fx_SkipAdvice(m_request, summary, trial);
        if (!advice.isEmpty())
            warn(advice);
    }

    QStringList const& warnings() const { return m_warnings; }

    void warn(QString const& sentence)
    {
        Console::warning(sentence);
        m_warnings += sentence;
    }

private:
    void passWarnings()
    {
        for (QString const& warning : m_source.takeWarnings())
            warn(warning);
    }

    void adviseBits(SxRecordSummary const& summary)
    {
        QString const advice = m_source.knowsSignificantBits() ? QString() : fx_BitsAdvice(summary);
        if (!advice.isEmpty())
            warn(advice);
    }

    /// Now the source has opened something and knows its length, and the size to be saved is known.
    void onFirstPicture(SxRecordSummary const& summary)
    {
        m_line.setTotal(summary.expected);
        if (m_request.encoder.profile == kProfileExtended)
            warn(QStringLiteral("OpenH264 has no Extended profile; the recording is Baseline."));
        bool const isNoted = m_request.keepsSidecar && QFileInfo(m_request.outputFile).isFile();
        for (QString const& note : fx_SourceNotes(m_source, isNoted))
            Console::message(note);
        tellAboutScaling(summary);
    }

    void tellAboutScaling(SxRecordSummary const& summary)
    {
        SxPicBufInfo const& input = summary.input;
        if (summary.savedWidth == input.width && summary.savedHeight == input.height)
            return;
        Console::message(QStringLiteral("The pictures are scaled from %1 x %2 to %3 x %4: level %5 allows no "
                                        "larger ones.")
                             .arg(input.width)
                             .arg(input.height)
                             .arg(summary.savedWidth)
                             .arg(summary.savedHeight)
                             .arg(fx_LevelName(m_request.encoder.level)));
    }

    CxFilteredSource& m_source;
    SxRecordRequest const& m_request;
    CxProgressLine m_line;
    QStringList m_warnings;
};

std::unique_ptr<CxFilteredSource> fx_MakeSource(SxRecordArguments const& arguments)
{
    std::unique_ptr<IxPictureSource> source;
    if (arguments.isCamera)
        source = std::make_unique<CxTestCamera>(arguments.camera);
    else
        source = std::make_unique<CxFFmpegSource>(arguments.sources, arguments.bits, arguments.request.stop,
                                                  arguments.input);
    if (arguments.part.start || arguments.part.duration)
        source = std::make_unique<CxPartOfSource>(std::move(source), arguments.part, arguments.request.stop);
    return std::make_unique<CxFilteredSource>(std::move(source), arguments.changes);
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

int fx_ExitCode(SxRecordArguments const& arguments, SxRecordSummary const& summary)
{
    switch (summary.failure) {
    case RecordFailure::Source:
        return kBadInput;
    case RecordFailure::Output:
        return kOutputFailed;
    case RecordFailure::Other:
        return kFailed;
    case RecordFailure::None:
        break;
    }
    if (summary.isSourceDamaged)
        return kBadInput; // what was good is written
    return arguments.isStrict && !summary.skipped.isEmpty() ? kNotWhole : kDone;
}

int fx_RecordAndReport(SxRecordArguments const& arguments)
{
    std::unique_ptr<CxFilteredSource> const source = fx_MakeSource(arguments);
    CxRecordWatcher watcher(*source, arguments.request);
    for (QString const& warning : arguments.warnings)
        watcher.warn(warning);
    SxRecordSummary summary =
        fx_RecordWithSidecar(*source, fx_RawRequest(arguments.request),
                             [&watcher](SxRecordSummary const& soFar) { watcher.onPicture(soFar); });
    fx_PutIntoContainer(arguments.request, *source, summary);
    bool const isTried = fx_IsRepeatable(arguments) && summary.error.isEmpty() && !summary.wasStopped;
    CxQualityTrial trial([&arguments] { return fx_MakeSource(arguments); }, arguments.request, summary);
    watcher.onEnd(summary, isTried ? &trial : nullptr);
    bool const isInterrupted = summary.error.isEmpty() && fx_IsInterrupted(summary);
    if (isInterrupted)
        summary.error = fx_InterruptionText(arguments.request, summary);
    if (summary.given > 0)
        Console::message(fx_RecordSummaryText(arguments.request, summary));
    if (arguments.run.json)
        Console::data(fx_RecordSummaryJson(arguments.request, summary, watcher.warnings()));
    if (isInterrupted)
        return fx_Interrupted(summary.error);
    if (!summary.error.isEmpty())
        Console::error(summary.error);
    return fx_ExitCode(arguments, summary);
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
    return fx_RecordAndReport(parsed);
}

#include "KeepAll.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "IxPictureSource.h"
#include "NotedRecording.h"
#include "RateAdvice.h"
#include "RecordingOutput.h"
#include "SameFile.h"
#include "Sidecar.h"

namespace {

// Between key frames. Fewer of them leave more bits for the others; but if that does not do, every picture is
// one: the rate control skips no key frame.
constexpr int kSpacings[] = {10, 30, SxEncoderOptions::kKeyFrameIntervalMax, 1};
constexpr int kTopQuality = SxEncoderOptions::kQualityMax;

/// Levels above \p asked that allow pictures of this size more bits, each more than the one before.
QVector<int> fx_LevelsAbove(int asked, SxRecordSummary const& summary)
{
    QVector<int> levels;
    qint64 most = fx_TargetBitRate(summary.input.width, summary.input.height, asked, kTopQuality);
    bool isAbove = false;
    for (QString const& name : fx_LevelNames()) { // ascending
        int const level = *fx_LevelFromName(name);
        qint64 const rate = fx_TargetBitRate(summary.input.width, summary.input.height, level, kTopQuality);
        if (isAbove && rate > most) {
            levels.append(level);
            most = rate;
        }
        isAbove = isAbove || level == asked;
    }
    return levels;
}

/// Levels and spacings to try one after the other, those nearest to what was asked first.
QVector<SxEncoderOptions> fx_Stages(SxEncoderOptions const& asked, SxKeepAllConsent const& consent,
                                    SxRecordSummary const& summary)
{
    QVector<SxEncoderOptions> stages{asked};
    if (consent.level) {
        for (int const level : fx_LevelsAbove(asked.level, summary)) {
            stages.append(asked);
            stages.last().level = level;
        }
    }
    SxEncoderOptions const widest = stages.last();
    for (int const spacing : kSpacings) {
        bool const isOther =
            spacing > asked.keyFrameInterval || (spacing == 1 && asked.keyFrameInterval != 1);
        if (consent.keyFrames && isOther) {
            stages.append(widest);
            stages.last().keyFrameInterval = spacing;
        }
    }
    return stages;
}

QString const kAttempt = QStringLiteral(".attempt"); // and a number, behind the name of the output

/// A name beside \p target that is not taken.
QString fx_NameBeside(QString const& target)
{
    QString name;
    for (int number = 1; name.isEmpty() || QFile::exists(name); ++number)
        name = target + kAttempt + QString::number(number);
    return name;
}

} // namespace

QString fx_ChangedOptions(SxEncoderOptions const& from, SxEncoderOptions const& to)
{
    QStringList changed;
    if (to.quality != from.quality)
        changed += QStringLiteral("--quality %1").arg(to.quality);
    if (to.level != from.level)
        changed += QStringLiteral("--level %1").arg(fx_LevelName(to.level));
    if (to.keyFrameInterval != from.keyFrameInterval)
        changed += QStringLiteral("--keyframe-rate %1").arg(to.keyFrameInterval);
    return changed.join(QLatin1Char(' '));
}

QStringList CxKeepAll::leftAttempts() const
{
    QFileInfo const target(m_target);
    QStringList left;
    for (QString const& name : target.dir().entryList(QDir::Files)) {
        bool isNumber = false;
        QString const begin = target.fileName() + kAttempt;
        name.mid(begin.size()).toInt(&isNumber);
        if (name.startsWith(begin) && isNumber)
            left.append(target.dir().filePath(name));
    }
    return left;
}

SxEncoderOptions fx_MostKeeping(SxEncoderOptions options, SxKeepAllConsent const& consent)
{
    options.quality = kTopQuality;
    if (consent.level)
        options.level = SxEncoderOptions().level; // the highest
    if (consent.keyFrames)
        options.keyFrameInterval = 1; // which the rate control never skips
    return options;
}

CxKeepAll::CxKeepAll(MakeSource make, SxRecordRequest const& request, SxKeepAllConsent const& consent)
    : m_make(std::move(make))
    , m_request(request)
    , m_asked(request.encoder)
    , m_consent(consent)
{
    QFileInfo const there(request.outputFile);
    m_target = there.exists() ? there.canonicalFilePath() : request.outputFile;
}

SxRecordSummary CxKeepAll::attempt(QString const& fileName, RecordProgress const& progress)
{
    ++m_attempts;
    m_source = m_make();
    SxRecordRequest request = m_request;
    request.outputFile = fileName;
    return fx_RecordWithFacts(*m_source, request, [&](SxRecordSummary const& soFar) {
        // Lists name files that only show once they are open.
        m_isRead = m_isRead || (soFar.given == 1 && fx_IsReadHere(m_target));
        progress(soFar);
    });
}

/// The options for the next attempt: the first of the stages at whose highest quality the part that lost most
/// loses nothing, with the lowest quality that does so, too. Nothing when there is none.
std::optional<SxEncoderOptions> CxKeepAll::next(SxRecordSummary const& summary,
                                                SxKeepAllConsent const& consent)
{
    CxQualityTrial trial(m_make, m_request, summary);
    bool isBehind = false; // behind the stage that just failed
    for (SxEncoderOptions stage : fx_Stages(m_asked, consent, summary)) {
        bool const isFailed = stage.level == m_request.encoder.level &&
                              stage.keyFrameInterval == m_request.encoder.keyFrameInterval;
        isBehind = isBehind || isFailed;
        if (!isBehind || (isFailed && m_request.encoder.quality == kTopQuality))
            continue;
        int const lowest = isFailed ? m_request.encoder.quality + 1 : m_asked.quality;
        stage.quality = kTopQuality;
        if (trial.lowestQuality(stage)) {
            stage.quality = lowest;
            std::optional<int> const quality = trial.lowestQuality(stage);
            stage.quality = quality.value_or(kTopQuality);
            return stage;
        }
        if (trial.isBrokenOff())
            break;
    }
    return std::nullopt;
}

/// Why it cannot be had, and with which consent it could.
QString CxKeepAll::refusal(SxRecordSummary const& summary)
{
    SxEncoderOptions most = fx_Stages(m_asked, m_consent, summary).last();
    most.quality = kTopQuality;
    QString text = m_request.outputFile +
                   QStringLiteral(": not every picture can be kept, not even with --quality %1 --level %2 "
                                  "--keyframe-rate %3 (with --quality %4 %5 of %6 are skipped)")
                       .arg(most.quality)
                       .arg(fx_LevelName(most.level))
                       .arg(most.keyFrameInterval)
                       .arg(m_request.encoder.quality)
                       .arg(summary.skipped.size())
                       .arg(summary.given);
    bool const isAllAllowed = m_consent.level && m_consent.keyFrames;
    std::optional<SxEncoderOptions> const other =
        isAllAllowed ? std::nullopt : next(summary, SxKeepAllConsent{true, true});
    if (other)
        text += QStringLiteral("; %1 probably does it, which --may-change allows")
                    .arg(fx_ChangedOptions(m_asked, *other));
    return text + QLatin1Char('.');
}

/// The attempt becomes the output.
SxRecordSummary CxKeepAll::commit(QString const& fileName, SxRecordSummary summary)
{
    if (QFileInfo::exists(m_target))
        QFile::setPermissions(fileName, QFile::permissions(m_target));
    if (std::rename(QFile::encodeName(fileName).constData(), QFile::encodeName(m_target).constData()) != 0) {
        summary.error = QStringLiteral("%1: %2.").arg(m_request.outputFile, qt_error_string(errno));
        summary.failure = RecordFailure::Output;
        return summary;
    }
    fx_RemoveSidecar(m_request.outputFile); // even if it fits: the bytes may be those of the one before
    fx_NoteRecording(m_request, summary);
    return summary;
}

/// What was in an attempt is gone with it.
static void fx_Forget(SxRecordSummary& summary)
{
    summary.coded = 0;
    summary.bytes = 0;
    if (!summary.error.isEmpty())
        summary.error += QStringLiteral(" Nothing was written.");
}

SxRecordSummary CxKeepAll::run(RecordProgress const& progress)
{
    SxRecordSummary summary;
    QString error;
    auto held = std::make_unique<CxRecordingOutput>(); // against other recordings
    if (!held->open(m_target, m_request.stop, error)) {
        summary.error = error;
        summary.failure = RecordFailure::Output;
        return summary;
    }
    QString const fileName = fx_NameBeside(m_target);
    for (;;) {
        summary = attempt(fileName, progress);
        if (m_isRead) {
            summary.error =
                QStringLiteral("%1: the recording would replace its own source.").arg(m_request.outputFile);
            summary.failure = RecordFailure::Output;
        }
        bool const isPart = !summary.error.isEmpty() || summary.isCutShort;
        if (isPart || summary.skipped.isEmpty())
            break;
        std::optional<SxEncoderOptions> const options = next(summary, m_consent);
        summary.wasStopped = m_request.stop && m_request.stop->load();
        summary.isCutShort = summary.wasStopped;
        if (!options && !summary.wasStopped) {
            summary.error = refusal(summary);
            summary.failure = RecordFailure::Other;
        }
        if (!options)
            break;
        m_request.encoder = *options;
    }
    held.reset(); // before the name gets another file
    bool const isWhole = summary.error.isEmpty() && !summary.isCutShort && summary.coded > 0;
    if (isWhole)
        summary = commit(fileName, summary);
    else
        fx_Forget(summary);
    QFile::remove(fileName);
    return summary;
}

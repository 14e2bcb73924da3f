#include "RecordWatcher.h"

#include <QFileInfo>

#include "Console.h"
#include "ContainerWriter.h"
#include "EncoderOptions.h"
#include "IxPictureSource.h"
#include "QualityTrial.h"
#include "RecordReport.h"
#include "SourceNotes.h"

static constexpr int kProfileExtended = 88;          // profile_idc (ITU-T H.264, A.2.3)
static constexpr int kPicturesBeforeBitsAdvice = 30; // enough to have seen something bright

CxRecordWatcher::CxRecordWatcher(IxPictureSource& source, SxRecordRequest const& request, Tells tells,
                                 QStringList const& told)
    : m_source(source)
    , m_request(request)
    , m_tells(tells)
    , m_warnings(told)
{}

void CxRecordWatcher::onPicture(SxRecordSummary const& summary)
{
    if (summary.given == 1)
        onFirstPicture(summary);
    if (tellsSkips() && summary.skipped.size() == 1 && summary.skipped.last() == summary.given - 1)
        warn(QStringLiteral("the encoder begins to skip pictures, at picture %1.")
                 .arg(summary.skipped.last()));
    if (!summary.lost.isEmpty())
        warn(fx_LossWarning(summary));
    if (summary.given >= kPicturesBeforeBitsAdvice && !m_hasJudgedBits)
        adviseBits(summary);
    passWarnings();
    QStringList remarks;
    if (!summary.skipped.isEmpty())
        remarks += QStringLiteral("%1 skipped").arg(summary.skipped.size());
    if (!summary.lost.isEmpty())
        remarks += QStringLiteral("%1 lost").arg(summary.lost.size());
    m_line.update(summary.given, summary.bytes, remarks.join(QStringLiteral("  ")));
}

void CxRecordWatcher::onEnd(SxRecordSummary const& summary, CxQualityTrial* trial)
{
    Console::transient(QString());
    passWarnings();
    if (!summary.lost.isEmpty())
        warn(fx_LossWarning(summary));
    if (!m_hasJudgedBits)
        adviseBits(summary);
    QString const asked = fx_LevelName(m_request.encoder.level);
    if (!summary.level.isEmpty() && summary.level != asked)
        warn(QStringLiteral("OpenH264 made the recording level %1, not level %2 as asked.")
                 .arg(summary.level, asked));
    if (!summary.sidecarError.isEmpty())
        warn(summary.sidecarError);
    if (trial && !summary.skipped.isEmpty())
        Console::transient(QStringLiteral("Trying which quality keeps every picture..."));
    QString const advice = tellsSkips() ? fx_SkipAdvice(m_request, summary, trial) : QString();
    if (!advice.isEmpty())
        warn(advice);
}

void CxRecordWatcher::warn(QString const& sentence)
{
    if (m_warnings.contains(sentence))
        return;
    Console::warning(sentence);
    m_warnings += sentence;
}

void CxRecordWatcher::passWarnings()
{
    for (QString const& warning : m_source.takeWarnings())
        warn(warning);
}

void CxRecordWatcher::adviseBits(SxRecordSummary const& summary)
{
    m_hasJudgedBits = true;
    QString const advice = m_source.knowsSignificantBits() ? QString() : fx_BitsAdvice(summary);
    if (!advice.isEmpty())
        warn(advice);
}

/// Now the source has opened something and knows its length, and the size to be saved is known.
void CxRecordWatcher::onFirstPicture(SxRecordSummary const& summary)
{
    m_line.setTotal(summary.expected);
    if (m_tells == Tells::News || m_tells == Tells::NextPart)
        return;
    if (m_request.encoder.profile == kProfileExtended)
        warn(QStringLiteral("OpenH264 has no Extended profile; the recording is Baseline."));
    bool const hasSidecar = m_request.keepsSidecar && QFileInfo(m_request.outputFile).isFile();
    RateKeeper const keeper = fx_ContainerKindOf(m_request.outputFile) ? RateKeeper::Container
                              : hasSidecar                             ? RateKeeper::Sidecar
                                                                       : RateKeeper::Nobody;
    QSize const size(static_cast<int>(summary.input.width), static_cast<int>(summary.input.height));
    for (QString const& note : fx_SourceNotes(m_source, size, keeper))
        Console::message(note);
    tellAboutScaling(summary);
}

void CxRecordWatcher::tellAboutScaling(SxRecordSummary const& summary)
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

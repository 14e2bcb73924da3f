#include "RecordControl.h"

#include <QFileInfo>
#include <QLocale>

#include "LiveControl.h"
#include "MessageBar.h"
#include "PlayControl.h"
#include "RecordBar.h"
#include "RecordTexts.h"
#include "RecordingSource.h"

CxRecordControl::CxRecordControl(CxPlayControl& play, CxLiveControl& live, CxRecordBar& bar,
                                 CxMessageBar& messages, QWidget& window)
    : m_play(play)
    , m_live(live)
    , m_bar(bar)
    , m_messages(messages)
    , m_window(window)
{
    connect(&m_bar, &CxRecordBar::stopRequested, this, [this] { m_job->cancel(); });
    connect(&m_messages, &CxMessageBar::triggered, this,
            [this] { emit openRequested(m_job->request().outputFile); });
}

CxRecordControl::~CxRecordControl()
{
    m_live.close(); // it may be running the job
}

void CxRecordControl::ask(SxPicBufInfo const& shown)
{
    SxOpenedRecording const& recording = m_play.player().info();
    SxMarks const& marks = m_play.marks().marks();
    auto* const dialog = m_live.isOpen() ? new CxRecordDialog(-1, 0.0, m_live.fileName(), shown, &m_window)
                                         : new CxRecordDialog(recording.count, recording.fps,
                                                              recording.fileName, shown, &m_window);
    if (!m_live.isOpen())
        dialog->setRange(marks.first(), marks.last(recording.count));
    m_play.player().setPlaying(false);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] { start(dialog->choice()); });
    dialog->open();
}

void CxRecordControl::start(SxRecordChoice const& choice)
{
    m_messages.dismiss();
    m_play.player().setPlaying(false);
    SxRecordRequest request = choice.request;
    request.sourceName = m_live.isOpen()
                             ? m_live.name()
                             : m_play.player().info().fileName +
                                   QStringLiteral(", pictures %1-%2").arg(choice.first).arg(choice.last);
    m_job = std::make_unique<CxRecordJob>(request);
    connect(m_job.get(), &CxRecordJob::progressed, &m_bar, &CxRecordBar::showProgress);
    connect(m_job.get(), &CxRecordJob::finished, this, &CxRecordControl::finish);
    m_isRunning = true;
    if (m_live.isOpen()) {
        int const limit = choice.request.maxPictures;
        m_bar.begin(choice.request, limit > 0 ? limit : -1);
        m_live.record(m_job.get());
    } else {
        m_bar.begin(choice.request, choice.last - choice.first + 1);
        auto source =
            std::make_unique<CxRecordingSource>(std::make_unique<CxRecordingReader>(),
                                                m_play.player().info().fileName, choice.first, choice.last);
        if (choice.leavesOutBroken)
            source->leaveOutBroken();
        m_job->start(std::move(source));
    }
    emit runningChanged();
}

void CxRecordControl::finish(SxRecordSummary const& summary)
{
    m_isRunning = false;
    m_bar.hide();
    QString const name = QFileInfo(m_job->request().outputFile).fileName();
    CxRecordDialog::applyRememberedOptions();

    QVector<int> const& broken = m_job->broken();
    bool const failed = !summary.error.isEmpty();
    QStringList parts;
    if (failed && !broken.isEmpty())
        parts.append(tr("Saving to “%1” ended at picture %2, which is broken.")
                         .arg(name, QString::number(broken.last())));
    else if (failed)
        parts.append(tr("Saving to “%1” failed.").arg(name));
    else if (summary.wasStopped)
        parts.append(tr("Stopped: “%1” holds what was saved until then.").arg(name));
    else if (summary.isSourceDamaged || !summary.skipped.isEmpty())
        parts.append(tr("“%1” is saved, but not with every picture.").arg(name));
    else
        parts.append(tr("“%1” is complete.").arg(name));
    if (summary.coded > 0)
        parts.append(
            tr("%n picture(s) saved, %1.", nullptr, summary.coded)
                .arg(m_window.locale().formattedDataSize(summary.bytes, 1, QLocale::DataSizeSIFormat)));
    if (!failed && !broken.isEmpty())
        parts.append(
            tr("%n broken picture(s) left out, the first is %1.", nullptr, static_cast<int>(broken.size()))
                .arg(broken.first()));
    SxEncoderOptions const& encoder = m_job->request().encoder;
    QString const skipped = CxRecordTexts::skipped(encoder, summary);
    QString const shrunk =
        CxRecordTexts::shrunk(summary.input, summary.savedWidth, summary.savedHeight, encoder.level);
    QString const level = CxRecordTexts::otherLevel(summary, encoder.level);
    // A recording's broken pictures are counted above.
    QString const damage = broken.isEmpty() ? CxRecordTexts::sourceDamage(summary) : QString();
    for (QString const& text : {damage, skipped, shrunk, level, CxRecordTexts::notNoted(summary)}) {
        if (!text.isEmpty())
            parts.append(text);
    }
    QStringList details{summary.error, summary.sidecarError};
    details.removeAll(QString());
    bool const isWhole = !failed && !summary.isSourceDamaged && skipped.isEmpty();
    m_messages.showMessage(isWhole ? CxMessageBar::Kind::Information : CxMessageBar::Kind::Warning,
                           parts.join(QLatin1Char(' ')), details);
    if (summary.coded > 0)
        m_messages.offer(tr("&Open It"));
    emit runningChanged();
}

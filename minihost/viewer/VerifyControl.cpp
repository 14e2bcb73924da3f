#include "VerifyControl.h"

#include <QAction>
#include <QCoreApplication>
#include <QFileInfo>
#include <QMainWindow>

#include "Actions.h"
#include "BrokenList.h"
#include "MessageBar.h"
#include "PlayControl.h"
#include "StatusBar.h"
#include "VerifyBar.h"

static constexpr int kListLines = 7; // with its title and header; the picture keeps the room

/// What the other process is to load: one library, or the folder in which all of them lie.
static QString fx_PluginPath(QStringList const& plugins)
{
    return plugins.size() == 1 ? plugins.first() : QFileInfo(plugins.value(0)).absolutePath();
}

CxVerifyControl::CxVerifyControl(CxActions& actions, CxPlayControl& play, CxMessageBar& messages,
                                 CxStatusBar& status, QStringList const& plugins, QMainWindow& window)
    : QObject(&window)
    , m_window(window)
    , m_actions(actions)
    , m_play(play)
    , m_messages(messages)
    , m_bar(new CxVerifyBar(&status))
    , m_list(new CxBrokenList(&window))
    , m_program(QCoreApplication::applicationFilePath())
    , m_pluginPath(fx_PluginPath(plugins))
{
    status.addPermanentWidget(m_bar);
    m_bar->hide();
    window.addDockWidget(Qt::BottomDockWidgetArea, m_list);
    m_list->hide();
    connect(actions.verify, &QAction::triggered, this, &CxVerifyControl::start);
    connect(m_bar, &CxVerifyBar::stopRequested, this, [this] { m_job->stop(); });
    connect(m_list, &CxBrokenList::chosen, &play.player(), &CxPlayer::seek);
    connect(&play, &CxPlayControl::opened, this, &CxVerifyControl::forget);
    connect(&play, &CxPlayControl::rateChanged, this,
            [this](SxOpenedRecording const& info) { m_list->setRate(info.fps); });
    connect(&play, &CxPlayControl::closed, this, &CxVerifyControl::forget);
}

CxVerifyControl::~CxVerifyControl() = default;

void CxVerifyControl::setEnabled(bool isEnabled)
{
    m_isEnabled = isEnabled;
    m_actions.verify->setEnabled(isEnabled && !isRunning());
}

/// What was found, or is being looked for, belongs to another recording.
void CxVerifyControl::forget()
{
    m_job.reset();
    m_bar->hide();
    m_list->hide();
}

void CxVerifyControl::start()
{
    m_messages.dismiss();
    m_list->hide();
    m_fileName = m_play.player().info().fileName;
    m_job = std::make_unique<CxVerifyJob>(m_program, m_pluginPath);
    connect(m_job.get(), &CxVerifyJob::progressed, m_bar, &CxVerifyBar::showProgress);
    connect(m_job.get(), &CxVerifyJob::finished, this, &CxVerifyControl::finish);
    m_bar->showProgress(0, 0);
    m_bar->show();
    setEnabled(m_isEnabled);
    m_job->start(m_fileName);
}

void CxVerifyControl::finish(SxVerifyResult const& result)
{
    m_job.release()->deleteLater(); // it is telling its end
    m_bar->hide();
    setEnabled(m_isEnabled);
    for (SxBrokenRange const& range : result.broken)
        m_play.addBroken(range.first, range.last);
    if (!result.broken.isEmpty()) {
        m_list->setRanges(result.broken, m_play.player().info().fps);
        m_list->show();
        m_window.resizeDocks({m_list}, {kListLines * m_list->fontMetrics().lineSpacing()}, Qt::Vertical);
    }
    tell(result);
}

void CxVerifyControl::tell(SxVerifyResult const& result)
{
    QString const name = QFileInfo(m_fileName).fileName();
    if (!result.error.isEmpty()) {
        m_messages.showMessage(CxMessageBar::Kind::Warning, tr("“%1” could not be verified.").arg(name),
                               {result.error});
        return;
    }
    if (result.pictures == 0)
        return; // stopped before anything is known
    QStringList parts;
    if (result.wasStopped)
        parts.append(tr("Stopped: %1 of %2 pictures of “%3” were looked at.")
                         .arg(QString::number(result.examined), QString::number(result.pictures), name));
    else if (result.broken.isEmpty())
        parts.append(tr("“%1”: every picture can be shown, %2.")
                         .arg(name, tr("%n picture(s)", nullptr, result.pictures)));
    if (!result.broken.isEmpty())
        parts.append(tr("“%1”: %2 in %3.")
                         .arg(name, tr("%n broken picture(s)", nullptr, result.brokenPictures()),
                              tr("%n place(s)", nullptr, static_cast<int>(result.broken.size()))));
    if (result.missing > 0)
        parts.append(tr("%n picture(s) vanished, the first before picture %1.", nullptr, result.missing)
                         .arg(result.firstMissing));
    if (result.isCutOff)
        parts.append(tr("The last bytes belong to no picture; the file seems cut off."));
    bool const isSound = result.broken.isEmpty() && result.missing == 0 && !result.isCutOff;
    m_messages.showMessage(isSound ? CxMessageBar::Kind::Information : CxMessageBar::Kind::Warning,
                           parts.join(QLatin1Char(' ')), result.details);
}

#include "MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QSettings>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "Actions.h"
#include "FFmpegSource.h"
#include "FileDialogs.h"
#include "HelpWindow.h"
#include "MessageBar.h"
#include "PictureView.h"
#include "RecentFiles.h"
#include "RecordBar.h"
#include "StartPage.h"
#include "StatusBar.h"
#include "TestCamera.h"
#include "Timeline.h"
#include "TransportBar.h"
#include "VerifyControl.h"

static QString const kGeometryKey = QStringLiteral("window/geometry");

static constexpr QSize kLeastSize(400, 300);

/// Half of a large screen, most of a small one.
static QSize fx_FirstSize(QSize const& room)
{
    return QSize(1024, 720).expandedTo(room / 2).boundedTo(room * 9 / 10);
}

CxMainWindow::CxMainWindow(CxPluginHost const& plugins, QWidget* parent)
    : QMainWindow(parent)
    , m_plugins(plugins)
    , m_actions(new CxActions(this))
    , m_pages(new QStackedWidget(this))
    , m_startPage(new CxStartPage(*m_actions, this))
    , m_view(new CxPictureView(this))
    , m_messageBar(new CxMessageBar(this))
    , m_recordBar(new CxRecordBar(this))
    , m_transport(new CxTransportBar(*m_actions, this))
    , m_status(new CxStatusBar(*m_view, this))
    , m_play(*m_actions, *m_view, *m_transport, *m_messageBar, *this)
    , m_verify(new CxVerifyControl(*m_actions, m_play, *m_messageBar, *m_status, plugins.fileNames(), *this))
    , m_live(*m_actions, *m_view, *m_transport, *m_messageBar)
    , m_look(*m_actions, *m_view, m_play, m_live, *this)
    , m_folder(*m_actions, m_play, *this)
    , m_picture(*m_actions, *m_view, m_play.player(), *m_messageBar, *this)
    , m_fullScreen(*m_view, *m_transport)
    , m_rate(*m_actions, m_play, *m_messageBar, *this)
    , m_overview(m_actions->look.overview, *m_transport, m_play, m_live)
    , m_record(m_play, m_live, *m_recordBar, *m_messageBar, *this)
{
    setObjectName(QStringLiteral("mainWindow"));
    m_actions->fill(menuBar());
    m_actions->updateIcons(palette());
    m_recent = new CxRecentFiles(m_actions->recentMenu, this);
    m_startPage->setRecent(m_recent->actions());
    addActions(m_actions->findChildren<QAction*>()); // keys work with the menu bar hidden, too

    buildCentre();
    setStatusBar(m_status);
    connectActions();
    connectControls();
    m_play.speed().restore();
    setTitle({});
    updateActions();
    if (!restoreGeometry(QSettings().value(kGeometryKey).toByteArray()))
        resize(fx_FirstSize(screen()->availableSize()));
    setMinimumSize(kLeastSize);
}

void CxMainWindow::buildCentre()
{
    m_view->setObjectName(QStringLiteral("pictureView"));
    m_view->setAccessibleName(tr("Picture"));
    m_view->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_view->addActions({m_actions->fit, m_actions->actualSize, m_actions->copy, m_actions->savePicture});

    m_pages->addWidget(m_startPage);
    m_pages->addWidget(m_view);
    auto* const centre = new QWidget(this);
    auto* const column = new QVBoxLayout(centre);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_messageBar);
    column->addWidget(m_recordBar);
    column->addWidget(m_look.frame(m_pages), 1);
    column->addWidget(m_transport);
    setCentralWidget(centre);
}

void CxMainWindow::connectActions()
{
    CxActions const& a = *m_actions;
    auto const on = [this](QAction* action, auto&& what) {
        connect(action, &QAction::triggered, this, what);
    };
    on(a.open, [this] {
        QString const fileName = CxFileDialogs::recordingToOpen(this);
        if (!fileName.isEmpty())
            openRecording(fileName);
    });
    on(a.openCamera, [this] { openNamed(QStringLiteral("camera:")); });
    on(a.openSource, [this] {
        QString const name = CxFileDialogs::sourceToOpen(this);
        if (!name.isEmpty())
            openNamed(name);
    });
    on(a.record, [this] {
        SxPicBufInfo format;
        if (m_view->picture().data)
            format = *m_view->picture().data->picBuf();
        m_record.ask(format);
    });
    on(a.closeFile, [this] { closeShown(); });
    on(a.quit, [this] { close(); });
    on(a.play, [this] { m_live.isOpen() ? m_live.toggleFrozen() : m_play.togglePlaying(); });
    on(a.fullScreen, [this](bool isOn) { setFullScreen(isOn); });
    auto const show = [](QDialog* window) {
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->show();
    };
    on(a.keys, [this, show] { show(new CxHelpWindow(*m_actions, this)); });
    on(a.about, [this, show] { show(new CxAboutWindow(m_plugins, this)); });
}

void CxMainWindow::connectControls()
{
    connect(&m_play, &CxPlayControl::opened, this, &CxMainWindow::takeOpened);
    connect(&m_play, &CxPlayControl::opened, m_status, &CxStatusBar::showNotes);
    connect(&m_play.marks(), &CxMarkControl::told, m_status, &CxStatusBar::confirm);
    connect(&m_rate, &CxRateControl::told, m_status, &CxStatusBar::confirm);
    connect(&m_play, &CxPlayControl::rateChanged, m_status, &CxStatusBar::showNotes);
    connect(&m_folder, &CxFolderControl::openRequested, this, &CxMainWindow::openRecording);
    connect(&m_folder, &CxFolderControl::dropped, this, &CxMainWindow::openNamed);
    connect(&m_folder, &CxFolderControl::told, m_status, &CxStatusBar::confirm);
    connect(&m_picture, &CxPictureControl::told, m_status, &CxStatusBar::confirm);
    connect(&m_play, &CxPlayControl::openFailed, this, &CxMainWindow::takeOpenFailure);
    connect(&m_live, &CxLiveControl::begun, this, &CxMainWindow::takeLive);
    connect(&m_live, &CxLiveControl::openFailed, this, &CxMainWindow::takeOpenFailure);
    connect(&m_play, &CxPlayControl::pictureFailed, this, &CxMainWindow::updateActions);
    connect(&m_play.player(), &CxPlayer::rateMeasured, m_status, &CxStatusBar::showRate);
    connect(&m_play, &CxPlayControl::brokenFound, m_status, &CxStatusBar::showBroken);
    connect(&m_live, &CxLiveControl::ended, this, &CxMainWindow::updateActions);
    connect(&m_record, &CxRecordControl::runningChanged, this, &CxMainWindow::updateActions);
    connect(&m_record, &CxRecordControl::openRequested, this, &CxMainWindow::openRecording);
    connect(m_recent, &CxRecentFiles::chosen, this, &CxMainWindow::openRecording);
    connect(m_view, &CxPictureView::doubleClicked, m_actions->fullScreen, &QAction::trigger);
    connect(m_view, &CxPictureView::pictureShown, this, [this](SxShownPicture const&, bool isFirst) {
        if (isFirst)
            updateActions();
    });
}

// ---- Opening and closing

/// Makes room for what has just been opened.
void CxMainWindow::clearPicture()
{
    m_view->setPicture({});
    m_view->fit();
    m_status->clearTexts();
    m_messageBar->dismiss();
    m_pages->setCurrentWidget(m_view);
    m_isOpening = false;
}

/// Back to where one chooses.
void CxMainWindow::closeShown()
{
    m_live.close();
    m_play.close();
    clearPicture();
    m_startPage->setRecent(m_recent->actions());
    m_pages->setCurrentWidget(m_startPage);
    setTitle({});
    updateActions();
}

void CxMainWindow::setTitle(QString const& name)
{
    setWindowTitle(name.isEmpty() ? QStringLiteral("minihost") : QStringLiteral("%1 – minihost").arg(name));
}

void CxMainWindow::openNamed(QString const& name)
{
    if (name == QLatin1String("camera:")) {
        openLive(tr("Test Camera"), [](std::atomic<bool> const*) {
            SxTestCameraOptions options;
            options.frames = 0;
            return std::make_unique<CxTestCamera>(options);
        });
        return;
    }
    bool const isMissing = !name.contains(QLatin1Char(':')) && !QFileInfo::exists(name);
    if (isMissing || CxFolderControl::isRecordingName(name)) {
        openRecording(name);
        return;
    }
    auto const make = [name](std::atomic<bool> const* stop) {
        return std::make_unique<CxFFmpegSource>(QStringList{name}, 0, stop);
    };
    openLive(QFileInfo(name).fileName(), make, name);
}

void CxMainWindow::openRecording(QString const& fileName)
{
    if (m_record.isRunning())
        return;
    bool const isFirst = !isAnythingOpen();
    m_live.cancelOpening();
    m_messageBar->dismiss();
    m_isOpening = true;
    if (isFirst) {
        m_pages->setCurrentWidget(m_view);
        m_view->setNotice(tr("Opening…"));
    }
    m_play.open(fileName);
    updateActions();
}

void CxMainWindow::openLive(QString const& name, SourceFactory const& make, QString const& fileName)
{
    if (m_record.isRunning())
        return;
    m_messageBar->dismiss();
    m_live.open(name, make, fileName);
    if (isAnythingOpen()) {
        m_isOpening = true;
        m_messageBar->showMessage(CxMessageBar::Kind::Information, tr("Opening “%1”…").arg(name));
    } else {
        m_live.begin();
        m_view->setNotice(tr("Waiting for the first picture…"));
    }
    updateActions();
}

void CxMainWindow::takeOpened(SxOpenedRecording const& info)
{
    m_live.close();
    clearPicture();
    setTitle(QFileInfo(info.fileName).fileName());
    m_recent->add(info.fileName);
    m_startPage->setRecent(m_recent->actions());
    updateActions();
    m_view->setFocus();
}

void CxMainWindow::takeLive()
{
    m_play.close();
    clearPicture();
    setTitle(m_live.name());
    updateActions();
    m_view->setFocus();
}

/// What was open before is still there.
void CxMainWindow::takeOpenFailure()
{
    m_isOpening = false;
    if (!isAnythingOpen()) {
        m_view->setPicture({});
        m_pages->setCurrentWidget(m_startPage);
        setTitle({});
    }
    updateActions();
}

// ---- Showing

void CxMainWindow::setFullScreen(bool isFullScreen)
{
    m_actions->fullScreen->setChecked(isFullScreen);
    menuBar()->setVisible(!isFullScreen);
    m_status->setVisible(!isFullScreen);
    m_fullScreen.setFullScreen(isFullScreen);
    setWindowState(isFullScreen ? windowState() | Qt::WindowFullScreen
                                : windowState() & ~Qt::WindowFullScreen);
    m_view->setFocus();
}

void CxMainWindow::updateActions()
{
    CxActions const& a = *m_actions;
    bool const isLive = m_live.isOpen();
    bool const isSaving = m_record.isRunning() && !isLive; // the recording is being read for that
    bool const hasRecording = player().isOpen() && !isSaving;
    bool const hasPicture = !m_view->picture().image.isNull();
    m_play.setEnabled(hasRecording);
    m_verify->setEnabled(hasRecording);
    m_folder.setEnabled(hasRecording);
    a.closeFile->setEnabled(isAnythingOpen() && !m_record.isRunning());
    m_transport->timeline()->setVisible(!isLive);
    m_transport->setVisible(m_pages->currentWidget() == m_view && !isFullScreen());
    a.play->setEnabled(hasRecording || isLive);
    a.record->setEnabled((hasRecording || isLive) && !m_record.isRunning() && !m_isOpening);
    a.record->setText(isLive ? tr("&Record…") : tr("Save &Part…"));
    m_picture.setEnabled(hasPicture);
    for (QAction* const action : {a.fit, a.actualSize, a.zoomIn, a.zoomOut})
        action->setEnabled(hasPicture);
    for (QAction* const action : {a.open, a.openCamera, a.openSource, a.recentMenu->menuAction()})
        action->setEnabled(!m_record.isRunning());
}

// ---- Events

void CxMainWindow::closeEvent(QCloseEvent* event)
{
    if (m_record.isRunning() &&
        QMessageBox::question(this, tr("Recording"), tr("A recording is under way. End it and quit?"),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes) {
        event->ignore();
        return;
    }
    if (!isFullScreen())
        QSettings().setValue(kGeometryKey, saveGeometry());
    QMainWindow::closeEvent(event);
}

void CxMainWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange)
        m_actions->updateIcons(palette());
    QMainWindow::changeEvent(event);
}

void CxMainWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && isFullScreen())
        setFullScreen(false);
    else
        QMainWindow::keyPressEvent(event);
}

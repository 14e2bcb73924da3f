#include "MainWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QInputDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "Actions.h"
#include "FFmpegSource.h"
#include "FileDialogs.h"
#include "HelpWindow.h"
#include "MessageBar.h"
#include "PictureView.h"
#include "PluginHost.h"
#include "RecentFiles.h"
#include "RecordBar.h"
#include "RecordJob.h"
#include "RecordingSource.h"
#include "StartPage.h"
#include "StatusBar.h"
#include "TestCamera.h"
#include "Timeline.h"
#include "TransportBar.h"

static QString const kGeometryKey = QStringLiteral("window/geometry");

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
{
    setObjectName(QStringLiteral("mainWindow"));
    setAcceptDrops(true);
    m_actions->fill(menuBar());
    m_actions->updateIcons(palette());
    m_recent = new CxRecentFiles(m_actions->recentMenu, this);
    m_startPage->setRecent(m_recent->actions());
    addActions(m_actions->findChildren<QAction*>()); // keys work with the menu bar hidden, too

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
    column->addWidget(m_pages, 1);
    column->addWidget(m_transport);
    setCentralWidget(centre);
    setStatusBar(m_status);

    connectActions();
    connectPlayer();
    connectView();
    setTitle({});
    updateActions();
    if (!restoreGeometry(QSettings().value(kGeometryKey).toByteArray()))
        resize(1024, 720);
}

CxMainWindow::~CxMainWindow()
{
    m_live.reset(); // before the job that it may be running
    m_job.reset();
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
    on(a.record, [this] { askHowToRecord(); });
    on(a.savePicture, [this] { askForPictureFile(); });
    on(a.quit, [this] { close(); });
    on(a.copy, [this] { QApplication::clipboard()->setImage(m_view->picture().image.copy()); });
    on(a.play, [this] { togglePlaying(); });
    on(a.previousPicture, [this] { m_player.step(-1); });
    on(a.nextPicture, [this] { m_player.step(1); });
    on(a.previousKeyFrame, [this] { m_player.toPreviousKeyFrame(); });
    on(a.nextKeyFrame, [this] { m_player.toNextKeyFrame(); });
    on(a.first, [this] { m_player.seek(0); });
    on(a.last, [this] { m_player.seek(m_player.info().count - 1); });
    on(a.goTo, [this] { askForNumber(); });
    on(a.loop, [this](bool isOn) { m_player.setLooping(isOn); });
    connect(a.speeds, &QActionGroup::triggered, this,
            [this](QAction* action) { m_player.setSpeed(action->data().toDouble()); });
    on(a.fit, [this] { m_view->fit(); });
    on(a.actualSize, [this] { m_view->showActualSize(); });
    on(a.zoomIn, [this] { m_view->zoomIn(); });
    on(a.zoomOut, [this] { m_view->zoomOut(); });
    on(a.fullScreen, [this](bool isOn) { setFullScreen(isOn); });
    on(a.keys, [this] {
        auto* const window = new CxHelpWindow(*m_actions, this);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->show();
    });
    on(a.about, [this] {
        auto* const window = new CxAboutWindow(m_plugins, this);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->show();
    });
}

void CxMainWindow::connectPlayer()
{
    connect(&m_player, &CxPlayer::opened, this, &CxMainWindow::takeOpened);
    connect(&m_player, &CxPlayer::openFailed, this, &CxMainWindow::takeOpenFailure);
    connect(&m_player, &CxPlayer::pictureFailed, this, &CxMainWindow::takePictureFailure);
    connect(&m_player, &CxPlayer::shown, this, [this](SxShownPicture const& picture) {
        m_view->setPicture(picture);
        m_transport->showNumber(picture.number);
    });
    connect(&m_player, &CxPlayer::playingChanged, m_actions, &CxActions::showPlaying);
    connect(&m_player, &CxPlayer::rateMeasured, m_status, &CxStatusBar::showRate);

    CxTimeline* const timeline = m_transport->timeline();
    connect(timeline, &QAbstractSlider::valueChanged, &m_player, &CxPlayer::seek);
    connect(timeline, &QAbstractSlider::sliderPressed, this, [this] {
        m_resumesAfterDrag = m_player.isPlaying();
        m_player.setPlaying(false);
    });
    connect(timeline, &QAbstractSlider::sliderReleased, this,
            [this] { m_player.setPlaying(m_resumesAfterDrag); });
}

void CxMainWindow::connectView()
{
    connect(m_view, &CxPictureView::doubleClicked, m_actions->fullScreen, &QAction::trigger);
    connect(m_view, &CxPictureView::pictureShown, this, [this](SxShownPicture const&, bool isFirst) {
        if (isFirst)
            updateActions();
    });
    connect(m_recent, &CxRecentFiles::chosen, this, &CxMainWindow::openRecording);
    connect(m_messageBar, &CxMessageBar::triggered, this, [this] { openRecording(m_offeredFile); });
    connect(m_recordBar, &CxRecordBar::stopRequested, this, [this] { m_job->cancel(); });
}

// ---- Opening and closing

void CxMainWindow::closeAll()
{
    m_live.reset();
    m_player.close();
    m_isFrozen = false;
    m_view->setPicture({});
    m_view->fit();
    m_transport->setRecording({});
    m_status->clearTexts();
    m_messageBar->dismiss();
    setTitle({});
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
    static QStringList const kRecordingSuffixes{QStringLiteral("h264"), QStringLiteral("264")};
    bool const isMissing = !name.contains(QLatin1Char(':')) && !QFileInfo::exists(name);
    if (isMissing || kRecordingSuffixes.contains(QFileInfo(name).suffix().toLower())) {
        openRecording(name);
        return;
    }
    openLive(QFileInfo(name).fileName(), [name](std::atomic<bool> const* stop) {
        return std::make_unique<CxFFmpegSource>(QStringList{name}, 0, stop);
    });
}

void CxMainWindow::openRecording(QString const& fileName)
{
    if (isRecording())
        return;
    closeAll();
    m_view->setNotice(tr("Opening…"));
    m_pages->setCurrentWidget(m_view);
    m_player.open(fileName);
    updateActions();
}

void CxMainWindow::openLive(QString const& name, SourceFactory const& make)
{
    if (isRecording())
        return;
    closeAll();
    m_view->setNotice(tr("Waiting for the first picture…"));
    m_pages->setCurrentWidget(m_view);
    m_view->setFocus();
    setTitle(name);
    m_live = std::make_unique<CxLiveSource>(make);
    connect(m_live.get(), &CxLiveSource::pictureCame, this, &CxMainWindow::takeLivePicture);
    connect(m_live.get(), &CxLiveSource::sourceEnded, this, &CxMainWindow::takeSourceEnd);
    m_actions->showPlaying(true);
    updateActions();
}

void CxMainWindow::takeOpened(SxOpenedRecording const& info)
{
    setTitle(QFileInfo(info.fileName).fileName());
    m_transport->setRecording(info);
    m_recent->add(info.fileName);
    m_startPage->setRecent(m_recent->actions());
    updateActions();
    m_view->setFocus();
}

/// Why a file did not open, as far as the file itself tells.
static QString fx_WhyNotOpened(QString const& fileName)
{
    QFileInfo const info(fileName);
    QString const name = info.fileName();
    if (!info.exists())
        return CxMainWindow::tr("“%1” does not exist.").arg(QDir::toNativeSeparators(fileName));
    if (info.isDir())
        return CxMainWindow::tr("“%1” is a folder, not a recording.").arg(name);
    if (!info.isReadable())
        return CxMainWindow::tr("You are not allowed to read “%1”.").arg(name);
    if (info.size() == 0)
        return CxMainWindow::tr("“%1” is empty.").arg(name);
    return CxMainWindow::tr("“%1” is not an H.264 recording, or its beginning is damaged.").arg(name);
}

void CxMainWindow::takeOpenFailure(QString const& fileName, QStringList const& messages)
{
    m_player.close();
    m_view->setPicture({});
    m_pages->setCurrentWidget(m_startPage);
    m_messageBar->showMessage(CxMessageBar::Kind::Warning, fx_WhyNotOpened(fileName),
                              messages.isEmpty() ? QStringList{tr("The plug-in gave no reason.")} : messages);
    updateActions();
}

void CxMainWindow::takePictureFailure(int number, QStringList const& messages)
{
    QString const text = tr("Picture %1 cannot be shown: the recording is damaged there.").arg(number);
    m_view->setNotice(text);
    m_transport->showNumber(number);
    m_messageBar->showMessage(CxMessageBar::Kind::Warning,
                              text + QLatin1Char(' ') + tr("Other pictures may still be fine."),
                              messages.isEmpty() ? QStringList{tr("The plug-in gave no reason.")} : messages);
    updateActions();
}

void CxMainWindow::takeLivePicture(SxShownPicture const& picture)
{
    if (m_isFrozen)
        return;
    m_view->setPicture(picture);
    m_transport->showLive(picture.number, picture.data->picBuf()->timestamp);
}

void CxMainWindow::takeSourceEnd(QString const& error)
{
    m_actions->showPlaying(false);
    QString const text = error.isEmpty() ? tr("The source has ended.") : tr("The source cannot be read.");
    if (m_view->picture().image.isNull())
        m_view->setNotice(text);
    m_messageBar->showMessage(error.isEmpty() ? CxMessageBar::Kind::Information : CxMessageBar::Kind::Warning,
                              text, error.isEmpty() ? QStringList() : QStringList{error});
    m_live->wait(); // it is past its work
    m_live.reset();
    updateActions();
}

// ---- Showing

void CxMainWindow::togglePlaying()
{
    if (m_live) {
        m_isFrozen = !m_isFrozen;
        m_actions->showPlaying(!m_isFrozen);
    } else {
        m_player.setPlaying(!m_player.isPlaying());
    }
}

void CxMainWindow::askForNumber()
{
    bool isChosen = false;
    int const last = m_player.info().count - 1;
    int const number = QInputDialog::getInt(this, tr("Go to Picture"), tr("Number, 0 to %1:").arg(last),
                                            std::max(m_player.shownNumber(), 0), 0, last, 1, &isChosen);
    if (isChosen)
        m_player.seek(number);
}

void CxMainWindow::setFullScreen(bool isFullScreen)
{
    m_actions->fullScreen->setChecked(isFullScreen);
    menuBar()->setVisible(!isFullScreen);
    statusBar()->setVisible(!isFullScreen);
    m_transport->setVisible(!isFullScreen);
    setWindowState(isFullScreen ? windowState() | Qt::WindowFullScreen
                                : windowState() & ~Qt::WindowFullScreen);
    m_view->setFocus();
}

void CxMainWindow::updateActions()
{
    CxActions const& a = *m_actions;
    bool const isSaving = isRecording() && !m_live; // the recording is being read for that
    bool const hasRecording = m_player.isOpen() && !isSaving;
    bool const hasPicture = !m_view->picture().image.isNull();
    for (QAction* const action : {a.previousPicture, a.nextPicture, a.previousKeyFrame, a.nextKeyFrame,
                                  a.first, a.last, a.goTo, a.loop})
        action->setEnabled(hasRecording);
    a.speeds->setEnabled(hasRecording);
    m_transport->timeline()->setEnabled(hasRecording);
    m_transport->timeline()->setVisible(!m_live);
    m_transport->setVisible(m_pages->currentWidget() == m_view && !isFullScreen());
    a.play->setEnabled(hasRecording || m_live);
    a.record->setEnabled((hasRecording || m_live) && !isRecording());
    a.record->setText(m_live ? tr("&Record…") : tr("Save &Part…"));
    for (QAction* const action : {a.savePicture, a.copy, a.fit, a.actualSize, a.zoomIn, a.zoomOut})
        action->setEnabled(hasPicture);
    for (QAction* const action : {a.open, a.openCamera, a.openSource, a.recentMenu->menuAction()})
        action->setEnabled(!isRecording());
}

// ---- Recording

void CxMainWindow::askHowToRecord()
{
    bool const isLive = bool(m_live);
    auto* const dialog = isLive ? new CxRecordDialog(-1, 0.0, {}, this)
                                : new CxRecordDialog(m_player.info().count, m_player.info().fps,
                                                     m_player.info().fileName, this);
    m_player.setPlaying(false);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] { startRecording(dialog->choice()); });
    dialog->open();
}

void CxMainWindow::startRecording(SxRecordChoice const& choice)
{
    m_messageBar->dismiss();
    m_player.setPlaying(false);
    int const expected = m_live ? (choice.request.maxPictures > 0 ? choice.request.maxPictures : -1)
                                : choice.last - choice.first + 1;
    m_job = std::make_unique<CxRecordJob>(choice.request);
    connect(m_job.get(), &CxRecordJob::progressed, m_recordBar, &CxRecordBar::showProgress);
    connect(m_job.get(), &CxRecordJob::finished, this, &CxMainWindow::finishRecording);
    m_isJobRunning = true;
    m_recordBar->begin(choice.request.outputFile, expected);
    if (m_live) {
        m_live->record(m_job.get());
    } else {
        QString error;
        m_job->start(std::make_unique<CxRecordingSource>(CxPluginHost::create("IxImageDataLoader", error),
                                                         m_player.info().fileName, choice.first,
                                                         choice.last));
    }
    updateActions();
}

void CxMainWindow::finishRecording(SxRecordSummary const& summary)
{
    m_isJobRunning = false;
    m_recordBar->hide();
    m_offeredFile = m_job->request().outputFile;
    QString const name = QFileInfo(m_offeredFile).fileName();
    CxRecordDialog::applyRememberedOptions();

    QStringList parts;
    if (!summary.error.isEmpty())
        parts.append(tr("Saving to “%1” failed.").arg(name));
    else if (summary.wasStopped)
        parts.append(tr("Stopped: “%1” holds what was saved until then.").arg(name));
    else
        parts.append(tr("“%1” is complete.").arg(name));
    if (summary.coded > 0)
        parts.append(tr("%n picture(s) saved, %1.", nullptr, summary.coded)
                         .arg(locale().formattedDataSize(summary.bytes, 1, QLocale::DataSizeSIFormat)));
    if (!summary.skipped.isEmpty())
        parts.append(
            tr("%n picture(s) left out by the encoder to keep the bit rate; a higher quality keeps more.",
               nullptr, summary.skipped.size()));
    bool const failed = !summary.error.isEmpty();
    m_messageBar->showMessage(failed ? CxMessageBar::Kind::Warning : CxMessageBar::Kind::Information,
                              parts.join(QLatin1Char(' ')),
                              failed ? QStringList{summary.error} : QStringList());
    if (summary.coded > 0)
        m_messageBar->offer(tr("&Open It"));
    updateActions();
}

void CxMainWindow::askForPictureFile()
{
    QString const base =
        m_player.isOpen() ? QFileInfo(m_player.info().fileName).completeBaseName() : tr("live");
    QString const fileName = CxFileDialogs::pictureToSave(this, base, m_view->picture().number);
    if (!fileName.isEmpty())
        savePictureAs(fileName);
}

bool CxMainWindow::savePictureAs(QString const& fileName)
{
    if (m_view->picture().image.save(fileName))
        return true;
    m_messageBar->showMessage(
        CxMessageBar::Kind::Warning,
        tr("The picture could not be saved to “%1”.").arg(QDir::toNativeSeparators(fileName)));
    return false;
}

// ---- Events

void CxMainWindow::closeEvent(QCloseEvent* event)
{
    if (isRecording() &&
        QMessageBox::question(this, tr("Recording"), tr("A recording is under way. End it and quit?")) !=
            QMessageBox::Yes) {
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

void CxMainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls() && !isRecording())
        event->acceptProposedAction();
}

void CxMainWindow::dropEvent(QDropEvent* event)
{
    QUrl const url = event->mimeData()->urls().value(0);
    if (!url.isEmpty())
        openNamed(url.isLocalFile() ? url.toLocalFile() : url.toString());
}

#pragma once

#include <QMainWindow>

#include "FolderControl.h"
#include "FullScreenBar.h"
#include "LiveControl.h"
#include "LookControl.h"
#include "OverviewControl.h"
#include "PictureControl.h"
#include "PlayControl.h"
#include "RateControl.h"
#include "RecordControl.h"

class CxPluginHost;
class CxRecentFiles;
class CxRecordBar;
class CxStartPage;
class CxStatusBar;
class CxVerifyControl;
class QStackedWidget;

/// The viewer's window: menus, pages and what may be done when. What a recording or a live source does in it
/// lies in CxPlayControl and CxLiveControl, what is recorded in CxRecordControl.
class CxMainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// \param plugins  loaded before, and alive as long as the window.
    explicit CxMainWindow(CxPluginHost const& plugins, QWidget* parent = nullptr);

    /// Opens what a person names: a recording, "camera:" for the test camera, or anything that FFmpeg reads.
    void openNamed(QString const& name);
    void openRecording(QString const& fileName);

    /// \param name  shown in the title.
    /// \param fileName  what is read, when that is a file: no recording may go there.
    void openLive(QString const& name, SourceFactory const& make, QString const& fileName = {});

    /// Begins a recording of what is open; one at a time.
    void startRecording(SxRecordChoice const& choice) { m_record.start(choice); }

    CxPlayer& player() { return m_play.player(); }

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildCentre();
    void connectActions();
    void connectControls();
    bool isAnythingOpen() { return player().isOpen() || m_live.isOpen(); }
    void clearPicture();
    void closeShown();
    void takeOpened(SxOpenedRecording const& info);
    void takeLive();
    void takeOpenFailure();
    void setTitle(QString const& name);
    void setFullScreen(bool isFullScreen);
    void updateActions();

    CxPluginHost const& m_plugins;
    CxActions* m_actions;
    QStackedWidget* m_pages;
    CxStartPage* m_startPage;
    CxPictureView* m_view;
    CxMessageBar* m_messageBar;
    CxRecordBar* m_recordBar;
    CxTransportBar* m_transport;
    CxStatusBar* m_status;
    CxRecentFiles* m_recent;
    CxPlayControl m_play;
    CxVerifyControl* m_verify;
    CxLiveControl m_live;
    CxLookControl m_look;
    CxFolderControl m_folder;
    CxPictureControl m_picture;
    CxFullScreenBar m_fullScreen;
    CxRateControl m_rate;
    CxOverviewControl m_overview;
    bool m_isOpening = false; ///< something else than what is shown
    CxRecordControl m_record; ///< destroyed first: ends what m_live runs
};

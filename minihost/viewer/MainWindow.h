#pragma once

#include <QMainWindow>
#include <memory>

#include "LiveSource.h"
#include "Player.h"
#include "RecordDialog.h"

class CxActions;
class CxMessageBar;
class CxPictureView;
class CxPluginHost;
class CxRecentFiles;
class CxRecordBar;
class CxRecordJob;
class CxStartPage;
class CxStatusBar;
class CxTransportBar;
class QStackedWidget;

/// The viewer's window: shows a recording or a live source, and records.
class CxMainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// \param plugins  loaded before, and alive as long as the window.
    explicit CxMainWindow(CxPluginHost const& plugins, QWidget* parent = nullptr);
    ~CxMainWindow() override;

    /// Opens what a person names: a recording, "camera:" for the test camera, or anything that FFmpeg reads.
    void openNamed(QString const& name);
    void openRecording(QString const& fileName);
    void openLive(QString const& name, SourceFactory const& make); ///< \p name is shown in the title

    /// Begins a recording of what is open; one at a time.
    void startRecording(SxRecordChoice const& choice);

    bool savePictureAs(QString const& fileName); ///< PNG or what the suffix says; failure is shown

    CxPlayer& player() { return m_player; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void connectActions();
    void connectPlayer();
    void connectView();

    void askForNumber();
    void askForPictureFile();
    void askHowToRecord();
    void togglePlaying();
    void setFullScreen(bool isFullScreen);

    void takeOpened(SxOpenedRecording const& info);
    void takeOpenFailure(QString const& fileName, QStringList const& messages);
    void takePictureFailure(int number, QStringList const& messages);
    void takeLivePicture(SxShownPicture const& picture);
    void takeSourceEnd(QString const& error);
    void finishRecording(SxRecordSummary const& summary);

    void closeAll();
    void setTitle(QString const& name);
    void updateActions();
    bool isRecording() const { return m_job && m_isJobRunning; }

    CxPluginHost const& m_plugins;
    CxPlayer m_player;
    std::unique_ptr<CxRecordJob> m_job; ///< the last one; before m_live, which may be running it
    bool m_isJobRunning = false;
    std::unique_ptr<CxLiveSource> m_live;
    bool m_isFrozen = false; ///< live, but the picture stands still
    bool m_resumesAfterDrag = false;

    CxActions* m_actions;
    QStackedWidget* m_pages;
    CxStartPage* m_startPage;
    CxPictureView* m_view;
    CxMessageBar* m_messageBar;
    CxRecordBar* m_recordBar;
    CxTransportBar* m_transport;
    CxStatusBar* m_status;
    CxRecentFiles* m_recent;
    QString m_offeredFile; ///< what the message's button opens
};

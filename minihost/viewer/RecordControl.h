#pragma once

#include <QObject>
#include <memory>

#include "RecordDialog.h"
#include "RecordJob.h"

class CxLiveControl;
class CxMessageBar;
class CxPlayControl;
class CxRecordBar;
class QWidget;

/// Records what the window shows, a live source or a part of the recording open: asks how, runs the job and
/// says how it went. One recording at a time.
class CxRecordControl : public QObject
{
    Q_OBJECT

public:
    CxRecordControl(CxPlayControl& play, CxLiveControl& live, CxRecordBar& bar, CxMessageBar& messages,
                    QWidget& window);
    ~CxRecordControl() override; ///< ends a recording under way

    bool isRunning() const { return m_isRunning; }
    /// With the save dialog, which starts the recording. \p shown: the format of the pictures, when known.
    void ask(SxPicBufInfo const& shown);
    void start(SxRecordChoice const& choice);

signals:
    void runningChanged();
    void openRequested(QString const& fileName); ///< the user wants to see what was recorded

private:
    void finish(SxRecordSummary const& summary);

    CxPlayControl& m_play;
    CxLiveControl& m_live;
    CxRecordBar& m_bar;
    CxMessageBar& m_messages;
    QWidget& m_window;                  ///< of the dialog
    std::unique_ptr<CxRecordJob> m_job; ///< the last one
    bool m_isRunning = false;
};

#pragma once

#include <QFrame>

#include "Recorder.h"

class QLabel;
class QProgressBar;
class QPushButton;

/// Shows a recording under way, a warning once pictures are lost, and the button that ends it.
class CxRecordBar : public QFrame
{
    Q_OBJECT

public:
    explicit CxRecordBar(QWidget* parent = nullptr); ///< hidden

    void begin(SxRecordRequest const& request, int expectedPictures); ///< -1 when nobody knows how many
    void showProgress(SxRecordSummary const& summary);

signals:
    void stopRequested();

private:
    QLabel* m_text;
    QProgressBar* m_progress;
    QPushButton* m_stop;
    QFrame* m_warning;
    QLabel* m_warningText;
    SxRecordRequest m_request;
};

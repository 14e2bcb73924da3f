#pragma once

#include <QFrame>

#include "Recorder.h"

class QLabel;
class QProgressBar;
class QPushButton;

/// Shows a recording under way and the button that ends it.
class CxRecordBar : public QFrame
{
    Q_OBJECT

public:
    explicit CxRecordBar(QWidget* parent = nullptr); ///< hidden

    void begin(QString const& fileName, int expectedPictures); ///< -1 when nobody knows how many
    void showProgress(SxRecordSummary const& summary);

signals:
    void stopRequested();

private:
    QLabel* m_text;
    QProgressBar* m_progress;
    QPushButton* m_stop;
    QString m_name;
};

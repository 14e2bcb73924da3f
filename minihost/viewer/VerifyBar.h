#pragma once

#include <QWidget>

class QProgressBar;
class QToolButton;

/// In the status bar: how far verifying is, and the button that ends it.
class CxVerifyBar : public QWidget
{
    Q_OBJECT

public:
    explicit CxVerifyBar(QWidget* parent);

    void showProgress(int examined, int pictures); ///< 0 pictures: not known yet

signals:
    void stopRequested();

private:
    QProgressBar* m_progress;
    QToolButton* m_stop;
};

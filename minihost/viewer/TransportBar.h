#pragma once

#include <QWidget>

#include "OpenedRecording.h"

class CxActions;
class CxTimeline;
class QAction;
class QComboBox;
class QHBoxLayout;
class QLabel;
class QToolButton;

/// Below the picture: the timeline, the player's buttons, and which picture is shown.
class CxTransportBar : public QWidget
{
    Q_OBJECT

public:
    CxTransportBar(CxActions& actions, QWidget* parent);

    CxTimeline* timeline() const { return m_timeline; }
    QSize minimumSizeHint() const override; ///< narrow: what finds no room is left out
    void setRecording(SxOpenedRecording const& info);
    void setRate(double fps);    ///< of the recording
    void showNumber(int number); ///< -1: no picture is shown
    void showLive(int number, quint64 timestamp);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QToolButton* newButton(QAction* action);
    QToolButton* newPlayerButton(QAction* action);
    QToolButton* newRecordButton(QAction* action);
    void connectSpeed(CxActions& actions);
    void nameLabels();
    void fitRow();
    void showTexts(QString const& number, QString const& time);

    QHBoxLayout* m_row;
    CxTimeline* m_timeline;
    QLabel* m_number;
    QLabel* m_time;
    QComboBox* m_speed;
    QToolButton* m_record;
    QVector<QVector<QWidget*>> m_leftOut; ///< what goes first, in that order, where room is short
    SxOpenedRecording m_info;
};

#pragma once

#include <QWidget>

#include "Levels.h"

class CxHistogramPlot;
class QAction;
class QDoubleSpinBox;
class QLabel;
class QSpinBox;

/// The histogram of the picture shown, and with which levels the screen shows it.
class CxLevelsPanel : public QWidget
{
    Q_OBJECT

public:
    CxLevelsPanel(QAction* markClipping, QWidget* parent);

    void setHistogram(SxHistogram const& histogram); ///< of other bits than before: levels begin anew
    SxLevels levels() const;

signals:
    void levelsChanged();

private:
    void buildControls(QAction* markClipping);
    void setLevels(SxLevels const& levels);
    void takeInput();

    SxHistogram m_histogram;
    CxHistogramPlot* m_plot;
    QLabel* m_shares;
    QSpinBox* m_black;
    QSpinBox* m_white;
    QDoubleSpinBox* m_gamma;
};

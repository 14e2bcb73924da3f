#pragma once

#include <QLine>
#include <QRect>
#include <QWidget>
#include <array>

#include "RegionStatistics.h"

class CxProfilePlot;
class QGridLayout;
class QLabel;
class QRadioButton;
class QSpinBox;

/// Where is measured, as numbers that can be set, and what came out: the statistics of a region and the
/// profile along a line.
class CxMeasurePanel : public QWidget
{
    Q_OBJECT

public:
    explicit CxMeasurePanel(QWidget* parent);

    void setPictureSize(QSize const& size); ///< another than before: the region becomes its middle quarter
    QRect region() const;
    QLine line() const;
    void setRegion(QRect const& region);
    void setLine(QLine const& line);
    void showStatistics(std::vector<SxSampleStatistics> const& statistics);
    void showProfile(std::vector<SxPixel> const& profile);

signals:
    void placesChanged();
    void drawsLineChanged(bool drawsLine); ///< what the mouse draws; else the region

private:
    QSpinBox* newNumber(char const* name, QString const& what);
    void addNumbers(QGridLayout* grid, std::array<QSpinBox*, 4> const& numbers, QStringList const& names);
    QLabel* newValue(char const* name);
    void keepInside();

    QSize m_size;
    std::array<QSpinBox*, 4> m_region; ///< left, top, width, height
    std::array<QSpinBox*, 4> m_line;   ///< from, to
    QRadioButton* m_drawsRegion;
    QRadioButton* m_drawsLine;
    std::array<QLabel*, 4> m_values; ///< mean, lowest, highest, deviation: a line a component
    QLabel* m_names;
    CxProfilePlot* m_plot;
};

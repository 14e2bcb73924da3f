#pragma once

#include <QWidget>
#include <optional>

#include "Levels.h"

/// A histogram from black on the left to full scale on the right, and between which samples the screen has
/// its black and white. Heights are square roots of the counts, so that the few can be seen beside the many.
class CxHistogramPlot : public QWidget
{
    Q_OBJECT

public:
    explicit CxHistogramPlot(QWidget* parent = nullptr);

    void setHistogram(SxHistogram const& histogram);
    void setLevels(SxLevels const& levels);

    QSize sizeHint() const override { return {220, 120}; }
    QSize minimumSizeHint() const override { return {120, 80}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void paintCounts(QPainter& painter, int component, QColor const& colour) const;
    double positionOf(int sample) const;

    SxHistogram m_histogram;
    SxLevels m_levels;
    std::vector<quint32> m_columns[3]; ///< the counts, as many samples to one as it takes
    quint32 m_highest = 0;             ///< of these
};

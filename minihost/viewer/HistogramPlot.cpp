#include "HistogramPlot.h"

#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "MousePosition.h"
#include "PlotColours.h"

static constexpr size_t kColumns = 256;

CxHistogramPlot::CxHistogramPlot(QWidget* parent)
    : QWidget(parent)
{
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void CxHistogramPlot::setHistogram(SxHistogram const& histogram)
{
    m_histogram = histogram;
    m_highest = 0;
    for (size_t c = 0; c < 3; ++c) {
        std::vector<quint32> const& counts = histogram.counts[c];
        m_columns[c].assign(counts.empty() ? 0 : kColumns, 0);
        for (size_t i = 0; i < counts.size(); ++i)
            m_columns[c][i * kColumns / counts.size()] += counts[i];
        for (quint32 const count : m_columns[c])
            m_highest = std::max(m_highest, count);
    }
    update();
}

void CxHistogramPlot::setLevels(SxLevels const& levels)
{
    m_levels = levels;
    update();
}

double CxHistogramPlot::positionOf(int sample) const
{
    int const full = (1 << m_histogram.bits) - 1;
    return full > 0 ? 0.5 + (width() - 1.0) * sample / full : 0.5;
}

void CxHistogramPlot::paintCounts(QPainter& painter, int component, QColor const& colour) const
{
    std::vector<quint32> const& columns = m_columns[component];
    double const step = double(width()) / kColumns;
    QPainterPath path;
    path.moveTo(0, height());
    for (size_t i = 0; i < columns.size(); ++i) {
        double const share = std::sqrt(double(columns[i]) / m_highest);
        double const y = height() - share * (height() - 2.0);
        path.lineTo(static_cast<double>(i) * step, y);
        path.lineTo(static_cast<double>(i + 1) * step, y);
    }
    path.lineTo(width(), height());
    painter.fillPath(path, colour);
}

void CxHistogramPlot::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), kPlotGround);
    if (m_highest == 0)
        return;
    painter.setCompositionMode(QPainter::CompositionMode_Plus); // where all three are, it is grey
    for (int c = 0; c < m_histogram.components; ++c)
        paintCounts(painter, c, m_histogram.components == 1 ? kPlotGrey : kPlotColours[c]);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setPen(QPen(Qt::white, 1.0, Qt::DashLine));
    for (int const sample : {m_levels.black, m_levels.white})
        painter.drawLine(QPointF(positionOf(sample), 0), QPointF(positionOf(sample), height()));
}

void CxHistogramPlot::mouseMoveEvent(QMouseEvent* event)
{
    if (m_histogram.components == 0)
        return;
    std::vector<quint32> const& counts = m_histogram.counts[0];
    double const share = std::clamp(fx_MousePosition(*event).x() / width(), 0.0, 1.0);
    auto const sample =
        std::min(static_cast<size_t>(share * static_cast<double>(counts.size())), counts.size() - 1);
    quint32 pixels = 0;
    for (std::vector<quint32> const& component : m_histogram.counts)
        pixels += component.empty() ? 0 : component[sample];
    QToolTip::showText(mapToGlobal(event->pos()),
                       tr("Value %1: %2 samples").arg(QString::number(sample), locale().toString(pixels)),
                       this);
}

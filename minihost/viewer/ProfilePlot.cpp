#include "ProfilePlot.h"

#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>

#include "MousePosition.h"
#include "PlotColours.h"

CxProfilePlot::CxProfilePlot(QWidget* parent)
    : QWidget(parent)
{
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void CxProfilePlot::setProfile(std::vector<SxPixel> const& profile)
{
    m_profile = profile;
    m_lowest = 0xFFFF;
    m_highest = 0;
    for (SxPixel const& pixel : profile) {
        for (size_t c = 0; c < static_cast<size_t>(pixel.components); ++c) {
            m_lowest = std::min(m_lowest, pixel.samples[c]);
            m_highest = std::max(m_highest, pixel.samples[c]);
        }
    }
    update();
}

double CxProfilePlot::heightOf(int sample) const
{
    double const span = std::max(m_highest - m_lowest, 1);
    return height() - 3.0 - (sample - m_lowest) / span * (height() - 6.0);
}

void CxProfilePlot::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), kPlotGround);
    if (m_profile.empty())
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    double const step = m_profile.size() > 1 ? (width() - 1.0) / double(m_profile.size() - 1) : 0.0;
    int const components = m_profile.front().components;
    for (int c = 0; c < components; ++c) {
        QPolygonF line;
        for (size_t i = 0; i < m_profile.size(); ++i)
            line.append({0.5 + double(i) * step, heightOf(m_profile[i].samples[static_cast<size_t>(c)])});
        painter.setPen(QPen(components == 1 ? kPlotGrey : kPlotColours[c], 1.2));
        painter.drawPolyline(line);
    }
    painter.setPen(kPlotGrey);
    painter.drawText(rect().adjusted(4, 2, -4, -2), int(Qt::AlignTop) | int(Qt::AlignRight),
                     QString::number(m_highest));
    painter.drawText(rect().adjusted(4, 2, -4, -2), int(Qt::AlignBottom) | int(Qt::AlignRight),
                     QString::number(m_lowest));
}

void CxProfilePlot::mouseMoveEvent(QMouseEvent* event)
{
    if (m_profile.empty())
        return;
    double const share = std::clamp(fx_MousePosition(*event).x() / width(), 0.0, 1.0);
    auto const at = std::min(static_cast<size_t>(share * double(m_profile.size())), m_profile.size() - 1);
    SxPixel const& pixel = m_profile[at];
    QString const place = QString::number(at);
    QString const text = pixel.components == 1
                             ? tr("Step %1: grey %2").arg(place, QString::number(pixel.samples[0]))
                             : tr("Step %1: red %2, green %3, blue %4")
                                   .arg(place, QString::number(pixel.samples[0]),
                                        QString::number(pixel.samples[1]), QString::number(pixel.samples[2]));
    QToolTip::showText(mapToGlobal(event->pos()), text, this);
}

#include "MeasureOverlay.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "MousePosition.h"
#include "PictureView.h"

static QColor const kLineColour(0xff, 0xd0, 0x40); // on a darker seam it is seen on any picture
static QColor const kSeamColour(0, 0, 0, 0xa0);

CxMeasureOverlay::CxMeasureOverlay(CxPictureView& view)
    : QWidget(&view)
    , m_view(view)
{
    setObjectName(QStringLiteral("measureOverlay"));
    setMouseTracking(true);
    setCursor(Qt::CrossCursor);
    view.installEventFilter(this);
    resize(view.size());
    hide();
}

bool CxMeasureOverlay::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        resize(m_view.size());
    return QWidget::eventFilter(watched, event);
}

void CxMeasureOverlay::setRegion(QRect const& region)
{
    m_region = region;
    update();
}

void CxMeasureOverlay::setLine(QLine const& line)
{
    m_line = line;
    update();
}

void CxMeasureOverlay::paintEvent(QPaintEvent*)
{
    QSize const picture = m_view.picture().image.size();
    if (picture.isEmpty())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QTransform const toView = m_view.toView();
    QPointF const middle(0.5, 0.5); // of the pixel that is meant
    for (QPen const& pen : {QPen(kSeamColour, 3.0), QPen(kLineColour, 1.2)}) {
        painter.setPen(pen);
        if (!m_region.isEmpty())
            painter.drawPolygon(toView.map(QPolygonF(QRectF(m_region))));
        QLineF const line(m_line.p1() + middle, m_line.p2() + middle);
        if (!m_line.isNull())
            painter.drawLine(toView.map(line));
    }
}

QPoint CxMeasureOverlay::pixelUnder(QMouseEvent const& event) const
{
    QPoint const pixel = m_view.pixelAt(fx_MousePosition(event));
    QSize const size = m_view.picture().image.size();
    return {std::clamp(pixel.x(), 0, size.width() - 1), std::clamp(pixel.y(), 0, size.height() - 1)};
}

void CxMeasureOverlay::mousePressEvent(QMouseEvent* event)
{
    m_isDrawing = event->button() == Qt::LeftButton && !m_view.picture().image.isNull();
    if (m_isDrawing)
        m_start = pixelUnder(*event);
    else
        event->ignore();
}

void CxMeasureOverlay::mouseMoveEvent(QMouseEvent* event)
{
    event->ignore(); // the view tells the pixel under it
    if (!m_isDrawing || m_view.picture().image.isNull())
        return;
    QPoint const end = pixelUnder(*event);
    if (m_draws == Draws::Line) {
        emit lineDrawn({m_start, end});
        return;
    }
    QPoint const low(std::min(m_start.x(), end.x()), std::min(m_start.y(), end.y()));
    QPoint const high(std::max(m_start.x(), end.x()), std::max(m_start.y(), end.y()));
    emit regionDrawn({low, high}); // both corners belong to it
}

void CxMeasureOverlay::mouseReleaseEvent(QMouseEvent* event)
{
    m_isDrawing = false;
    event->ignore();
}

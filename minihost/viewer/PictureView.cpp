#include "PictureView.h"

#include <QKeyEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "MousePosition.h"

static constexpr double kLargestZoom = 64.0;
static constexpr double kSmallestZoom = 1.0 / 32.0;
static constexpr double kZoomStep = 1.25;
static constexpr double kPanStep = 48.0;
static constexpr double kStripe = 4.0; // screen pixels that a stripe over clipped pixels is wide

// Pictures are judged against the same dark surround whatever the desktop's colours.
static QColor const kSurround(0x1c, 0x1c, 0x1e);
static QColor const kNoticeColour(0xc8, 0xc8, 0xcc);

CxPictureView::CxPictureView(QWidget* parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void CxPictureView::redraw()
{
    m_reduced = {};
    if (m_look.marksClipping) // stripes are as wide at any zoom
        m_looked = {};
    update();
}

void CxPictureView::setLook(SxPictureLook const& look)
{
    if (look == m_look)
        return;
    m_look = look;
    m_looked = {};
    redraw();
}

void CxPictureView::setTurning(SxTurning const& turning)
{
    m_turning = turning;
    if (m_picture.data)
        setPicture(SxShownPicture(m_picture));
}

void CxPictureView::setPicture(SxShownPicture const& picture)
{
    bool const isFirst = m_picture.image.isNull();
    bool const isNone = picture.image.isNull();
    SxOrientation const orientation = isNone ? m_orientation : fx_OrientationOf(picture, m_turning);
    bool const isNewSize = !isNone && (picture.image.size() != m_size || !(orientation == m_orientation));
    m_picture = picture;
    m_looked = {};
    m_notice.clear();
    if (isNewSize) {
        m_size = picture.image.size();
        m_orientation = orientation;
        m_offset = {};
    }
    if (isNewSize || (isFirst && !isNone)) {
        if (m_isFitted)
            m_scale = fittingScale();
        keepInside();
    }
    if (isNewSize || isFirst != isNone)
        emit zoomChanged(zoom());
    redraw();
    point(m_mouse);
    if (m_picture.data)
        emit pictureShown(m_picture, isFirst);
}

void CxPictureView::setNotice(QString const& text)
{
    setPicture({});
    m_notice = text;
}

double CxPictureView::zoom() const { return m_scale * devicePixelRatioF(); }

/// As it lies, with a scale of 1.
QSizeF CxPictureView::orientedSize() const
{
    QSize const size = m_picture.image.size();
    return fx_Oriented(size, m_orientation).mapRect(QRectF(QPointF(), size)).size();
}

QSizeF CxPictureView::shownSize() const { return orientedSize() * m_scale; }

QRectF CxPictureView::target() const { return {m_offset, shownSize()}; }

double CxPictureView::fittingScale() const
{
    QSizeF const size = orientedSize();
    if (size.isEmpty())
        return 1.0;
    return std::min(double(width()) / size.width(), double(height()) / size.height());
}

/// Centres what is smaller than the view and lets nothing larger leave an edge uncovered.
void CxPictureView::keepInside()
{
    QSizeF const size = shownSize();
    auto const inside = [](double offset, double length, double room) {
        return length <= room ? (room - length) / 2.0 : std::clamp(offset, room - length, 0.0);
    };
    m_offset = {inside(m_offset.x(), size.width(), width()), inside(m_offset.y(), size.height(), height())};
}

void CxPictureView::setZoom(double zoom, QPointF const& anchor)
{
    double const scale = std::clamp(zoom, kSmallestZoom, kLargestZoom) / devicePixelRatioF();
    m_offset = anchor - (anchor - m_offset) * (scale / m_scale);
    m_scale = scale;
    m_isFitted = false;
    keepInside();
    redraw();
    emit zoomChanged(this->zoom());
    point(m_mouse);
}

void CxPictureView::fit()
{
    m_isFitted = true;
    m_scale = fittingScale();
    keepInside();
    redraw();
    emit zoomChanged(zoom());
    point(m_mouse);
}

void CxPictureView::showActualSize() { setZoom(1.0, QRectF(rect()).center()); }

void CxPictureView::zoomIn() { setZoom(zoom() * kZoomStep, QRectF(rect()).center()); }

void CxPictureView::zoomOut() { setZoom(zoom() / kZoomStep, QRectF(rect()).center()); }

void CxPictureView::pan(QPointF const& distance)
{
    m_offset += distance;
    keepInside();
    update();
    point(m_mouse);
}

QTransform CxPictureView::toView() const
{
    return fx_Oriented(m_picture.image.size(), m_orientation) * QTransform::fromScale(m_scale, m_scale) *
           QTransform::fromTranslate(m_offset.x(), m_offset.y());
}

QPoint CxPictureView::pixelAt(QPointF const& position) const
{
    QPointF const place = toView().inverted().map(position);
    return {static_cast<int>(std::floor(place.x())), static_cast<int>(std::floor(place.y()))};
}

void CxPictureView::point(QPointF const& position)
{
    bool const isInside = rect().contains(position.toPoint());
    emit pixelPointed(isInside ? pixelAt(position) : QPoint(-1, -1));
}

/// What is painted, in pixels of the picture or, where these are fewer, of the screen.
QImage CxPictureView::screenImage()
{
    if (m_looked.isNull()) {
        int const stripe = std::max(static_cast<int>(std::lround(kStripe / zoom())), 1);
        m_looked = fx_LookedAt(m_picture, m_look, stripe);
    }
    int const turns = m_orientation.quarterTurns;
    if (zoom() >= 1.0 && turns == 0)
        return m_looked;
    if (!m_reduced.isNull())
        return m_reduced;
    m_reduced = m_looked;
    if (zoom() < 1.0) { // first, so that there is less to turn
        QSizeF const shown = shownSize() * devicePixelRatioF();
        QSize const size = (turns % 2 == 0 ? shown : shown.transposed()).toSize().expandedTo({1, 1});
        m_reduced = m_looked.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    if (turns != 0)
        m_reduced = m_reduced.transformed(QTransform().rotate(90.0 * turns));
    return m_reduced;
}

void CxPictureView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.fillRect(event->rect(), kSurround);
    if (m_picture.image.isNull()) {
        painter.setPen(kNoticeColour);
        painter.drawText(rect().adjusted(24, 24, -24, -24), int(Qt::AlignCenter) | int(Qt::TextWordWrap),
                         m_notice);
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, zoom() < 2.0);
    QRectF const place = target();
    if (m_orientation.isMirrored) {
        painter.translate(2.0 * place.left() + place.width(), 0.0);
        painter.scale(-1.0, 1.0);
    }
    painter.drawImage(place, screenImage());
}

void CxPictureView::resizeEvent(QResizeEvent*)
{
    if (m_isFitted)
        fit();
    else
        keepInside();
}

void CxPictureView::wheelEvent(QWheelEvent* event)
{
    double const turns = event->angleDelta().y() / 120.0;
    if (turns != 0.0 && !m_picture.image.isNull())
        setZoom(zoom() * std::pow(kZoomStep, turns), event->position());
    event->accept();
}

void CxPictureView::mousePressEvent(QMouseEvent* event)
{
    m_mouse = fx_MousePosition(*event);
    if (event->button() == Qt::LeftButton && !m_picture.image.isNull()) {
        m_isDragging = true;
        setCursor(Qt::ClosedHandCursor);
    }
}

void CxPictureView::mouseMoveEvent(QMouseEvent* event)
{
    QPointF const distance = fx_MousePosition(*event) - m_mouse;
    m_mouse = fx_MousePosition(*event);
    if (m_isDragging)
        pan(distance);
    else
        point(m_mouse);
}

void CxPictureView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_isDragging = false;
    unsetCursor();
}

void CxPictureView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        emit doubleClicked();
}

void CxPictureView::keyPressEvent(QKeyEvent* event)
{
    if (event->modifiers() != Qt::AltModifier) {
        QWidget::keyPressEvent(event);
        return;
    }
    switch (event->key()) {
    case Qt::Key_Left:
        pan({kPanStep, 0});
        break;
    case Qt::Key_Right:
        pan({-kPanStep, 0});
        break;
    case Qt::Key_Up:
        pan({0, kPanStep});
        break;
    case Qt::Key_Down:
        pan({0, -kPanStep});
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void CxPictureView::leaveEvent(QEvent*)
{
    m_mouse = {-1, -1};
    point(m_mouse);
}

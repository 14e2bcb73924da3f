#include "Timeline.h"

#include <QPainter>
#include <QSignalBlocker>
#include <QToolTip>
#include <cmath>

#include "MousePosition.h"
#include "TimeCode.h"

static constexpr int kHandleRadius = 7;
static constexpr int kGrooveHeight = 4;
static constexpr int kMarkGap = 4; // between the line and the marks
static constexpr int kMarkHeight = 6;
static constexpr int kBrokenWidth = 3; // at least, to be seen
static constexpr int kMarkSpacing = 3; // marks nearer than that would be one block

static QColor const kBrokenColour(0xd9, 0x2d, 0x20); // told from the line on any palette

CxTimeline::CxTimeline(QWidget* parent)
    : QAbstractSlider(parent)
{
    setOrientation(Qt::Horizontal);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setRecording(0, 0.0, {});
}

void CxTimeline::setRecording(int count, double fps, QList<int> const& keyFrames)
{
    QSignalBlocker const blocker(this);
    m_fps = fps;
    m_keyFrames = keyFrames;
    m_broken.clear();
    m_marks = {};
    setRange(0, std::max(count - 1, 0));
    setPageStep(std::max(count / 20, 1));
    setValue(0);
    setEnabled(count > 0);
    update();
}

void CxTimeline::markBroken(int number)
{
    m_broken.insert(number);
    update();
    emit brokenMarked(number);
}

void CxTimeline::setMarks(SxMarks const& marks)
{
    m_marks = marks;
    update();
}

void CxTimeline::setShownNumber(int number)
{
    if (isSliderDown())
        return;
    QSignalBlocker const blocker(this);
    setValue(number);
}

QSize CxTimeline::sizeHint() const
{
    return {400, kHandleRadius + 1 + kGrooveHeight / 2 + kMarkGap + kMarkHeight + 1};
}

QSize CxTimeline::minimumSizeHint() const { return {120, sizeHint().height()}; }

QRectF CxTimeline::groove() const
{
    return {kHandleRadius + 1.0, kHandleRadius - kGrooveHeight / 2.0 + 1.0,
            width() - 2.0 * kHandleRadius - 2.0, double(kGrooveHeight)};
}

double CxTimeline::positionOf(int number) const
{
    QRectF const line = groove();
    return maximum() > 0 ? line.left() + line.width() * number / maximum() : line.left();
}

int CxTimeline::numberAt(double x) const
{
    QRectF const line = groove();
    double const share = line.width() > 0.0 ? (x - line.left()) / line.width() : 0.0;
    return static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * maximum()));
}

void CxTimeline::paintKeyFrames(QPainter& painter) const
{
    double const top = groove().bottom() + kMarkGap;
    double last = -kMarkSpacing;
    for (int const number : m_keyFrames) {
        double const x = positionOf(number);
        if (x - last < kMarkSpacing)
            continue;
        last = x;
        painter.drawLine(QPointF(x, top), QPointF(x, top + kMarkHeight));
    }
}

void CxTimeline::paintBroken(QPainter& painter) const
{
    QRectF const line = groove().adjusted(0.0, -1.0, 0.0, 1.0);
    double const width = std::max<double>(line.width() / std::max(maximum(), 1), kBrokenWidth);
    double last = -1.0;
    for (int const number : m_broken) {
        double const x = positionOf(number);
        if (x - last < 0.5) // the same place on the screen
            continue;
        last = x;
        painter.fillRect(QRectF(x - width / 2.0, line.top(), width, line.height()), kBrokenColour);
    }
}

QRectF CxTimeline::markedPart() const
{
    QPointF const top(positionOf(m_marks.first()), 0.0);
    return {top, QPointF(positionOf(m_marks.last(maximum() + 1)), groove().bottom() + kMarkGap)};
}

void CxTimeline::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPalette const& colours = palette();
    QColor line = colours.color(QPalette::WindowText);
    QRectF const whole = groove();

    line.setAlphaF(0.28F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(line);
    painter.drawRoundedRect(whole, kGrooveHeight / 2.0, kGrooveHeight / 2.0);
    if (!isEnabled())
        return;

    line.setAlphaF(0.6F);
    painter.setPen(QPen(line, 1.0));
    paintKeyFrames(painter);

    double const x = positionOf(value());
    QRectF played = whole;
    played.setRight(x);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colours.color(QPalette::Highlight));
    painter.drawRoundedRect(played, kGrooveHeight / 2.0, kGrooveHeight / 2.0);
    paintBroken(painter);
    if (m_marks.isAny())
        fx_PaintMarks(painter, markedPart(), m_marks, colours);

    bool const isActive = m_isHovered || isSliderDown();
    QPointF const centre(x, whole.center().y());
    painter.setPen(QPen(colours.color(QPalette::Highlight), 2.0));
    painter.setBrush(isActive ? colours.color(QPalette::Highlight) : colours.color(QPalette::Base));
    painter.drawEllipse(centre, kHandleRadius - 1.0, kHandleRadius - 1.0);
    if (hasFocus()) {
        painter.setPen(QPen(colours.color(QPalette::WindowText), 1.0, Qt::DotLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 3.0, 3.0);
    }
}

void CxTimeline::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    setSliderDown(true);
    setSliderPosition(numberAt(fx_MousePosition(*event).x()));
    update();
}

void CxTimeline::mouseMoveEvent(QMouseEvent* event)
{
    m_isHovered = true;
    int const number = numberAt(fx_MousePosition(*event).x());
    if (isSliderDown())
        setSliderPosition(number);
    QString text = tr("%1 · %2").arg(number).arg(fx_TimeCode(number, m_fps));
    if (std::binary_search(m_keyFrames.begin(), m_keyFrames.end(), number))
        text = tr("%1 · key frame").arg(text);
    if (m_broken.count(number) != 0)
        text = tr("%1 · broken").arg(text);
    if (number == m_marks.in)
        text = tr("%1 · in mark").arg(text);
    if (number == m_marks.out)
        text = tr("%1 · out mark").arg(text);
    QToolTip::showText(mapToGlobal(event->pos()) + QPoint(0, -2 * height()), text, this);
    emit pointed(isSliderDown() ? -1 : number, mapToGlobal(QPoint(event->pos().x(), -2 * height())));
    update();
}

void CxTimeline::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        setSliderDown(false);
    update();
}

void CxTimeline::leaveEvent(QEvent*)
{
    m_isHovered = false;
    emit pointed(-1, {});
    update();
}

#include "Overview.h"

#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "MousePosition.h"
#include "TimeCode.h"

static constexpr double kFewest = 10.0; // pictures that the width shows, zoomed in
static constexpr double kZoomStep = 1.25;
static constexpr double kTickHeight = 6.0; // of marks at the upper edge, told from the bars

static QColor const kBroken(0xd9, 0x2d, 0x20);
static QColor const kSkipped(0xe0, 0x9a, 0x10);

std::map<int, int> fx_SkippedBefore(QVector<SxPictureRange> const& skipped)
{
    std::map<int, int> before;
    int soFar = 0;
    for (SxPictureRange const& range : skipped) { // numbers of the source, ascending
        int const count = range.last - range.first + 1;
        before[range.first - soFar] += count;
        soFar += count;
    }
    return before;
}

struct CxOverview::SxColumn
{
    quint32 keyBytes = 0;       ///< of its largest key frame
    quint32 predictedBytes = 0; ///< of its largest other picture
    bool isBroken = false;
    bool isSkipped = false;
};

CxOverview::CxOverview(QWidget* parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("overview"));
    setAccessibleName(tr("Overview"));
    setAccessibleDescription(tr("Bytes of each picture; up and down arrow keys zoom, page keys scroll"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void CxOverview::setRecording(SxOpenedRecording const& info)
{
    m_info = info;
    m_skippedBefore =
        info.sidecar.sidecar ? fx_SkippedBefore(info.sidecar.sidecar->skipped) : std::map<int, int>();
    m_broken.clear();
    m_number = -1;
    m_first = 0.0;
    m_shownCount = std::max(info.count, 1);
    update();
}

void CxOverview::markBroken(int number)
{
    m_broken.insert(number);
    update();
}

void CxOverview::setShownNumber(int number)
{
    m_number = number;
    if (number < m_first || number >= m_first + m_shownCount)
        scrollTo(number - m_shownCount / 2.0);
    update();
}

double CxOverview::positionOf(double number) const { return (number - m_first) / m_shownCount * width(); }

int CxOverview::numberAt(double x) const
{
    double const number = m_first + x / std::max(width(), 1) * m_shownCount;
    return std::clamp(static_cast<int>(std::floor(number)), 0, std::max(m_info.count - 1, 0));
}

void CxOverview::scrollTo(double first)
{
    m_first = std::clamp(first, 0.0, std::max(m_info.count - m_shownCount, 0.0));
    update();
}

/// What lies under \p x stays there.
void CxOverview::zoom(double factor, double x)
{
    double const all = std::max(m_info.count, 1);
    double const share = x / std::max(width(), 1);
    double const anchor = m_first + share * m_shownCount;
    m_shownCount = std::clamp(m_shownCount / factor, std::min(kFewest, all), all);
    scrollTo(anchor - share * m_shownCount);
}

std::vector<CxOverview::SxColumn> CxOverview::columns(int width) const
{
    std::vector<SxColumn> columns(static_cast<size_t>(width));
    auto const columnsOf = [&](int number) { // the first, and the one behind the last
        int const from = std::clamp(static_cast<int>(positionOf(number)), 0, width - 1);
        int const to = std::clamp(static_cast<int>(positionOf(number + 1)), from + 1, width);
        return std::pair(columns.begin() + from, columns.begin() + to);
    };
    int const first = static_cast<int>(m_first);
    int const behind = std::min(static_cast<int>(std::ceil(m_first + m_shownCount)), m_info.count);
    QList<int> const& keys = m_info.keyFrames;
    auto key = std::lower_bound(keys.begin(), keys.end(), first);
    for (int number = first; number < behind; ++number) {
        bool const isKey = key != keys.end() && *key == number;
        if (isKey)
            ++key;
        auto const range = columnsOf(number);
        for (auto column = range.first; column != range.second; ++column) {
            quint32& bytes = isKey ? column->keyBytes : column->predictedBytes;
            bytes = std::max(bytes, m_info.bytes.value(number));
        }
    }
    for (auto it = m_broken.lower_bound(first); it != m_broken.end() && *it < behind; ++it) {
        auto const range = columnsOf(*it);
        for (auto column = range.first; column != range.second; ++column)
            column->isBroken = true;
    }
    for (auto it = m_skippedBefore.lower_bound(first); it != m_skippedBefore.end() && it->first <= behind;
         ++it)
        columnsOf(it->first).first->isSkipped = true;
    return columns;
}

void CxOverview::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Base));
    if (m_info.count == 0 || width() < 1)
        return;
    std::vector<SxColumn> const shown = columns(width());
    quint32 highest = 1;
    for (SxColumn const& column : shown)
        highest = std::max({highest, column.keyBytes, column.predictedBytes});
    QColor const predicted = palette().color(QPalette::Mid).darker(110);
    QColor const key = palette().color(QPalette::Highlight);
    double const room = height() - kTickHeight - 1.0;
    double const step = positionOf(m_first + 1.0);
    for (size_t i = 0; i < shown.size(); ++i) {
        SxColumn const& column = shown[i];
        double const x = static_cast<double>(i);
        auto const bar = [&](quint32 bytes, QColor const& colour) {
            double const length = bytes > 0 ? std::max(room * bytes / highest, 1.0) : 0.0;
            painter.fillRect(QRectF(x, height() - length, 1.0, length), colour);
        };
        bar(column.keyBytes, key); // mostly the higher one, with the other before it
        bar(column.predictedBytes, predicted);
        if (column.isBroken)
            bar(highest, kBroken); // whatever its bytes are
        if (column.isSkipped)
            painter.fillRect(QRectF(x - 1.0, 0.0, 3.0, kTickHeight), kSkipped);
    }
    if (m_number >= 0) {
        QColor cursor = palette().color(QPalette::WindowText);
        QRectF const place(positionOf(m_number), 0.0, std::max(step, 2.0), height());
        painter.setPen(QPen(cursor, 1.0));
        cursor.setAlphaF(0.18F);
        painter.fillRect(place, cursor);
        painter.drawRect(place.adjusted(0.0, 0.0, -1.0, -1.0));
    }
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::WindowText), 1.0, Qt::DotLine));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

QString CxOverview::textOf(int number) const
{
    bool const isKey = std::binary_search(m_info.keyFrames.begin(), m_info.keyFrames.end(), number);
    QStringList parts{QString::number(number), fx_TimeCode(number, m_info.fps),
                      isKey ? tr("key frame") : tr("predicted"),
                      tr("%1 bytes").arg(locale().toString(m_info.bytes.value(number)))};
    if (m_broken.count(number) != 0)
        parts.append(tr("broken"));
    auto const skipped = m_skippedBefore.find(number);
    if (skipped != m_skippedBefore.end())
        parts.append(tr("%1 skipped before it").arg(skipped->second));
    return parts.join(QStringLiteral(" · "));
}

void CxOverview::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && m_info.count > 0)
        emit chosen(numberAt(fx_MousePosition(*event).x()));
    else
        event->ignore();
}

void CxOverview::mouseMoveEvent(QMouseEvent* event)
{
    if (m_info.count == 0)
        return;
    int const number = numberAt(fx_MousePosition(*event).x());
    if ((event->buttons() & Qt::LeftButton) != 0)
        emit chosen(number);
    QPoint const above = mapToGlobal(QPoint(event->pos().x(), -2 * fontMetrics().height() - 8));
    QToolTip::showText(above, textOf(number), this);
    emit pointed(event->buttons() == Qt::NoButton ? number : -1, above);
}

void CxOverview::wheelEvent(QWheelEvent* event)
{
    QPoint const turns = event->angleDelta();
    if (turns.x() != 0) // to the side, or with Alt
        scrollTo(m_first - turns.x() / 120.0 * m_shownCount / 10.0);
    else
        zoom(std::pow(kZoomStep, turns.y() / 120.0), event->position().x());
    event->accept();
}

void CxOverview::keyPressEvent(QKeyEvent* event)
{
    bool const isInside = m_number >= m_first && m_number < m_first + m_shownCount;
    double const x = isInside ? positionOf(m_number) : width() / 2.0;
    switch (event->key()) {
    case Qt::Key_Up:
        zoom(kZoomStep, x);
        break;
    case Qt::Key_Down:
        zoom(1.0 / kZoomStep, x);
        break;
    case Qt::Key_PageUp:
        scrollTo(m_first - m_shownCount * 0.9);
        break;
    case Qt::Key_PageDown:
        scrollTo(m_first + m_shownCount * 0.9);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void CxOverview::leaveEvent(QEvent*) { emit pointed(-1, {}); }

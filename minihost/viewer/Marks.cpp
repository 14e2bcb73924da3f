#include "Marks.h"

#include <QPainter>
#include <QPalette>

static constexpr double kBracket = 4.0; // width of its feet
static constexpr double kLine = 2.0;

void fx_PaintMarks(QPainter& painter, QRectF const& part, SxMarks const& marks, QPalette const& palette)
{
    QColor band = palette.color(QPalette::Highlight);
    band.setAlphaF(0.3F);
    painter.fillRect(part, band);
    QColor const& line = palette.color(QPalette::WindowText);
    auto const paintBracket = [&](double x, double foot) {
        painter.fillRect(QRectF(x - kLine / 2.0, part.top(), kLine, part.height()), line);
        for (double const y : {part.top(), part.bottom() - kLine})
            painter.fillRect(QRectF(foot > 0.0 ? x : x + foot, y, kBracket, kLine), line);
    };
    if (marks.in >= 0)
        paintBracket(part.left(), kBracket);
    if (marks.out >= 0)
        paintBracket(part.right(), -kBracket);
}

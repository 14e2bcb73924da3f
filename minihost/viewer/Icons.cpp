#include "Icons.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <functional>

static constexpr int kSides[] = {16, 24, 32, 48, 64, 96};

static QPixmap fx_Tinted(QPixmap pixmap, QColor const& colour)
{
    QPainter painter(&pixmap);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(QRect(QPoint(), pixmap.size()), colour);
    return pixmap;
}

static void fx_AddTinted(QIcon& icon, QPixmap const& pixmap, QPalette const& palette)
{
    icon.addPixmap(fx_Tinted(pixmap, palette.color(QPalette::Active, QPalette::ButtonText)), QIcon::Normal);
    icon.addPixmap(fx_Tinted(pixmap, palette.color(QPalette::Disabled, QPalette::ButtonText)),
                   QIcon::Disabled);
}

QIcon fx_ControlIcon(QString const& themeName, QStyle::StandardPixmap fallback, QPalette const& palette)
{
    QIcon const shape = QIcon::fromTheme(themeName, QApplication::style()->standardIcon(fallback));
    QIcon icon;
    for (int const side : kSides) {
        QPixmap const pixmap = shape.pixmap(side, side);
        if (!pixmap.isNull())
            fx_AddTinted(icon, pixmap, palette);
    }
    return icon;
}

/// A drawing on a square of 24 x 24, as sharp as each size allows.
static QPixmap fx_Drawn(int side, std::function<void(QPainter&)> const& draw)
{
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side / 24.0, side / 24.0);
    painter.setBrush(Qt::black);
    painter.setPen(Qt::NoPen);
    draw(painter);
    return pixmap;
}

/// A bar and a triangle that points away from it.
static void fx_DrawStep(QPainter& painter, bool isForward)
{
    if (!isForward) {
        painter.translate(24, 0);
        painter.scale(-1, 1);
    }
    painter.drawRect(QRectF(6, 6, 2.5, 12));
    painter.drawPolygon(QPolygonF({{10.5, 6}, {19, 12}, {10.5, 18}}));
}

static void fx_DrawLoop(QPainter& painter)
{
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::black, 2.4, Qt::SolidLine, Qt::FlatCap));
    painter.drawArc(QRectF(5, 5, 14, 14), 60 * 16, 285 * 16);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawPolygon(QPolygonF({{14.2, 2.2}, {14.2, 10.2}, {20.0, 6.2}}));
}

static void fx_DrawFolder(QPainter& painter)
{
    QPainterPath path;
    path.addRoundedRect(QRectF(2, 7, 20, 13), 1.5, 1.5);
    path.addRoundedRect(QRectF(2, 4, 9, 6), 1.5, 1.5);
    path.setFillRule(Qt::WindingFill);
    painter.drawPath(path);
}

static void fx_DrawCamera(QPainter& painter)
{
    painter.drawRoundedRect(QRectF(2, 6.5, 13, 11), 2, 2);
    painter.drawPolygon(QPolygonF({{16, 11}, {22, 7}, {22, 17}, {16, 13}}));
}

/// A strip of film: a frame with holes at both sides.
static void fx_DrawFilm(QPainter& painter)
{
    QPainterPath path;
    path.addRoundedRect(QRectF(2, 4, 20, 16), 1.5, 1.5);
    for (int hole = 0; hole < 4; ++hole) {
        double const y = 5.6 + 3.6 * hole;
        path.addRect(QRectF(3.4, y, 2, 2));
        path.addRect(QRectF(18.6, y, 2, 2));
    }
    path.addPolygon(QPolygonF({{9.5, 8}, {16, 12}, {9.5, 16}, {9.5, 8}}));
    painter.drawPath(path); // odd-even: what lies inside is left out
}

QIcon fx_ShapeIcon(Shape shape, QPalette const& palette)
{
    auto const draw = [shape](QPainter& painter) {
        switch (shape) {
        case Shape::StepBack:
            fx_DrawStep(painter, false);
            break;
        case Shape::StepForward:
            fx_DrawStep(painter, true);
            break;
        case Shape::Loop:
            fx_DrawLoop(painter);
            break;
        case Shape::Folder:
            fx_DrawFolder(painter);
            break;
        case Shape::Camera:
            fx_DrawCamera(painter);
            break;
        case Shape::Film:
            fx_DrawFilm(painter);
            break;
        }
    };
    QIcon icon;
    for (int const side : kSides)
        fx_AddTinted(icon, fx_Drawn(side, draw), palette);
    return icon;
}

QIcon fx_RecordIcon()
{
    QIcon icon;
    for (int const side : kSides) {
        icon.addPixmap(fx_Drawn(side, [](QPainter& painter) {
            painter.setBrush(QColor(0xd4, 0x2a, 0x2a)); // red enough on light and on dark
            painter.drawEllipse(QRectF(4, 4, 16, 16));
        }));
    }
    return icon;
}

#include "Orientation.h"

SxOrientation fx_OrientationOf(SxShownPicture const& picture, SxTurning const& turning)
{
    SxOrientation orientation;
    orientation.quarterTurns = (picture.rotation / 90 + turning.quarterTurns) % 4;
    orientation.isMirrored = turning.isMirrored;
    if (turning.keepsPixelShape)
        orientation.pixelShape = picture.pixelShape;
    return orientation;
}

QTransform fx_Oriented(QSize const& size, SxOrientation const& orientation)
{
    SxPixelShape const& shape = orientation.pixelShape;
    QTransform transform = QTransform::fromScale(double(shape.width) / shape.height, 1.0) *
                           QTransform().rotate(90.0 * orientation.quarterTurns);
    QRectF const turned = transform.mapRect(QRectF(QPointF(), size));
    transform *= QTransform::fromTranslate(-turned.left(), -turned.top());
    if (orientation.isMirrored)
        transform *= QTransform::fromScale(-1.0, 1.0) * QTransform::fromTranslate(turned.width(), 0.0);
    return transform;
}

#pragma once

#include <QMouseEvent>

/// Where in its widget the mouse is, in fractions of a pixel too.
inline QPointF fx_MousePosition(QMouseEvent const& event)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return event.position();
#else
    return event.localPos();
#endif
}

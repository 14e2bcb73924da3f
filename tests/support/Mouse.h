#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

/// Moves the mouse over \p widget, with \p button held when given. QTest::mouseMove() holds none.
inline void fx_MoveMouse(QWidget* widget, QPoint const& position, Qt::MouseButton button = Qt::NoButton)
{
    QMouseEvent event(QEvent::MouseMove, position, widget->mapToGlobal(position), Qt::NoButton, button, {});
    QApplication::sendEvent(widget, &event);
}

#pragma once

#include <QString>

class QAction;
class QMainWindow;
class QWidget;

/// Puts \p panel beside the picture, hidden until \p action, a checkable one, is checked; that follows when
/// the dock is closed. Its contents scroll rather than making the window larger.
void fx_AddLookDock(QMainWindow& window, QString const& name, QString const& title, QWidget* panel,
                    QAction* action);

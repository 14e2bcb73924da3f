#include "LookDock.h"

#include <QAction>
#include <QDockWidget>
#include <QEvent>
#include <QMainWindow>
#include <QScrollArea>
#include <QScrollBar>

/// As wide as what it shows, and as low as it has to be.
class CxLookScroller : public QScrollArea
{
public:
    QSize minimumSizeHint() const override { return {widget()->minimumSizeHint().width() + barWidth(), 60}; }
    QSize sizeHint() const override { return widget()->sizeHint() + QSize(barWidth(), 0); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::LayoutRequest)
            updateGeometry();
        return QScrollArea::eventFilter(watched, event);
    }

private:
    int barWidth() const { return verticalScrollBar()->sizeHint().width(); }
};

void fx_AddLookDock(QMainWindow& window, QString const& name, QString const& title, QWidget* panel,
                    QAction* action)
{
    auto* const dock = new QDockWidget(title, &window);
    dock->setObjectName(name);
    dock->setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
    auto* const scroller = new CxLookScroller;
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setFocusPolicy(Qt::NoFocus);
    scroller->setWidgetResizable(true);
    scroller->setWidget(panel);
    dock->setWidget(scroller);
    window.addDockWidget(Qt::RightDockWidgetArea, dock);
    dock->hide();
    QObject::connect(action, &QAction::toggled, dock, &QWidget::setVisible);
    QObject::connect(dock->toggleViewAction(), &QAction::toggled, action, &QAction::setChecked);
}

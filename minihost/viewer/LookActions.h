#pragma once

class CxActions;
class QAction;
class QMenu;

/// What the window can do to look closer at a picture; of the actions' own kind, and listed with them.
class CxLookActions
{
public:
    explicit CxLookActions(CxActions& actions);

    void fill(QMenu* view);

    QAction* levels;
    QAction* markClipping;
    QAction* measure;
    QAction* info;
    QAction* overview;
    QAction* turnRight;
    QAction* turnLeft;
    QAction* mirror;
    QAction* pixelShape;
};

#include "LookActions.h"

#include <QAction>
#include <QMenu>

#include "Actions.h"

CxLookActions::CxLookActions(CxActions& actions)
    : levels(actions.add("levels", CxActions::tr("&Histogram and Levels"), {Qt::Key_H}))
    , markClipping(actions.add("markClipping", CxActions::tr("&Mark Clipped Pixels"), {Qt::Key_Z}))
    , measure(actions.add("measure", CxActions::tr("&Region and Profile"), {Qt::Key_R}))
    , info(actions.add("info", CxActions::tr("Info O&verlay"), {{int(Qt::CTRL) | int(Qt::Key_I)}}))
    , overview(actions.add("overview", CxActions::tr("&Bytes of Each Picture"), {Qt::Key_B}))
    , turnRight(actions.add("turnRight", CxActions::tr("Turn &Right"), {Qt::Key_T}))
    , turnLeft(actions.add("turnLeft", CxActions::tr("Turn &Left"), {{int(Qt::SHIFT) | int(Qt::Key_T)}}))
    , mirror(actions.add("mirror", CxActions::tr("&Mirror"), {Qt::Key_M}))
    , pixelShape(actions.add("pixelShape", CxActions::tr("&Pixel Shape of the Source"), {Qt::Key_A}))
{
    for (QAction* const action : {levels, markClipping, measure, info, overview, mirror, pixelShape})
        action->setCheckable(true);
    pixelShape->setChecked(true);
}

void CxLookActions::fill(QMenu* view)
{
    view->addSeparator();
    view->addActions({levels, markClipping, measure, info, overview});
    view->addSeparator();
    view->addMenu(CxActions::tr("&Turn"))->addActions({turnRight, turnLeft, mirror, pixelShape});
}

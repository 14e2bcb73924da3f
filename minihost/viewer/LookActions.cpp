#include "LookActions.h"

#include <QAction>
#include <QMenu>

#include "Actions.h"

CxLookActions::CxLookActions(CxActions& actions)
    : levels(actions.add("levels", CxActions::tr("&Histogram and Levels"), {Qt::Key_H}))
    , markClipping(actions.add("markClipping", CxActions::tr("&Mark Clipped Pixels"), {Qt::Key_Z}))
    , measure(actions.add("measure", CxActions::tr("&Region and Profile"), {Qt::Key_R}))
{
    for (QAction* const action : {levels, markClipping, measure})
        action->setCheckable(true);
    markClipping->setToolTip(CxActions::tr(
        "Stripes over pixels at full scale (red) and at 0 (blue), where the picture has lost detail"));
}

void CxLookActions::fill(QMenu* view)
{
    view->addSeparator();
    view->addActions({levels, markClipping, measure});
}

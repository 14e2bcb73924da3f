#include "TurnControl.h"

#include <QAction>

#include "LookActions.h"
#include "PictureView.h"

CxTurnControl::CxTurnControl(CxLookActions const& actions, CxPictureView& view)
    : m_actions(actions)
    , m_view(view)
{
    connect(actions.turnRight, &QAction::triggered, this, [this] { turn(1); });
    connect(actions.turnLeft, &QAction::triggered, this, [this] { turn(-1); });
    connect(actions.mirror, &QAction::toggled, this, &CxTurnControl::apply);
    connect(actions.pixelShape, &QAction::toggled, this, &CxTurnControl::apply);
}

void CxTurnControl::reset()
{
    m_turning.quarterTurns = 0;
    m_actions.mirror->setChecked(false);
    m_actions.pixelShape->setChecked(true);
    apply();
}

/// Clockwise as seen: what is mirrored turns the other way before it is.
void CxTurnControl::turn(int quarters)
{
    int const before = m_actions.mirror->isChecked() ? -quarters : quarters;
    m_turning.quarterTurns = (m_turning.quarterTurns + before + 4) % 4;
    apply();
}

void CxTurnControl::apply()
{
    m_turning.isMirrored = m_actions.mirror->isChecked();
    m_turning.keepsPixelShape = m_actions.pixelShape->isChecked();
    m_view.setTurning(m_turning);
}

#include "SpeedControl.h"

#include <QActionGroup>
#include <QSettings>
#include <algorithm>

#include "Actions.h"
#include "Player.h"

static QString const kSpeedKey = QStringLiteral("play/speed");
static QString const kLoopKey = QStringLiteral("play/loop");

static QAction* fx_ActionOf(QActionGroup const& speeds, double speed)
{
    QList<QAction*> const all = speeds.actions();
    auto const found = std::find_if(all.begin(), all.end(), [speed](QAction const* action) {
        return action->data().toDouble() == speed; // powers of two are exact
    });
    return found == all.end() ? nullptr : *found;
}

CxSpeedControl::CxSpeedControl(CxActions& actions, CxPlayer& player)
    : m_actions(actions)
    , m_player(player)
{
    connect(actions.speeds, &QActionGroup::triggered, this, [this](QAction const* action) {
        m_player.setSpeed(action->data().toDouble());
        QSettings().setValue(kSpeedKey, action->data());
    });
    connect(actions.slower, &QAction::triggered, this, [this] { choose(-1); });
    connect(actions.faster, &QAction::triggered, this, [this] { choose(1); });
    connect(actions.normalSpeed, &QAction::triggered, this,
            [this] { fx_ActionOf(*m_actions.speeds, 1.0)->trigger(); });
    connect(actions.loop, &QAction::triggered, this, [this](bool isOn) {
        m_player.setLooping(isOn);
        QSettings().setValue(kLoopKey, isOn);
    });
}

void CxSpeedControl::setEnabled(bool isEnabled)
{
    CxActions const& a = m_actions;
    a.speeds->setEnabled(isEnabled);
    for (QAction* const action : {a.slower, a.faster, a.normalSpeed, a.loop})
        action->setEnabled(isEnabled);
}

void CxSpeedControl::restore()
{
    QSettings const settings;
    if (QAction* const action = fx_ActionOf(*m_actions.speeds, settings.value(kSpeedKey, 1.0).toDouble()))
        action->trigger();
    if (settings.value(kLoopKey, false).toBool())
        m_actions.loop->trigger();
}

/// The speed so many places further; at the ends nothing.
void CxSpeedControl::choose(int steps)
{
    QList<QAction*> const all = m_actions.speeds->actions();
    int const place = static_cast<int>(all.indexOf(m_actions.speeds->checkedAction()));
    all.at(std::clamp(place + steps, 0, static_cast<int>(all.size()) - 1))->trigger();
}

#pragma once

#include <QObject>

class CxActions;
class CxPlayer;

/// How fast recordings are played, and whether in a loop: the actions for it, remembered for the next time.
class CxSpeedControl : public QObject
{
    Q_OBJECT

public:
    CxSpeedControl(CxActions& actions, CxPlayer& player);
    void setEnabled(bool isEnabled);
    void restore(); ///< what was chosen last, once everybody listens to the actions

private:
    void choose(int steps);

    CxActions& m_actions;
    CxPlayer& m_player;
};

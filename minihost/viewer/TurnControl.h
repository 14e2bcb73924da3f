#pragma once

#include <QObject>

#include "Orientation.h"

class CxLookActions;
class CxPictureView;

/// Turns and mirrors what is shown, beyond what the recording or the source asks for, until another one is
/// opened.
class CxTurnControl : public QObject
{
    Q_OBJECT

public:
    CxTurnControl(CxLookActions const& actions, CxPictureView& view);

    void reset();

private:
    void turn(int quarters);
    void apply();

    CxLookActions const& m_actions;
    CxPictureView& m_view;
    SxTurning m_turning;
};

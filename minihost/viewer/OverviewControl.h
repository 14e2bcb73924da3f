#pragma once

#include <QObject>

#include "ThumbnailControl.h"

class CxLiveControl;
class CxOverview;
class CxPlayControl;
class CxTransportBar;
class QAction;

/// Shows the overview of the recording above its timeline, while its action is checked, and a small picture
/// where the mouse points at either.
class CxOverviewControl : public QObject
{
    Q_OBJECT

public:
    CxOverviewControl(QAction* action, CxTransportBar& transport, CxPlayControl& play, CxLiveControl& live);

private:
    void update();

    QAction* m_action;
    CxPlayControl& m_play;
    CxOverview* m_overview;
    CxThumbnailControl m_thumbnail;
};

#include "OverviewControl.h"

#include <QAction>
#include <QBoxLayout>

#include "LiveControl.h"
#include "Overview.h"
#include "PlayControl.h"
#include "Timeline.h"
#include "TransportBar.h"

CxOverviewControl::CxOverviewControl(QAction* action, CxTransportBar& transport, CxPlayControl& play,
                                     CxLiveControl& live)
    : m_action(action)
    , m_play(play)
    , m_overview(new CxOverview(&transport))
    , m_thumbnail(play.player(), transport)
{
    static_cast<QBoxLayout*>(transport.layout())->insertWidget(0, m_overview);
    m_overview->hide();
    connect(action, &QAction::toggled, this, &CxOverviewControl::update);
    connect(&play, &CxPlayControl::opened, this, [this](SxOpenedRecording const& info) {
        m_overview->setRecording(info);
        update();
    });
    connect(&live, &CxLiveControl::begun, this, [this] {
        m_overview->setRecording({});
        m_overview->hide();
    });
    connect(&play.player(), &CxPlayer::shown, m_overview,
            [this](SxShownPicture const& picture) { m_overview->setShownNumber(picture.number); });
    CxTimeline* const timeline = transport.timeline();
    connect(timeline, &CxTimeline::brokenMarked, m_overview, &CxOverview::markBroken);
    connect(timeline, &CxTimeline::pointed, &m_thumbnail, &CxThumbnailControl::point);
    connect(m_overview, &CxOverview::pointed, &m_thumbnail, &CxThumbnailControl::point);
    connect(m_overview, &CxOverview::chosen, this, [this, timeline](int number) {
        if (timeline->isEnabled())
            m_play.player().seek(number);
    });
}

void CxOverviewControl::update()
{
    m_overview->setVisible(m_action->isChecked() && m_play.player().isOpen());
}

#include "MarkControl.h"

#include <QAction>

#include "Actions.h"
#include "Player.h"
#include "TimeCode.h"
#include "Timeline.h"

CxMarkControl::CxMarkControl(CxActions& actions, CxPlayer& player, CxTimeline& timeline)
    : m_actions(actions)
    , m_player(player)
    , m_timeline(timeline)
{
    connect(actions.setIn, &QAction::triggered, this, &CxMarkControl::setIn);
    connect(actions.setOut, &QAction::triggered, this, &CxMarkControl::setOut);
    connect(actions.goToIn, &QAction::triggered, this, [this] { m_player.seek(m_marks.in); });
    connect(actions.goToOut, &QAction::triggered, this, [this] { m_player.seek(m_marks.out); });
    connect(actions.clearMarks, &QAction::triggered, this, [this] {
        clear();
        emit told(tr("No part is marked."));
    });
}

/// A mark on the wrong side of the other takes that one away: somebody marks another part.
void CxMarkControl::setIn()
{
    int const number = m_player.reachedNumber();
    setMarks({number, m_marks.out >= number ? m_marks.out : -1});
    emit told(text());
}

void CxMarkControl::setOut()
{
    int const number = m_player.reachedNumber();
    setMarks({m_marks.in <= number ? m_marks.in : -1, number});
    emit told(text());
}

void CxMarkControl::setMarks(SxMarks const& marks)
{
    m_marks = marks;
    m_timeline.setMarks(marks);
    m_player.setLoopedPart(marks.first(), marks.last(m_player.info().count));
    updateActions(m_actions.setIn->isEnabled());
}

QString CxMarkControl::text() const
{
    int const first = m_marks.first();
    int const last = m_marks.last(m_player.info().count);
    int const count = last - first + 1;
    return tr("Marked: pictures %1 to %2, %3")
        .arg(QString::number(first), QString::number(last),
             tr("%n picture(s), %1", nullptr, count).arg(fx_TimeCode(count, m_player.info().fps)));
}

void CxMarkControl::updateActions(bool hasRecording)
{
    for (QAction* const action : {m_actions.setIn, m_actions.setOut})
        action->setEnabled(hasRecording);
    m_actions.goToIn->setEnabled(hasRecording && m_marks.in >= 0);
    m_actions.goToOut->setEnabled(hasRecording && m_marks.out >= 0);
    m_actions.clearMarks->setEnabled(hasRecording && m_marks.isAny());
}

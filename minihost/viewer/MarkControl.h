#pragma once

#include <QObject>

#include "Marks.h"

class CxActions;
class CxPlayer;
class CxTimeline;

/// The in and out marks of the recording shown: set where the picture on the screen is, drawn on the
/// timeline, and what a loop repeats.
class CxMarkControl : public QObject
{
    Q_OBJECT

public:
    CxMarkControl(CxActions& actions, CxPlayer& player, CxTimeline& timeline);

    SxMarks const& marks() const { return m_marks; }
    void clear() { setMarks({}); }
    void updateActions(bool hasRecording);

signals:
    void told(QString const& text); ///< what is marked now, for a person

private:
    void setIn();
    void setOut();
    void setMarks(SxMarks const& marks);
    QString text() const;

    CxActions& m_actions;
    CxPlayer& m_player;
    CxTimeline& m_timeline;
    SxMarks m_marks;
};

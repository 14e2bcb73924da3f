#pragma once

#include <QObject>
#include <set>

#include "MarkControl.h"
#include "Player.h"
#include "SpeedControl.h"

class CxActions;
class CxMessageBar;
class CxPictureView;
class CxTransportBar;
class QWidget;

/// Plays a recording in the window: connects the player with its actions, the timeline and the view, and says
/// what cannot be shown.
class CxPlayControl : public QObject
{
    Q_OBJECT

public:
    CxPlayControl(CxActions& actions, CxPictureView& view, CxTransportBar& transport, CxMessageBar& messages,
                  QWidget& window);

    CxPlayer& player() { return m_player; }
    CxMarkControl& marks() { return m_marks; }
    CxSpeedControl& speed() { return m_speed; }
    void setEnabled(bool isEnabled); ///< what can be done with a recording

    /// opened() or openFailed() follows. Until then, and when it fails, what was open stays so.
    void open(QString const& fileName);
    void close();
    void setRate(SxPictureRate const& rate);      ///< every time and speed follows
    void addBroken(int first, int last);          ///< pictures that somebody else found broken
    void togglePlaying(bool isBackwards = false); ///< pauses, whatever plays, or plays so

signals:
    void opened(SxOpenedRecording const& info);
    void rateChanged(SxOpenedRecording const& info);
    void closed();
    void openFailed();              ///< the reason is shown
    void pictureFailed();           ///< likewise; the view is empty
    void brokenFound(int pictures); ///< so many until now

private:
    void connectPlayer();
    void connectActions();
    void connectTimeline();
    void askForPlace();
    void updateBrokenActions();
    void toNextBroken();
    void toPreviousBroken();
    void takeOpened(SxOpenedRecording const& info);
    void takeOpenFailure(QString const& fileName, QString const& error);
    QString whereToGoOn(int number) const;
    void takePicture(SxShownPicture const& picture);
    void takePictureFailure(int number, QString const& error);

    CxActions& m_actions;
    CxPictureView& m_view;
    CxTransportBar& m_transport;
    CxMessageBar& m_messages;
    QWidget& m_window; ///< of its questions
    CxPlayer m_player;
    CxMarkControl m_marks;
    CxSpeedControl m_speed;
    bool m_resumesAfterDrag = false;
    std::set<int> m_broken;            ///< numbers of the pictures found broken
    bool m_isAnyShown = false;         ///< of this recording, so that its kind is one that can be
    QString m_pictureMessage;          ///< in the bar, about a broken picture
    bool m_isMessageOfPlaying = false; ///< it came up on the way, to be read while playing goes on
};

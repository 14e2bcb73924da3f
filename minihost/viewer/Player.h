#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QQueue>
#include <QTimer>
#include <optional>

#include "PictureReader.h"
#include "PlayOrder.h"

/// Plays one recording: decides which picture comes next and when. GUI thread.
///
/// Up to four times the recording's speed every picture is played, faster every second or fourth; where
/// decoding is slower than the clock, playing is slower too. A broken one takes its time like any other, and
/// playing goes on behind it. Only shown() says which picture is on the screen; it comes with the picture.
class CxPlayer : public QObject
{
    Q_OBJECT

public:
    explicit CxPlayer(QObject* parent = nullptr);

    /// Opens a recording; opened() or openFailed() follows. The one before pauses, and stays when that fails.
    void open(QString const& fileName);
    void close();

    bool isOpen() const { return m_info.count > 0; }
    SxOpenedRecording const& info() const { return m_info; }
    int shownNumber() const { return m_shown; }     ///< of the picture on the screen, -1 for none
    int reachedNumber() const { return m_reached; } ///< likewise, or of one found broken since
    bool isPlaying() const { return m_isPlaying; }
    int picturesDecoded() const { return m_reader.picturesDecoded(); }

    void setLooping(bool isLooping) { m_order.isLooping = isLooping; }
    /// Numbers of the pictures that a loop repeats. Another recording is looped as a whole.
    void setLoopedPart(int first, int last);
    void setRate(SxPictureRate const& rate); ///< of the recording open; unknown: what everybody assumes
    void setSpeed(double speed);             ///< 1.0 is the recording's own
    void setBackwards(bool isBackwards);
    bool isBackwards() const { return m_order.isBackwards; }

public slots:
    void seek(int number); ///< shows a picture; numbers outside are brought inside
    void step(int pictures);
    void skip(double seconds); ///< of the recording; playing goes on from there
    void toNextKeyFrame();
    void toPreviousKeyFrame();
    void setPlaying(bool isPlaying);

signals:
    void opened(SxOpenedRecording const& info);
    void openFailed(QString const& fileName, QString const& error); ///< one sentence
    void shown(SxShownPicture const& picture);
    void pictureFailed(int number, QString const& error);
    void playingChanged(bool isPlaying);
    void rateMeasured(double picturesPerSecond); ///< really shown during the last second; 0 while not playing

private:
    void takeOpened(SxOpenedRecording const& info);
    /// What the reader gave for a number.
    struct SxAnswer
    {
        SxShownPicture picture; ///< without data when it is broken
        QString error;          ///< why it is
    };

    void takeOpenFailure(QString const& fileName, QString const& error);
    void takePicture(int ticket, SxShownPicture const& picture);
    void takeFailure(int ticket, int number, QString const& error);
    void take(int ticket, SxAnswer const& answer);
    void requestAhead();
    void showHeld();
    void show(SxAnswer const& answer);
    void measureRate();
    qint64 interval() const { return static_cast<qint64>(1e9 * m_order.stride / (m_info.fps * m_speed)); }

    CxPictureReader m_reader;
    SxOpenedRecording m_info;
    int m_shown = -1;
    int m_reached = -1;
    int m_wanted = -1;     ///< the picture last asked for, which steps count from
    int m_firstTicket = 1; ///< results of earlier tickets are of no interest any more

    bool m_isPlaying = false;
    SxPlayOrder m_order;
    double m_speed = 1.0;
    int m_aheadTicket = 0;          ///< of the picture that playing waits for; 0 for none
    bool m_isSeeking = false;       ///< that picture was asked for by the user, not by the clock
    std::optional<SxAnswer> m_held; ///< read and waiting for its time
    QElapsedTimer m_clock;
    qint64 m_due = 0; ///< nanoseconds of m_clock at which the next picture is shown
    QTimer m_timer;
    QQueue<qint64> m_shownTimes; ///< nanoseconds, of the last second
};

#include "Player.h"

#include <algorithm>
#include <cmath>

static constexpr qint64 kSecond = 1000000000;
static constexpr double kMostOfAll = 4.0; // speed; beyond, no screen shows every picture

CxPlayer::CxPlayer(QObject* parent)
    : QObject(parent)
{
    connect(&m_reader, &CxPictureReader::opened, this, &CxPlayer::takeOpened);
    connect(&m_reader, &CxPictureReader::openFailed, this, &CxPlayer::takeOpenFailure);
    connect(&m_reader, &CxPictureReader::pictureRead, this, &CxPlayer::takePicture);
    connect(&m_reader, &CxPictureReader::pictureFailed, this, &CxPlayer::takeFailure);
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &CxPlayer::showHeld);
    m_clock.start();
}

void CxPlayer::open(QString const& fileName)
{
    setPlaying(false);
    m_reader.open(std::make_unique<CxRecordingReader>(), fileName);
}

void CxPlayer::close()
{
    setPlaying(false);
    m_reader.closeRecording();
    m_firstTicket = m_reader.request(0) + 1; // answered by nobody: nothing is open
    m_info = {};
    m_shown = m_reached = m_wanted = -1;
}

void CxPlayer::takeOpened(SxOpenedRecording const& info)
{
    setPlaying(false);
    m_info = info;
    m_order.setRecording(info.count);
    m_shown = m_reached = m_wanted = -1;
    m_firstTicket = m_reader.request(0) + 1; // what was asked of the one before is of no interest any more
    emit opened(m_info);
    seek(0);
}

void CxPlayer::takeOpenFailure(QString const& fileName, QString const& error)
{
    emit openFailed(fileName, error);
    if (m_wanted != m_reached)
        seek(m_wanted); // the reader has dropped that for the new file
}

void CxPlayer::seek(int number)
{
    if (!isOpen())
        return;
    number = std::clamp(number, 0, m_info.count - 1);
    bool const isBackwards = number == m_wanted - 1 || (m_isPlaying && m_order.isBackwards);
    m_wanted = number;
    m_held.reset();
    m_timer.stop();
    int const ticket = m_reader.request(number, isBackwards);
    if (m_isPlaying) { // and goes on from there
        m_firstTicket = m_aheadTicket = ticket;
        m_isSeeking = true;
        m_due = m_clock.nsecsElapsed();
    }
}

void CxPlayer::step(int pictures)
{
    setPlaying(false);
    seek(m_wanted + pictures);
}

void CxPlayer::skip(double seconds)
{
    int const pictures = std::max(static_cast<int>(std::lround(std::abs(seconds) * m_info.fps)), 1);
    seek(m_wanted + (seconds < 0.0 ? -pictures : pictures));
}

void CxPlayer::toNextKeyFrame()
{
    QList<int> const& keys = m_info.keyFrames;
    auto const next = std::upper_bound(keys.begin(), keys.end(), m_wanted);
    if (next != keys.end())
        seek(*next);
}

void CxPlayer::toPreviousKeyFrame()
{
    QList<int> const& keys = m_info.keyFrames;
    auto const here = std::lower_bound(keys.begin(), keys.end(), m_wanted);
    if (here != keys.begin())
        seek(*(here - 1));
}

void CxPlayer::setLoopedPart(int first, int last)
{
    m_order.first = first;
    m_order.last = last;
}

void CxPlayer::setRate(SxPictureRate const& rate)
{
    m_info.rate = rate;
    m_info.fps = rate.orAssumed();
    setSpeed(m_speed);
}

void CxPlayer::setSpeed(double speed)
{
    m_speed = speed;
    m_order.stride = std::max(static_cast<int>(std::lround(speed / kMostOfAll)), 1);
    m_due = m_clock.nsecsElapsed();
    m_shownTimes.clear();
}

void CxPlayer::setBackwards(bool isBackwards)
{
    if (isBackwards == m_order.isBackwards)
        return;
    bool const wasPlaying = m_isPlaying;
    setPlaying(false); // what was read ahead lies on the other side
    m_order.isBackwards = isBackwards;
    setPlaying(wasPlaying);
}

void CxPlayer::setPlaying(bool isPlaying)
{
    if (isPlaying == m_isPlaying || (isPlaying && !isOpen()))
        return;
    m_isPlaying = isPlaying;
    m_shownTimes.clear();
    emit playingChanged(isPlaying);
    if (!isPlaying) {
        m_timer.stop();
        m_held.reset();
        if (m_aheadTicket != 0 && !m_isSeeking) {
            // The picture that was read ahead was never asked for.
            m_firstTicket = m_aheadTicket + 1;
            m_wanted = m_reached;
        }
        m_aheadTicket = 0;
        emit rateMeasured(0.0);
        return;
    }
    if (m_wanted != m_reached) {
        seek(m_wanted); // still on its way: playing starts there
    } else if (m_order.after(m_wanted) < 0) {
        seek(m_order.start()); // from the end, playing starts over
    } else {
        m_due = m_clock.nsecsElapsed() + interval();
        requestAhead();
    }
}

/// Asks for the picture that follows the one shown while that is on the screen.
void CxPlayer::requestAhead()
{
    int const next = m_order.after(m_wanted);
    if (next < 0) {
        setPlaying(false);
        return;
    }
    m_wanted = next;
    m_isSeeking = false;
    m_aheadTicket = m_reader.request(next, m_order.isBackwards);
}

void CxPlayer::takePicture(int ticket, SxShownPicture const& picture) { take(ticket, {picture, {}}); }

void CxPlayer::takeFailure(int ticket, int number, QString const& error)
{
    SxShownPicture broken;
    broken.number = number;
    take(ticket, {broken, error});
}

void CxPlayer::take(int ticket, SxAnswer const& answer)
{
    if (ticket < m_firstTicket)
        return;
    if (!m_isPlaying) {
        show(answer);
        return;
    }
    m_held = answer;
    qint64 const wait = m_due - m_clock.nsecsElapsed();
    if (wait > 0)
        m_timer.start(static_cast<int>((wait + 999999) / 1000000));
    else
        showHeld();
}

void CxPlayer::showHeld()
{
    SxAnswer const answer = *m_held;
    m_held.reset();
    m_aheadTicket = 0;
    // Late by less than a picture is caught up with; later than that, the clock waits.
    m_due = std::max(m_due + interval(), m_clock.nsecsElapsed());
    show(answer);
    if (answer.picture.data)
        measureRate();
    requestAhead();
}

void CxPlayer::show(SxAnswer const& answer)
{
    m_reached = answer.picture.number;
    m_shown = answer.picture.data ? m_reached : -1;
    if (answer.picture.data)
        emit shown(answer.picture);
    else
        emit pictureFailed(m_reached, answer.error);
}

void CxPlayer::measureRate()
{
    qint64 const now = m_clock.nsecsElapsed();
    m_shownTimes.enqueue(now);
    while (now - m_shownTimes.head() > kSecond)
        m_shownTimes.dequeue();
    if (m_shownTimes.size() > 1)
        emit rateMeasured(static_cast<double>(m_shownTimes.size() - 1) * 1e9 /
                          static_cast<double>(now - m_shownTimes.head()));
}

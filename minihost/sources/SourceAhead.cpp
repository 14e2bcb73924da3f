#include "SourceAhead.h"

#include <chrono>
#include <system_error>
#include <utility>

#include "ThreadInterrupt.h"

static constexpr std::chrono::milliseconds kLookAround(100); // for the stop flag

static qint64 fx_BytesOf(SxPicBuf const& picture) { return qint64{picture.pitch} * picture.height; }

CxSourceAhead::CxSourceAhead(Make const& make, std::atomic<bool> const* stop,
                             std::optional<SxLiveBuffer> const& live)
    : m_stop(stop)
    , m_live(live)
    , m_source(make(&m_isStopping))
{}

CxSourceAhead::~CxSourceAhead()
{
    if (!m_thread.joinable())
        return;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_isAbandoned = true;
        m_isStopping.store(true);
        m_changed.notify_all();
        while (!m_isDone) { // again: it may have been about to wait
            fx_InterruptThread(m_thread);
            m_changed.wait_for(lock, kLookAround);
        }
    }
    m_thread.join();
}

void CxSourceAhead::start()
{
    try {
        m_thread = std::thread([this] { work(); });
    } catch (std::system_error const&) {
        m_told.error = QStringLiteral("No thread can be had to read pictures in.");
        m_end = Result::Error;
    }
}

/// Something to fetch a picture into; null once nobody wants one.
std::unique_ptr<CxSourceAhead::SxFetched> CxSourceAhead::waitForRoom()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    auto const isEnded = [this] { return m_isAbandoned || (m_isStopping && !m_isLive); };
    m_changed.wait(lock, [&] {
        bool const isNeverKept = m_isLive && m_live; // put() sees to the room
        bool const hasRoom = m_asked > 1 && m_waiting.size() < kMostWaiting;
        return isEnded() || m_begun == 0 || isNeverKept || hasRoom;
    });
    if (isEnded())
        return nullptr;
    ++m_begun;
    if (m_used.empty())
        return std::make_unique<SxFetched>();
    auto used = std::move(m_used.back());
    m_used.pop_back();
    return used;
}

void CxSourceAhead::fetch(SxFetched& fetched)
{
    try {
        fetched.result = m_source->next(fetched.picture.get());
        fetched.told.error = m_source->errorText();
        fetched.told.expected = m_source->expectedPictures();
        fetched.told.hasEnd = m_source->hasEnd();
        fetched.told.isLive = m_source->isLive();
        SxMissingPictures const missing = m_source->missing();
        m_missing.lost += missing.lost;
        m_missing.byCamera += missing.byCamera;
        fetched.told.rate = m_source->rate();
        fetched.told.rotation = m_source->rotation();
        fetched.told.pixelShape = m_source->pixelShape();
        fetched.told.wholeSize = m_source->wholeSize();
        fetched.told.knowsSignificantBits = m_source->knowsSignificantBits();
        fetched.told.isDamaged = m_source->isDamaged();
        m_untold += m_source->takeWarnings();
    } catch (...) {
        fetched.failure = std::current_exception(); // the caller's to tell
    }
}

/// Whether a picture of a live source finds room before its time.
bool CxSourceAhead::isTimely(std::unique_lock<std::mutex>& lock, SxFetched const& fetched)
{
    SxPicBuf const& picture = fetched.picture.get();
    auto const fits = [&] {
        if (m_waiting.empty() || m_isAbandoned)
            return true;
        quint64 const oldest = m_waiting.front()->picture.get().timestamp;
        return m_waitingBytes + fx_BytesOf(picture) <= m_live->bytes &&
               static_cast<qint64>(picture.timestamp - oldest) <= m_live->microseconds;
    };
    if (!m_sinceFirst.isValid())
        m_sinceFirst.start();
    std::chrono::microseconds const left(static_cast<qint64>(picture.timestamp) -
                                         m_sinceFirst.nsecsElapsed() / 1000);
    return fits() || (left.count() > 0 && m_changed.wait_for(lock, left, fits));
}

void CxSourceAhead::put(std::unique_ptr<SxFetched> fetched)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_isLive = fetched->told.isLive;
    bool const isPicture = !fetched->failure && fetched->result == Result::Picture;
    if (isPicture && m_isLive && m_live) {
        m_missing.byCamera += m_gaps.before(fetched->picture.get().timestamp);
        if (!isTimely(lock, *fetched)) {
            ++m_missing.lost;
            m_used.push_back(std::move(fetched));
            return;
        }
    }
    fetched->told.missing = std::exchange(m_missing, {});
    fetched->warnings = std::exchange(m_untold, {});
    m_waitingBytes += fx_BytesOf(fetched->picture.get());
    m_waiting.push_back(std::move(fetched));
    m_changed.notify_all();
}

void CxSourceAhead::work()
{
    bool goesOn = true;
    while (goesOn) {
        std::unique_ptr<SxFetched> fetched = waitForRoom();
        if (fetched)
            fetch(*fetched);
        goesOn = fetched && !fetched->failure && fetched->result == Result::Picture;
        if (fetched)
            put(std::move(fetched));
    }
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_isDone = true;
    m_changed.notify_all();
}

/// The oldest picture that waits; null when stopped before there is one, or before there was to be another.
std::unique_ptr<CxSourceAhead::SxFetched> CxSourceAhead::waitForNext()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    ++m_asked;
    m_changed.notify_all();
    for (;;) {
        if (isStopped())
            m_isStopping.store(true);
        if (m_isStopping && !m_isLive)
            return nullptr;
        if (!m_waiting.empty())
            break;
        if (m_isStopping)
            fx_InterruptThread(m_thread);
        m_changed.wait_for(lock, kLookAround);
    }
    auto next = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_waitingBytes -= fx_BytesOf(next->picture.get());
    m_changed.notify_all();
    return next;
}

/// What a burst needed goes again.
void CxSourceAhead::giveBack(std::unique_ptr<SxFetched> used)
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    if (m_used.size() < kMostWaiting)
        m_used.push_back(std::move(used));
}

IxPictureSource::Result CxSourceAhead::next(SxPicBuf& picture)
{
    if (m_asked == 0)
        start();
    std::unique_ptr<SxFetched> fetched = m_end ? nullptr : waitForNext();
    if (!fetched)
        return m_end.value_or(Result::End);
    Result const result = fetched->result;
    if (fetched->failure || result != Result::Picture)
        m_end = result;
    if (fetched->failure)
        std::rethrow_exception(fetched->failure);
    std::swap(picture, fetched->picture.get());
    m_told = std::move(fetched->told);
    m_warnings += std::exchange(fetched->warnings, {}); // the thread keeps no part of them
    giveBack(std::move(fetched));
    return result;
}

QStringList CxSourceAhead::takeWarnings() { return std::exchange(m_warnings, {}); }

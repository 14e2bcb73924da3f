#include "SourceAhead.h"

#include <chrono>
#include <system_error>
#include <utility>

#include "ThreadInterrupt.h"

static constexpr std::chrono::milliseconds kLookAround(100); // for the stop flag

CxSourceAhead::CxSourceAhead(Make const& make, std::atomic<bool> const* stop)
    : m_stop(stop)
    , m_source(make(&m_isCancelled))
{}

CxSourceAhead::~CxSourceAhead()
{
    if (!m_thread.joinable())
        return;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_isCancelled.store(true);
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
    m_changed.wait(lock, [this] {
        return m_isCancelled || m_begun == 0 || (m_asked > 1 && m_waiting.size() < kMostWaiting);
    });
    if (m_isCancelled)
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
        fetched.told = {m_source->errorText(), m_source->expectedPictures(),
                        m_source->hasEnd(),    m_source->rate(),
                        m_source->rotation(),  m_source->pixelShape(),
                        m_source->wholeSize(), m_source->knowsSignificantBits(),
                        m_source->isDamaged()};
        fetched.warnings = m_source->takeWarnings();
    } catch (...) {
        fetched.failure = std::current_exception(); // the caller's to tell
    }
}

void CxSourceAhead::work()
{
    bool goesOn = true;
    while (goesOn) {
        std::unique_ptr<SxFetched> fetched = waitForRoom();
        if (fetched)
            fetch(*fetched);
        goesOn = fetched && !fetched->failure && fetched->result == Result::Picture;
        std::lock_guard<std::mutex> const lock(m_mutex);
        if (fetched)
            m_waiting.push_back(std::move(fetched));
        m_isDone = !goesOn;
        m_changed.notify_all();
    }
}

/// The oldest picture that waits; null when stopped before there is one.
std::unique_ptr<CxSourceAhead::SxFetched> CxSourceAhead::waitForNext()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    ++m_asked;
    m_changed.notify_all();
    while (m_waiting.empty() && !isStopped())
        m_changed.wait_for(lock, kLookAround);
    if (m_waiting.empty())
        return nullptr;
    auto next = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_changed.notify_all();
    return next;
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
    m_warnings += fetched->warnings;
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_used.push_back(std::move(fetched));
    return result;
}

QStringList CxSourceAhead::takeWarnings()
{
    QStringList warnings;
    warnings.swap(m_warnings);
    return warnings;
}

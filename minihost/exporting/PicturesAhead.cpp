#include "PicturesAhead.h"

#include <QThread>
#include <algorithm>
#include <chrono>
#include <new>

static constexpr std::chrono::milliseconds kLookAround(100); // for the stop flag

struct CxPicturesAhead::SxWorker
{
    CxRecordingReader recording;
    MakePicture make;
    std::unique_ptr<QThread> thread;
};

static qint64 fx_BytesOf(CxPicturesAhead::SxNext const& next)
{
    qint64 const pixels =
        next.picture ? qint64(next.picture->picBuf()->pitch) * next.picture->picBuf()->height : 0;
    return pixels + (next.made.needsPicture ? 0 : next.made.bytes.size());
}

CxPicturesAhead::CxPicturesAhead(CxRecordingReader const& recording, QVector<int> const& frames, int jobs,
                                 std::function<MakePicture()> const& newMaker)
    : m_frames(frames)
    , m_runs(runsOf(frames, recording.keyFrames()))
    , m_ready(static_cast<size_t>(frames.size()))
    , m_isReady(static_cast<size_t>(frames.size()))
{
    m_atWork = std::min(jobs, static_cast<int>(m_runs.size()));
    for (int i = 0; i < m_atWork; ++i) {
        m_workers.push_back(std::make_unique<SxWorker>());
        SxWorker& worker = *m_workers.back();
        worker.make = newMaker();
        worker.thread.reset(QThread::create([this, &worker, file = recording.fileName()] {
            QString error;
            if (worker.recording.open(file, error))
                work(worker);
            std::lock_guard<std::mutex> const lock(m_mutex);
            --m_atWork;
            m_changed.notify_all();
        }));
        worker.recording.moveToThread(worker.thread.get());
    }
    for (auto const& worker : m_workers)
        worker->thread->start();
}

CxPicturesAhead::~CxPicturesAhead()
{
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_isCancelled = true;
        m_changed.notify_all();
    }
    for (auto const& worker : m_workers)
        worker->thread->wait();
}

/// Cuts the list where one frame is in another group than the one before it.
std::vector<CxPicturesAhead::SxRun> CxPicturesAhead::runsOf(QVector<int> const& frames,
                                                            QList<int> const& keyFrames)
{
    std::vector<SxRun> runs;
    auto const groupOf = [&keyFrames](int frame) {
        return std::upper_bound(keyFrames.begin(), keyFrames.end(), frame) - keyFrames.begin();
    };
    for (int place = 0; place < frames.size(); ++place) {
        if (place > 0 && groupOf(frames[place]) == groupOf(frames[place - 1]))
            runs.back().end = place + 1;
        else
            runs.push_back({place, place + 1});
    }
    return runs;
}

int CxPicturesAhead::groupsIn(QVector<int> const& frames, QList<int> const& keyFrames)
{
    return static_cast<int>(runsOf(frames, keyFrames).size());
}

/// Waits until there is room for one more. The one that is taken next always has it.
bool CxPicturesAhead::mayBegin(int place)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [&] { return m_isCancelled || place == m_taken || m_waiting < kMostWaitingBytes; });
    return !m_isCancelled;
}

void CxPicturesAhead::put(int place, SxNext next)
{
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_waiting += fx_BytesOf(next);
    m_ready[static_cast<size_t>(place)] = std::move(next);
    m_isReady[static_cast<size_t>(place)] = true;
    m_changed.notify_all();
}

void CxPicturesAhead::workOff(SxRun const& run, SxWorker& worker)
{
    std::unique_ptr<CxImageData> before; // its memory is used again
    for (int place = run.first; place < run.end && mayBegin(place); ++place) {
        SxNext next;
        QString cause;
        next.picture = worker.recording.picture(m_frames[place], cause);
        next.isThere = next.picture != nullptr;
        if (next.isThere) {
            SxPicBuf const& picture = *next.picture->picBuf();
            next.size = QSize(static_cast<int>(picture.width), static_cast<int>(picture.height));
            next.made = worker.make(picture);
            if (!next.made.needsPicture)
                before = std::move(next.picture);
        }
        put(place, std::move(next));
    }
}

void CxPicturesAhead::work(SxWorker& worker)
{
    for (;;) {
        SxRun run{};
        {
            std::lock_guard<std::mutex> const lock(m_mutex);
            if (m_isCancelled || m_nextRun == m_runs.size())
                return;
            run = m_runs[m_nextRun++];
        }
        try {
            workOff(run, worker);
        } catch (std::bad_alloc const&) {
            std::lock_guard<std::mutex> const lock(m_mutex);
            m_isShort = true;
            return; // what is not there, the export decodes itself, and tells what it meets
        }
    }
}

CxPicturesAhead::SxNext CxPicturesAhead::next(std::atomic<bool> const& stop)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    auto const place = static_cast<size_t>(m_taken);
    while (!stop.load() && !m_isReady[place] && !m_isShort && m_atWork > 0)
        m_changed.wait_for(lock, kLookAround);
    if (!m_isReady[place])
        return SxNext();
    SxNext next = std::move(m_ready[place]);
    m_ready[place] = SxNext();
    ++m_taken;
    m_waiting -= fx_BytesOf(next);
    m_changed.notify_all();
    return next;
}

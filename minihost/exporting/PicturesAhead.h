#pragma once

#include <QList>
#include <QVector>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

#include "ExportSink.h"
#include "RecordingReader.h"

class QThread;

/// Frames of a recording in the order asked, each decoded and made into what a sink takes by one of several
/// threads, which have a loader each: groups of pictures do not depend on each other.
///
/// What waits to be taken is at most kMostWaitingBytes and, beyond that, one picture a thread.
class CxPicturesAhead
{
public:
    static constexpr qint64 kMostWaitingBytes = 256 << 20;

    struct SxNext
    {
        std::unique_ptr<CxImageData> picture; ///< null when what was made of it does not need it any more
        SxMadePicture made;
        QSize size;
        bool isThere = false; ///< false: it does not decode, or cannot be had in this way; nothing follows
    };

    /// \param recording  open; only its name and key frames are used. The GUI thread, as its own
    /// \param newMaker   makes one for a thread
    CxPicturesAhead(CxRecordingReader const& recording, QVector<int> const& frames, int jobs,
                    std::function<MakePicture()> const& newMaker);
    ~CxPicturesAhead(); ///< after the pictures that are being decoded

    /// How often such a list passes from one group of pictures to another, and one: what can be shared out.
    static int groupsIn(QVector<int> const& frames, QList<int> const& keyFrames);

    /// The next in order, waited for; not there, too, once \p stop is set.
    SxNext next(std::atomic<bool> const& stop);

private:
    struct SxRun
    {
        int first; ///< places in the list, of frames in one group
        int end;
    };
    struct SxWorker;

    static std::vector<SxRun> runsOf(QVector<int> const& frames, QList<int> const& keyFrames);
    void work(SxWorker& worker);
    void workOff(SxRun const& run, SxWorker& worker);
    bool mayBegin(int place);
    void put(int place, SxNext next);

    QVector<int> const m_frames;
    std::vector<SxRun> m_runs; ///< handed out in this order
    std::vector<std::unique_ptr<SxWorker>> m_workers;
    std::vector<SxNext> m_ready; ///< by place; taken ones are empty
    std::vector<bool> m_isReady;
    std::mutex m_mutex; ///< for all below and the two above
    std::condition_variable m_changed;
    size_t m_nextRun = 0;
    int m_taken = 0;        ///< places before this one
    qint64 m_waiting = 0;   ///< bytes
    int m_atWork = 0;       ///< threads
    bool m_isShort = false; ///< of memory, in one of them: its pictures will not come
    bool m_isCancelled = false;
};

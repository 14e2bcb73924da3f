#pragma once

#include <QElapsedTimer>
#include <QStringList>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "CameraGaps.h"
#include "IxPictureSource.h"
#include "PictureFormat.h"

/// How far a live source may run ahead of who takes its pictures: as long as neither is exceeded.
struct SxLiveBuffer
{
    qint64 microseconds = 2000000; ///< of its time stamps
    qint64 bytes = 512000000;
};

/// Another source's pictures, fetched in a thread of its own while the caller works with those before. What
/// is told, rate, warnings, damage and the rest, is what that source told with the picture that came last
/// here.
///
/// The thread begins with the first picture and goes on with the second: until that is asked for, what the
/// source has opened for the first stays open. It is kMostWaiting pictures ahead at most, so that no more
/// than these and the caller's exist, and their memory serves again.
///
/// A live source, if told how far it may run ahead, is read without waiting for the caller. A picture beyond
/// that is dropped and counted as lost, unless it comes before its time: then it was stored somewhere and can
/// wait.
class CxSourceAhead : public IxPictureSource
{
public:
    static constexpr size_t kMostWaiting = 3;

    /// Makes the other source; waiting for data must end once \p stop is set.
    using Make = std::function<std::unique_ptr<IxPictureSource>(std::atomic<bool> const* stop)>;

    /// \param stop  once set, waiting for a picture ends and next() returns End; may be null. Of a live
    /// source
    ///              it first returns what has come.
    CxSourceAhead(Make const& make, std::atomic<bool> const* stop,
                  std::optional<SxLiveBuffer> const& live = std::nullopt);
    ~CxSourceAhead() override; ///< after the picture that is being fetched; what it waits for is interrupted

    Result next(SxPicBuf& picture) override;
    QString errorText() const override { return m_told.error; }
    int expectedPictures() const override { return m_told.expected; }
    bool hasEnd() const override { return m_told.hasEnd; }
    bool isLive() const override { return m_told.isLive; }
    SxMissingPictures missing() const override { return m_told.missing; }
    SxPictureRate rate() const override { return m_told.rate; }
    int rotation() const override { return m_told.rotation; }
    SxPixelShape pixelShape() const override { return m_told.pixelShape; }
    QSize wholeSize() const override { return m_told.wholeSize; }
    bool knowsSignificantBits() const override { return m_told.knowsSignificantBits; }
    QStringList takeWarnings() override;
    bool isDamaged() const override { return m_told.isDamaged; }

private:
    struct SxTold ///< by the source, with one picture
    {
        QString error;
        int expected = -1;
        bool hasEnd = true;
        bool isLive = false;
        SxMissingPictures missing;
        SxPictureRate rate;
        int rotation = 0;
        SxPixelShape pixelShape;
        QSize wholeSize;
        bool knowsSignificantBits = true;
        bool isDamaged = false;
    };
    struct SxFetched
    {
        CxOwnedPicture picture;
        Result result = Result::Error;
        SxTold told;
        QStringList warnings;
        std::exception_ptr failure; ///< instead of a result
    };

    void start();
    void work();
    void fetch(SxFetched& fetched);
    std::unique_ptr<SxFetched> waitForRoom();
    void put(std::unique_ptr<SxFetched> fetched);
    bool isTimely(std::unique_lock<std::mutex>& lock, SxFetched const& fetched);
    std::unique_ptr<SxFetched> waitForNext();
    void giveBack(std::unique_ptr<SxFetched> used);
    bool isStopped() const { return m_stop && m_stop->load(); }

    std::atomic<bool> const* m_stop;
    std::optional<SxLiveBuffer> m_live;
    std::atomic<bool> m_isStopping{false}; ///< the source shall wait for nothing more
    std::thread m_thread;

    std::unique_ptr<IxPictureSource> m_source; ///< the thread's own while it runs, as the next four
    CxCameraGaps m_gaps;
    SxMissingPictures m_missing; ///< to be told with the next picture
    QStringList m_untold;        ///< likewise
    QElapsedTimer m_sinceFirst;

    SxTold m_told; ///< the caller's, as the next two
    QStringList m_warnings;
    std::optional<Result> m_end; ///< once it has come

    std::mutex m_mutex; ///< for all below
    std::condition_variable m_changed;
    std::deque<std::unique_ptr<SxFetched>> m_waiting;
    qint64 m_waitingBytes = 0;
    std::vector<std::unique_ptr<SxFetched>> m_used; ///< their pictures' memory serves again
    int m_asked = 0;                                ///< pictures
    int m_begun = 0;                                ///< of these, and ahead of them
    bool m_isLive = false;                          ///< the source, by what it said last
    bool m_isAbandoned = false;                     ///< nobody wants pictures any more
    bool m_isDone = false;                          ///< the thread needs nothing any more
};

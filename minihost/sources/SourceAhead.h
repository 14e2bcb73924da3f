#pragma once

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

#include "IxPictureSource.h"
#include "PictureFormat.h"

/// Another source's pictures, fetched in a thread of its own while the caller works with those before. What
/// is told, rate, warnings, damage and the rest, is what that source told with the picture that came last
/// here.
///
/// The thread begins with the first picture and goes on with the second: until that is asked for, what the
/// source has opened for the first stays open. It is kMostWaiting pictures ahead at most, so that no more
/// than these and the caller's exist, and their memory serves again.
class CxSourceAhead : public IxPictureSource
{
public:
    static constexpr size_t kMostWaiting = 3;

    /// Makes the other source; waiting for data must end once \p stop is set.
    using Make = std::function<std::unique_ptr<IxPictureSource>(std::atomic<bool> const* stop)>;

    /// \param stop  once set, waiting for a picture ends and next() returns End; may be null.
    CxSourceAhead(Make const& make, std::atomic<bool> const* stop);
    ~CxSourceAhead() override; ///< after the picture that is being fetched; what it waits for is interrupted

    Result next(SxPicBuf& picture) override;
    QString errorText() const override { return m_told.error; }
    int expectedPictures() const override { return m_told.expected; }
    bool hasEnd() const override { return m_told.hasEnd; }
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
    std::unique_ptr<SxFetched> waitForNext();
    bool isStopped() const { return m_stop && m_stop->load(); }

    std::atomic<bool> const* m_stop;
    std::atomic<bool> m_isCancelled{false};
    std::unique_ptr<IxPictureSource> m_source; ///< the thread's own while it runs
    SxTold m_told;                             ///< the caller's
    QStringList m_warnings;                    ///< the caller's
    std::optional<Result> m_end;               ///< the caller's; once it has come
    std::thread m_thread;

    std::mutex m_mutex; ///< for all below
    std::condition_variable m_changed;
    std::deque<std::unique_ptr<SxFetched>> m_waiting;
    std::vector<std::unique_ptr<SxFetched>> m_used; ///< their pictures' memory serves again
    int m_asked = 0;                                ///< pictures
    int m_begun = 0;                                ///< of these, and ahead of them
    bool m_isDone = false;                          ///< the thread needs nothing any more
};

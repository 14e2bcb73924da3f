#pragma once

#include <QElapsedTimer>
#include <QMutex>
#include <QThread>
#include <QWaitCondition>
#include <atomic>
#include <functional>
#include <memory>

#include "IxPictureSource.h"
#include "ShownPicture.h"

class CxRecordJob;

/// Makes the source to show; waiting for data must end once \p stop is set.
using SourceFactory = std::function<std::unique_ptr<IxPictureSource>(std::atomic<bool> const* stop)>;

/// Shows a camera or another running source, in a thread of its own, at the source's own speed. Only
/// the newest picture goes to the window; all of them go to a recording.
class CxLiveSource : public QThread
{
    Q_OBJECT

public:
    explicit CxLiveSource(SourceFactory const& make, QObject* parent = nullptr);
    ~CxLiveSource() override; ///< ends a recording too

    /// Records from the next picture on; the source goes on when the job ends. \p job outlives this or
    /// its own finished().
    void record(CxRecordJob* job);

signals:
    void pictureCame(SxShownPicture const& picture); ///< number: pictures since the start
    void sourceEnded(QString const& error);          ///< \p error is one sentence, or empty at the end

protected:
    void run() override;

private:
    class CxTee;

    CxRecordJob* takeJob();
    IxPictureSource::Result nextInTime(SxPicBuf& picture);
    void waitFor(quint64 timestamp);
    bool isWindowWaiting();
    void publish(std::unique_ptr<CxImageData> data);
    void deliver();

    std::atomic<bool> m_stop{false};
    std::unique_ptr<IxPictureSource> m_source; ///< the thread's own from its start on
    QElapsedTimer m_clock;
    qint64 m_origin = 0; ///< microseconds of m_clock at the source's time 0
    int m_count = 0;

    QMutex m_mutex;
    QWaitCondition m_wake;
    CxRecordJob* m_job = nullptr; ///< waiting to begin
    SxShownPicture m_newest;
    bool m_isAnnounced = false; ///< the window has yet to fetch m_newest
};

#pragma once

#include <QObject>
#include <QThread>
#include <atomic>
#include <memory>

#include "Recorder.h"
#include "RecordingSource.h"

Q_DECLARE_METATYPE(SxRecordSummary)

/// One recording in the background, with progress and a way to end it early. What was written until then
/// stays. Signals arrive in the thread that made the job.
///
/// The plug-in's classes are looked up in the recording's thread: until finished() the window neither
/// loads plug-ins nor changes codec options.
class CxRecordJob : public QObject
{
    Q_OBJECT

public:
    explicit CxRecordJob(SxRecordRequest const& request, QObject* parent = nullptr);
    ~CxRecordJob() override; ///< ends the recording and waits for it, when start() began it

    SxRecordRequest const& request() const { return m_request; }

    void start(std::unique_ptr<CxRecordingSource> source); ///< records \p source in a thread of its own
    void run(IxPictureSource& source);                     ///< records in the calling thread
    void cancel() { m_stop.store(true); }

    /// Once finished() has come: numbers of the recording's pictures that did not decode.
    QVector<int> const& broken() const { return m_broken; }

signals:
    void progressed(SxRecordSummary const& summary);
    void finished(SxRecordSummary const& summary);

private:
    SxRecordSummary record(IxPictureSource& source);

    SxRecordRequest m_request;
    std::atomic<bool> m_stop{false};
    QVector<int> m_broken;
    std::unique_ptr<QThread> m_thread;
};

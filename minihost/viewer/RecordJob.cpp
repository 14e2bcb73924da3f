#include "RecordJob.h"

#include <QElapsedTimer>

#include "NotedRecording.h"

static constexpr qint64 kReportInterval = 100; // milliseconds; a person reads no faster

CxRecordJob::CxRecordJob(SxRecordRequest const& request, QObject* parent)
    : QObject(parent)
    , m_request(request)
{
    qRegisterMetaType<SxRecordSummary>();
    m_request.stop = &m_stop;
}

CxRecordJob::~CxRecordJob()
{
    cancel();
    if (m_thread)
        m_thread->wait();
}

void CxRecordJob::start(std::unique_ptr<CxRecordingSource> source)
{
    CxRecordingSource& moved = *source;
    m_thread.reset(QThread::create([this, source = std::move(source)]() mutable {
        SxRecordSummary const summary = record(*source);
        m_broken = source->broken();
        source.reset(); // in the thread that used it
        emit finished(summary);
    }));
    moved.moveToThread(m_thread.get());
    m_thread->start();
}

void CxRecordJob::run(IxPictureSource& source) { emit finished(record(source)); }

SxRecordSummary CxRecordJob::record(IxPictureSource& source)
{
    QElapsedTimer sinceReport;
    sinceReport.start();
    return fx_RecordWithSidecar(source, m_request, [&](SxRecordSummary const& soFar) {
        if (sinceReport.elapsed() < kReportInterval && soFar.given > 1)
            return;
        sinceReport.restart();
        emit progressed(soFar);
    });
}

#include "LiveSource.h"

#include <QMutexLocker>
#include <cstring>
#include <utility>

#include "CxPicBufAPI.h"
#include "RecordJob.h"

static constexpr qint64 kLargestDelay = 100000; // microseconds; a source that is later sets its clock anew

/// Hands pictures to a recording and shows those that the window has time for.
class CxLiveSource::CxTee : public IxPictureSource
{
public:
    explicit CxTee(CxLiveSource& live)
        : m_live(live)
    {}

    Result next(SxPicBuf& picture) override
    {
        Result const result = m_live.nextInTime(picture);
        if (result == Result::Picture && m_live.isWindowWaiting())
            m_live.publish(copyOf(picture));
        return result;
    }
    QString errorText() const override { return m_live.m_source->errorText(); }
    int expectedPictures() const override { return m_live.m_source->expectedPictures(); }
    bool hasEnd() const override { return m_live.m_source->hasEnd(); }
    SxPictureRate rate() const override { return m_live.m_source->rate(); }
    int rotation() const override { return m_live.m_source->rotation(); }
    bool knowsSignificantBits() const override { return m_live.m_source->knowsSignificantBits(); }
    QStringList takeWarnings() override { return m_live.m_source->takeWarnings(); }
    bool isDamaged() const override { return m_live.m_source->isDamaged(); }

private:
    static std::unique_ptr<CxImageData> copyOf(SxPicBuf const& picture)
    {
        SxPicBuf copy;
        auto data = std::make_unique<CxImageData>();
        if (CxPicBufAPI::AllocPicBufFromHeap(copy, picture, false, 0)) {
            std::memcpy(copy.data, picture.data, size_t{picture.pitch} * picture.height);
            copy.timestamp = picture.timestamp;
            data->setPicBuf(copy);
        }
        return data;
    }

    CxLiveSource& m_live;
};

CxLiveSource::CxLiveSource(SourceFactory const& make, QObject* parent)
    : QThread(parent)
    , m_source(make(&m_stop))
{
    qRegisterMetaType<SxShownPicture>();
    start();
}

CxLiveSource::~CxLiveSource()
{
    {
        QMutexLocker const lock(&m_mutex);
        m_stop.store(true);
        m_wake.wakeAll();
    }
    wait();
}

void CxLiveSource::record(CxRecordJob* job)
{
    QMutexLocker const lock(&m_mutex);
    m_job = job;
}

CxRecordJob* CxLiveSource::takeJob()
{
    QMutexLocker const lock(&m_mutex);
    return std::exchange(m_job, nullptr);
}

/// Waits until the picture's time has come: a file or the test camera would run ahead.
void CxLiveSource::waitFor(quint64 timestamp)
{
    qint64 const due = m_origin + static_cast<qint64>(timestamp);
    qint64 const now = m_clock.nsecsElapsed() / 1000;
    if (m_count == 0 || now - due > kLargestDelay) {
        m_origin += now - due;
        return;
    }
    QMutexLocker const lock(&m_mutex);
    if (due - now >= 1000 && !m_stop.load())
        m_wake.wait(&m_mutex, static_cast<unsigned long>((due - now) / 1000));
}

IxPictureSource::Result CxLiveSource::nextInTime(SxPicBuf& picture)
{
    if (m_stop.load())
        return IxPictureSource::Result::End;
    IxPictureSource::Result const result = m_source->next(picture);
    if (result == IxPictureSource::Result::Picture) {
        waitFor(picture.timestamp);
        ++m_count;
    }
    return result;
}

bool CxLiveSource::isWindowWaiting()
{
    QMutexLocker const lock(&m_mutex);
    return !m_isAnnounced;
}

void CxLiveSource::publish(std::unique_ptr<CxImageData> data)
{
    SxShownPicture picture = fx_ShownPicture(m_count - 1, std::move(data), m_source->sourceBits());
    picture.rotation = m_source->rotation();
    picture.pixelShape = m_source->pixelShape();
    QMutexLocker const lock(&m_mutex);
    m_newest = picture;
    if (m_isAnnounced)
        return;
    m_isAnnounced = true;
    QMetaObject::invokeMethod(
        this, [this] { deliver(); }, Qt::QueuedConnection);
}

void CxLiveSource::deliver()
{
    SxShownPicture picture;
    {
        QMutexLocker const lock(&m_mutex);
        std::swap(picture, m_newest);
        m_isAnnounced = false;
    }
    emit pictureCame(picture);
}

void CxLiveSource::run()
{
    m_clock.start();
    IxPictureSource::Result result = IxPictureSource::Result::Picture;
    while (!m_stop.load() && result == IxPictureSource::Result::Picture) {
        if (CxRecordJob* const job = takeJob()) {
            CxTee tee(*this);
            job->run(tee);
            continue;
        }
        SxPicBuf picture;
        result = nextInTime(picture);
        auto data = std::make_unique<CxImageData>();
        data->setPicBuf(picture); // frees what an error left behind, too
        if (result == IxPictureSource::Result::Picture)
            publish(std::move(data));
    }
    if (CxRecordJob* const job = takeJob()) {
        CxTee tee(*this);
        job->run(tee); // reports that there is nothing to record
    }
    if (!m_stop.load())
        emit sourceEnded(result == IxPictureSource::Result::Error ? m_source->errorText() : QString());
    m_source.reset();
}

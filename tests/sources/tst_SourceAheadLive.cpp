#include <QtTest>

#include "SourceAhead.h"

/// A camera that gives as many pictures as the test lets it, by the clock that it is told.
class CxGatedCamera : public IxPictureSource
{
public:
    static constexpr qint64 kBytes = 256 * 16; // of a picture in memory

    CxGatedCamera(std::vector<quint64> times, std::atomic<bool> const* stop)
        : m_times(std::move(times))
        , m_stop(stop)
    {}

    Result next(SxPicBuf& picture) override
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        ++m_begun;
        m_changed.notify_all();
        while (m_next == m_released && !m_stop->load())
            m_changed.wait_for(lock, std::chrono::milliseconds(10));
        if (m_next == m_released || m_next == m_times.size())
            return Result::End;
        if (!fx_PreparePicture(picture, fx_PackedFormat(16, 16, 1, 8)))
            return Result::Error;
        picture.timestamp = m_times[m_next++];
        return Result::Picture;
    }
    QString errorText() const override { return {}; }
    int expectedPictures() const override { return -1; }
    bool hasEnd() const override { return false; }
    bool isLive() const override { return true; }
    bool knowsSignificantBits() const override { return true; }
    QStringList takeWarnings() override { return {QStringLiteral("about %1").arg(m_next - 1)}; }
    bool isDamaged() const override { return false; }

    /// So many more, or the end behind the last, and waits until they are taken and the next is asked for.
    bool release(size_t pictures)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_released += pictures;
        m_changed.notify_all();
        return m_changed.wait_for(lock, std::chrono::minutes(1), [&] { return m_begun > m_released; });
    }
    void releaseAll()
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_released = m_times.size() + 1;
        m_changed.notify_all();
    }
    bool waitUntilBegun(size_t pictures)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::minutes(1), [&] { return m_begun >= pictures; });
    }

private:
    std::vector<quint64> m_times; ///< microseconds
    std::atomic<bool> const* m_stop;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    size_t m_released = 1;
    size_t m_next = 0;
    size_t m_begun = 0;
};

/// A camera behind a buffer, and what came out of it.
class CxBufferedCamera
{
public:
    CxBufferedCamera(std::vector<quint64> const& times, std::optional<SxLiveBuffer> const& buffer)
        : source(
              [&](std::atomic<bool> const* inner) {
                  auto made = std::make_unique<CxGatedCamera>(times, inner);
                  camera = made.get();
                  return made;
              },
              &stop, buffer)
    {}

    /// Takes so many pictures. \return the times of those that came.
    QVector<quint64> take(int pictures)
    {
        QVector<quint64> times;
        for (int i = 0; i < pictures && source.next(picture.get()) == IxPictureSource::Result::Picture; ++i) {
            times.append(picture.get().timestamp);
            lost += source.missing().lost;
            byCamera += source.missing().byCamera;
        }
        return times;
    }

    std::atomic<bool> stop{false};
    CxGatedCamera* camera = nullptr;
    CxSourceAhead source;
    CxOwnedPicture picture;
    int lost = 0;
    int byCamera = 0;
};

/// A live source ahead of who takes its pictures: what is kept, what is lost, and what is said of it.
class tst_SourceAheadLive : public QObject
{
    Q_OBJECT

private slots:
    void burstWaitsInTheBuffer();
    void whatOverflowsIsLostAndCounted_data();
    void whatOverflowsIsLostAndCounted();
    void lossAtTheEndIsToldWithIt();
    void warningsOfLostPicturesAreTold();
    void whatComesBeforeItsTimeWaits();
    void stoppedItStillGivesWhatCame();
    void picturesThatTheCameraLeftOutAreTold();
    void withoutABufferNothingIsLost();
};

/// So many times that \p step microseconds lie between.
static std::vector<quint64> fx_Times(size_t count, quint64 step)
{
    std::vector<quint64> times(count);
    for (size_t i = 0; i < count; ++i)
        times[i] = i * step;
    return times;
}

static QVector<quint64> fx_Numbers(quint64 first, quint64 last, quint64 step = 1)
{
    QVector<quint64> numbers;
    for (quint64 number = first; number <= last; ++number)
        numbers.append(number * step);
    return numbers;
}

void tst_SourceAheadLive::burstWaitsInTheBuffer()
{
    CxBufferedCamera live(fx_Times(61, 1), SxLiveBuffer());
    QCOMPARE(live.take(1), fx_Numbers(0, 0));
    QVERIFY(live.camera->release(30)); // while nobody takes one
    QCOMPARE(live.take(30), fx_Numbers(1, 30));
    QVERIFY(live.camera->release(30)); // after a pause
    QCOMPARE(live.take(30), fx_Numbers(31, 60));
    QCOMPARE(live.lost, 0);
}

void tst_SourceAheadLive::whatOverflowsIsLostAndCounted_data()
{
    QTest::addColumn<qint64>("microseconds");
    QTest::addColumn<qint64>("bytes");
    QTest::newRow("memory") << qint64{1000000} << 5 * CxGatedCamera::kBytes;
    QTest::newRow("time") << qint64{4} << qint64{1000000};
}

void tst_SourceAheadLive::whatOverflowsIsLostAndCounted()
{
    QFETCH(qint64, microseconds);
    QFETCH(qint64, bytes);
    CxBufferedCamera live(fx_Times(23, 1), SxLiveBuffer{microseconds, bytes});
    QCOMPARE(live.take(1), fx_Numbers(0, 0));
    QVERIFY(live.camera->release(20));
    QCOMPARE(live.take(5), fx_Numbers(1, 5));
    QCOMPARE(live.lost, 0); // those before the loss
    QVERIFY(live.camera->release(2));
    QCOMPARE(live.take(1), fx_Numbers(21, 21));
    QCOMPARE(live.lost, 15);
    QCOMPARE(live.take(1), fx_Numbers(22, 22));
    QCOMPARE(live.lost, 15);
}

void tst_SourceAheadLive::lossAtTheEndIsToldWithIt()
{
    CxBufferedCamera live(fx_Times(10, 1), SxLiveBuffer{1000000, 2 * CxGatedCamera::kBytes});
    QCOMPARE(live.take(1), fx_Numbers(0, 0));
    QVERIFY(live.camera->release(9));
    live.camera->releaseAll();
    QCOMPARE(live.take(2), fx_Numbers(1, 2));
    QVERIFY(live.source.next(live.picture.get()) == IxPictureSource::Result::End);
    QCOMPARE(live.source.missing().lost, 7);
}

void tst_SourceAheadLive::warningsOfLostPicturesAreTold()
{
    CxBufferedCamera live(fx_Times(5, 1), SxLiveBuffer{1000000, CxGatedCamera::kBytes});
    live.take(1);
    QVERIFY(live.camera->release(3)); // two of them are lost
    live.take(1);
    live.source.takeWarnings();
    QVERIFY(live.camera->release(1));
    live.take(1);
    QCOMPARE(live.source.takeWarnings(), (QStringList{"about 2", "about 3", "about 4"}));
}

void tst_SourceAheadLive::whatComesBeforeItsTimeWaits()
{
    quint64 const hour = 3600000000;
    CxBufferedCamera live(fx_Times(20, hour), SxLiveBuffer{1000000, CxGatedCamera::kBytes});
    live.camera->releaseAll();
    QCOMPARE(live.take(1), fx_Numbers(0, 0));
    QVERIFY(live.camera->waitUntilBegun(3)); // one waits, and one for room
    QCOMPARE(live.take(100), fx_Numbers(1, 19, hour));
    QCOMPARE(live.lost, 0);
}

void tst_SourceAheadLive::stoppedItStillGivesWhatCame()
{
    CxBufferedCamera live(fx_Times(100, 1), SxLiveBuffer());
    live.take(1);
    QVERIFY(live.camera->release(20));
    live.stop.store(true);
    QCOMPARE(live.take(100), fx_Numbers(1, 20));
    QVERIFY(live.source.next(live.picture.get()) == IxPictureSource::Result::End);
}

void tst_SourceAheadLive::picturesThatTheCameraLeftOutAreTold()
{
    std::vector<quint64> times = fx_Times(30, 100);
    times.erase(times.begin() + 20, times.begin() + 23);
    CxBufferedCamera live(times, SxLiveBuffer());
    live.camera->releaseAll();
    live.take(20);
    QCOMPARE(live.byCamera, 0);
    live.take(1);
    QCOMPARE(live.byCamera, 3);
    live.take(100);
    QCOMPARE(live.byCamera, 3);
    QCOMPARE(live.lost, 0);
}

void tst_SourceAheadLive::withoutABufferNothingIsLost()
{
    CxBufferedCamera live(fx_Times(100, 1), std::nullopt);
    live.camera->releaseAll();
    live.take(2);
    QVERIFY(live.camera->waitUntilBegun(5));
    QCOMPARE(live.take(200), fx_Numbers(2, 99));
    QCOMPARE(live.lost, 0);
}

QTEST_GUILESS_MAIN(tst_SourceAheadLive)
#include "tst_SourceAheadLive.moc"

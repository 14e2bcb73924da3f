#include <QtTest>

#include <cerrno>
#include <new>
#include <set>
#include <unistd.h>

#include "SourceAhead.h"

/// Small pictures that are numbered in their time stamps, after which something else may come.
class CxNumberedSource : public IxPictureSource
{
public:
    enum class Then { End, Error, NoMemory };

    /// \param begunOutside  may be null; counts the calls, for when it is gone itself
    CxNumberedSource(int count, Then then, std::atomic<int>* begunOutside = nullptr)
        : m_count(count)
        , m_then(then)
        , m_begunOutside(begunOutside)
    {}

    Result next(SxPicBuf& picture) override
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        ++m_begun;
        if (m_begunOutside)
            ++*m_begunOutside;
        m_mostAhead = std::max(m_mostAhead, m_begun - m_taken);
        m_changed.notify_all();
        if (m_next == m_count && m_then == Then::NoMemory)
            throw std::bad_alloc();
        if (m_next == m_count)
            return m_then == Then::End ? Result::End : Result::Error;
        if (!fx_PreparePicture(picture, fx_PackedFormat(16, 16, 1, 8)))
            return Result::Error;
        m_memory.insert(picture.data);
        picture.timestamp = static_cast<quint64>(m_next);
        ++m_next;
        return Result::Picture;
    }
    QString errorText() const override
    {
        return m_next == m_count && m_then == Then::Error ? QStringLiteral("Loose cable.") : QString();
    }
    int expectedPictures() const override { return 1000 + m_next; }
    bool hasEnd() const override { return m_next % 2 == 0; }
    SxPictureRate rate() const override { return {m_next}; }
    int rotation() const override { return m_next * 90; }
    SxPixelShape pixelShape() const override { return {m_next, 1}; }
    QSize wholeSize() const override { return QSize(m_next, 17); }
    bool knowsSignificantBits() const override { return m_next != 2; }
    QStringList takeWarnings() override { return {QStringLiteral("about %1").arg(m_next - 1)}; }
    bool isDamaged() const override { return m_next > 3; }

    void setTaken(int taken)
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_taken = taken;
    }
    bool waitUntilBegun(int pictures)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::minutes(1), [&] { return m_begun >= pictures; });
    }
    int mostAhead() const { return m_mostAhead; }     ///< once it has ended, as the next
    size_t blocks() const { return m_memory.size(); } ///< of memory that was filled
    int begun() const { return m_begun; }

private:
    int m_count;
    Then m_then;
    std::atomic<int>* m_begunOutside;
    int m_next = 0;
    std::set<unsigned char*> m_memory;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_begun = 0;
    int m_taken = 0;
    int m_mostAhead = 0;
};

/// After one picture sets a flag and waits for what nobody writes.
class CxSilentSource : public CxNumberedSource
{
public:
    CxSilentSource(std::atomic<bool> const* stop, std::atomic<bool>* stopped)
        : CxNumberedSource(1, Then::Error)
        , m_stop(stop)
        , m_stopped(stopped)
    {
        m_isOpen = ::pipe(m_pipe) == 0;
    }
    ~CxSilentSource() override
    {
        ::close(m_pipe[0]);
        ::close(m_pipe[1]);
    }
    Result next(SxPicBuf& picture) override
    {
        if (m_isFirst) {
            m_isFirst = false;
            return CxNumberedSource::next(picture);
        }
        m_stopped->store(true);
        char byte = 0;
        while (m_isOpen && !m_stop->load() && ::read(m_pipe[0], &byte, 1) < 0 && errno == EINTR)
            continue;
        return Result::End;
    }

private:
    std::atomic<bool> const* m_stop;
    std::atomic<bool>* m_stopped;
    int m_pipe[2] = {-1, -1};
    bool m_isOpen = false;
    bool m_isFirst = true;
};

/// Pictures fetched ahead: the same ones with the same things said of them, few at a time.
class tst_SourceAhead : public QObject
{
    Q_OBJECT

private slots:
    void everyPictureComesWithWhatWasToldOfIt();
    void picturesAreFetchedWhileTheCallerWorks();
    void threePicturesAtMostAreAheadInFewBlocksOfMemory();
    void nothingIsFetchedAheadOfTheFirst();
    void errorComesBehindThePicturesBeforeIt();
    void missingMemoryIsTheCallersToTell();
    void stopEndsTheWaitAndWakesTheReader();
    void endedBeforeItBeganAsksForNothing();
};

using Then = CxNumberedSource::Then;

/// One ahead of \p source, which it shows.
static std::unique_ptr<CxSourceAhead> fx_Ahead(int count, Then then, CxNumberedSource*& source)
{
    auto const make = [&](std::atomic<bool> const*) {
        auto made = std::make_unique<CxNumberedSource>(count, then);
        source = made.get();
        return made;
    };
    return std::make_unique<CxSourceAhead>(make, nullptr);
}

void tst_SourceAhead::everyPictureComesWithWhatWasToldOfIt()
{
    CxNumberedSource* inner = nullptr;
    auto const source = fx_Ahead(6, Then::End, inner);
    CxOwnedPicture picture;
    for (int number = 0; number < 6; ++number) {
        QVERIFY(source->next(picture.get()) == IxPictureSource::Result::Picture);
        if (number == 1)
            QVERIFY(inner->waitUntilBegun(5)); // so what follows was told long ago
        int const told = number + 1;
        QCOMPARE(picture.get().timestamp, static_cast<quint64>(number));
        QCOMPARE(source->expectedPictures(), 1000 + told);
        QCOMPARE(source->hasEnd(), told % 2 == 0);
        QCOMPARE(source->rate().numerator, told);
        QCOMPARE(source->rotation(), told * 90);
        QCOMPARE(source->pixelShape().width, told);
        QCOMPARE(source->wholeSize(), QSize(told, 17));
        QCOMPARE(source->knowsSignificantBits(), told != 2);
        QCOMPARE(source->isDamaged(), told > 3);
        QCOMPARE(source->takeWarnings(), QStringList{QStringLiteral("about %1").arg(number)});
        QCOMPARE(source->takeWarnings(), QStringList());
    }
    QVERIFY(source->next(picture.get()) == IxPictureSource::Result::End);
    QVERIFY(source->next(picture.get()) == IxPictureSource::Result::End);
}

void tst_SourceAhead::picturesAreFetchedWhileTheCallerWorks()
{
    CxNumberedSource* inner = nullptr;
    auto const source = fx_Ahead(100, Then::End, inner);
    CxOwnedPicture picture;
    for (int number = 0; number < 2; ++number)
        QVERIFY(source->next(picture.get()) == IxPictureSource::Result::Picture);
    QVERIFY(inner->waitUntilBegun(5)); // three behind the two that were asked for
}

void tst_SourceAhead::threePicturesAtMostAreAheadInFewBlocksOfMemory()
{
    CxNumberedSource* inner = nullptr;
    auto const source = fx_Ahead(500, Then::End, inner);
    CxOwnedPicture picture;
    for (int taken = 0; taken < 500; inner->setTaken(++taken)) {
        QVERIFY(source->next(picture.get()) == IxPictureSource::Result::Picture);
        QCOMPARE(picture.get().timestamp, static_cast<quint64>(taken));
    }
    QVERIFY(source->next(picture.get()) == IxPictureSource::Result::End);
    // Those that wait, and the one in the caller's hand while it is not counted as taken yet.
    QVERIFY2(inner->mostAhead() <= 4, qPrintable(QString::number(inner->mostAhead())));
    QVERIFY2(inner->blocks() <= 5, qPrintable(QString::number(inner->blocks())));
}

void tst_SourceAhead::nothingIsFetchedAheadOfTheFirst()
{
    for (int round = 0; round < 20; ++round) {
        std::atomic<int> begun{0};
        {
            CxSourceAhead source(
                [&](std::atomic<bool> const*) {
                    return std::make_unique<CxNumberedSource>(100, Then::End, &begun);
                },
                nullptr);
            CxOwnedPicture picture;
            QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
        }
        QCOMPARE(begun.load(), 1);
    }
}

void tst_SourceAhead::errorComesBehindThePicturesBeforeIt()
{
    CxNumberedSource* inner = nullptr;
    auto const source = fx_Ahead(3, Then::Error, inner);
    CxOwnedPicture picture;
    for (int number = 0; number < 3; ++number) {
        QVERIFY(source->next(picture.get()) == IxPictureSource::Result::Picture);
        if (number == 1)
            QVERIFY(inner->waitUntilBegun(4)); // it has failed by now
        QVERIFY(number == 2 || source->errorText().isEmpty());
    }
    for (int again = 0; again < 2; ++again) {
        QVERIFY(source->next(picture.get()) == IxPictureSource::Result::Error);
        QCOMPARE(source->errorText(), QString("Loose cable."));
    }
}

void tst_SourceAhead::missingMemoryIsTheCallersToTell()
{
    CxNumberedSource* inner = nullptr;
    auto const source = fx_Ahead(1, Then::NoMemory, inner);
    CxOwnedPicture picture;
    QVERIFY(source->next(picture.get()) == IxPictureSource::Result::Picture);
    QVERIFY_EXCEPTION_THROWN(source->next(picture.get()), std::bad_alloc);
}

void tst_SourceAhead::stopEndsTheWaitAndWakesTheReader()
{
    std::atomic<bool> stop{false};
    {
        CxSourceAhead source(
            [&](std::atomic<bool> const* inner) { return std::make_unique<CxSilentSource>(inner, &stop); },
            &stop);
        CxOwnedPicture picture;
        QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
        QVERIFY(!stop.load());
        QVERIFY(source.next(picture.get()) == IxPictureSource::Result::End); // not before it is stopped
        QVERIFY(stop.load());
    } // which does not wait for a byte
}

void tst_SourceAhead::endedBeforeItBeganAsksForNothing()
{
    CxNumberedSource* inner = nullptr;
    auto const source = fx_Ahead(1, Then::End, inner);
    QCOMPARE(inner->begun(), 0);
    QCOMPARE(source->expectedPictures(), -1);
}

QTEST_GUILESS_MAIN(tst_SourceAhead)
#include "tst_SourceAhead.moc"

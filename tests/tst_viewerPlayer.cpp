#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>
#include <utility>

#include "CxPicBufAPI.h"
#include "IxVideoAccessor.h"
#include "PictureFormat.h"
#include "Player.h"
#include "RecordingSource.h"
#include "support/ViewerFixture.h"

namespace {

/// What the loader below was asked, and permission for it to go on.
struct SxLoaderLog
{
    QMutex mutex;
    QVector<int> loaded;
    QThread* thread = nullptr;
    bool isDeleted = false;
    bool isGated = false;
    QSemaphore entered;
    QSemaphore gate;

    QVector<int> take()
    {
        QMutexLocker const lock(&mutex);
        return std::exchange(loaded, {});
    }
};

} // namespace

/// A reader of the fake loader, and its answers as they reach the window's thread. (A QSignalSpy would
/// take them down in the reader's thread.)
class CxProbe : public QObject
{
public:
    explicit CxProbe(SxLoaderLog& log, qint64 memory = CxPictureReader::kDefaultMemory);

    bool open(SxLoaderLog& log);
    /// Waits for the answer to \p ticket and returns the picture's number, -1 for a failure, -2 for none.
    int answer(int ticket)
    {
        bool const came = QTest::qWaitFor([&] { return read.contains(ticket) || failed.contains(ticket); });
        return !came ? -2 : read.contains(ticket) ? read.value(ticket).number : -1;
    }
    int ask(int number, bool isBackwards = false) { return answer(reader.request(number, isBackwards)); }

    CxPictureReader reader;
    QList<SxOpenedRecording> opened;
    QMap<int, SxShownPicture> read; ///< by ticket
    QMap<int, int> failed;          ///< numbers by ticket
};

/// Forty pictures of 4 x 4 pixels whose blue is their number; key frames every ten; 13 is broken.
class CxFakeLoader : public QObject, public IxImageDataLoader, public IxVideoAccessor
{
    Q_OBJECT

public:
    explicit CxFakeLoader(SxLoaderLog& log)
        : m_log(log)
    {}
    ~CxFakeLoader() override { m_log.isDeleted = true; }

    bool load() override { return true; }
    int sequenceSize() override { return 40; }
    IxChainData* loadedData(int index) override
    {
        {
            QMutexLocker const lock(&m_log.mutex);
            m_log.loaded.append(index);
            m_log.thread = QThread::currentThread();
        }
        m_log.entered.release();
        if (m_log.isGated)
            m_log.gate.acquire();
        if (index == 13)
            return nullptr;
        SxPicBuf picture;
        if (!CxPicBufAPI::AllocPicBufFromHeap(picture, fx_PackedFormat(4, 4, 4, 8), false, 0))
            return nullptr;
        std::fill_n(picture.data, picture.pitch * picture.height, static_cast<uchar>(index));
        auto* const data = new CxImageData;
        data->setPicBuf(picture);
        return data;
    }
    QString inputFile() override { return {}; }
    void setInputFile(QString const&) override {}
    double loadedFps() override { return 30.0; }
    QList<CxImageFormat> supportedImageFormats() override { return {}; }
    int framesCount() override { return 40; }
    unsigned long frameDataSize(int) override { return 0; }
    bool frameData(int, void*, unsigned long&) override { return false; }
    int lastProcessedFrame() override { return -1; }
    void keyFrames(QList<int>& frames) override { frames = {0, 10, 20, 30}; }

private:
    SxLoaderLog& m_log;
};

CxProbe::CxProbe(SxLoaderLog& log, qint64 memory)
    : reader(memory)
{
    connect(&reader, &CxPictureReader::opened, this,
            [this](SxOpenedRecording const& info) { opened.append(info); });
    connect(&reader, &CxPictureReader::pictureRead, this,
            [this](int ticket, SxShownPicture const& picture) { read.insert(ticket, picture); });
    connect(&reader, &CxPictureReader::pictureFailed, this,
            [this](int ticket, int number) { failed.insert(ticket, number); });
    open(log);
}

bool CxProbe::open(SxLoaderLog& log)
{
    int const before = opened.size();
    reader.open(std::make_unique<CxFakeLoader>(log), QStringLiteral("name"));
    return QTest::qWaitFor([&] { return opened.size() > before; });
}

class tst_viewerPlayer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void readsInItsOwnThread();
    void deletesLoader();
    void onlyNewestRequest();
    void newFileDropsRequests();
    void keepsWhatWasRead();
    void steppingBackReadsGroupOnce();
    void memoryLimit();
    void brokenPicture();

    void numberIsOfPicture();
    void playsEveryPictureOnce();
    void playsFromTheEndAgain();
    void pauseStaysAtPictureShown();
    void seekWhilePlayingGoesOn();
    void loops();
    void keyFrameSteps();
    void stepsAreCounted();
    void seeksAreBroughtInside();
    void steppingBackInRealGroup();
    void closeForgetsPictures();
    void openFails();

    void partOfRecording();
    void partWithBrokenPicture();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_viewerPlayer::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 24);
    QVERIFY(!m_recording.isEmpty());
}

// ---- The reader

void tst_viewerPlayer::readsInItsOwnThread()
{
    SxLoaderLog log;
    CxProbe probe(log);
    QCOMPARE(probe.opened.size(), 1);
    SxOpenedRecording const info = probe.opened.first();
    QCOMPARE(info.fileName, QStringLiteral("name"));
    QCOMPARE(info.count, 40);
    QCOMPARE(info.fps, 30.0);
    QCOMPARE(info.keyFrames, (QList<int>{0, 10, 20, 30}));
    QCOMPARE(probe.ask(7), 7);
    QCOMPARE(log.thread, static_cast<QThread*>(&probe.reader));
    SxShownPicture const picture = probe.read.last();
    QCOMPARE(qBlue(picture.image.pixel(3, 3)), 7);
    // The image lies on the loader's own pixels.
    QCOMPARE(picture.image.constBits(), static_cast<uchar const*>(picture.data->picBuf()->data));
}

void tst_viewerPlayer::deletesLoader()
{
    SxLoaderLog first, second;
    {
        CxProbe probe(first);
        QVERIFY(probe.open(second));
        QVERIFY(first.isDeleted);
        QVERIFY(!second.isDeleted);
    }
    QVERIFY(second.isDeleted);
}

void tst_viewerPlayer::onlyNewestRequest()
{
    SxLoaderLog log;
    CxProbe probe(log);
    log.isGated = true;
    probe.reader.request(1);
    log.entered.acquire(); // it has begun; what comes now waits
    for (int i = 2; i < 30; ++i)
        probe.reader.request(i);
    int const last = probe.reader.request(35);
    log.gate.release(2);
    QCOMPARE(probe.answer(last), 35);
    QCOMPARE(log.take(), (QVector<int>{1, 35}));
    QCOMPARE(probe.read.size(), 2);
}

void tst_viewerPlayer::newFileDropsRequests()
{
    SxLoaderLog first, second;
    CxProbe probe(first);
    first.isGated = true;
    probe.reader.request(1);
    first.entered.acquire();
    probe.reader.request(2);
    first.gate.release(2);
    probe.reader.open(std::make_unique<CxFakeLoader>(second), QStringLiteral("name"));
    QTRY_COMPARE(probe.opened.size(), 2);
    QCOMPARE(probe.ask(3), 3);
    QCOMPARE(second.take(), (QVector<int>{3}));
}

void tst_viewerPlayer::keepsWhatWasRead()
{
    SxLoaderLog log;
    CxProbe probe(log);
    for (int i = 10; i < 13; ++i)
        QCOMPARE(probe.ask(i), i);
    QCOMPARE(probe.reader.picturesDecoded(), 3);
    log.take();
    for (int const i : {11, 10, 11, 12})
        QCOMPARE(probe.ask(i, true), i);
    QCOMPARE(log.take(), QVector<int>());
    QCOMPARE(probe.reader.picturesDecoded(), 3);
}

void tst_viewerPlayer::steppingBackReadsGroupOnce()
{
    SxLoaderLog log;
    CxProbe probe(log);
    QCOMPARE(probe.ask(30), 30);
    log.take();
    QCOMPARE(probe.ask(29, true), 29);
    QCOMPARE(log.take(), (QVector<int>{20, 21, 22, 23, 24, 25, 26, 27, 28, 29}));
    for (int i = 28; i >= 20; --i)
        QCOMPARE(probe.ask(i, true), i);
    QCOMPARE(log.take(), QVector<int>());
}

void tst_viewerPlayer::memoryLimit()
{
    SxLoaderLog log;
    SxPicBuf picture;
    QVERIFY(CxPicBufAPI::AllocPicBufFromHeap(picture, fx_PackedFormat(4, 4, 4, 8), false, 0));
    qint64 const each = qint64{picture.pitch} * picture.height;
    CxPicBufAPI::FreePicBuf(picture, true);

    CxProbe probe(log, 3 * each);
    for (int i = 0; i < 9; ++i)
        QCOMPARE(probe.ask(i), i);
    log.take();
    // Three fit: 6, 7 and 8 are there, and going further back fetches the next three.
    QCOMPARE(probe.ask(7, true), 7);
    QCOMPARE(probe.ask(6, true), 6);
    QCOMPARE(log.take(), QVector<int>());
    QCOMPARE(probe.ask(5, true), 5);
    QCOMPARE(log.take(), (QVector<int>{3, 4, 5}));
    QCOMPARE(probe.ask(4, true), 4);
    QCOMPARE(probe.ask(3, true), 3);
    QCOMPARE(log.take(), QVector<int>());
}

void tst_viewerPlayer::brokenPicture()
{
    SxLoaderLog log;
    CxProbe probe(log);
    QCOMPARE(probe.ask(13), -1);
    QCOMPARE(probe.failed.last(), 13);
    QCOMPARE(probe.ask(14), 14);
    QCOMPARE(probe.ask(16, true), 16); // past the broken one
}

// ---- The player, on a real recording

void tst_viewerPlayer::numberIsOfPicture()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    QCOMPARE(player.shownNumber(), 0);
    for (int const number : {0, 23, 11, 12, 10, 3, 22}) {
        player.seek(number);
        QTRY_COMPARE(player.shownNumber(), number);
    }
    for (auto const& arguments : shown) {
        auto const picture = arguments.first().value<SxShownPicture>();
        QCOMPARE(picture.image, CxViewerFixture::decoded(m_recording, picture.number));
    }
}

void tst_viewerPlayer::playsEveryPictureOnce()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown), playing(&player, &CxPlayer::playingChanged),
        rate(&player, &CxPlayer::rateMeasured);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.setSpeed(4.0);
    player.setPlaying(true);
    QVERIFY(player.isPlaying());
    QTRY_VERIFY(!player.isPlaying());
    QCOMPARE(shown.size(), 24);
    for (int i = 0; i < 24; ++i)
        QCOMPARE(shown[i].first().value<SxShownPicture>().number, i);
    QCOMPARE(playing.size(), 2);
    QVERIFY(rate.size() > 20);
    QVERIFY(rate.first().first().toDouble() > 0.0);
    QCOMPARE(rate.last().first().toDouble(), 0.0);
}

void tst_viewerPlayer::playsFromTheEndAgain()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.seek(23);
    QTRY_COMPARE(player.shownNumber(), 23);
    shown.clear();
    player.setPlaying(true);
    QTRY_VERIFY(shown.size() > 1);
    QCOMPARE(shown[0].first().value<SxShownPicture>().number, 0);
    QCOMPARE(shown[1].first().value<SxShownPicture>().number, 1);
}

void tst_viewerPlayer::pauseStaysAtPictureShown()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.setPlaying(true);
    QTRY_VERIFY(player.shownNumber() >= 2);
    player.setPlaying(false);
    int const paused = player.shownNumber();
    player.step(1); // from the one shown, whatever had been read ahead
    QTRY_COMPARE(player.shownNumber(), paused + 1);
    QCOMPARE(shown.last().first().value<SxShownPicture>().number, paused + 1);
    QCOMPARE(shown.size(), paused + 2);
}

void tst_viewerPlayer::seekWhilePlayingGoesOn()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.setPlaying(true);
    player.seek(15);
    QTRY_VERIFY(player.shownNumber() >= 17);
    QVERIFY(player.isPlaying());
    QVector<int> numbers;
    for (auto const& arguments : shown)
        numbers.append(arguments.first().value<SxShownPicture>().number);
    QCOMPARE(numbers.mid(0, 4), (QVector<int>{0, 15, 16, 17}));
}

void tst_viewerPlayer::loops()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.setLooping(true);
    player.setSpeed(4.0);
    player.seek(22);
    QTRY_COMPARE(player.shownNumber(), 22);
    shown.clear();
    player.setPlaying(true);
    QTRY_VERIFY(shown.size() >= 3);
    QVERIFY(player.isPlaying());
    QCOMPARE(shown[0].first().value<SxShownPicture>().number, 23);
    QCOMPARE(shown[1].first().value<SxShownPicture>().number, 0);
    QCOMPARE(shown[2].first().value<SxShownPicture>().number, 1);
}

void tst_viewerPlayer::keyFrameSteps()
{
    CxPlayer player;
    QSignalSpy opened(&player, &CxPlayer::opened);
    player.open(m_recording);
    QVERIFY(opened.wait());
    QCOMPARE(player.info().keyFrames, (QList<int>{0, 5, 10, 15, 20}));
    player.seek(7);
    player.toPreviousKeyFrame();
    QTRY_COMPARE(player.shownNumber(), 5);
    player.toPreviousKeyFrame();
    QTRY_COMPARE(player.shownNumber(), 0);
    player.toPreviousKeyFrame(); // there is none
    player.toNextKeyFrame();
    player.toNextKeyFrame();
    QTRY_COMPARE(player.shownNumber(), 10);
    player.seek(21);
    player.toNextKeyFrame(); // there is none
    QTRY_COMPARE(player.shownNumber(), 21);
}

void tst_viewerPlayer::stepsAreCounted()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    for (int i = 0; i < 9; ++i)
        player.step(1); // faster than they are decoded: none is lost
    QTRY_COMPARE(player.shownNumber(), 9);
    for (int i = 0; i < 4; ++i)
        player.step(-1);
    QTRY_COMPARE(player.shownNumber(), 5);
}

void tst_viewerPlayer::seeksAreBroughtInside()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.seek(3); // nothing is open
    player.step(1);
    player.setPlaying(true);
    QVERIFY(!player.isPlaying());
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.seek(1000);
    QTRY_COMPARE(player.shownNumber(), 23);
    player.step(1);
    player.seek(-5);
    QTRY_COMPARE(player.shownNumber(), 0);
}

void tst_viewerPlayer::steppingBackInRealGroup()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.seek(15);
    QTRY_COMPARE(player.shownNumber(), 15);
    int const before = player.picturesDecoded();
    for (int number = 14; number >= 10; --number) {
        player.step(-1);
        QTRY_COMPARE(player.shownNumber(), number);
        QCOMPARE(player.picturesDecoded(), before + 5); // its group, once
    }
    for (int number = 11; number < 15; ++number) {
        player.step(1);
        QTRY_COMPARE(player.shownNumber(), number);
    }
    QCOMPARE(player.picturesDecoded(), before + 5);
    QCOMPARE(shown.last().first().value<SxShownPicture>().image, CxViewerFixture::decoded(m_recording, 14));
}

void tst_viewerPlayer::closeForgetsPictures()
{
    CxPlayer player;
    QSignalSpy shown(&player, &CxPlayer::shown), opened(&player, &CxPlayer::opened);
    player.open(m_recording);
    QVERIFY(shown.wait());
    player.seek(20);
    player.close(); // the answer on its way is of no interest any more
    QVERIFY(!player.isOpen());
    QCOMPARE(player.shownNumber(), -1);
    shown.clear();
    player.open(m_recording);
    QTRY_COMPARE(opened.size(), 2);
    QTRY_COMPARE(shown.size(), 1);
    QCOMPARE(shown.first().first().value<SxShownPicture>().number, 0);
}

void tst_viewerPlayer::openFails()
{
    CxPlayer player;
    QSignalSpy failed(&player, &CxPlayer::openFailed), shown(&player, &CxPlayer::shown);
    QString const missing = m_fixture->path(QStringLiteral("missing.h264"));
    player.open(missing);
    QVERIFY(failed.wait());
    QCOMPARE(failed.first().first().toString(), missing);
    QCOMPARE(failed.first()[1].toStringList(),
             QStringList{QStringLiteral("Cannot open the '%1'").arg(missing)});
    QVERIFY(!player.isOpen());
    player.open(m_recording);
    QVERIFY(shown.wait());
}

// ---- A part of a recording as a source

void tst_viewerPlayer::partOfRecording()
{
    QString error;
    CxRecordingSource source(CxPluginHost::create("IxImageDataLoader", error), m_recording, 7, 9);
    QCOMPARE(source.expectedPictures(), 3);
    CxOwnedPicture picture;
    for (int number = 7; number <= 9; ++number) {
        QCOMPARE(source.next(picture.get()), IxPictureSource::Result::Picture);
        SxPicBuf const& pixels = picture.get();
        QImage const image(static_cast<uchar const*>(pixels.data), 320, 180, static_cast<int>(pixels.pitch),
                           QImage::Format_RGB32);
        QCOMPARE(image, CxViewerFixture::decoded(m_recording, number));
        QCOMPARE(pixels.timestamp, static_cast<quint64>((number - 7) * 1e6 / 30.0));
    }
    QCOMPARE(source.next(picture.get()), IxPictureSource::Result::End);
    QCOMPARE(source.description(), QStringLiteral("320 x 180, 8-bit colour"));
}

void tst_viewerPlayer::partWithBrokenPicture()
{
    SxLoaderLog log;
    CxRecordingSource source(std::make_unique<CxFakeLoader>(log), QStringLiteral("name"), 12, 20);
    CxOwnedPicture picture;
    QCOMPARE(source.next(picture.get()), IxPictureSource::Result::Picture);
    QCOMPARE(source.next(picture.get()), IxPictureSource::Result::Error);
    QVERIFY(source.errorText().contains(QStringLiteral("Picture 13 ")));
}

QTEST_MAIN(tst_viewerPlayer)
#include "tst_viewerPlayer.moc"

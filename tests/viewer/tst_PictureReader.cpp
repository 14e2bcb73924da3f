#include <QTest>

#include "CxPicBufAPI.h"
#include "PictureFormat.h"
#include "PictureReader.h"
#include "support/FakeLoader.h"

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

    QString const fileName = QCoreApplication::applicationFilePath(); ///< exists, which is all that matters
    CxPictureReader reader;
    QList<SxOpenedRecording> opened;
    QMap<int, SxShownPicture> read; ///< by ticket
    QMap<int, int> failed;          ///< numbers by ticket
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
    auto const before = opened.size();
    reader.open(std::make_unique<CxRecordingReader>(std::make_unique<CxFakeLoader>(log)), fileName);
    return QTest::qWaitFor([&] { return opened.size() > before; });
}

class tst_PictureReader : public QObject
{
    Q_OBJECT

private slots:
    void readsInItsOwnThread();
    void deletesLoader();
    void readsOnlyNewestRequest();
    void newFileDropsRequests();
    void keepsWhatWasRead();
    void steppingBackReadsGroupOnce();
    void givesUpWhatMemoryDoesNotHold();
    void reportsBrokenPictureAndGoesOn();
};

void tst_PictureReader::readsInItsOwnThread()
{
    SxLoaderLog log;
    CxProbe probe(log);
    QCOMPARE(probe.opened.size(), 1);
    SxOpenedRecording const info = probe.opened.first();
    QCOMPARE(info.fileName, probe.fileName);
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

void tst_PictureReader::deletesLoader()
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

void tst_PictureReader::readsOnlyNewestRequest()
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

void tst_PictureReader::newFileDropsRequests()
{
    SxLoaderLog first, second;
    CxProbe probe(first);
    first.isGated = true;
    probe.reader.request(1);
    first.entered.acquire();
    probe.reader.request(2);
    first.gate.release(2);
    probe.reader.open(std::make_unique<CxRecordingReader>(std::make_unique<CxFakeLoader>(second)),
                      probe.fileName);
    QTRY_COMPARE(probe.opened.size(), 2);
    QCOMPARE(probe.ask(3), 3);
    QCOMPARE(second.take(), (QVector<int>{3}));
}

void tst_PictureReader::keepsWhatWasRead()
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

void tst_PictureReader::steppingBackReadsGroupOnce()
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

void tst_PictureReader::givesUpWhatMemoryDoesNotHold()
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

void tst_PictureReader::reportsBrokenPictureAndGoesOn()
{
    SxLoaderLog log;
    CxProbe probe(log);
    QCOMPARE(probe.ask(13), -1);
    QCOMPARE(probe.failed.last(), 13);
    QCOMPARE(probe.ask(14), 14);
    QCOMPARE(probe.ask(16, true), 16); // past the broken one
}

QTEST_MAIN(tst_PictureReader)
#include "tst_PictureReader.moc"

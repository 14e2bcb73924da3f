#include <QtTest>
#include <sys/stat.h>

#include "PluginHost.h"
#include "PluginMessages.h"
#include "RecordingReader.h"
#include "support/FakeLoader.h"
#include "support/RecordedCamera.h"

#if defined(__SANITIZE_ADDRESS__)
#define TARN_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARN_ADDRESS_SANITIZER
#endif
#endif
#ifdef TARN_ADDRESS_SANITIZER
// Freed memory that the sanitizer keeps would look like a leak where memory has to stay flat.
extern "C" char const* __asan_default_options()
{
    return "quarantine_size_mb=0:thread_local_quarantine_size_kb=0";
}
#endif

/// Recordings read in this process, through the plug-in.
class tst_RecordingReader : public QObject, private CxRecordedCamera
{
    Q_OBJECT

private slots:
    void initTestCase() { makeRecording(); }
    void init() { makeFolder(); }

    void withoutAPluginNothingIsRead();
    void whatIsNoRecordingIsNamedWithTheReason_data();
    void whatIsNoRecordingIsNamedWithTheReason();
    void pluginWithoutCodedFramesIsTold();
    void frameThatCannotBeHadHasACause();
    void openingAThousandTimesLeavesMemoryFlat();
    void restOfABrokenGroupFailsWithoutATry();
};

/// Pictures 11 to 19 are broken, as behind damage in a group of pictures.
class CxBrokenGroupLoader : public CxFakeLoader
{
public:
    explicit CxBrokenGroupLoader(SxLoaderLog& log)
        : CxFakeLoader(log)
    {}

    IxChainData* loadedData(int index) override
    {
        IxChainData* const data = CxFakeLoader::loadedData(index);
        if (index < 11 || index > 19)
            return data;
        delete data;
        return nullptr;
    }
};

/// Gives pictures but no coded frames.
class CxLoaderWithoutFrames : public QObject, public IxImageDataLoader
{
    Q_OBJECT

public:
    bool load() override { return true; }
    int sequenceSize() override { return 1; }
    IxChainData* loadedData(int) override { return nullptr; }
    QString inputFile() override { return {}; }
    void setInputFile(QString const&) override {}
    double loadedFps() override { return 30.0; }
    QList<CxImageFormat> supportedImageFormats() override { return {}; }
};

/// Has no picture: 1 has no data either, 2 is told in words of the plug-in's, the others by a decoder's code.
class CxEmptyLoader : public CxFakeLoader
{
public:
    explicit CxEmptyLoader(SxLoaderLog& log)
        : CxFakeLoader(log)
    {}

    unsigned long frameDataSize(int frame) override { return frame == 1 ? 0 : 1; }
    IxChainData* loadedData(int frame) override
    {
        qCritical() << "0x7f"
                    << "Decoder.cpp"
                    << "L" << 1 << ":"
                    << ""
                    << (frame == 2 ? QString("CxD::decode(): The file has changed.")
                                   : QString("CxD::decode(): The decoder failed with code: 6"));
        return nullptr;
    }
};

/// Memory of this process that is resident, in pages.
static qint64 fx_ResidentPages() { return fx_FileBytes("/proc/self/statm").split(' ').value(1).toLongLong(); }

void tst_RecordingReader::withoutAPluginNothingIsRead()
{
    CxRecordingReader recording;
    recording.moveToThread(QThread::currentThread()); // there is nothing to move
    QString error;
    QVERIFY(!recording.open(m_recording, error));
    QCOMPARE(error, QString("No loaded plug-in provides an IxImageDataLoader."));
}

void tst_RecordingReader::whatIsNoRecordingIsNamedWithTheReason_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("nothing") << "none.h264"
                             << "there is no such file.";
    QTest::newRow("folder") << "."
                            << "this is a folder.";
    QTest::newRow("empty") << "empty.h264"
                           << "the file is empty.";
    QTest::newRow("pipe") << "pipe.h264"
                          << "this is no regular file, so its frames cannot be reached in any order.";
}

void tst_RecordingReader::whatIsNoRecordingIsNamedWithTheReason()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    QVERIFY(fx_WriteFile(path("empty.h264"), QByteArray()));
    QCOMPARE(mkfifo(path("pipe.h264").toLocal8Bit().constData(), 0600), 0);
    SxLoaderLog log;
    CxRecordingReader recording(std::make_unique<CxFakeLoader>(log));
    QString error;
    QVERIFY(!recording.open(path(name), error));
    QCOMPARE(error, path(name) + ": " + reason);
}

void tst_RecordingReader::pluginWithoutCodedFramesIsTold()
{
    CxRecordingReader recording(std::make_unique<CxLoaderWithoutFrames>());
    QString error;
    QVERIFY(!recording.open(m_recording, error));
    QCOMPARE(error, QString("The loaded plug-in gives no access to coded frames."));
}

void tst_RecordingReader::frameThatCannotBeHadHasACause()
{
    CxPluginMessages const messages;
    SxLoaderLog log;
    CxRecordingReader recording(std::make_unique<CxEmptyLoader>(log));
    QString error;
    QVERIFY2(recording.open(m_recording, error), qPrintable(error));
    QVERIFY(!recording.picture(0, error));
    QCOMPARE(error, QString("a picture that it refers to is missing, its data are damaged or cut off "
                            "(decoder code 6)"));
    QVERIFY(!recording.picture(1, error));
    QCOMPARE(error, QString("it has no data"));
    QVERIFY(!recording.picture(12, error));
    QVERIFY(!recording.picture(2, error)); // not in a row
    QCOMPARE(error, QString("The file has changed"));
    QCOMPARE(recording.codedFrame(0), QByteArray());
}

void tst_RecordingReader::openingAThousandTimesLeavesMemoryFlat()
{
    CxPluginMessages const messages;
    CxPluginHost host;
    QString error;
    QVERIFY2(host.load(PLUGIN_FILE, error), qPrintable(error));
    qint64 settled = 0; // what the first opens leave behind for the next ones
    for (int i = 0; i < 1500; ++i) {
        CxRecordingReader recording;
        QVERIFY2(recording.open(m_recording, error), qPrintable(error));
        QCOMPARE(recording.frameCount(), kFrames);
        QVERIFY2(recording.picture(i * 7 % kFrames, error), qPrintable(error));
        QVERIFY2(recording.picture(i * 11 % kFrames, error), qPrintable(error));
        if (i == 499)
            settled = fx_ResidentPages();
    }
    qint64 const later = fx_ResidentPages();
    QVERIFY(settled > 0);
    QVERIFY2(later <= settled * 102 / 100, // a page an open would be 14 in a hundred
             qPrintable(QStringLiteral("%1 pages, then %2").arg(settled).arg(later)));
}

void tst_RecordingReader::restOfABrokenGroupFailsWithoutATry()
{
    CxPluginMessages const messages;
    SxLoaderLog log;
    CxRecordingReader recording(std::make_unique<CxBrokenGroupLoader>(log));
    QString error;
    QVERIFY2(recording.open(m_recording, error), qPrintable(error));
    std::unique_ptr<CxImageData> picture; // until the next has come
    for (int frame = 9; frame <= 21; ++frame) {
        std::unique_ptr<CxImageData> next = recording.picture(frame, error);
        bool const isBroken = frame >= 11 && frame <= 19;
        QCOMPARE(!next, isBroken);
        QVERIFY(!isBroken || !error.isEmpty());
        if (next)
            picture = std::move(next);
    }
    QCOMPARE(log.take(), (QVector<int>{9, 10, 11, 12, 20, 21}));
    QVERIFY(!recording.picture(15, error)); // asked for out of order it gets its try
    QCOMPARE(log.take(), QVector<int>{15});
}

QTEST_GUILESS_MAIN(tst_RecordingReader)
#include "tst_RecordingReader.moc"

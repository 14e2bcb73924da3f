#include <QtTest>

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

/// Memory of this process that is resident, in pages.
static qint64 fx_ResidentPages() { return fx_FileBytes("/proc/self/statm").split(' ').value(1).toLongLong(); }

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

#include <QtTest>

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#define TARN_ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARN_ADDRESS_SANITIZER
#endif
#endif
#ifdef TARN_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
// From sanitizer/allocator_interface.h, which GCC leaves out.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes(void);
#endif

#include "ClassRegistry.h"
#include "CodecOptions.h"
#include "tarnCore.h"

static unsigned int const kH264 = 0x34363248;
static unsigned int const kMjpg = 0x47504A4D;
static std::size_t const kMiB = 1024 * 1024;

/// Encoders of the test's plug-in that live at the moment.
static int s_liveEncoders = 0;

/// An encoder that codes nothing and remembers the options it was given.
class CxFakeEncoder : public QObject, public IxVideoEncoder
{
    Q_OBJECT

public:
    Q_INVOKABLE CxFakeEncoder() { ++s_liveEncoders; }
    ~CxFakeEncoder() override { --s_liveEncoders; }

    QString name() override { return QStringLiteral("fake"); }
    unsigned int fourCC() override { return kH264; }
    bool encode(SxPicBuf const&, void*, unsigned long&, bool*) override { return false; }
    unsigned long maxEncodedSize(SxPicBufInfo const&) override { return 0; }
    void queryOuputFormat(SxPicBufInfo const&, SxPicBufInfo&) override {}
    void setEncoderOptions(QMap<QString, QVariant> const& options) override
    {
        m_options = options;
        ++m_settings;
    }
    QWidget* widgetForSaveDlg(QWidget*) override { return nullptr; }
    QMap<QString, QVariant> optionsFromWidgetInSaveDlg(QWidget*) override { return m_options; }

    QMap<QString, QVariant> m_options;
    int m_settings = 0;
};

/// The same for another code.
class CxFakeMjpgEncoder : public CxFakeEncoder
{
    Q_OBJECT

public:
    Q_INVOKABLE CxFakeMjpgEncoder() {}
    unsigned int fourCC() override { return kMjpg; }
};

/// Registered as an encoder and none.
class CxNoEncoder : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE CxNoEncoder() {}
};

class CxFakePlugin : public CxPlugin
{};

class tst_tarnCore : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void registryKeepsOrderAndRefusesTwice();
    void registryForgetsAPlugin();

    void encoderByFourCC();
    void encoderCarriesItsOptions();
    void encoderOfAnObjectThatIsNone();

    void pitch_data();
    void pitch();
    void sampleBytes_data();
    void sampleBytes();
    void refusedFormats_data();
    void refusedFormats();
    void allocationFillsTheRecord();
    void zeroFillAndExtraSize();
    void largestPicture();
    void freeing();
    void foreignMemoryIsOnlyForgotten();
    void freedPicturesAreUsedAgain();
    void fewFreedPicturesAreKept();
    void lastPictureGivesEverythingBack();
    void keptBlocksArePoisoned();
    void severalThreads();

    void imageData();
    void imageDataReleasesWhatItReplaces();

    void version();

private:
    CxFakePlugin m_plugin;
};

void tst_tarnCore::cleanup()
{
    fx_UnregisterClasses(&m_plugin);
    fx_SetCodecOptions(kH264, {});
    QCOMPARE(s_liveEncoders, 0);
}

static SxPicBufInfo fx_Format(quint32 width, quint32 height, quint32 sampleType = 2, quint32 components = 4)
{
    SxPicBufInfo format;
    format.width = width;
    format.height = height;
    format.sampleType = sampleType;
    format.components = components;
    format.bitsPerSample = 8;
    format.formatFlag = true;
    return format;
}

static SxPicBuf fx_Allocated(SxPicBufInfo const& format)
{
    SxPicBuf picture;
    return CxPicBufAPI::AllocPicBufFromHeap(picture, format, false, 0) ? picture : SxPicBuf();
}

/// Bytes that the process has from the heap, large blocks included.
static std::size_t fx_HeapBytes()
{
#ifdef TARN_ADDRESS_SANITIZER
    return __sanitizer_get_current_allocated_bytes();
#else
    struct mallinfo2 const info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}

/// Those and what is mapped beside the heap, which is where large pictures lie.
static std::size_t fx_MemoryBytes()
{
#ifdef TARN_ADDRESS_SANITIZER
    return fx_HeapBytes();
#else
    std::ifstream statm("/proc/self/statm");
    std::size_t pages[6] = {}; // the last: what is private and writable
    for (std::size_t& count : pages)
        statm >> count;
    struct mallinfo2 const info = mallinfo2();
    return pages[5] * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) - info.arena + info.uordblks;
#endif
}

void tst_tarnCore::registryKeepsOrderAndRefusesTwice()
{
    CxRTTI* const registry = CxRTTI::instance();
    QVERIFY(registry);
    QCOMPARE(CxRTTI::instance(), registry);
    QVERIFY(registry->registerClass(&m_plugin, CxFakeMjpgEncoder::staticMetaObject, "IxVideoEncoder"));
    QVERIFY(registry->registerClass(&m_plugin, CxNoEncoder::staticMetaObject, "IxImageDataSaver"));
    QVERIFY(registry->registerClass(&m_plugin, CxFakeEncoder::staticMetaObject, "IxVideoEncoder"));
    QVERIFY(!registry->registerClass(&m_plugin, CxNoEncoder::staticMetaObject, "IxImageDataSaver"));

    QList<SxRegisteredClass> const all = fx_RegisteredClasses();
    QCOMPARE(all.size(), 3);
    QCOMPARE(all[0].metaObject, &CxFakeMjpgEncoder::staticMetaObject);
    QCOMPARE(all[1].metaObject, &CxNoEncoder::staticMetaObject);
    QCOMPARE(all[2].metaObject, &CxFakeEncoder::staticMetaObject);
    QCOMPARE(all[1].plugin, static_cast<CxPlugin*>(&m_plugin));
    QCOMPARE(all[1].interfaceName, QStringLiteral("IxImageDataSaver"));

    QList<SxRegisteredClass> const encoders = fx_RegisteredClasses("IxVideoEncoder");
    QCOMPARE(encoders.size(), 2);
    QCOMPARE(encoders[0].metaObject, &CxFakeMjpgEncoder::staticMetaObject);
    QCOMPARE(encoders[1].metaObject, &CxFakeEncoder::staticMetaObject);
    QVERIFY(fx_RegisteredClasses("IxVideoDecoder").isEmpty());
}

void tst_tarnCore::registryForgetsAPlugin()
{
    CxFakePlugin other;
    CxRTTI::instance()->registerClass(&m_plugin, CxFakeEncoder::staticMetaObject, "IxVideoEncoder");
    CxRTTI::instance()->registerClass(&other, CxFakeMjpgEncoder::staticMetaObject, "IxVideoEncoder");
    fx_UnregisterClasses(&other);
    QCOMPARE(fx_RegisteredClasses().size(), 1);
    QVERIFY(!CxVideoCodecManager::instance()->encoderForFourCC(kMjpg));
    // A plug-in loaded again may register again.
    QVERIFY(CxRTTI::instance()->registerClass(&other, CxFakeMjpgEncoder::staticMetaObject, "IxVideoEncoder"));
    fx_UnregisterClasses(&other);
}

void tst_tarnCore::encoderByFourCC()
{
    CxVideoCodecManager* const manager = CxVideoCodecManager::instance();
    QVERIFY(manager);
    QVERIFY(!manager->encoderForFourCC(kH264)); // nobody registered yet

    CxRTTI::instance()->registerClass(&m_plugin, CxFakeMjpgEncoder::staticMetaObject, "IxVideoEncoder");
    CxRTTI::instance()->registerClass(&m_plugin, CxFakeEncoder::staticMetaObject, "IxVideoEncoder");
    std::unique_ptr<IxVideoEncoder> const first(manager->encoderForFourCC(kH264));
    std::unique_ptr<IxVideoEncoder> const second(manager->encoderForFourCC(kH264));
    std::unique_ptr<IxVideoEncoder> const other(manager->encoderForFourCC(kMjpg));
    QVERIFY(first && second && other);
    QVERIFY(first != second);
    QCOMPARE(first->fourCC(), kH264);
    QCOMPARE(other->fourCC(), kMjpg);
    QCOMPARE(s_liveEncoders, 3); // those tried and not taken are gone

    QVERIFY(!manager->encoderForFourCC(0));
    QCOMPARE(s_liveEncoders, 3);
}

void tst_tarnCore::encoderCarriesItsOptions()
{
    CxRTTI::instance()->registerClass(&m_plugin, CxFakeEncoder::staticMetaObject, "IxVideoEncoder");
    CxRTTI::instance()->registerClass(&m_plugin, CxFakeMjpgEncoder::staticMetaObject, "IxVideoEncoder");
    CxVideoCodecManager* const manager = CxVideoCodecManager::instance();

    std::unique_ptr<IxVideoEncoder> encoder(manager->encoderForFourCC(kH264));
    QVERIFY(encoder);
    QCOMPARE(static_cast<CxFakeEncoder*>(encoder.get())->m_settings, 0); // the encoder's own defaults stay

    QMap<QString, QVariant> const options{{"h264_quality", 9}, {"h264_level_idc", 41}};
    fx_SetCodecOptions(kH264, options);
    QCOMPARE(fx_CodecOptions(kH264), options);
    QVERIFY(fx_CodecOptions(kMjpg).isEmpty());
    encoder.reset(manager->encoderForFourCC(kH264));
    QVERIFY(encoder);
    QCOMPARE(static_cast<CxFakeEncoder*>(encoder.get())->m_options, options);
    QCOMPARE(static_cast<CxFakeEncoder*>(encoder.get())->m_settings, 1);

    std::unique_ptr<IxVideoEncoder> const other(manager->encoderForFourCC(kMjpg));
    QVERIFY(other);
    QCOMPARE(static_cast<CxFakeEncoder*>(other.get())->m_settings, 0);

    fx_SetCodecOptions(kH264, {{"h264_quality", 1}}); // replaces, does not merge
    encoder.reset(manager->encoderForFourCC(kH264));
    QVERIFY(encoder);
    QCOMPARE(static_cast<CxFakeEncoder*>(encoder.get())->m_options.size(), 1);
}

void tst_tarnCore::encoderOfAnObjectThatIsNone()
{
    CxRTTI::instance()->registerClass(&m_plugin, CxNoEncoder::staticMetaObject, "IxVideoEncoder");
    QVERIFY(!CxVideoCodecManager::instance()->encoderForFourCC(kH264));
    // One that cannot be created: QThread's constructor is not invokable.
    CxRTTI::instance()->registerClass(&m_plugin, QThread::staticMetaObject, "IxVideoEncoder");
    CxRTTI::instance()->registerClass(&m_plugin, CxFakeEncoder::staticMetaObject, "IxVideoEncoder");
    std::unique_ptr<IxVideoEncoder> const encoder(CxVideoCodecManager::instance()->encoderForFourCC(kH264));
    QVERIFY(encoder);
}

void tst_tarnCore::pitch_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("sampleType");
    QTest::addColumn<quint32>("components");
    QTest::addColumn<quint32>("given");
    QTest::addColumn<quint32>("expected");

    QTest::newRow("8 bit, four components") << 1001U << 2U << 4U << 0U << 4096U;
    QTest::newRow("16 bit, three components") << 1001U << 4U << 3U << 0U << 6144U;
    QTest::newRow("one pixel") << 1U << 2U << 1U << 0U << 256U;
    QTest::newRow("exact multiple") << 64U << 2U << 4U << 0U << 256U;
    QTest::newRow("one pixel more") << 65U << 2U << 4U << 0U << 512U;
    QTest::newRow("given, the row itself") << 1001U << 2U << 4U << 4004U << 4004U;
    QTest::newRow("given, odd") << 1001U << 2U << 4U << 4011U << 4011U;
}

void tst_tarnCore::pitch()
{
    QFETCH(quint32, width);
    QFETCH(quint32, sampleType);
    QFETCH(quint32, components);
    QFETCH(quint32, given);
    SxPicBufInfo format = fx_Format(width, 3, sampleType, components);
    format.pitch = given;
    SxPicBuf picture = fx_Allocated(format);
    QVERIFY(picture.data);
    QTEST(picture.pitch, "expected");
    QCOMPARE(reinterpret_cast<quintptr>(picture.data) % 64, quintptr(0));
    std::memset(picture.data, 0x5A, std::size_t(picture.pitch) * picture.height); // all of it is ours
    CxPicBufAPI::FreePicBuf(picture, true);
}

void tst_tarnCore::sampleBytes_data()
{
    QTest::addColumn<quint32>("bytes");
    quint32 const bytes[] = {1, 1, 1, 2, 2, 4, 4, 8, 8, 4, 8, 2, 1, 1};
    for (quint32 code = 0; code < 14; ++code)
        QTest::addRow("sample type %u", code) << bytes[code];
    QTest::newRow("sample type 4294967295") << 1U;
}

void tst_tarnCore::sampleBytes()
{
    QFETCH(quint32, bytes);
    quint32 const code = QByteArray(QTest::currentDataTag()).mid(12).toUInt();
    SxPicBuf picture = fx_Allocated(fx_Format(256, 1, code, 3));
    QVERIFY(picture.data);
    QCOMPARE(picture.pitch, 256 * 3 * bytes);
    CxPicBufAPI::FreePicBuf(picture, true);
}

void tst_tarnCore::refusedFormats_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<quint32>("pitch");
    QTest::addColumn<quint32>("components");
    QTest::addColumn<quint32>("sampleType");
    QTest::addColumn<qulonglong>("extraSize");
    quint32 const most = std::numeric_limits<quint32>::max();

    QTest::newRow("no width") << 0U << 4U << 0U << 4U << 2U << 0ULL;
    QTest::newRow("no width, but a pitch") << 0U << 4U << 64U << 4U << 2U << 0ULL;
    QTest::newRow("no height") << 4U << 0U << 0U << 4U << 2U << 0ULL;
    QTest::newRow("no component") << 4U << 4U << 0U << 0U << 2U << 0ULL;
    QTest::newRow("five components") << 4U << 4U << 0U << 5U << 2U << 0ULL;
    QTest::newRow("components near 2^32") << 4U << 4U << 0U << most << 2U << 0ULL;
    QTest::newRow("pitch one byte short") << 1001U << 4U << 4003U << 4U << 2U << 0ULL;
    QTest::newRow("pitch short for words") << 1001U << 4U << 4004U << 4U << 4U << 0ULL;
    QTest::newRow("row past 32 bits") << (most / 4 + 2) << 1U << 0U << 4U << 2U << 0ULL;
    QTest::newRow("row past 32 bits, wrapped pitch") << (1U << 30) << 1U << 4U << 4U << 2U << 0ULL;
    QTest::newRow("65536 x 65536, 0 in 32 bits") << 65536U << 65536U << 0U << 1U << 2U << 0ULL;
    QTest::newRow("everything at its largest") << most << most << most << 4U << 10U << 0ULL;
    QTest::newRow("a row above 2 GiB") << 65536U << 32769U << 0U << 1U << 2U << 0ULL;
    QTest::newRow("2 GiB and one extra byte") << 65536U << 32768U << 0U << 1U << 2U << 1ULL;
    QTest::newRow("extra size that wraps") << 4U << 4U << 0U << 1U << 2U << ~0ULL;
}

void tst_tarnCore::refusedFormats()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QFETCH(quint32, components);
    QFETCH(quint32, sampleType);
    QFETCH(qulonglong, extraSize);
    SxPicBufInfo format = fx_Format(width, height, sampleType, components);
    QFETCH(quint32, pitch);
    format.pitch = pitch;

    unsigned char pixel = 0;
    SxPicBuf picture;
    picture.setPicFormat(fx_Format(3, 5));
    picture.data = &pixel;
    picture.timestamp = 77;
    QVERIFY(!CxPicBufAPI::AllocPicBufFromHeap(picture, format, true, extraSize));
    QCOMPARE(picture.data, &pixel);
    QCOMPARE(picture.width, 3U);
    QCOMPARE(picture.height, 5U);
    QCOMPARE(picture.pitch, 0U);
    QCOMPARE(picture.components, 4U);
    QCOMPARE(picture.timestamp, quint64(77));
}

void tst_tarnCore::allocationFillsTheRecord()
{
    SxPicBufInfo format = fx_Format(10, 20, 4, 3);
    format.bitsPerSample = 12;
    format.auxField = 5;
    format.formatVariant = 6;
    SxPicBuf picture;
    picture.timestamp = 77;
    QVERIFY(CxPicBufAPI::AllocPicBufFromHeap(picture, format, false, 0));
    QCOMPARE(picture.width, 10U);
    QCOMPARE(picture.height, 20U);
    QCOMPARE(picture.pitch, 256U);
    QCOMPARE(picture.components, 3U);
    QCOMPARE(picture.bitsPerSample, 12U);
    QCOMPARE(picture.auxField, 5U);
    QCOMPARE(picture.sampleType, 4U);
    QCOMPARE(picture.layout, 1U);
    QCOMPARE(picture.formatVariant, 6U);
    QVERIFY(picture.formatFlag);
    QCOMPARE(picture.timestamp, quint64(77));
    CxPicBufAPI::FreePicBuf(picture, true);

    // The format may be the picture's own.
    picture.setPicFormat(format);
    QVERIFY(CxPicBufAPI::AllocPicBufFromHeap(picture, picture, false, 0));
    QCOMPARE(picture.pitch, 256U);
    QCOMPARE(picture.width, 10U);
    CxPicBufAPI::FreePicBuf(picture, true);
}

void tst_tarnCore::zeroFillAndExtraSize()
{
    SxPicBuf keeper = fx_Allocated(fx_Format(1, 1)); // so that freed blocks, full of other bytes, come back
    std::size_t const bytes = 256 * 7 + 100;
    for (int round = 0; round < 2; ++round) {
        SxPicBuf picture;
        QVERIFY(CxPicBufAPI::AllocPicBufFromHeap(picture, fx_Format(60, 7), true, 100));
        QCOMPARE(picture.allocatedSize, quint64(bytes));
        QVERIFY(
            std::all_of(picture.data, picture.data + bytes, [](unsigned char byte) { return byte == 0; }));
        std::memset(picture.data, 0xFF, bytes);
        CxPicBufAPI::FreePicBuf(picture, true);
    }
    CxPicBufAPI::FreePicBuf(keeper, true);
}

void tst_tarnCore::largestPicture()
{
    // Address space only: nobody touches the pixels.
    SxPicBuf picture = fx_Allocated(fx_Format(65536, 32768, 2, 1));
    QVERIFY(picture.data);
    CxPicBufAPI::FreePicBuf(picture, true);
}

void tst_tarnCore::freeing()
{
    SxPicBuf picture;
    CxPicBufAPI::FreePicBuf(picture, true); // nothing there
    QVERIFY(!picture.data);

    picture = fx_Allocated(fx_Format(10, 10));
    CxPicBufAPI::FreePicBuf(picture, false);
    QVERIFY(!picture.data);
    QCOMPARE(picture.width, 10U);
    CxPicBufAPI::FreePicBuf(picture, true); // a second time
    QVERIFY(!picture.data);
    QCOMPARE(picture.width, 0U);
    QCOMPARE(picture.layout, 1U);
    QVERIFY(!picture.formatFlag);
}

void tst_tarnCore::foreignMemoryIsOnlyForgotten()
{
    unsigned char pixels[4] = {1, 2, 3, 4};
    SxPicBuf picture;
    picture.setPicFormat(fx_Format(1, 1));
    picture.data = pixels;
    CxPicBufAPI::FreePicBuf(picture, true); // the address sanitizer would report a free()
    QVERIFY(!picture.data);
    QCOMPARE(pixels[3], static_cast<unsigned char>(4));
}

void tst_tarnCore::freedPicturesAreUsedAgain()
{
    // Larger than what the C library keeps for itself.
    SxPicBufInfo const format = fx_Format(4096, 2560);
    SxPicBuf shown = fx_Allocated(format);
    SxPicBuf next = fx_Allocated(format);
    QVERIFY(shown.data && next.data && shown.data != next.data);
    unsigned char* const blocks[2] = {shown.data, next.data};

    // A player frees a picture once the next is on the screen.
    for (int frame = 0; frame < 10; ++frame) {
        CxPicBufAPI::FreePicBuf(shown, true);
        shown = next;
        next = fx_Allocated(format);
        QCOMPARE(next.data, blocks[frame % 2]);
    }

    // Another size gets another block.
    CxPicBufAPI::FreePicBuf(next, true);
    SxPicBuf other = fx_Allocated(fx_Format(4096, 2559));
    QVERIFY(other.data && other.data != blocks[0] && other.data != blocks[1]);
    CxPicBufAPI::FreePicBuf(other, true);
    CxPicBufAPI::FreePicBuf(shown, true);
}

void tst_tarnCore::fewFreedPicturesAreKept()
{
    SxPicBufInfo const format = fx_Format(1024, 1024); // 4 MiB
    std::size_t const before = fx_MemoryBytes();
    std::vector<SxPicBuf> pictures;
    for (int i = 0; i < 10; ++i)
        pictures.push_back(fx_Allocated(format));
    QVERIFY(fx_MemoryBytes() - before >= 40 * kMiB);
    for (std::size_t i = 0; i < 9; ++i)
        CxPicBufAPI::FreePicBuf(pictures[i], true);
    std::size_t const kept = fx_MemoryBytes() - before;
    // One alive and three kept.
    QVERIFY2(kept >= 12 * kMiB && kept < 18 * kMiB, qPrintable(QString::number(kept)));
    CxPicBufAPI::FreePicBuf(pictures[9], true);
}

void tst_tarnCore::lastPictureGivesEverythingBack()
{
    std::size_t const before = fx_MemoryBytes();
    for (quint32 height : {2000U, 1000U, 500U}) {
        SxPicBuf first = fx_Allocated(fx_Format(4096, height));
        SxPicBuf second = fx_Allocated(fx_Format(4096, height + 1));
        QVERIFY(first.data && second.data);
        CxPicBufAPI::FreePicBuf(first, true);
        CxPicBufAPI::FreePicBuf(second, true);
        QVERIFY(fx_MemoryBytes() < before + kMiB);
    }
}

void tst_tarnCore::keptBlocksArePoisoned()
{
    SxPicBuf keeper = fx_Allocated(fx_Format(1, 1));
    SxPicBuf picture = fx_Allocated(fx_Format(100, 100));
    unsigned char* const pixels = picture.data;
    CxPicBufAPI::FreePicBuf(picture, true);
    picture = fx_Allocated(fx_Format(100, 100));
    QCOMPARE(picture.data, pixels); // it was kept
    pixels[0] = 1;                  // and may be used again
    CxPicBufAPI::FreePicBuf(picture, true);
#ifdef TARN_ADDRESS_SANITIZER
    QVERIFY(__asan_address_is_poisoned(pixels));
    QVERIFY(__asan_address_is_poisoned(pixels + 256 * 100 - 1));
#endif
    CxPicBufAPI::FreePicBuf(keeper, true);
}

void tst_tarnCore::severalThreads()
{
    std::size_t const before = fx_HeapBytes();
    std::atomic<int> faults{0};
    auto const play = [&faults](unsigned char mark) {
        for (quint32 i = 0; i < 2000; ++i) {
            SxPicBuf picture = fx_Allocated(fx_Format(64, 16 + i % 3));
            std::size_t const bytes = std::size_t(picture.pitch) * picture.height;
            std::memset(picture.data, mark, bytes);
            std::this_thread::yield(); // time for another thread to get the same block, if it could
            for (std::size_t at = 0; at < bytes; ++at)
                faults += picture.data[at] != mark;
            CxPicBufAPI::FreePicBuf(picture, true);
        }
    };
    std::vector<std::thread> threads;
    for (unsigned char mark = 1; mark <= 4; ++mark)
        threads.emplace_back(play, mark);
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(faults.load(), 0);
    QVERIFY(fx_HeapBytes() < before + kMiB);
}

void tst_tarnCore::imageData()
{
    CxImageData image;
    QVERIFY(image.picBuf());
    QVERIFY(!image.picBuf()->data);

    SxPicBuf picture = fx_Allocated(fx_Format(8, 8));
    picture.timestamp = 33333;
    image.setPicBuf(picture);
    QCOMPARE(image.picBuf()->data, picture.data);
    QCOMPARE(image.picBuf()->width, 8U);
    QCOMPARE(image.picBuf()->timestamp, quint64(33333));

    // Its own picture again, restamped: the pixels stay.
    SxPicBuf restamped = *image.picBuf();
    restamped.timestamp = 66666;
    image.setPicBuf(restamped);
    image.setPicBuf(*image.picBuf());
    QCOMPARE(image.picBuf()->timestamp, quint64(66666));
    image.picBuf()->data[0] = 1; // the address sanitizer would report a freed picture
}

void tst_tarnCore::imageDataReleasesWhatItReplaces()
{
    std::size_t const before = fx_MemoryBytes();
    {
        CxImageData image;
        for (quint32 i = 0; i < 8; ++i)
            image.setPicBuf(fx_Allocated(fx_Format(1024, 1024 + i)));
        // The one held and the three kept for later, in pages of 2 MiB.
        QVERIFY(fx_MemoryBytes() - before < 26 * kMiB);
        image.setPicBuf(SxPicBuf());
        QVERIFY(fx_MemoryBytes() < before + kMiB);
        image.setPicBuf(fx_Allocated(fx_Format(1024, 1024)));
        QVERIFY(fx_MemoryBytes() - before >= 4 * kMiB);
    }
    QVERIFY(fx_MemoryBytes() < before + kMiB);
}

void tst_tarnCore::version()
{
    int major = -1;
    int minor = -1;
    int build = -1;
    tarnCoreVersion(major, minor, build);
    QCOMPARE(QStringLiteral("%1.%2.%3").arg(major).arg(minor).arg(build), QStringLiteral("1.0.0"));
}

QTEST_APPLESS_MAIN(tst_tarnCore)
#include "tst_tarnCore.moc"

#include <QtTest>
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

#include "support/AllocatedPicture.h"
#include "support/MemoryInUse.h"

class tst_PictureMemory : public QObject
{
    Q_OBJECT

private slots:
    void pitchIsAMultipleOf256UnlessGiven_data();
    void pitchIsAMultipleOf256UnlessGiven();
    void rowHoldsSamplesOfEveryType_data();
    void rowHoldsSamplesOfEveryType();
    void refusedFormatLeavesThePicture_data();
    void refusedFormatLeavesThePicture();
    void allocationFillsTheRecord();
    void zeroFillCoversTheExtraSize();
    void largestPictureIsAllocated();
    void freedPictureHoldsNothing();
    void foreignMemoryIsOnlyForgotten();
    void freedPicturesAreUsedAgain();
    void fewFreedPicturesAreKept();
    void lastPictureGivesEverythingBackButOneBlock();
    void pictureAfterTheLastUsesItsMemory();
    void idleApplicationKeepsNothing();
    void keptBlocksArePoisoned();
    void threadsNeverShareABlock();
};

void tst_PictureMemory::pitchIsAMultipleOf256UnlessGiven_data()
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

void tst_PictureMemory::pitchIsAMultipleOf256UnlessGiven()
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

void tst_PictureMemory::rowHoldsSamplesOfEveryType_data()
{
    QTest::addColumn<quint32>("bytes");
    quint32 const bytes[] = {1, 1, 1, 2, 2, 4, 4, 8, 8, 4, 8, 2, 1, 1};
    for (quint32 code = 0; code < 14; ++code)
        QTest::addRow("sample type %u", code) << bytes[code];
    QTest::newRow("sample type 4294967295") << 1U;
}

void tst_PictureMemory::rowHoldsSamplesOfEveryType()
{
    QFETCH(quint32, bytes);
    quint32 const code = QByteArray(QTest::currentDataTag()).mid(12).toUInt();
    SxPicBuf picture = fx_Allocated(fx_Format(256, 1, code, 3));
    QVERIFY(picture.data);
    QCOMPARE(picture.pitch, 256 * 3 * bytes);
    CxPicBufAPI::FreePicBuf(picture, true);
}

void tst_PictureMemory::refusedFormatLeavesThePicture_data()
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

void tst_PictureMemory::refusedFormatLeavesThePicture()
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

void tst_PictureMemory::allocationFillsTheRecord()
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

void tst_PictureMemory::zeroFillCoversTheExtraSize()
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

void tst_PictureMemory::largestPictureIsAllocated()
{
    // Address space only: nobody touches the pixels.
    SxPicBuf picture = fx_Allocated(fx_Format(65536, 32768, 2, 1));
    QVERIFY(picture.data);
    CxPicBufAPI::FreePicBuf(picture, true);
}

void tst_PictureMemory::freedPictureHoldsNothing()
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

void tst_PictureMemory::foreignMemoryIsOnlyForgotten()
{
    unsigned char pixels[4] = {1, 2, 3, 4};
    SxPicBuf picture;
    picture.setPicFormat(fx_Format(1, 1));
    picture.data = pixels;
    CxPicBufAPI::FreePicBuf(picture, true); // the address sanitizer would report a free()
    QVERIFY(!picture.data);
    QCOMPARE(pixels[3], static_cast<unsigned char>(4));
}

void tst_PictureMemory::freedPicturesAreUsedAgain()
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

void tst_PictureMemory::fewFreedPicturesAreKept()
{
    SxPicBufInfo const format = fx_Format(1024, 1024);
    SxPicBuf first = fx_Allocated(fx_Format(1, 1)); // so that nothing is left of pictures before
    std::size_t const before = fx_MemoryBytes();
    std::vector<SxPicBuf> pictures;
    for (int i = 0; i < 10; ++i)
        pictures.push_back(fx_Allocated(format));
    QVERIFY(fx_MemoryBytes() - before >= 40 * kMiB);
    for (SxPicBuf& picture : pictures)
        CxPicBufAPI::FreePicBuf(picture, true);
    std::size_t const kept = fx_MemoryBytes() - before; // three of 4 MiB
    CxPicBufAPI::FreePicBuf(first, true);
    QVERIFY2(kept >= 12 * kMiB && kept < 14 * kMiB, qPrintable(QString::number(kept)));
}

void tst_PictureMemory::lastPictureGivesEverythingBackButOneBlock()
{
    for (quint32 height : {2000U, 1000U, 500U}) {
        SxPicBuf first = fx_Allocated(fx_Format(4096, height));
        SxPicBuf second = fx_Allocated(fx_Format(4096, height + 1));
        QVERIFY(first.data && second.data);
        std::size_t const both = fx_MemoryBytes();
        CxPicBufAPI::FreePicBuf(first, true);
        CxPicBufAPI::FreePicBuf(second, true);
        QVERIFY(fx_MemoryBytes() < both - std::size_t(4096) * 4 * (height - 100));
    }
}

void tst_PictureMemory::pictureAfterTheLastUsesItsMemory()
{
    SxPicBuf picture = fx_Allocated(fx_Format(1024, 1024));
    unsigned char* const pixels = picture.data;
    CxPicBufAPI::FreePicBuf(picture, true);
    std::unique_ptr<void, void (*)(void*)> const inBetween(std::malloc(4 * kMiB), std::free);
    picture = fx_Allocated(fx_Format(1024, 1024));
    QCOMPARE(picture.data, pixels);
    CxPicBufAPI::FreePicBuf(picture, true);
}

void tst_PictureMemory::idleApplicationKeepsNothing()
{
    SxPicBuf picture = fx_Allocated(fx_Format(4096, 2000)); // 32 MB
    std::size_t const alive = fx_MemoryBytes();
    CxPicBufAPI::FreePicBuf(picture, true);
    QVERIFY(fx_MemoryBytes() > alive - kMiB);
    QTRY_VERIFY_WITH_TIMEOUT(fx_MemoryBytes() < alive - 30 * kMiB, 30000);
}

void tst_PictureMemory::keptBlocksArePoisoned()
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

void tst_PictureMemory::threadsNeverShareABlock()
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

QTEST_GUILESS_MAIN(tst_PictureMemory)
#include "tst_PictureMemory.moc"

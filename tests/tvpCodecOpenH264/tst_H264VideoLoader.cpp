#include <QtTest>

#include <QPointer>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <random>
#include <sched.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#ifdef __SANITIZE_ADDRESS__
extern "C" size_t __sanitizer_get_current_allocated_bytes(); // GCC comes without the header
#else
#include <malloc.h>
#endif

#include "CxImageData.h"
#include "H264VideoLoader.h"
#include "openH264Decoder.h"
#include "support/CodedStream.h"
#include "support/MessageRecorder.h"
#include "support/ReferenceScan.h"
#include "support/SpsWriter.h"

/// What happens right behind the next mapping, between a loader's questions to the file system.
static std::function<void(void* mapped)> s_behindMapping;
static size_t s_roomBehindMapping = 0; ///< bytes of address space that the next mapping gets on top

/// Qt's mappings come by here: a program's own symbols go before those of its libraries.
extern "C" void* mmap64(void* address, size_t length, int protection, int flags, int file, off64_t offset)
{
    size_t const all = length + std::exchange(s_roomBehindMapping, 0);
    void* const mapped =
        reinterpret_cast<void*>(syscall(SYS_mmap, address, all, protection, flags, file, offset));
    if (auto const then = std::exchange(s_behindMapping, nullptr))
        then(mapped);
    return mapped;
}

static constexpr int kFrames = 12;
static constexpr int kWidth = 80;
static constexpr int kHeight = 48;

/// Bytes that the program holds on its heap.
static size_t fx_HeapBytes()
{
#ifdef __SANITIZE_ADDRESS__
    return __sanitizer_get_current_allocated_bytes();
#else
    struct mallinfo2 const info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}

/// The visible pixels of a picture; empty without one.
static QByteArray fx_Pixels(SxPicBuf const& picture)
{
    QByteArray pixels;
    for (quint32 y = 0; picture.data && y < picture.height; ++y)
        pixels.append(reinterpret_cast<char const*>(picture.data + size_t(y) * picture.pitch),
                      static_cast<int>(picture.width * 4));
    return pixels;
}

static QByteArray fx_Load(CxH264VideoLoader& loader, int frame)
{
    std::unique_ptr<IxChainData> const data(loader.loadedData(frame));
    auto const* const image = qobject_cast<CxImageData const*>(data.get());
    return image ? fx_Pixels(*image->picBuf()) : QByteArray();
}

static QList<int> fx_KeyFrames(CxH264VideoLoader& loader)
{
    QList<int> keys = {-4711}; // which must go
    loader.keyFrames(keys);
    return keys;
}

/// A unit behind a start code of four bytes.
static QByteArray fx_Unit(int header, QByteArray const& payload)
{
    return QByteArray::fromHex("00000001") + static_cast<char>(header) + payload;
}

static QByteArray fx_SpsUnit(quint32 columns, quint32 rows)
{
    SxSps sps;
    sps.pic_width_in_mbs_minus1 = columns - 1;
    sps.pic_height_in_map_units_minus1 = rows - 1;
    std::vector<uchar> const bytes = fx_WriteSps(sps);
    return fx_Unit(0x67,
                   QByteArray(reinterpret_cast<char const*>(bytes.data()), static_cast<int>(bytes.size())));
}

class tst_H264VideoLoader : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void isALoaderAndAnAccessor();
    void newLoaderHoldsNothing();
    void offersOneFileFormat();
    void buffersAreAllocatedAndFreed();
    void unusableFileIsRefusedSilently_data();
    void unusableFileIsRefusedSilently();
    void unreadableFileIsReported_data();
    void unreadableFileIsReported();
    void opensLazily_data();
    void opensLazily();
    void indexHasEveryFrameOfOurStream();
    void keyFramesAreShared();
    void framesOpenAtParameterSetsAndSlices_data();
    void framesOpenAtParameterSetsAndSlices();
    void strangeFileIsIndexedLikeThePlainScan_data();
    void strangeFileIsIndexedLikeThePlainScan();
    void everyShortFileIsIndexedLikeThePlainScan_data();
    void everyShortFileIsIndexedLikeThePlainScan();
    void startCodeIsFoundAcrossEveryPageEdge();
    void nothingIsReadBehindAnSpsAtThePageEnd();
    void manyTinyFramesAreIndexed();
    void frameDataIsReadFromTheFile();
    void noFrameDataWithoutAFile();
    void picturesComeWithTheirTimes();
    void picturesAreTheSameInEveryOrder();
    void pictureOutsideTheStreamIsNone();
    void pictureHasThePitchOfTheHost_data();
    void pictureHasThePitchOfTheHost();
    void contradictedSizeGivesNoPicture();
    void damagedFrameGivesNoPictureUntilTheNextKeyFrame();
    void damageStaysInItsGroup_data();
    void damageStaysInItsGroup();
    void otherInputFileOfAnOpenLoaderWaits();
    void reopeningDoublesTheIndex();
    void reopeningForgetsReferencePictures();
    void failedOpenKeepsTheIndex();
    void openingTwiceKeepsOneDecoder();
    void decoderLivesWhileOpen();
    void decoderFollowsEveryOrderOfOpenAndClose();
    void growthBehindTheMappingIsLeftOut();
    void opensBesideAWriter();
    void shrunkFileIsNotReadBeyondItsEnd_data();
    void shrunkFileIsNotReadBeyondItsEnd();
    void vanishedFileGivesSoundPicturesOrNone();
    void overwrittenFileGivesNoPicture();
    void framesBeyondFourGiBAreFound();
    void memoryStaysFlat();

private:
    void checkIndex(QByteArray const& bytes);
    QString write(QByteArray const& bytes, QString const& name = QStringLiteral("stream.h264"));

    QTemporaryDir m_folder;
    SxCodedStream m_stream;
    QList<QByteArray> m_pictures; ///< of that stream
};

/// A file of these bytes; its name.
QString tst_H264VideoLoader::write(QByteArray const& bytes, QString const& name)
{
    QFile::remove(
        m_folder.filePath(name)); // some file systems flush a file that is emptied to be written again
    QFile file(m_folder.filePath(name));
    bool const isWritten = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    return isWritten ? file.fileName() : QString();
}

void tst_H264VideoLoader::initTestCase()
{
    QVERIFY(m_folder.isValid());
    m_stream = fx_CodeStream(kFrames, kWidth, kHeight, {{"h264_keyframerate", 5}, {"h264_profile_idc", 66}});
    QCOMPARE(m_stream.frames.size(), kFrames);
    QCOMPARE(m_stream.keys, (QList<int>{0, 5, 10}));

    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes()));
    for (int frame = 0; frame < kFrames; ++frame) {
        QByteArray const pixels = fx_Load(loader, frame);
        QCOMPARE(pixels.size(), kWidth * kHeight * 4);
        QVERIFY(!m_pictures.contains(pixels)); // so that a wrong picture shows
        m_pictures.append(pixels);
    }
}

void tst_H264VideoLoader::isALoaderAndAnAccessor()
{
    std::unique_ptr<QObject> const object(CxH264VideoLoader::staticMetaObject.newInstance());
    auto* const loader = qobject_cast<CxH264VideoLoader*>(object.get());
    QVERIFY(loader);
    QVERIFY(loader->qt_metacast("IxImageDataLoader") == static_cast<IxImageDataLoader*>(loader));
    QVERIFY(loader->qt_metacast("IxVideoAccessor") == static_cast<IxVideoAccessor*>(loader));
    int const info = loader->metaObject()->indexOfClassInfo("CustomName");
    QCOMPARE(QByteArray(loader->metaObject()->classInfo(info).value()),
             QByteArray("H.264 Video Loader (*.264)"));
}

void tst_H264VideoLoader::newLoaderHoldsNothing()
{
    CxMessageRecorder messages;
    CxH264VideoLoader loader;
    QCOMPARE(loader.inputFile(), QString());
    QCOMPARE(loader.lastProcessedFrame(), -1);
    QCOMPARE(loader.frameDataSize(0), 0ul);
    QCOMPARE(fx_KeyFrames(loader), QList<int>());
    loader.close();
    QCOMPARE(messages.takeRaw(), QStringList());
}

void tst_H264VideoLoader::offersOneFileFormat()
{
    CxH264VideoLoader loader;
    QCOMPARE(loader.supportedImageFormats().size(), 1);
    QCOMPARE(loader.supportedImageFormats().first().description, QStringLiteral("H.264 file (*.h264)"));
    QCOMPARE(loader.supportedImageFormats().first().kind, 2);
}

void tst_H264VideoLoader::buffersAreAllocatedAndFreed()
{
    CxH264VideoLoader loader;
    void* const buffer = loader.allocBuffer(1000);
    QVERIFY(buffer);
    std::memset(buffer, 1, 1000);
    loader.freeBuffer(buffer);
    loader.freeBuffer(nullptr);
}

void tst_H264VideoLoader::unusableFileIsRefusedSilently_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("empty") << QByteArray();
    for (char const* hex : {"00", "0000", "000001", "000000", "00000002", "01000001", "00000000", "67420029"})
        QTest::newRow(hex) << QByteArray::fromHex(hex);
    QTest::newRow("a byte ahead of the start code") << '\xFF' + m_stream.bytes();
    QTest::newRow("a zero too many ahead") << QByteArray(1, '\0') + m_stream.bytes();
    QTest::newRow("text") << QByteArray("This is no video.");
    QTest::newRow("start code and nothing") << QByteArray::fromHex("00000001");
    QTest::newRow("no SPS") << fx_Unit(0x61, "\x01\x02\x03") + fx_Unit(0x61, "\x01\x02\x03");
    QTest::newRow("no SPS but an IDR slice") << fx_Unit(0x65, "\x01\x02\x03\x04");
    for (int const header : {0x27, 0x47, 0x07})
        QTest::addRow("SPS with header byte %02x", static_cast<unsigned>(header))
            << fx_Unit(header, "\x42\x01\x02\x03") + fx_Unit(0x65, "\x01\x02\x03\x04");
    QTest::newRow("SPS too close to the end")
        << fx_Unit(0x61, "\x01\x02\x03") + QByteArray::fromHex("00000001674200");
}

void tst_H264VideoLoader::unusableFileIsRefusedSilently()
{
    QFETCH(QByteArray, bytes);
    CxMessageRecorder messages;
    CxH264VideoLoader loader;
    loader.setInputFile(write(bytes, QStringLiteral("refused.h264")));
    QVERIFY(!loader.load());
    QVERIFY(!loader.open());
    QCOMPARE(loader.sequenceSize(), 0);
    QCOMPARE(loader.framesCount(), 0);
    QCOMPARE(loader.loadedFps(), 0.0);
    QVERIFY(!loader.loadedData(0));
    QCOMPARE(fx_KeyFrames(loader), QList<int>());
    QVERIFY(!loader.findChild<CxOpenH264Decoder*>());
    QCOMPARE(messages.takeRaw(), QStringList());

    loader.setInputFile(write(m_stream.bytes())); // it can still open another
    QCOMPARE(loader.sequenceSize(), kFrames);
}

void tst_H264VideoLoader::unreadableFileIsReported_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing") << m_folder.filePath(QStringLiteral("missing.h264"));
    QTest::newRow("a folder") << m_folder.path();
    QTest::newRow("no name") << QString();
    QTest::newRow("place markers in its name") << m_folder.filePath(QStringLiteral("%1 %2.h264"));
}

void tst_H264VideoLoader::unreadableFileIsReported()
{
    QFETCH(QString, name);
    CxMessageRecorder messages;
    CxH264VideoLoader loader;
    loader.setInputFile(name);
    QVERIFY(!loader.load());
    QCOMPARE(messages.takeTexts(),
             QStringList(QStringLiteral("CxH264VideoLoader::open(): Cannot open the '") + name + "'"));
    QCOMPARE(loader.sequenceSize(), 0);
    QCOMPARE(loader.loadedFps(), 0.0);
    QVERIFY(!loader.loadedData(0));
    QCOMPARE(messages.takeTexts().size(), 3); // each of them tried
}

using Operation = std::function<void(CxH264VideoLoader&)>;
Q_DECLARE_METATYPE(Operation)

void tst_H264VideoLoader::opensLazily_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<bool>("opens");

    QTest::newRow("load") << Operation([](CxH264VideoLoader& l) { QVERIFY(l.load()); }) << true;
    QTest::newRow("sequenceSize") << Operation([](CxH264VideoLoader& l) {
        QCOMPARE(l.sequenceSize(), kFrames);
    }) << true;
    QTest::newRow("framesCount") << Operation([](CxH264VideoLoader& l) {
        QCOMPARE(l.framesCount(), kFrames);
    }) << true;
    QTest::newRow("loadedFps") << Operation([](CxH264VideoLoader& l) { QCOMPARE(l.loadedFps(), 30.0); })
                               << true;
    QTest::newRow("loadedData") << Operation([](CxH264VideoLoader& l) { QVERIFY(!l.loadedData(-1)); })
                                << true;
    QTest::newRow("frameData") << Operation([](CxH264VideoLoader& l) {
        unsigned long size = 0;
        QVERIFY(!l.frameData(0, nullptr, size));
    }) << true;
    QTest::newRow("frameDataSize") << Operation([](CxH264VideoLoader& l) {
        QCOMPARE(l.frameDataSize(0), 0ul);
    }) << false;
    QTest::newRow("keyFrames") << Operation([](CxH264VideoLoader& l) { QVERIFY(fx_KeyFrames(l).isEmpty()); })
                               << false;
    QTest::newRow("lastProcessedFrame")
        << Operation([](CxH264VideoLoader& l) { QCOMPARE(l.lastProcessedFrame(), -1); }) << false;
    QTest::newRow("setInputFile") << Operation([](CxH264VideoLoader& l) { l.setInputFile(l.inputFile()); })
                                  << false;
}

void tst_H264VideoLoader::opensLazily()
{
    QFETCH(Operation, operation);
    QFETCH(bool, opens);
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes()));
    operation(loader);
    // The index shows whether the file was opened: this question does not open it.
    QCOMPARE(loader.frameDataSize(0) != 0, opens);
    operation(loader);
    QCOMPARE(loader.sequenceSize(), kFrames); // and it was not opened twice
}

void tst_H264VideoLoader::indexHasEveryFrameOfOurStream()
{
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes(), QStringLiteral("gr\u00FC\u00DFe \u65E5\u672C.h264")));
    QVERIFY(loader.load());
    QVERIFY(loader.load());
    QCOMPARE(loader.sequenceSize(), kFrames);
    QCOMPARE(fx_KeyFrames(loader), m_stream.keys);
    for (int frame = 0; frame < kFrames; ++frame) {
        QByteArray const& expected = m_stream.frames.at(frame);
        unsigned long size = loader.frameDataSize(frame);
        QCOMPARE(size, static_cast<unsigned long>(expected.size()));
        QByteArray bytes(expected.size(), '\x55');
        QVERIFY(loader.frameData(frame, bytes.data(), size));
        QCOMPARE(bytes, expected);
    }
    for (int const frame : {-1, kFrames, INT_MIN, INT_MAX})
        QCOMPARE(loader.frameDataSize(frame), 0ul);
}

/// The decoder asks at every picture: the answer must not grow with the file.
void tst_H264VideoLoader::keyFramesAreShared()
{
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes()));
    QVERIFY(loader.load());
    QList<int> first, second;
    loader.keyFrames(first);
    loader.keyFrames(second);
    QVERIFY(first.isSharedWith(second));
    first.clear();
    QCOMPARE(fx_KeyFrames(loader), second);
}

void tst_H264VideoLoader::framesOpenAtParameterSetsAndSlices_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QList<int>>("sizes");
    QTest::addColumn<QList<int>>("keys");

    QByteArray const sps = fx_SpsUnit(5, 3);
    QByteArray const slice = fx_Unit(0x61, "\x01\x02\x03\x04");
    QByteArray const other = fx_Unit(0x41, "\x01\x02\x03\x04");
    QByteArray const idr = fx_Unit(0x65, "\x01\x02\x03\x04");
    int const spsSize = static_cast<int>(sps.size());
    QTest::newRow("delimiter first") << fx_Unit(0x09, "\xF0") + sps + idr + slice
                                     << QList<int>{6, spsSize + 9, 9} << QList<int>{1};
    QTest::newRow("SEI first") << fx_Unit(0x06, "\x05\x01\x80") + sps + idr << QList<int>{8, spsSize + 9}
                               << QList<int>{1};
    QTest::newRow("slices ahead of the first SPS")
        << slice + slice + sps + idr << QList<int>{9, 9, spsSize + 9} << QList<int>{2};
    QTest::newRow("several slices a picture")
        << sps + idr + slice + slice + slice << QList<int>{spsSize + 9, 9, 9, 9} << QList<int>{0};
    QTest::newRow("slices with another nal_ref_idc")
        << sps + idr + other + other + sps + idr + other << QList<int>{spsSize + 27, spsSize + 18}
        << QList<int>{0, 1};
    QTest::newRow("SPS only") << sps << QList<int>{spsSize} << QList<int>{0};
    QTest::newRow("start code at the end")
        << sps + QByteArray::fromHex("000001") << QList<int>{spsSize + 3} << QList<int>{0};
    QTest::newRow("start code of four bytes at the end")
        << sps + slice + QByteArray::fromHex("00000001") << QList<int>{spsSize} << QList<int>{0};
}

void tst_H264VideoLoader::framesOpenAtParameterSetsAndSlices()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QList<int>, sizes);
    QFETCH(QList<int>, keys);
    CxH264VideoLoader loader;
    loader.setInputFile(write(bytes, QStringLiteral("rules.h264")));
    QVERIFY(loader.load());
    QList<int> actual;
    for (int frame = 0; frame < loader.sequenceSize(); ++frame)
        actual.append(static_cast<int>(loader.frameDataSize(frame)));
    QCOMPARE(actual, sizes);
    QCOMPARE(fx_KeyFrames(loader), keys);
    // None of these is a picture that decodes: each is refused, whatever the order.
    CxMessageRecorder messages;
    for (int frame = loader.sequenceSize() - 1; frame >= 0; --frame)
        QVERIFY(fx_Load(loader, frame).isEmpty());
    QCOMPARE(loader.lastProcessedFrame(), -1);
}

/// Opens a file of these bytes and compares its index with the plain scan; then asks for pictures, of which
/// nothing is known but that they may be refused.
void tst_H264VideoLoader::checkIndex(QByteArray const& bytes)
{
    Bytes const plain(bytes.begin(), bytes.end());
    bool const begins = plain.size() >= 4 && fx_ReferenceStartCode(plain, 0) != 0;
    SxScan const scan = begins ? fx_ReferenceScan(plain) : SxScan();
    bool const opens = scan.hasSps && !scan.frames.empty();

    CxMessageRecorder messages;
    CxH264VideoLoader loader;
    loader.setInputFile(write(bytes, QStringLiteral("strange.h264")));
    QCOMPARE(loader.load(), opens);
    int const count = loader.sequenceSize();
    QCOMPARE(count, opens ? static_cast<int>(scan.frames.size()) : 0);
    QList<int> keys;
    for (int frame = 0; frame < count; ++frame) {
        SxFrameRange const& expected = scan.frames[static_cast<size_t>(frame)];
        if (loader.frameDataSize(frame) != expected.size)
            QCOMPARE(loader.frameDataSize(frame), static_cast<unsigned long>(expected.size));
        if (expected.key)
            keys.append(frame);
    }
    QCOMPARE(fx_KeyFrames(loader), keys);
    for (int const frame : {0, count / 2, count - 1})
        fx_Load(loader, frame);
}

void tst_H264VideoLoader::strangeFileIsIndexedLikeThePlainScan_data()
{
    QTest::addColumn<QByteArray>("bytes");
    int const kSize = 100000;
    QByteArray const sps = fx_SpsUnit(5, 3);
    auto const repeated = [](QByteArray const& piece) {
        return piece.repeated(kSize / static_cast<int>(piece.size()));
    };
    QTest::newRow("only zeros") << QByteArray(kSize, '\0');
    QTest::newRow("only ones") << QByteArray(kSize, '\1');
    QTest::newRow("only start codes") << repeated(QByteArray::fromHex("000001"));
    QTest::newRow("only start codes of four bytes") << repeated(QByteArray::fromHex("00000001"));
    QTest::newRow("an SPS, then zeros") << sps + QByteArray(kSize, '\0');
    QTest::newRow("an SPS, then start codes") << sps + repeated(QByteArray::fromHex("000001"));
    QTest::newRow("an SPS without an end") << sps + QByteArray(kSize, '\xFF');
    QTest::newRow("only SPS header bytes") << repeated(QByteArray::fromHex("00000167"));
    QTest::newRow("only slice header bytes") << sps + repeated(QByteArray::fromHex("00000161"));
    QTest::newRow("only IDR header bytes") << sps + repeated(QByteArray::fromHex("00000165"));
    std::minstd_rand random(3);
    for (char const* alphabet : {"00000161", "0000016167656803", "00010203040506070809616567686a"}) {
        QByteArray const letters = QByteArray::fromHex(alphabet);
        QByteArray bytes = sps;
        while (bytes.size() < kSize)
            bytes.append(letters.at(static_cast<int>(random() % static_cast<unsigned>(letters.size()))));
        QTest::addRow("random bytes of %s", alphabet) << bytes;
    }
}

void tst_H264VideoLoader::strangeFileIsIndexedLikeThePlainScan()
{
    QFETCH(QByteArray, bytes);
    checkIndex(bytes);
}

void tst_H264VideoLoader::everyShortFileIsIndexedLikeThePlainScan_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QByteArray const sps = fx_SpsUnit(5, 3);
    QTest::newRow("of our stream") << m_stream.bytes();
    QTest::newRow("of slices ahead of an SPS") << fx_Unit(0x61, "\x01\x02\x03\x04") + sps + m_stream.bytes();
    QTest::newRow("of zeros") << QByteArray(64, '\0');
    QTest::newRow("of start codes") << QByteArray::fromHex("000001").repeated(22);
    QTest::newRow("of SPS headers") << QByteArray::fromHex("00000167").repeated(16);
}

void tst_H264VideoLoader::everyShortFileIsIndexedLikeThePlainScan()
{
    QFETCH(QByteArray, bytes);
    for (int size = 1; size <= 64; ++size) {
        checkIndex(bytes.left(size));
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(QStringLiteral("of %1 bytes").arg(size)));
    }
}

void tst_H264VideoLoader::startCodeIsFoundAcrossEveryPageEdge()
{
    QByteArray const sps = fx_SpsUnit(5, 3);
    for (int const edge : {4096, 8192, 16384, 65536}) {
        for (int const length : {3, 4}) {
            for (int at = edge - 8; at <= edge + 1; ++at) {
                QByteArray bytes = sps + QByteArray(at - static_cast<int>(sps.size()), '\x55');
                bytes += QByteArray::fromHex("00000001").right(length) + QByteArray("\x61\x01\x02\x03", 4);
                checkIndex(bytes);
                checkIndex(bytes + QByteArray(edge, '\x55')); // the last page is a whole one
                if (QTest::currentTestFailed())
                    QFAIL(qPrintable(QStringLiteral("of %1 bytes, at %2").arg(length).arg(at)));
            }
        }
    }
}

/// The mapping ends with the set: whatever its codes say, nothing is read behind it.
void tst_H264VideoLoader::nothingIsReadBehindAnSpsAtThePageEnd()
{
    int const page = static_cast<int>(sysconf(_SC_PAGESIZE));
    QByteArray const whole = fx_SpsUnit(5, 3);
    QList<QByteArray> sets;
    for (int size = 5 + 3; size <= whole.size(); ++size) // the first that the scan looks at, to all
        sets.append(whole.left(size));
    sets.append(fx_Unit(0x67, QByteArray(3, '\0')));
    sets.append(fx_Unit(0x67, QByteArray::fromHex("640029") + QByteArray(20, '\0')));
    sets.append(fx_Unit(0x67, QByteArray::fromHex("42001FA000")));
    for (QByteArray const& set : sets) {
        QByteArray const slice = fx_Unit(0x61, QByteArray(page - static_cast<int>(set.size()) - 5, '\x55'));
        QByteArray const bytes = slice + set;
        QCOMPARE(static_cast<int>(bytes.size()), page);
        // The page behind the mapping cannot be read, as at the end of what a process has.
        bool isGuarded = false;
        s_behindMapping = [&](void* mapped) {
            isGuarded =
                mprotect(static_cast<char*>(mapped) + page, static_cast<size_t>(page), PROT_NONE) == 0;
        };
        s_roomBehindMapping = static_cast<size_t>(page);
        checkIndex(bytes);
        QVERIFY(isGuarded);
        if (QTest::currentTestFailed())
            return;
    }
}

void tst_H264VideoLoader::manyTinyFramesAreIndexed()
{
    int const kCount = 100000;
    QByteArray const sps = fx_SpsUnit(5, 3);
    CxH264VideoLoader loader;
    loader.setInputFile(
        write(sps + QByteArray::fromHex("0000016155").repeated(kCount), QStringLiteral("tiny.h264")));
    QVERIFY(loader.load());
    // The last one is too short to be looked at and stays with the one before.
    QCOMPARE(loader.sequenceSize(), kCount);
    QCOMPARE(loader.frameDataSize(0), static_cast<unsigned long>(sps.size()));
    for (int const frame : {1, 2, kCount / 2, kCount - 2})
        QCOMPARE(loader.frameDataSize(frame), 5ul);
    QCOMPARE(loader.frameDataSize(kCount - 1), 10ul);
    QCOMPARE(fx_KeyFrames(loader), QList<int>{0});
    CxMessageRecorder messages;
    for (int const frame : {kCount - 1, kCount / 2, 1})
        QVERIFY(fx_Load(loader, frame).isEmpty());
}

/// The result says only whether there is a buffer; success shows in the size.
void tst_H264VideoLoader::frameDataIsReadFromTheFile()
{
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes()));
    QVERIFY(loader.load());
    unsigned long const frameSize = loader.frameDataSize(1);
    QByteArray buffer(static_cast<int>(frameSize) + 100, '\x55');
    QByteArray const untouched = buffer;

    unsigned long size = frameSize - 1;
    QVERIFY(loader.frameData(1, buffer.data(), size));
    QCOMPARE(size, frameSize - 1);
    for (int const frame : {-1, kFrames, INT_MAX}) {
        size = 4711;
        QVERIFY(loader.frameData(frame, buffer.data(), size));
        QCOMPARE(size, 4711ul);
    }
    size = 0;
    QVERIFY(loader.frameData(1, buffer.data(), size));
    QCOMPARE(size, 0ul);
    QCOMPARE(buffer, untouched);
    size = frameSize;
    QVERIFY(!loader.frameData(1, nullptr, size));
    QCOMPARE(size, frameSize);

    size = static_cast<unsigned long>(buffer.size());
    QVERIFY(loader.frameData(1, buffer.data(), size));
    QCOMPARE(size, frameSize);
    QCOMPARE(buffer.left(static_cast<int>(frameSize)), m_stream.frames.at(1));
    QCOMPARE(buffer.mid(static_cast<int>(frameSize)), untouched.mid(static_cast<int>(frameSize)));
}

void tst_H264VideoLoader::noFrameDataWithoutAFile()
{
    CxMessageRecorder messages;
    CxH264VideoLoader loader;
    loader.setInputFile(m_folder.filePath(QStringLiteral("missing.h264")));
    char buffer[4] = {1, 2, 3, 4};
    unsigned long size = 4;
    QVERIFY(loader.frameData(0, buffer, size));
    QVERIFY(!loader.frameData(0, nullptr, size));
    QCOMPARE(size, 4ul);
    QCOMPARE(QByteArray(buffer, 4), QByteArray("\x01\x02\x03\x04"));
    QCOMPARE(messages.takeTexts().size(), 2);
}

void tst_H264VideoLoader::picturesComeWithTheirTimes()
{
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes()));
    quint64 const times[] = {0, 33333, 66666, 100000};
    for (int frame = 0; frame < kFrames; ++frame) {
        std::unique_ptr<IxChainData> const data(loader.loadedData(frame));
        auto const* const image = qobject_cast<CxImageData const*>(data.get());
        QVERIFY(image);
        SxPicBuf const& picture = *image->picBuf();
        QCOMPARE(picture.timestamp, static_cast<quint64>(frame * (1000000 / 30.0)));
        if (frame < 4)
            QCOMPARE(picture.timestamp, times[frame]);
        QCOMPARE(picture.width, quint32(kWidth));
        QCOMPARE(picture.height, quint32(kHeight));
        QCOMPARE(picture.pitch, 512u);
        QCOMPARE(picture.components, 4u);
        QCOMPARE(picture.bitsPerSample, 8u);
        QCOMPARE(picture.auxField, 0u);
        QCOMPARE(picture.sampleType, 2u);
        QCOMPARE(picture.layout, 1u);
        QCOMPARE(picture.formatVariant, 0u);
        QVERIFY(picture.formatFlag);
        QCOMPARE(fx_Pixels(picture), m_pictures.at(frame));
        QCOMPARE(loader.lastProcessedFrame(), frame);
    }
    QCOMPARE(loader.loadedFps(), 30.0);
}

/// Each frame after each other frame.
void tst_H264VideoLoader::picturesAreTheSameInEveryOrder()
{
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes()));
    for (int last = 0; last < kFrames; ++last) {
        for (int frame = 0; frame < kFrames; ++frame) {
            QCOMPARE(fx_Load(loader, last), m_pictures.at(last));
            QCOMPARE(fx_Load(loader, frame), m_pictures.at(frame));
        }
    }
}

void tst_H264VideoLoader::pictureOutsideTheStreamIsNone()
{
    CxMessageRecorder messages;
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes()));
    QCOMPARE(fx_Load(loader, 3), m_pictures.at(3));
    for (int const frame : {-1, kFrames, kFrames + 1, INT_MIN, INT_MAX}) {
        QVERIFY(!loader.loadedData(frame));
        QCOMPARE(loader.lastProcessedFrame(), 3);
    }
    QCOMPARE(messages.takeRaw(), QStringList());
}

void tst_H264VideoLoader::pictureHasThePitchOfTheHost_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<quint32>("pitch");
    QTest::newRow("64: rows of 256 bytes need no padding") << 64 << 256u;
    QTest::newRow("66") << 66 << 512u;
    QTest::newRow("128") << 128 << 512u;
}

void tst_H264VideoLoader::pictureHasThePitchOfTheHost()
{
    QFETCH(int, width);
    QFETCH(quint32, pitch);
    CxH264VideoLoader loader;
    loader.setInputFile(write(fx_CodeStream(1, static_cast<quint32>(width), 34, {}).bytes(), "format.h264"));
    std::unique_ptr<IxChainData> const data(loader.loadedData(0));
    auto const* const image = qobject_cast<CxImageData const*>(data.get());
    QVERIFY(image);
    QCOMPARE(image->picBuf()->width, static_cast<quint32>(width));
    QCOMPARE(image->picBuf()->height, 34u);
    QCOMPARE(image->picBuf()->pitch, pitch);
}

void tst_H264VideoLoader::contradictedSizeGivesNoPicture()
{
    for (auto const& size : {qMakePair(6u, 3u), qMakePair(5u, 4u), qMakePair(1u, 1u), qMakePair(8000u, 9000u),
                             qMakePair(1u << 28, 1u << 28), qMakePair(0x08000000u, 1u)}) {
        CxH264VideoLoader loader;
        loader.setInputFile(
            write(fx_SpsUnit(size.first, size.second) + m_stream.bytes(), "contradiction.h264"));
        QVERIFY(loader.load());
        QCOMPARE(loader.sequenceSize(), kFrames + 1);
        for (int frame = 0; frame <= kFrames; ++frame)
            QVERIFY(!loader.loadedData(frame));
        QCOMPARE(loader.lastProcessedFrame(), -1);
    }
}

void tst_H264VideoLoader::damagedFrameGivesNoPictureUntilTheNextKeyFrame()
{
    QList<QByteArray> frames = m_stream.frames;
    QByteArray& damaged = frames[6];
    for (int i = 6; i < damaged.size(); ++i)
        damaged[i] = '\xFF';
    QByteArray bytes;
    for (QByteArray const& frame : std::as_const(frames))
        bytes += frame;
    CxH264VideoLoader loader;
    loader.setInputFile(write(bytes, QStringLiteral("damaged.h264")));
    CxMessageRecorder messages;
    QCOMPARE(fx_Load(loader, 5), m_pictures.at(5));
    QVERIFY(!loader.loadedData(6));
    QCOMPARE(loader.lastProcessedFrame(), 5);
    QCOMPARE(messages.takeTexts().size(), 1);
    QVERIFY(!loader.loadedData(7)); // what it needs is gone
    for (int const frame : {5, 10, 11, 4, 0})
        QCOMPARE(fx_Load(loader, frame), m_pictures.at(frame));
}

void tst_H264VideoLoader::damageStaysInItsGroup_data()
{
    QTest::addColumn<int>("profile");
    for (int const profile : {66, 77, 88, 100})
        QTest::addRow("%d", profile) << profile;
}

/// Bits flipped in one frame: the frames of other groups, and those ahead of it in its own, are
/// exactly what they were, in every order.
void tst_H264VideoLoader::damageStaysInItsGroup()
{
    QFETCH(int, profile);
    SxCodedStream const stream =
        fx_CodeStream(kFrames, kWidth, kHeight, {{"h264_keyframerate", 5}, {"h264_profile_idc", profile}});
    QCOMPARE(stream.keys, m_stream.keys);
    QList<QByteArray> intact;
    {
        CxH264VideoLoader loader;
        loader.setInputFile(write(stream.bytes(), QStringLiteral("intact.h264")));
        for (int frame = 0; frame < kFrames; ++frame)
            intact.append(fx_Load(loader, frame));
    }

    std::mt19937 random(static_cast<unsigned>(profile));
    auto const below = [&random](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    CxMessageRecorder messages;
    for (int round = 0; round < 60; ++round) {
        QList<QByteArray> frames = stream.frames;
        int const damaged = below(kFrames);
        // Behind the start code and the header byte, which decide where frames begin.
        QByteArray& bytes = frames[damaged];
        int const at = 5 + below(static_cast<int>(bytes.size()) - 5);
        bytes[at] = static_cast<char>(bytes[at] ^ 1 << below(8));
        SxCodedStream const changed{frames, stream.keys};
        CxH264VideoLoader loader;
        loader.setInputFile(write(changed.bytes(), QStringLiteral("flipped.h264")));
        if (!loader.load() || loader.sequenceSize() != kFrames || fx_KeyFrames(loader) != stream.keys)
            continue;                           // the flip made or broke a start code
        bool const hasOtherSize = damaged == 0; // the first SPS decides the size of all
        for (int step = 0; step < 3 * kFrames; ++step) {
            int const frame = step < kFrames ? step : below(kFrames);
            QByteArray const pixels = fx_Load(loader, frame);
            bool const isAffected = frame >= damaged && frame / 5 == damaged / 5;
            if (!isAffected && !(hasOtherSize && pixels.isEmpty()))
                QVERIFY2(pixels == intact.at(frame),
                         qPrintable(QStringLiteral("round %1, byte %2 of frame %3, frame %4")
                                        .arg(round)
                                        .arg(at)
                                        .arg(damaged)
                                        .arg(frame)));
        }
    }
}

void tst_H264VideoLoader::otherInputFileOfAnOpenLoaderWaits()
{
    CxH264VideoLoader loader;
    QString const first = write(m_stream.bytes());
    loader.setInputFile(first);
    QCOMPARE(loader.inputFile(), first);
    QVERIFY(loader.load());
    QString const missing = m_folder.filePath(QStringLiteral("missing.h264"));
    loader.setInputFile(missing);
    QCOMPARE(loader.inputFile(), missing);
    QVERIFY(loader.load());
    QCOMPARE(loader.sequenceSize(), kFrames);
    QCOMPARE(fx_Load(loader, 7), m_pictures.at(7));
    loader.close();
    CxMessageRecorder messages;
    QVERIFY(!loader.load());
    QCOMPARE(messages.takeTexts().size(), 1);
}

void tst_H264VideoLoader::reopeningDoublesTheIndex()
{
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes()));
    QVERIFY(loader.open());
    loader.close();
    QCOMPARE(loader.frameDataSize(2), static_cast<unsigned long>(m_stream.frames.at(2).size()));
    QCOMPARE(fx_KeyFrames(loader), m_stream.keys);
    QVERIFY(loader.open());
    QCOMPARE(loader.sequenceSize(), 2 * kFrames);
    QList<int> keys = m_stream.keys;
    for (int const key : m_stream.keys)
        keys.append(kFrames + key);
    QCOMPARE(fx_KeyFrames(loader), keys);
    for (int const frame : {23, 3, 14, 12, 11, 0, 22})
        QCOMPARE(fx_Load(loader, frame), m_pictures.at(frame % kFrames));
}

void tst_H264VideoLoader::reopeningForgetsReferencePictures()
{
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes()));
    QCOMPARE(fx_Load(loader, 2), m_pictures.at(2));
    loader.close();
    QVERIFY(loader.open());
    QCOMPARE(fx_Load(loader, 3), m_pictures.at(3)); // frame 2's picture went with its decoder
}

void tst_H264VideoLoader::failedOpenKeepsTheIndex()
{
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes()));
    QVERIFY(loader.open());
    loader.close();
    loader.setInputFile(write(fx_Unit(0x61, "\x01\x02\x03") + fx_Unit(0x61, "\x01\x02\x03"), "slices.h264"));
    QVERIFY(!loader.open());
    QCOMPARE(loader.sequenceSize(), kFrames);
    QCOMPARE(fx_KeyFrames(loader), m_stream.keys);
    QVERIFY(!loader.loadedData(0));
}

void tst_H264VideoLoader::openingTwiceKeepsOneDecoder()
{
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes()));
    QVERIFY(loader.open());
    QCOMPARE(fx_Load(loader, 4), m_pictures.at(4));
    QVERIFY(loader.open());
    QCOMPARE(loader.findChildren<CxOpenH264Decoder*>().size(), 1);
    QCOMPARE(fx_Load(loader, 5), m_pictures.at(5));
    QCOMPARE(fx_Load(loader, 7), m_pictures.at(7));
}

void tst_H264VideoLoader::decoderLivesWhileOpen()
{
    std::unique_ptr<CxH264VideoLoader> loader(new CxH264VideoLoader);
    loader->setInputFile(write(m_stream.bytes()));
    QVERIFY(!loader->findChild<CxOpenH264Decoder*>());
    QVERIFY(loader->load());
    QPointer<CxOpenH264Decoder> decoder = loader->findChild<CxOpenH264Decoder*>();
    QVERIFY(decoder);
    QCOMPARE(fx_Load(*loader, 1), m_pictures.at(1));
    loader->close();
    QVERIFY(!decoder);
    QVERIFY(loader->load());
    decoder = loader->findChild<CxOpenH264Decoder*>();
    QCOMPARE(fx_Load(*loader, 1), m_pictures.at(1));
    loader.reset(); // open: its decoder goes with it
    QVERIFY(!decoder);
}

/// What each leaves behind is for the leak checker.
void tst_H264VideoLoader::decoderFollowsEveryOrderOfOpenAndClose()
{
    QString const good = write(m_stream.bytes());
    QString const bad = write("no stream", QStringLiteral("bad.h264"));
    for (int order = 0; order < 4 * 4 * 4; ++order) {
        CxH264VideoLoader loader;
        loader.setInputFile(good);
        bool isOpen = false;
        for (int step = order, i = 0; i < 3; ++i, step /= 4) {
            switch (step % 4) {
            case 0:
                isOpen = loader.load();
                QVERIFY(isOpen);
                break;
            case 1:
                loader.close();
                isOpen = false;
                break;
            case 2:
                QCOMPARE(fx_Load(loader, 6), m_pictures.at(6));
                isOpen = true;
                break;
            default:
                loader.setInputFile(bad);
                isOpen = loader.open();
                QVERIFY(!isOpen);
                loader.setInputFile(good);
            }
        }
        QCOMPARE(loader.findChildren<CxOpenH264Decoder*>().size(), isOpen ? 1 : 0);
    }
}

void tst_H264VideoLoader::growthBehindTheMappingIsLeftOut()
{
    QString const name = write(m_stream.bytes(), QStringLiteral("growing.h264"));
    bool hasGrown = false;
    s_behindMapping = [&](void*) {
        QFile file(name);
        hasGrown = file.open(QIODevice::Append) && file.write(QByteArray(1 << 20, '\x42')) == 1 << 20;
    };
    CxH264VideoLoader loader;
    loader.setInputFile(name);
    QVERIFY(loader.load());
    QVERIFY(hasGrown);
    QCOMPARE(loader.sequenceSize(), kFrames);
    // The last frame ends where the file ended when it was mapped.
    QCOMPARE(loader.frameDataSize(kFrames - 1), static_cast<unsigned long>(m_stream.frames.last().size()));
    QCOMPARE(fx_Load(loader, kFrames - 1), m_pictures.last());
}

namespace {

/// Another process that writes frames to a file, over and over in small pieces, until it is told to end.
class CxWriter
{
public:
    CxWriter(QString const& fileName, QByteArray const& first, QByteArray const& round)
    {
        int ready[2];
        if (pipe(ready) != 0)
            return;
        QByteArray const name = QFile::encodeName(fileName);
        m_process = fork();
        if (m_process == 0) {
            int const file = open(name.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            ssize_t written = ::write(file, first.constData(), static_cast<size_t>(first.size()));
            written += ::write(ready[1], "", 1);
            for (int rounds = 0; rounds < kMostRounds && written > 0; ++rounds)
                for (int at = 0; at < round.size(); at += kPiece)
                    written +=
                        ::write(file, round.constData() + at,
                                static_cast<size_t>(qMin(kPiece, static_cast<int>(round.size()) - at)));
            _exit(0);
        }
        ::close(ready[1]);
        char byte = 0;
        m_hasBegun = m_process > 0 && ::read(ready[0], &byte, 1) == 1;
        ::close(ready[0]);
    }
    ~CxWriter()
    {
        if (m_process <= 0)
            return;
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
    bool hasBegun() const { return m_hasBegun; }
    bool isWriting() const
    {
        siginfo_t ended{};
        return m_hasBegun &&
               waitid(P_PID, static_cast<id_t>(m_process), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
               ended.si_pid == 0;
    }

private:
    Q_DISABLE_COPY(CxWriter)
    static constexpr int kPiece = 37; // ends anywhere in a frame
    static constexpr int kMostRounds = 2000;

    pid_t m_process = -1;
    bool m_hasBegun = false;
};

} // namespace

/// A recording in progress: it opens with what is there, up to the middle of its last frame.
void tst_H264VideoLoader::opensBesideAWriter()
{
    QByteArray const round = m_stream.bytes();
    qint64 largest = 0;
    for (QByteArray const& frame : m_stream.frames)
        largest = qMax(largest, static_cast<qint64>(frame.size()));
    qint64 grown = 0;
    for (int i = 0; i < 100; ++i) {
        QString const name = m_folder.filePath(QStringLiteral("recording%1.h264").arg(i));
        CxWriter const writer(name, m_stream.frames.first(), round);
        QVERIFY(writer.hasBegun());
        qint64 const before = QFileInfo(name).size();
        s_behindMapping = [&](void*) { // however busy the machine is, the writer gets on while we open
            while (QFileInfo(name).size() == before && writer.isWriting())
                sched_yield();
        };
        CxH264VideoLoader loader;
        loader.setInputFile(name);
        QVERIFY(loader.load());
        qint64 const after = QFileInfo(name).size();
        grown += after > before ? 1 : 0;

        // The first frame, then rounds; a start code whose unit is still to come stays with the last.
        int const count = loader.sequenceSize();
        qint64 indexed = 0;
        for (int frame = 0; frame < count; ++frame) {
            auto const size = static_cast<qint64>(loader.frameDataSize(frame));
            qint64 const whole = m_stream.frames.at(frame == 0 ? 0 : (frame - 1) % kFrames).size();
            QVERIFY(frame == count - 1 ? size <= whole + 8 : size == whole);
            indexed += size;
        }
        QVERIFY(indexed <= after);
        QVERIFY(indexed >= before - largest - 8);
        QCOMPARE(fx_Load(loader, 0), m_pictures.first());
        if (count > 4)
            QCOMPARE(fx_Load(loader, 3), m_pictures.at(2));
    }
    QVERIFY(grown > 0); // at least once the file grew while it was opened
    for (QString const& name : QDir(m_folder.path()).entryList({QStringLiteral("recording*")}))
        QFile::remove(m_folder.filePath(name));
}

void tst_H264VideoLoader::shrunkFileIsNotReadBeyondItsEnd_data()
{
    QTest::addColumn<int>("left");
    int const size = static_cast<int>(m_stream.bytes().size());
    for (int const left : {0, 1, 100, size / 2, size - 1})
        QTest::addRow("to %d bytes", left) << left;
}

void tst_H264VideoLoader::shrunkFileIsNotReadBeyondItsEnd()
{
    QFETCH(int, left);
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes(), QStringLiteral("shrunk.h264")));
    QCOMPARE(fx_Load(loader, 0), m_pictures.at(0));
    QVERIFY(QFile::resize(loader.inputFile(), left));
    QCOMPARE(loader.sequenceSize(), kFrames);
    CxMessageRecorder messages;
    for (int pass = 0; pass < 2; ++pass) {
        for (int frame = 0, end = 0; frame < kFrames; ++frame) {
            int const size = static_cast<int>(m_stream.frames.at(frame).size());
            end += size;
            QByteArray buffer(size, '\x55');
            unsigned long copied = static_cast<unsigned long>(size) + 1; // not what it will be set to
            QByteArray roomy(size + 1, '\x55');
            QVERIFY(loader.frameData(frame, roomy.data(), copied));
            QCOMPARE(copied, static_cast<unsigned long>(end <= left ? size : size + 1));
            QByteArray const pixels = fx_Load(loader, frame);
            if (end <= left)
                QCOMPARE(pixels, m_pictures.at(frame));
            else
                QVERIFY(pixels.isEmpty());
        }
    }
    QCOMPARE(messages.takeRaw(), QStringList());
}

void tst_H264VideoLoader::vanishedFileGivesSoundPicturesOrNone()
{
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes(), QStringLiteral("vanished.h264")));
    QCOMPARE(fx_Load(loader, 3), m_pictures.at(3));
    QVERIFY(QFile::remove(loader.inputFile()));
    for (int frame = 0; frame < kFrames; ++frame) {
        QByteArray const pixels = fx_Load(loader, frame);
        QVERIFY(pixels.isEmpty() || pixels == m_pictures.at(frame));
    }
    loader.close();
    CxMessageRecorder messages;
    QVERIFY(!loader.load());
    QCOMPARE(messages.takeTexts().size(), 1);
}

void tst_H264VideoLoader::overwrittenFileGivesNoPicture()
{
    CxH264VideoLoader loader;
    loader.setInputFile(write(m_stream.bytes(), QStringLiteral("overwritten.h264")));
    QCOMPARE(fx_Load(loader, 3), m_pictures.at(3));
    QFile file(loader.inputFile());
    QVERIFY(file.open(QIODevice::ReadWrite)); // the same file, not another of its name
    file.write(QByteArray(m_stream.bytes().size(), '\x5A'));
    file.close();
    for (int frame = 0; frame < kFrames; ++frame)
        QVERIFY(fx_Load(loader, frame).isEmpty());
    QCOMPARE(loader.lastProcessedFrame(), 3);
}

/// A sparse file: positions and sizes need more than 32 bits, whatever the disk.
void tst_H264VideoLoader::framesBeyondFourGiBAreFound()
{
    qint64 const kGiB = qint64(1) << 30;
    QList<QByteArray> const& coded = m_stream.frames;
    struct SxPlaced
    {
        qint64 offset;
        int frame;
    };
    // Around both marks: a key frame that ends ahead of it, one that lies across, and what follows.
    std::vector<SxPlaced> placed = {{0, 0}};
    for (qint64 const mark : {2 * kGiB, 4 * kGiB}) {
        qint64 at = mark - coded.at(5).size() / 2 - coded.at(0).size();
        for (int const frame : {0, 5, 6, 7}) {
            placed.push_back({at, frame});
            at += coded.at(frame).size();
        }
    }
    QFile file(m_folder.filePath(QStringLiteral("huge.h264")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    for (SxPlaced const& place : placed) {
        QVERIFY(file.seek(place.offset));
        QCOMPARE(file.write(coded.at(place.frame)), static_cast<qint64>(coded.at(place.frame).size()));
    }
    file.close();
    qint64 const fileSize = file.size();
    QVERIFY(fileSize > 4 * kGiB);

    CxH264VideoLoader loader;
    loader.setInputFile(file.fileName());
    QVERIFY(loader.load());
    QCOMPARE(loader.sequenceSize(), static_cast<int>(placed.size()));
    QCOMPARE(fx_KeyFrames(loader), (QList<int>{0, 1, 2, 5, 6}));
    for (int i = 0; i < loader.sequenceSize(); ++i) {
        qint64 const offset = placed[static_cast<size_t>(i)].offset;
        qint64 const end =
            i + 1 < loader.sequenceSize() ? placed[static_cast<size_t>(i) + 1].offset : fileSize;
        QCOMPARE(loader.frameDataSize(i), static_cast<unsigned long>(end - offset));
    }
    for (int const i : {8, 1, 7, 2, 6, 3, 5}) // 0 and 4 have the gaps behind them
        QCOMPARE(fx_Load(loader, i), m_pictures.at(placed[static_cast<size_t>(i)].frame));
    loader.close();
    QVERIFY(file.remove());
}

void tst_H264VideoLoader::memoryStaysFlat()
{
    QString const name = write(m_stream.bytes());
    auto const cycle = [this, &name](int i) {
        CxH264VideoLoader loader;
        loader.setInputFile(name);
        QCOMPARE(fx_Load(loader, i % kFrames), m_pictures.at(i % kFrames));
        if (i % 2 == 0)
            loader.close();
    };
    for (int i = 0; i < 50; ++i)
        cycle(i); // what is made once is made now
    size_t const heap = fx_HeapBytes();
    auto const files = QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::System | QDir::Files).size();
    for (int i = 0; i < 1000; ++i)
        cycle(i);
    size_t const growth = fx_HeapBytes() - qMin(fx_HeapBytes(), heap);
    QVERIFY2(growth < 100000,
             qPrintable(QStringLiteral("%1 bytes more").arg(growth))); // 100 bytes an opening
    QCOMPARE(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::System | QDir::Files).size(), files);
}

QTEST_APPLESS_MAIN(tst_H264VideoLoader)

#include "tst_H264VideoLoader.moc"

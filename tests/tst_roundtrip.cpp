#include <QtTest>

#include <memory>
#include <random>

#include "ClassRegistry.h"
#include "CodecOptions.h"
#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "CxRTTI.h"
#include "H264VideoLoader.h"
#include "H264VideoSaver.h"
#include "support/CodedStream.h"
#include "support/ConversionOracle.h"
#include "support/FFmpegDecoder.h"
#include "support/MessageRecorder.h"
#include "support/TestPicture.h"
#include "support/X264Stream.h"

static constexpr unsigned kFourCC = 0x34363248;

#ifdef __SANITIZE_ADDRESS__
static constexpr int kDamagedFiles = 100; // for each profile
#else
static constexpr int kDamagedFiles = 300;
#endif

/// The visible pixels of a picture; empty without one.
static QByteArray fx_Load(CxH264VideoLoader& loader, int frame)
{
    std::unique_ptr<IxChainData> const data(loader.loadedData(frame));
    auto const* const image = qobject_cast<CxImageData const*>(data.get());
    if (!image)
        return QByteArray();
    SxPicBuf const& picture = *image->picBuf();
    QByteArray pixels;
    for (quint32 y = 0; y < picture.height; ++y)
        pixels.append(reinterpret_cast<char const*>(picture.data + size_t(y) * picture.pitch),
                      static_cast<int>(picture.width * 4));
    return pixels;
}

/// A picture of FFmpeg's decoder as RGB32, by the plain conversion.
static QByteArray fx_Expected(SxDecodedPicture const& picture)
{
    QByteArray pixels(picture.width * picture.height * 4, '\0');
    auto* pixel = reinterpret_cast<uchar*>(pixels.data());
    std::uint8_t const* const luma = picture.i420.data();
    std::uint8_t const* const u = luma + picture.width * picture.height;
    std::uint8_t const* const v = u + (picture.width / 2) * (picture.height / 2);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x, pixel += 4) {
            int const chroma = y / 2 * (picture.width / 2) + x / 2;
            fx_OracleToRGB32(luma[y * picture.width + x], u[chroma], v[chroma], pixel);
        }
    }
    return pixels;
}

class tst_roundtrip : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void everyPictureIsThatOfFFmpeg_data();
    void everyPictureIsThatOfFFmpeg();
    void cutRecordingPlaysUpToItsEnd_data();
    void cutRecordingPlaysUpToItsEnd();
    void damagedRecordingGivesPicturesOrNone_data();
    void damagedRecordingGivesPicturesOrNone();
    void foreignStreamGivesPicturesOrNone_data();
    void foreignStreamGivesPicturesOrNone();
    void foreignBaselineIsExact();

private:
    QString filePath() const { return m_folder.filePath(QStringLiteral("roundtrip.h264")); }
    void write(QByteArray const& bytes) const;
    void record(int count, quint32 width, quint32 height) const;

    QTemporaryDir m_folder;
};

void tst_roundtrip::initTestCase()
{
    QVERIFY(m_folder.isValid());
    CxRTTI::instance()->registerClass(nullptr, CxOpenH264Encoder::staticMetaObject,
                                      QStringLiteral("IxVideoEncoder"));
}

void tst_roundtrip::write(QByteArray const& bytes) const
{
    QFile::remove(filePath()); // some file systems flush a file that is emptied to be written again
    QFile file(filePath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), static_cast<qint64>(bytes.size()));
}

void tst_roundtrip::record(int count, quint32 width, quint32 height) const
{
    QFile::remove(filePath());
    CxTestPicture drawn(width, height);
    CxH264VideoSaver saver;
    saver.setOutputFile(filePath());
    saver.setSequenceSize(count);
    for (int frame = 0; frame < count; ++frame) {
        fx_DrawFrame(drawn, frame);
        SxPicBuf picture;
        QVERIFY(CxPicBufAPI::AllocPicBufFromHeap(picture, drawn.buf, false, 0));
        std::copy_n(drawn.buf.data, drawn.buf.pitch * drawn.buf.height, picture.data);
        CxImageData image;
        image.setPicBuf(picture);
        QVERIFY(saver.save(&image, frame));
    }
}

void tst_roundtrip::everyPictureIsThatOfFFmpeg_data()
{
    QTest::addColumn<int>("profile");
    QTest::addColumn<int>("keyFrameInterval");
    QTest::addColumn<int>("count");

    for (int const profile : {66, 77, 88, 100})
        for (int const rate : {1, 5, 30, 100})
            for (int const count : {1, 2, 5, 300})
                QTest::addRow("profile %d, key frame rate %d, %d pictures", profile, rate, count)
                    << profile << rate << count;
}

/// Every picture, in whatever order it is asked for, is FFmpeg's.
void tst_roundtrip::everyPictureIsThatOfFFmpeg()
{
    QFETCH(int, profile);
    QFETCH(int, keyFrameInterval);
    QFETCH(int, count);
    fx_SetCodecOptions(kFourCC, {{"h264_profile_idc", profile}, {"h264_keyframerate", keyFrameInterval}});
    bool const isLong = count > 5;
    record(count, isLong ? 96 : 320, isLong ? 64 : 240);

    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(filePath(), error);
    QCOMPARE(error, QString());
    QCOMPARE(static_cast<int>(decoded.size()), count);
    QList<QByteArray> expected;
    QList<int> keys;
    for (SxDecodedPicture const& picture : decoded) {
        if (picture.isKeyFrame)
            keys.append(static_cast<int>(expected.size()));
        expected.append(fx_Expected(picture));
    }

    CxMessageRecorder messages;
    CxH264VideoLoader loader;
    loader.setInputFile(filePath());
    QCOMPARE(loader.sequenceSize(), count);
    QList<int> indexed;
    loader.keyFrames(indexed);
    QCOMPARE(indexed, keys);
    for (int frame = 0; frame < count; ++frame)
        QVERIFY2(fx_Load(loader, frame) == expected.at(frame), qPrintable(QString::number(frame)));
    for (int frame = count - 1; frame >= 0; --frame)
        QVERIFY2(fx_Load(loader, frame) == expected.at(frame), qPrintable(QString::number(frame)));
    std::mt19937 random(static_cast<unsigned>(profile + keyFrameInterval));
    for (int i = 0; i < qMin(2 * count, 100); ++i) {
        int const frame = static_cast<int>(random() % static_cast<unsigned>(count));
        QVERIFY2(fx_Load(loader, frame) == expected.at(frame), qPrintable(QString::number(frame)));
    }
    QCOMPARE(messages.takeRaw(), QStringList());
}

static void fx_AddProfiles()
{
    QTest::addColumn<int>("profile");
    for (int const profile : {66, 77, 100})
        QTest::addRow("%d", profile) << profile;
}

static QList<QByteArray> fx_LoadAll(QString const& fileName)
{
    CxH264VideoLoader loader;
    loader.setInputFile(fileName);
    QList<QByteArray> pictures;
    for (int frame = 0; frame < loader.sequenceSize(); ++frame)
        pictures.append(fx_Load(loader, frame));
    return pictures;
}

void tst_roundtrip::cutRecordingPlaysUpToItsEnd_data() { fx_AddProfiles(); }

/// A camera program that was killed: the file ends anywhere within the last two frames.
void tst_roundtrip::cutRecordingPlaysUpToItsEnd()
{
    QFETCH(int, profile);
    SxCodedStream const stream =
        fx_CodeStream(7, 48, 32, {{"h264_profile_idc", profile}, {"h264_keyframerate", 6}});
    QCOMPARE(stream.frames.size(), 7);
    QByteArray const whole = stream.bytes();
    write(whole);
    QList<QByteArray> const expected = fx_LoadAll(filePath());

    CxMessageRecorder messages;
    auto const lastTwo = stream.frames.at(5).size() + stream.frames.at(6).size();
    for (auto size = whole.size() - lastTwo; size < whole.size(); ++size) {
        write(whole.left(size));
        CxH264VideoLoader loader;
        loader.setInputFile(filePath());
        QVERIFY(loader.load());
        // A start code that fills the last four bytes takes the frame ahead of it along.
        int const complete = whole.left(size).endsWith(QByteArray("\0\0\0\1", 4)) ? 4 : 5;
        QVERIFY(loader.sequenceSize() >= complete && loader.sequenceSize() <= 7);
        for (int const frame : {6, 5, 4, 5, 6, 3, 0}) {
            QByteArray const pixels = fx_Load(loader, frame);
            if (frame < complete)
                QCOMPARE(pixels, expected.at(frame));
            else
                QVERIFY(pixels.isEmpty() || pixels.size() == expected.at(0).size());
        }
    }
}

void tst_roundtrip::damagedRecordingGivesPicturesOrNone_data() { fx_AddProfiles(); }

/// One byte changed, anywhere: pictures or none, and nothing else happens.
void tst_roundtrip::damagedRecordingGivesPicturesOrNone()
{
    QFETCH(int, profile);
    QByteArray const whole =
        fx_CodeStream(11, 48, 32, {{"h264_profile_idc", profile}, {"h264_keyframerate", 5}}).bytes();
    QVERIFY(!whole.isEmpty());
    std::mt19937 random(static_cast<unsigned>(profile));
    auto const below = [&random](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    CxMessageRecorder messages;
    int pictures = 0;
    for (int round = 0; round < kDamagedFiles; ++round) {
        QByteArray bytes = whole;
        bytes[below(static_cast<int>(bytes.size()))] = static_cast<char>(below(256));
        write(bytes);
        CxH264VideoLoader loader;
        loader.setInputFile(filePath());
        int const count = loader.sequenceSize();
        for (int step = 0; step < 2 * count; ++step)
            pictures += fx_Load(loader, step < count ? step : below(count)).isEmpty() ? 0 : 1;
    }
    QVERIFY(pictures > kDamagedFiles); // most of them are still there
}

void tst_roundtrip::foreignStreamGivesPicturesOrNone_data()
{
    QTest::addColumn<QByteArray>("profile");
    QTest::addColumn<QByteArray>("options");

    QTest::newRow("baseline") << QByteArray("baseline") << QByteArray("ref=1");
    QTest::newRow("baseline, several references") << QByteArray("baseline") << QByteArray("ref=4");
    QTest::newRow("several slices") << QByteArray("baseline") << QByteArray("slices=4");
    QTest::newRow("main") << QByteArray("main") << QByteArray("bframes=0");
    QTest::newRow("main, B pictures") << QByteArray("main") << QByteArray("bframes=2:b-adapt=0");
    QTest::newRow("main, B pictures as references")
        << QByteArray("main") << QByteArray("bframes=4:b-adapt=0:b-pyramid=normal");
    QTest::newRow("open groups") << QByteArray("main") << QByteArray("bframes=2:b-adapt=0:open-gop=1");
    QTest::newRow("high, 8x8 transform") << QByteArray("high") << QByteArray("8x8dct=1:bframes=0");
    QTest::newRow("high, scaling lists") << QByteArray("high") << QByteArray("cqm=jvt:bframes=0");
    QTest::newRow("interlaced") << QByteArray("high") << QByteArray("tff=1:interlaced=1");
    QTest::newRow("marked as interlaced") << QByteArray("high") << QByteArray("fake-interlaced=1:bframes=0");
    QTest::newRow("weighted prediction") << QByteArray("main") << QByteArray("weightp=2:bframes=0");
    QTest::newRow("access unit delimiters") << QByteArray("high") << QByteArray("aud=1:bframes=0");
    QTest::newRow("intra refresh") << QByteArray("high") << QByteArray("intra-refresh=1");
    QTest::newRow("headers once") << QByteArray("high") << QByteArray("repeat-headers=0");
    QTest::newRow("lossless") << QByteArray("high444") << QByteArray("qp=0");
}

/// Header bytes of slices and parameter sets as our encoder writes them, so that each slice opens a frame.
static QByteArray fx_WithOurHeaders(QByteArray stream)
{
    for (auto i = stream.indexOf(QByteArray("\0\0\1", 3)); i >= 0 && i + 3 < stream.size();
         i = stream.indexOf(QByteArray("\0\0\1", 3), i + 3)) {
        int const type = stream.at(i + 3) & 0x1F;
        if (type == 1 || type == 5 || type == 7 || type == 8)
            stream[i + 3] = static_cast<char>(0x60 | type);
    }
    return stream;
}

/// Streams of another encoder, as they are and dressed up as ours: opened or refused, pictures or none.
void tst_roundtrip::foreignStreamGivesPicturesOrNone()
{
    QFETCH(QByteArray, profile);
    QFETCH(QByteArray, options);
    QByteArray const stream = fx_X264Stream(24, 96, 64, profile.constData(), options.constData());
    QVERIFY(!stream.isEmpty());
    CxMessageRecorder messages;
    std::mt19937 random(1);
    for (QByteArray const& bytes : {stream, fx_WithOurHeaders(stream)}) {
        write(bytes);
        CxH264VideoLoader loader;
        loader.setInputFile(filePath());
        int const count = loader.sequenceSize();
        QCOMPARE(loader.load(), count > 0);
        for (int step = 0; step < 3 * count; ++step) {
            int const frame = step < count ? step : static_cast<int>(random() % static_cast<unsigned>(count));
            int const last = loader.lastProcessedFrame();
            QByteArray const pixels = fx_Load(loader, frame);
            QCOMPARE(loader.lastProcessedFrame(), pixels.isEmpty() ? last : frame);
        }
    }
}

/// Where another encoder's stream follows our rules, its pictures are right too.
void tst_roundtrip::foreignBaselineIsExact()
{
    write(fx_WithOurHeaders(fx_X264Stream(24, 96, 64, "baseline", "ref=1")));
    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(filePath(), error);
    QCOMPARE(error, QString());
    CxH264VideoLoader loader;
    loader.setInputFile(filePath());
    QCOMPARE(loader.sequenceSize(), 24);
    for (int frame = 0; frame < 24; ++frame)
        QVERIFY2(fx_Load(loader, frame) == fx_Expected(decoded[static_cast<size_t>(frame)]),
                 qPrintable(QString::number(frame)));
}

QTEST_APPLESS_MAIN(tst_roundtrip)

#include "tst_roundtrip.moc"

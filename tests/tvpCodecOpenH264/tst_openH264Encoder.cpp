#include <QtTest>

#include <cstring>
#include <limits>
#include <locale>
#include <memory>

#include "openH264Encoder.h"
#include "support/AllocationFailure.h"
#include "support/ConversionOracle.h"
#include "support/MessageRecorder.h"
#include "support/OpenH264EncoderDouble.h"
#include "support/TestPicture.h"

using Options = QMap<QString, QVariant>;

/// The encoder against a recording double of OpenH264, and where it says so against the library.
class tst_openH264Encoder : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void isAnEncoderOfH264();
    void isCreatedThroughItsMetaObject();
    void maxEncodedSizeIsThatOfThePlanes_data();
    void maxEncodedSizeIsThatOfThePlanes();
    void bitRateFollowsLevelQualityAndSize_data();
    void bitRateFollowsLevelQualityAndSize();
    void outputFormatFitsTheLevel_data();
    void outputFormatFitsTheLevel();
    void outputFormatIsRGB32AndKeepsAuxField();
    void outputFormatMayBeItsInput();

    void optionsReachTheLibrary_data();
    void optionsReachTheLibrary();
    void missingOptionsStayAsTheyWere();
    void optionsAfterTheFirstPictureMakeNoNewEncoder();

    void createsAtTheFirstPicture();
    void allOtherParametersStayTheLibrarys();
    void failedCreationIsReported_data();
    void failedCreationIsReported();
    void failedInitialisationIsReported_data();
    void failedInitialisationIsReported();
    void dumpShowsSenselessOptions();
    void dumpShowsNegativeOptions();
    void pictureWithoutSizeIsRefusedByTheLibrary();
    void messageNamesItsPlace();
    void dumpListsEveryParameter_data();
    void dumpListsEveryParameter();
    void dumpIsTheSameInAnyLocale();
    void logCallbackDoesNothing();

    void pictureReachesTheLibrary_data();
    void pictureReachesTheLibrary();
    void oddSizeReachesTheLibrary_data();
    void oddSizeReachesTheLibrary();
    void timestampReachesTheLibraryInMilliseconds_data();
    void timestampReachesTheLibraryInMilliseconds();
    void shortBufferIsRefused();
    void overriddenMaxEncodedSizeDecides();
    void unsupportedFirstPictureIsRefused();
    void missingPlanesAreReported();
    void laterLargerPictureIsRefused();
    void laterSmallerPictureIsCoded();
    void sizeThatWrapsIsRefused_data();
    void sizeThatWrapsIsRefused();

    void keyFramesAreForcedAtTheirInterval_data();
    void keyFramesAreForcedAtTheirInterval();
    void laterKeyFrameIntervalCounts();
    void keyFlagIsThatOfTheFrame_data();
    void keyFlagIsThatOfTheFrame();
    void skippedPictureWritesNothing();
    void failedPictureIsReported_data();
    void failedPictureIsReported();
    void layersAreConcatenated_data();
    void layersAreConcatenated();
    void layersBeyondTheBufferAreRefused_data();
    void layersBeyondTheBufferAreRefused();
    void libraryIsDestroyedWithItsObject();
    void planesOutliveTheLibrarysEncoder();

    void libraryCodesPictures();
    void libraryCodesEverySize_data();
    void libraryCodesEverySize();
    void libraryTakesOtherSizesLater();

private:
    std::unique_ptr<CxMessageRecorder> m_messages;
};

static SxPicBufInfo fx_Format(quint32 width, quint32 height)
{
    SxPicBufInfo format;
    format.width = width;
    format.height = height;
    format.components = 4;
    format.bitsPerSample = 8;
    format.sampleType = 2;
    format.pitch = width * 4;
    return format;
}

namespace {

/// What one encode() gave back. Behind the capacity lie guard bytes.
struct SxResult
{
    bool isOk = false;
    bool isGuardIntact = false;
    bool keyFrame = false;
    unsigned long size = 0;
    QByteArray bytes; ///< the whole buffer in front of the guard
};

} // namespace

static constexpr int kGuard = 64;
static constexpr char kGuardByte = '\xA5';
static constexpr char kUnwritten = '\x5A';

/// \param capacity  what encode() is told; -1 for maxEncodedSize().
/// \param guarded   bytes that encode() may write; -1 for the capacity.
static SxResult fx_Encode(CxOpenH264Encoder& encoder, SxPicBuf const& picture, bool keyFrame = false,
                          qint64 capacity = -1, qint64 guarded = -1)
{
    SxResult result;
    result.size = capacity < 0 ? encoder.maxEncodedSize(picture) : static_cast<unsigned long>(capacity);
    int const usable = static_cast<int>(guarded < 0 ? static_cast<qint64>(result.size) : guarded);
    result.bytes = QByteArray(usable, kUnwritten) + QByteArray(kGuard, kGuardByte);
    result.keyFrame = keyFrame;
    result.isOk = encoder.encode(picture, result.bytes.data(), result.size, &result.keyFrame);
    result.isGuardIntact = result.bytes.endsWith(QByteArray(kGuard, kGuardByte));
    result.bytes.chop(kGuard);
    return result;
}

/// The parameters that a first picture leads to, seen by the double.
static SEncParamExt fx_Params(Options const& options, SxPicBuf const& picture)
{
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions(options);
    fx_Encode(encoder, picture);
    return fx_OpenH264Double().params.empty() ? SEncParamExt{} : fx_OpenH264Double().params.back();
}

static SxEncodeAnswer fx_Answer(EVideoFrameType type)
{
    SxEncodeAnswer answer;
    answer.type = type;
    answer.layers = {{"x"}};
    return answer;
}

/// Answers from letters: I IDR, i intra but not IDR, P, M mixed; S skip, 0 invalid, ! error, o overflow.
static std::vector<SxEncodeAnswer> fx_Answers(QByteArray const& letters)
{
    std::vector<SxEncodeAnswer> answers;
    for (char const letter : letters) {
        switch (letter) {
        case 'I':
            answers.push_back(fx_Answer(videoFrameTypeIDR));
            break;
        case 'i':
            answers.push_back(fx_Answer(videoFrameTypeI));
            break;
        case 'P':
            answers.push_back(fx_Answer(videoFrameTypeP));
            break;
        case 'M':
            answers.push_back(fx_Answer(videoFrameTypeIPMixed));
            break;
        case 'S':
            answers.push_back(fx_Answer(videoFrameTypeSkip));
            break;
        case '0':
            answers.push_back(fx_Answer(videoFrameTypeInvalid));
            break;
        case '!':
            answers.push_back(fx_Answer(videoFrameTypeIDR));
            answers.back().error = 3;
            break;
        case 'o':
            answers.push_back(fx_Answer(videoFrameTypeIDR));
            answers.back().layers = {{std::string(100000, 'x')}};
            break;
        }
    }
    return answers;
}

static QStringList fx_Texts(char const* text) { return {QString::fromUtf8(text)}; }

void tst_openH264Encoder::init()
{
    fx_OpenH264Double() = SxOpenH264Double();
    m_messages = std::make_unique<CxMessageRecorder>();
}

void tst_openH264Encoder::cleanup()
{
    QStringList const unexpected = m_messages->takeRaw();
    m_messages.reset();
    QCOMPARE(unexpected, QStringList());
    QCOMPARE(fx_OpenH264Double().destroyed, fx_OpenH264Double().created);
    QCOMPARE(fx_OpenH264Double().uninitialized, 0);
    QCOMPARE(fx_OpenH264Double().otherCalls, 0);
}

void tst_openH264Encoder::isAnEncoderOfH264()
{
    CxOpenH264Encoder encoder;
    QCOMPARE(encoder.name(), QStringLiteral("OpenH264"));
    unsigned const fourCC = encoder.fourCC();
    QCOMPARE(fourCC, 0x34363248u);
    QCOMPARE(fourCC, unsigned('H') | unsigned('2') << 8 | unsigned('6') << 16 | unsigned('4') << 24);

    QMetaObject const* const meta = encoder.metaObject();
    QCOMPARE(meta->classInfoCount() - meta->classInfoOffset(), 1);
    QCOMPARE(meta->classInfo(meta->indexOfClassInfo("CustomName")).value(), "H.264 Video Encoder");
    QCOMPARE(encoder.qt_metacast("IxVideoEncoder"),
             static_cast<void*>(static_cast<IxVideoEncoder*>(&encoder)));
    QCOMPARE(encoder.qt_metacast("IxVideoDecoder"), nullptr);
    QCOMPARE(encoder.getForcedFps(), 0.0);
}

void tst_openH264Encoder::isCreatedThroughItsMetaObject()
{
    std::unique_ptr<QObject> const object(CxOpenH264Encoder::staticMetaObject.newInstance());
    auto* const encoder = qobject_cast<CxOpenH264Encoder*>(object.get());
    QVERIFY(encoder);
    QVERIFY(!encoder->parent());
    QCOMPARE(fx_OpenH264Double().created, 0);
}

void tst_openH264Encoder::maxEncodedSizeIsThatOfThePlanes_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<quint64>("expected");
    QTest::newRow("1920 x 1080") << 1920u << 1080u << quint64(3110400);
    QTest::newRow("nothing") << 0u << 0u << quint64(0);
    QTest::newRow("2 x 2") << 2u << 2u << quint64(6);
    QTest::newRow("odd width") << 5u << 4u << quint64(28);
    QTest::newRow("odd height") << 4u << 5u << quint64(30);
    QTest::newRow("wraps") << 65536u << 65536u << quint64(0x80000000);
    QTest::newRow("wraps to nothing") << 131072u << 65536u << quint64(0);
}

void tst_openH264Encoder::maxEncodedSizeIsThatOfThePlanes()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    CxOpenH264Encoder encoder;
    QTEST(quint64(encoder.maxEncodedSize(fx_Format(width, height))), "expected");
}

void tst_openH264Encoder::bitRateFollowsLevelQualityAndSize_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("quality");
    QTest::addColumn<quint32>("expected");
    QTest::newRow("full HD, 5.2") << 1920u << 1080u << 52 << 5 << 41904000u;
    QTest::newRow("full HD, 4.0") << 1920u << 1080u << 40 << 5 << 11098664u;
    QTest::newRow("full HD, 4.0, lowest") << 1920u << 1080u << 40 << 1 << 777600u;
    QTest::newRow("full HD, 4.0, highest") << 1920u << 1080u << 40 << 10 << 23999994u; // less the remainder
    QTest::newRow("VGA") << 640u << 480u << 52 << 5 << 6208000u;
    QTest::newRow("VGA, highest") << 640u << 480u << 52 << 10 << 13824000u;
    QTest::newRow("quality 0") << 640u << 480u << 52 << 0 << 115200u - 1523200u;
    QTest::newRow("quality -1") << 640u << 480u << 52 << -1 << 115200u - 2u * 1523200u;
    QTest::newRow("quality 11") << 640u << 480u << 52 << 11 << 115200u + 10u * 1523200u;
    QTest::newRow("cap below the base") << 1920u << 1080u << 10 << 5 << 76800u;
    QTest::newRow("cap as large as the base") << 640u << 320u << 10 << 5 << 76800u;
    QTest::newRow("level between") << 1920u << 1080u << 45 << 5 << 41904000u;
    QTest::newRow("level above") << 4096u << 2304u << 60 << 10 << 288000000u;
    QTest::newRow("level far above") << 1920u << 1080u << std::numeric_limits<int>::max() << 5 << 41904000u;
    QTest::newRow("level far below") << 1920u << 1080u << std::numeric_limits<int>::min() << 5 << 41904000u;
    QTest::newRow("nothing") << 0u << 0u << 52 << 5 << 0u;
    // Sizes that 32 bits don't hold: a negative base, and a cap that wraps to a negative value.
    QTest::newRow("negative base") << 40000u << 60000u << 52 << 5 << 31476764u;
    QTest::newRow("negative cap") << 10000u << 6667u << 52 << 5 << 3000150000u;
}

void tst_openH264Encoder::bitRateFollowsLevelQualityAndSize()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QFETCH(int, level);
    QFETCH(int, quality);
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions({{"h264_level_idc", level}, {"h264_quality", quality}});
    QTEST(encoder.bitrate(fx_Format(width, height)), "expected");
}

void tst_openH264Encoder::outputFormatFitsTheLevel_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<quint32>("expectedWidth");
    QTest::addColumn<quint32>("expectedHeight");
    QTest::newRow("4K at 5.2") << 52 << 4096u << 2160u << 4096u << 2160u;
    QTest::newRow("4K at 4.0") << 40 << 4096u << 2160u << 1920u << 1012u;
    QTest::newRow("square at 3.1") << 31 << 2000u << 2000u << 720u << 720u;
    QTest::newRow("odd") << 52 << 1001u << 501u << 1000u << 500u;
    QTest::newRow("odd width") << 52 << 1001u << 500u << 1000u << 500u;
    QTest::newRow("odd height") << 52 << 1000u << 501u << 1000u << 500u;
    QTest::newRow("one pixel") << 52 << 1u << 1u << 0u << 0u;
    QTest::newRow("nothing") << 52 << 0u << 0u << 0u << 0u;
    QTest::newRow("fills the box") << 31 << 1280u << 720u << 1280u << 720u;
    QTest::newRow("one too wide") << 31 << 1281u << 720u << 1280u << 718u;
    QTest::newRow("one too high") << 31 << 1280u << 721u << 1278u << 720u;
    QTest::newRow("same ratio") << 31 << 2560u << 1440u << 1280u << 720u;
    QTest::newRow("full HD at 1b") << 9 << 1920u << 1080u << 176u << 98u;
    QTest::newRow("full HD at 1.0") << 10 << 1920u << 1080u << 176u << 98u;
    QTest::newRow("full HD at 1.3") << 13 << 1920u << 1080u << 352u << 198u;
    QTest::newRow("full HD at 2.1") << 21 << 1920u << 1080u << 528u << 296u;
    QTest::newRow("full HD at 3.0") << 30 << 1920u << 1080u << 720u << 404u;
    QTest::newRow("full HD at 3.2") << 32 << 1920u << 1080u << 1280u << 720u;
    QTest::newRow("full HD at 4.1") << 41 << 1920u << 1080u << 1920u << 1080u;
    QTest::newRow("4K at 4.2") << 42 << 4096u << 2160u << 2048u << 1080u;
    QTest::newRow("large at 5.0") << 50 << 4096u << 2304u << 3680u << 2070u;
    QTest::newRow("large at 5.1") << 51 << 5120u << 2880u << 4096u << 2304u;
    QTest::newRow("4K at no level") << 60 << 4096u << 2160u << 1920u << 1012u;
    QTest::newRow("4K at a negative level") << -1 << 4096u << 2160u << 1920u << 1012u;
    QTest::newRow("4K at a level far above")
        << std::numeric_limits<int>::max() << 4096u << 2160u << 1920u << 1012u;
    QTest::newRow("portrait") << 40 << 1080u << 1920u << 606u << 1080u;
    QTest::newRow("only the height too large") << 31 << 100u << 800u << 90u << 720u;
    QTest::newRow("only the width too large") << 31 << 2560u << 100u << 1280u << 50u;
    QTest::newRow("thin column") << 31 << 1u << 5000u << 0u << 720u;
    QTest::newRow("thin row") << 31 << 5000u << 1u << 1280u << 0u;
    QTest::newRow("too wide without height") << 52 << 5000u << 0u << 0u << 0u;
    QTest::newRow("too high without width") << 52 << 0u << 5000u << 0u << 2304u;
    QTest::newRow("negative when signed") << 52 << 0x80000001u << 11u << 0x80000000u << 10u;
}

void tst_openH264Encoder::outputFormatFitsTheLevel()
{
    QFETCH(int, level);
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QFETCH(quint32, expectedWidth);
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions({{"h264_level_idc", level}});
    SxPicBufInfo output;
    encoder.queryOuputFormat(fx_Format(width, height), output);
    QCOMPARE(output.width, expectedWidth);
    QTEST(output.height, "expectedHeight");
    QCOMPARE(output.pitch, 4 * expectedWidth);
}

void tst_openH264Encoder::outputFormatIsRGB32AndKeepsAuxField()
{
    SxPicBufInfo input;
    input.width = 640;
    input.height = 480;
    input.pitch = 9999;
    input.components = 1;
    input.bitsPerSample = 12;
    input.auxField = 0xFEDCBA98;
    input.sampleType = 4;
    input.layout = 7;
    input.formatVariant = 3;
    SxPicBufInfo output;
    output.auxField = 1;
    output.formatVariant = 2;
    CxOpenH264Encoder encoder;
    encoder.queryOuputFormat(input, output);
    QCOMPARE(output.width, 640u);
    QCOMPARE(output.height, 480u);
    QCOMPARE(output.pitch, 2560u);
    QCOMPARE(output.components, 4u);
    QCOMPARE(output.bitsPerSample, 8u);
    QCOMPARE(output.auxField, 0xFEDCBA98);
    QCOMPARE(output.sampleType, 2u);
    QCOMPARE(output.layout, 1u);
    QCOMPARE(output.formatVariant, 0u);
    QCOMPARE(output.formatFlag, true);
}

void tst_openH264Encoder::outputFormatMayBeItsInput()
{
    SxPicBufInfo format = fx_Format(4096, 2160);
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions({{"h264_level_idc", 40}});
    encoder.queryOuputFormat(format, format);
    QCOMPARE(format.width, 1920u);
    QCOMPARE(format.height, 1012u);
    QCOMPARE(format.pitch, 7680u);
}

void tst_openH264Encoder::optionsReachTheLibrary_data()
{
    QTest::addColumn<Options>("options");
    QTest::addColumn<int>("rate"); // for 640 x 480
    QTest::addColumn<int>("keyFrameInterval");
    QTest::addColumn<int>("complexity");
    QTest::addColumn<int>("profile");
    QTest::addColumn<int>("level");
    int const usual = 6208000;
    QTest::newRow("none") << Options() << usual << 5 << 1 << 66 << 52;
    QTest::newRow("quality") << Options{{"h264_quality", 1}} << 115200 << 5 << 1 << 66 << 52;
    QTest::newRow("quality in digits")
        << Options{{"h264_quality", QStringLiteral("7")}} << 115200 + 6 * 1523200 << 5 << 1 << 66 << 52;
    QTest::newRow("quality in words")
        << Options{{"h264_quality", QStringLiteral("best")}} << 115200 - 1523200 << 5 << 1 << 66 << 52;
    QTest::newRow("quality of no type")
        << Options{{"h264_quality", QVariant()}} << 115200 - 1523200 << 5 << 1 << 66 << 52;
    QTest::newRow("key-frame rate") << Options{{"h264_keyframerate", 3}} << usual << 3 << 1 << 66 << 52;
    QTest::newRow("key-frame rate in words") << Options{{"h264_keyframerate", QStringLiteral("often")}}
                                             << usual << 1 << 1 << 66 << 52; // 0 is like 1
    QTest::newRow("complexity") << Options{{"h264_complexity", 2}} << usual << 5 << 2 << 66 << 52;
    QTest::newRow("complexity without sense")
        << Options{{"h264_complexity", 99}} << usual << 5 << 99 << 66 << 52;
    QTest::newRow("profile") << Options{{"h264_profile_idc", 100}} << usual << 5 << 1 << 100 << 52;
    QTest::newRow("profile without sense")
        << Options{{"h264_profile_idc", 1000}} << usual << 5 << 1 << 1000 << 52;
    QTest::newRow("level") << Options{{"h264_level_idc", 30}} << 115200 + 4 * 1320533 << 5 << 1 << 66 << 30;
    QTest::newRow("level without sense") << Options{{"h264_level_idc", -7}} << usual << 5 << 1 << 66 << -7;
    QTest::newRow("level in words") << Options{{"h264_level_idc", QStringLiteral("high")}} << usual << 5 << 1
                                    << 66 << 0;
    QTest::newRow("advanced") << Options{{"h264_show_advanced", true}} << usual << 5 << 1 << 66 << 52;
    QTest::newRow("other keys") << Options{{"quality", 1}, {"H264_quality", 1}, {"codec", 1}} << usual << 5
                                << 1 << 66 << 52;
    QTest::newRow("all") << Options{{"h264_quality", 10},   {"h264_keyframerate", 4},
                                    {"h264_complexity", 0}, {"h264_profile_idc", 77},
                                    {"h264_level_idc", 40}, {"h264_show_advanced", true}}
                         << 13824000 << 4 << 0 << 77 << 40;
}

void tst_openH264Encoder::optionsReachTheLibrary()
{
    QFETCH(Options, options);
    QFETCH(int, keyFrameInterval);
    CxTestPicture const picture(640, 480);
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions(options);
    for (int i = 0; i <= keyFrameInterval; ++i)
        QVERIFY(fx_Encode(encoder, picture.buf).isOk);

    QCOMPARE(fx_OpenH264Double().params.size(), size_t(1));
    SEncParamExt const& params = fx_OpenH264Double().params.front();
    QTEST(params.iTargetBitrate, "rate");
    // As numbers from memory: they may be none that the library's enumerations name.
    int value = 0;
    std::memcpy(&value, &params.iComplexityMode, sizeof value);
    QTEST(value, "complexity");
    std::memcpy(&value, &params.sSpatialLayers[0].uiProfileIdc, sizeof value);
    QTEST(value, "profile");
    std::memcpy(&value, &params.sSpatialLayers[0].uiLevelIdc, sizeof value);
    QTEST(value, "level");
    std::vector<int> expected = {0};
    if (keyFrameInterval == 1)
        expected.push_back(1);
    else
        expected.push_back(keyFrameInterval);
    QVERIFY(fx_OpenH264Double().forcedPictures() == expected);
}

void tst_openH264Encoder::missingOptionsStayAsTheyWere()
{
    CxTestPicture const picture(640, 480);
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions({{"h264_quality", 1}, {"h264_complexity", 0}});
    encoder.setEncoderOptions({{"h264_complexity", 2}, {"h264_show_advanced", QStringLiteral("true")}});
    encoder.setEncoderOptions({});
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    SEncParamExt const& params = fx_OpenH264Double().params.front();
    QCOMPARE(params.iTargetBitrate, 115200);
    QCOMPARE(int(params.iComplexityMode), 2);
}

void tst_openH264Encoder::optionsAfterTheFirstPictureMakeNoNewEncoder()
{
    CxTestPicture const picture(640, 480);
    CxOpenH264Encoder encoder;
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    encoder.setEncoderOptions({{"h264_quality", 1}, {"h264_level_idc", 10}, {"h264_profile_idc", 100}});
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    QCOMPARE(fx_OpenH264Double().created, 1);
    QCOMPARE(fx_OpenH264Double().params.size(), size_t(1));
    // The level is also a limit for later pictures.
    SxPicBufInfo output;
    encoder.queryOuputFormat(picture.buf, output);
    QCOMPARE(output.width, 176u);
}

void tst_openH264Encoder::createsAtTheFirstPicture()
{
    CxTestPicture const picture(64, 48);
    CxOpenH264Encoder encoder;
    SxPicBufInfo output;
    encoder.queryOuputFormat(picture.buf, output);
    QCOMPARE(fx_OpenH264Double().created, 0);
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    QCOMPARE(fx_OpenH264Double().created, 1);
    QVERIFY(fx_OpenH264Double().pictures[0].isRecordZero);
}

static QByteArray fx_Bytes(SEncParamExt const& params)
{
    return QByteArray(reinterpret_cast<char const*>(&params), static_cast<int>(sizeof params));
}

void tst_openH264Encoder::allOtherParametersStayTheLibrarys()
{
    CxTestPicture const picture(1920, 1080, 1);
    SEncParamExt const actual =
        fx_Params({{"h264_complexity", 2}, {"h264_profile_idc", 77}, {"h264_level_idc", 40}}, picture.buf);

    SEncParamExt expected = fx_DoubleDefaultParams();
    expected.iUsageType = SCREEN_CONTENT_REAL_TIME;
    expected.iPicWidth = 1920;
    expected.iPicHeight = 1080;
    expected.fMaxFrameRate = 30.0f;
    expected.iTargetBitrate = 11098664;
    expected.iRCMode = RC_BITRATE_MODE;
    expected.iComplexityMode = HIGH_COMPLEXITY;
    expected.bEnableFrameSkip = true;
    expected.iMaxBitrate = 24000000;
    SSpatialLayerConfig& layer = expected.sSpatialLayers[0];
    layer.iVideoWidth = 1920;
    layer.iVideoHeight = 1080;
    layer.fFrameRate = 30.0f;
    layer.iSpatialBitrate = 11098664;
    layer.iMaxSpatialBitrate = 24000000;
    layer.uiProfileIdc = PRO_MAIN;
    layer.uiLevelIdc = LEVEL_4_0;
    layer.sSliceArgument.uiSliceMode = SM_SINGLE_SLICE;
    // Byte by byte, so that no field is forgotten: both blocks began as copies of the same bytes.
    QVERIFY(fx_Bytes(actual) == fx_Bytes(expected));
}

void tst_openH264Encoder::failedCreationIsReported_data()
{
    QTest::addColumn<bool>("givesHandle");
    QTest::newRow("with a handle") << true;
    QTest::newRow("without a handle") << false;
}

void tst_openH264Encoder::failedCreationIsReported()
{
    QFETCH(bool, givesHandle);
    CxTestPicture const picture(64, 48);
    CxOpenH264Encoder encoder;
    fx_OpenH264Double().createError = 1;
    fx_OpenH264Double().givesHandle = givesHandle;
    SxResult const result = fx_Encode(encoder, picture.buf, true, 12345);
    QVERIFY(!result.isOk);
    QCOMPARE(result.size, 12345ul);
    QCOMPARE(result.keyFrame, true);
    QCOMPARE(m_messages->takeTexts(),
             fx_Texts("CxOpenH264Encoder::createEncoder(): Cannot create the OpenH264 encoder."));
    QCOMPARE(fx_OpenH264Double().destroyed, givesHandle ? 1 : 0);
    QVERIFY(fx_OpenH264Double().params.empty());

    fx_OpenH264Double().createError = 0;
    fx_OpenH264Double().givesHandle = true;
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
}

void tst_openH264Encoder::failedInitialisationIsReported_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("positive") << 4;
    QTest::newRow("negative") << -12;
}

void tst_openH264Encoder::failedInitialisationIsReported()
{
    QFETCH(int, error);
    CxTestPicture const picture(64, 48);
    CxOpenH264Encoder encoder;
    fx_OpenH264Double().initError = error;
    SxResult const result = fx_Encode(encoder, picture.buf);
    QVERIFY(!result.isOk);
    QCOMPARE(result.size, encoder.maxEncodedSize(picture.buf));
    QStringList const messages = m_messages->takeTexts();
    QCOMPARE(messages.size(), 2);
    QCOMPARE(
        messages[0],
        QStringLiteral("CxOpenH264Encoder::createEncoder(): InitializeExt failed with error %1").arg(error));
    QCOMPARE(messages[1], QStringLiteral("=== Encoder Params ===\n"
                                         "UsageType=1  Size=64x48  SpatialLayerNum=1  FPS=30\n"
                                         "TargetBitrate=62080  MaxBitrate=288000000  RCMode=1  Complexity=1  "
                                         "FrameSkip=1\n"
                                         "Layer[0]: 64x48  FPS=30  Bitrate=62080  Max=288000000  Profile=66  "
                                         "Level=52  SliceMode=0\n"));
    QCOMPARE(fx_OpenH264Double().destroyed, 1);

    fx_OpenH264Double().initError = 0;
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    QCOMPARE(fx_OpenH264Double().created, 2);
    QCOMPARE(fx_OpenH264Double().forcedPictures().size(), size_t(1));
}

void tst_openH264Encoder::dumpShowsSenselessOptions()
{
    CxTestPicture const picture(64, 48);
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions(
        {{"h264_complexity", 99}, {"h264_profile_idc", 1000}, {"h264_level_idc", -7}, {"h264_quality", 0}});
    fx_OpenH264Double().initError = 1;
    QVERIFY(!fx_Encode(encoder, picture.buf).isOk);
    QStringList const messages = m_messages->takeTexts();
    QCOMPARE(messages.size(), 2);
    QVERIFY2(messages[1].contains(QStringLiteral("  Complexity=99  ")), qPrintable(messages[1]));
    QVERIFY2(messages[1].contains(QStringLiteral("  Profile=1000  ")), qPrintable(messages[1]));
    QVERIFY2(messages[1].contains(QStringLiteral("  Level=-7  ")), qPrintable(messages[1]));
    QVERIFY2(messages[1].contains(QStringLiteral("TargetBitrate=-14080  ")), qPrintable(messages[1]));
}

void tst_openH264Encoder::dumpShowsNegativeOptions()
{
    CxTestPicture const picture(64, 48);
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions({{"h264_complexity", -1},
                               {"h264_profile_idc", -2},
                               {"h264_level_idc", std::numeric_limits<int>::min()}});
    fx_OpenH264Double().initError = 1;
    QVERIFY(!fx_Encode(encoder, picture.buf).isOk);
    QString const text = m_messages->takeTexts().value(1);
    QVERIFY2(text.contains(QStringLiteral("  Complexity=-1  ")), qPrintable(text));
    QVERIFY2(text.contains(QStringLiteral("  Profile=-2  Level=-2147483648  ")), qPrintable(text));
}

void tst_openH264Encoder::pictureWithoutSizeIsRefusedByTheLibrary()
{
    fx_OpenH264Double().forwards = true;
    CxTestPicture const picture(0, 0);
    CxOpenH264Encoder encoder;
    QVERIFY(!fx_Encode(encoder, picture.buf).isOk);
    QStringList const messages = m_messages->takeTexts();
    QCOMPARE(messages.size(), 2);
    QVERIFY2(messages[0].startsWith(
                 QStringLiteral("CxOpenH264Encoder::createEncoder(): InitializeExt failed with error ")),
             qPrintable(messages[0]));
    QCOMPARE(messages[1].count(QStringLiteral("Layer[")), 1);
    QVERIFY(messages[1].contains(QStringLiteral("UsageType=1  Size=0x0  SpatialLayerNum=1  FPS=30\n")));
}

void tst_openH264Encoder::messageNamesItsPlace()
{
    CxTestPicture const picture(64, 48);
    CxOpenH264Encoder encoder;
    QVERIFY(!fx_Encode(encoder, picture.buf, false, 0).isOk);
    QStringList const messages = m_messages->takeRaw();
    QCOMPARE(messages.size(), 1);
    QString thread;
    QDebug(&thread) << QThread::currentThreadId();
    QRegularExpression const form(
        QStringLiteral("^%1 \\S*plugins/tvpCodecOpenH264/openH264Encoder\\.cpp L [1-9]\\d* :  "
                       "\"CxOpenH264Encoder::encode\\(\\): Too short buffer for encoding\\.\"$")
            .arg(thread.trimmed()));
    QVERIFY2(form.match(messages[0]).hasMatch(), qPrintable(messages[0]));
}

static SEncParamExt fx_DumpParams(int layers)
{
    SEncParamExt params;
    std::memset(static_cast<void*>(&params), 0, sizeof params);
    params.iUsageType = CAMERA_VIDEO_REAL_TIME;
    params.iPicWidth = 1234567;
    params.iPicHeight = -8;
    params.iSpatialLayerNum = layers;
    params.fMaxFrameRate = 29.97f;
    params.iTargetBitrate = 5000000;
    params.iMaxBitrate = 0;
    params.iRCMode = RC_OFF_MODE;
    params.iComplexityMode = HIGH_COMPLEXITY;
    params.bEnableFrameSkip = false;
    for (int i = 0; i < MAX_SPATIAL_LAYER_NUM; ++i) {
        SSpatialLayerConfig& layer = params.sSpatialLayers[i];
        layer.iVideoWidth = 100 + i;
        layer.iVideoHeight = 200 + i;
        layer.fFrameRate = 1234567.0f;
        layer.iSpatialBitrate = 300 + i;
        layer.iMaxSpatialBitrate = 400 + i;
        layer.uiProfileIdc = PRO_HIGH;
        layer.uiLevelIdc = LEVEL_3_1;
        layer.sSliceArgument.uiSliceMode = SM_SIZELIMITED_SLICE;
    }
    return params;
}

static std::string fx_DumpText(int layers, int lines)
{
    QString text =
        QStringLiteral("=== Encoder Params ===\n"
                       "UsageType=0  Size=1234567x-8  SpatialLayerNum=%1  FPS=29.97\n"
                       "TargetBitrate=5000000  MaxBitrate=0  RCMode=-1  Complexity=2  FrameSkip=0\n")
            .arg(layers);
    for (int i = 0; i < lines; ++i) {
        text +=
            QStringLiteral("Layer[%1]: %2x%3  FPS=1.23457e+06  Bitrate=%4  Max=%5  Profile=100  Level=31  "
                           "SliceMode=3\n")
                .arg(i)
                .arg(100 + i)
                .arg(200 + i)
                .arg(300 + i)
                .arg(400 + i);
    }
    return text.toStdString();
}

void tst_openH264Encoder::dumpListsEveryParameter_data()
{
    QTest::addColumn<int>("layers");
    QTest::addColumn<int>("lines");
    QTest::newRow("none") << 0 << 0;
    QTest::newRow("negative") << -1 << 0;
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("four") << 4 << 4;
    QTest::newRow("more than there are") << 5 << 4;
}

void tst_openH264Encoder::dumpListsEveryParameter()
{
    QFETCH(int, layers);
    QFETCH(int, lines);
    QCOMPARE(dumpEncParams(fx_DumpParams(layers)), fx_DumpText(layers, lines));
}

namespace {

/// How a German writes numbers.
class CxGermanNumbers : public std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

} // namespace

void tst_openH264Encoder::dumpIsTheSameInAnyLocale()
{
    std::locale const before = std::locale::global(std::locale(std::locale::classic(), new CxGermanNumbers));
    std::string const text = dumpEncParams(fx_DumpParams(2));
    std::locale::global(before);
    QCOMPARE(text, fx_DumpText(2, 2));
}

void tst_openH264Encoder::logCallbackDoesNothing() { encoderLog(nullptr, WELS_LOG_ERROR, "an error"); }

void tst_openH264Encoder::pictureReachesTheLibrary_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<quint32>("components");
    QTest::addColumn<quint32>("padding");
    QTest::newRow("RGB32") << 64u << 48u << 4u << 0u;
    QTest::newRow("RGB24, padded") << 64u << 48u << 3u << 13u;
    QTest::newRow("grey, padded") << 66u << 50u << 1u << 5u;
    QTest::newRow("2 x 2") << 2u << 2u << 4u << 0u;
}

void tst_openH264Encoder::pictureReachesTheLibrary()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QFETCH(quint32, components);
    QFETCH(quint32, padding);
    fx_OpenH264Double().answers = fx_Answers("IPP");
    CxOpenH264Encoder encoder;
    CxTestPicture picture(width, height, components, 2, padding);
    for (unsigned i = 0; i < 3; ++i) { // the buffer of the planes is used again
        picture.fillNoise(i);
        SxResult const result = fx_Encode(encoder, picture.buf);
        QVERIFY(result.isOk);
        QVERIFY(result.isGuardIntact);
        SxEncodedPicture const& seen = fx_OpenH264Double().pictures.back();
        QCOMPARE(seen.header.iColorFormat, int(videoFormatI420));
        QCOMPARE(seen.header.iPicWidth, int(width));
        QCOMPARE(seen.header.iPicHeight, int(height));
        QCOMPARE(seen.header.iStride[0], int(width));
        QCOMPARE(seen.header.iStride[1], int(width / 2));
        QCOMPARE(seen.header.iStride[2], int(width / 2));
        QCOMPARE(seen.header.pData[1] - seen.header.pData[0], std::ptrdiff_t(width * height));
        QCOMPARE(seen.header.pData[2] - seen.header.pData[1], std::ptrdiff_t(width * height / 4));
        QCOMPARE(seen.header.pData[0], fx_OpenH264Double().pictures.front().header.pData[0]);
        QVERIFY(seen.planes == fx_ExpectedPlanes(picture.buf));
    }
}

void tst_openH264Encoder::oddSizeReachesTheLibrary_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::newRow("a byte of V behind the planes") << 7u << 4u;
    QTest::newRow("pixels that no four divide") << 7u << 2u;
    QTest::newRow("many rows") << 5u << 30u;
}

/// V starts at a quarter of the pixels; what of it lies behind the planes of such a picture is neutral.
void tst_openH264Encoder::oddSizeReachesTheLibrary()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    CxOpenH264Encoder encoder;
    CxTestPicture picture(width, height);
    picture.fillNoise(1);
    std::vector<uchar> planes(encoder.maxEncodedSize(picture.buf));
    QVERIFY(fx_OracleToIYUV(picture.buf, planes));
    planes.resize(planes.size() + width * height, 128);
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);

    SxEncodedPicture const& seen = fx_OpenH264Double().pictures.back();
    std::ptrdiff_t const pixels = width * height, chroma = (width / 2) * (height / 2);
    auto const u = planes.cbegin() + pixels, v = u + pixels / 4;
    QVERIFY(seen.planes.u == std::vector<uchar>(u, u + chroma));
    QVERIFY(seen.planes.v == std::vector<uchar>(v, v + chroma));
}

void tst_openH264Encoder::timestampReachesTheLibraryInMilliseconds_data()
{
    QTest::addColumn<quint64>("microseconds");
    QTest::addColumn<qint64>("milliseconds");
    QTest::newRow("0") << quint64(0) << qint64(0);
    QTest::newRow("999") << quint64(999) << qint64(0);
    QTest::newRow("1999") << quint64(1999) << qint64(1);
    QTest::newRow("the last") << std::numeric_limits<quint64>::max() << qint64(18446744073709551);
}

void tst_openH264Encoder::timestampReachesTheLibraryInMilliseconds()
{
    QFETCH(quint64, microseconds);
    CxTestPicture picture(16, 16);
    picture.buf.timestamp = microseconds;
    CxOpenH264Encoder encoder;
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    QTEST(qint64(fx_OpenH264Double().pictures[0].header.uiTimeStamp), "milliseconds");
}

void tst_openH264Encoder::shortBufferIsRefused()
{
    CxTestPicture picture(64, 48);
    CxOpenH264Encoder encoder;
    SxResult const result = fx_Encode(encoder, picture.buf, true, 64 * 48 * 3 / 2 - 1);
    QVERIFY(!result.isOk);
    QCOMPARE(result.size, 64ul * 48 * 3 / 2 - 1);
    QCOMPARE(result.keyFrame, true);
    QCOMPARE(m_messages->takeTexts(),
             fx_Texts("CxOpenH264Encoder::encode(): Too short buffer for encoding."));
    QCOMPARE(fx_OpenH264Double().created, 1); // that comes first
    QVERIFY(fx_OpenH264Double().pictures.empty());

    // Also before the conversion, which would fail for this one.
    picture.buf.layout = 2;
    QVERIFY(!fx_Encode(encoder, picture.buf, true, 1).isOk);
    QCOMPARE(m_messages->takeTexts(),
             fx_Texts("CxOpenH264Encoder::encode(): Too short buffer for encoding."));

    picture.buf.layout = 1;
    QVERIFY(fx_Encode(encoder, picture.buf, true, 64 * 48 * 3 / 2).isOk);
    QCOMPARE(fx_OpenH264Double().created, 1);
}

namespace {

class CxBoundedEncoder : public CxOpenH264Encoder
{
public:
    explicit CxBoundedEncoder(unsigned long bound)
        : m_bound(bound)
    {}

    unsigned long maxEncodedSize(SxPicBufInfo const&) override { return m_bound; }

private:
    unsigned long m_bound;
};

} // namespace

void tst_openH264Encoder::overriddenMaxEncodedSizeDecides()
{
    CxTestPicture const picture(16, 16);
    CxBoundedEncoder small(8);
    QVERIFY(fx_Encode(small, picture.buf, false, 8).isOk); // "picture0" has as many bytes
    QVERIFY(!fx_Encode(small, picture.buf, false, 7).isOk);
    QCOMPARE(m_messages->takeTexts(),
             fx_Texts("CxOpenH264Encoder::encode(): Too short buffer for encoding."));

    CxBoundedEncoder large(100000);
    QVERIFY(!fx_Encode(large, picture.buf, false, 99999).isOk);
    QCOMPARE(m_messages->takeTexts(),
             fx_Texts("CxOpenH264Encoder::encode(): Too short buffer for encoding."));
    QVERIFY(fx_Encode(large, picture.buf).isOk);
}

void tst_openH264Encoder::unsupportedFirstPictureIsRefused()
{
    CxTestPicture picture(64, 48);
    picture.buf.components = 2;
    CxOpenH264Encoder encoder;
    SxResult const result = fx_Encode(encoder, picture.buf, true, 5000);
    QVERIFY(!result.isOk);
    QCOMPARE(result.size, 5000ul);
    QCOMPARE(result.keyFrame, true);
    QCOMPARE(m_messages->takeTexts(), fx_Texts("CxOpenH264Encoder::encode(): ConvertPicBuftoIYUV failed"));
    QCOMPARE(fx_OpenH264Double().created, 1);
    QCOMPARE(fx_OpenH264Double().destroyed, 0);

    picture.buf.components = 4;
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    QCOMPARE(fx_OpenH264Double().created, 1);
    QVERIFY(fx_OpenH264Double().forcedPictures() == std::vector<int>{0});
}

void tst_openH264Encoder::missingPlanesAreReported()
{
    CxTestPicture const picture(640, 480);
    CxOpenH264Encoder encoder;
    QByteArray out(460800, kUnwritten);
    unsigned long size = 460800;
    bool isOk = true;
    {
        CxAllocationFailure const failure(460800);
        isOk = encoder.encode(picture.buf, out.data(), size, nullptr);
    }
    QVERIFY(!isOk);
    QCOMPARE(size, 460800ul);
    QCOMPARE(m_messages->takeTexts(),
             fx_Texts("CxOpenH264Encoder::encode(): Cannot alloc YUVBuffer with size 460800"));
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    QCOMPARE(fx_OpenH264Double().created, 1);
}

void tst_openH264Encoder::laterLargerPictureIsRefused()
{
    CxTestPicture const picture(64, 48);
    CxTestPicture const larger(64, 50);
    CxOpenH264Encoder encoder;
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    SxResult const result = fx_Encode(encoder, larger.buf);
    QVERIFY(!result.isOk);
    QCOMPARE(result.size, encoder.maxEncodedSize(larger.buf));
    QCOMPARE(m_messages->takeTexts(), fx_Texts("CxOpenH264Encoder::encode(): ConvertPicBuftoIYUV failed"));
    QCOMPARE(fx_OpenH264Double().pictures.size(), size_t(1));
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
}

void tst_openH264Encoder::laterSmallerPictureIsCoded()
{
    CxTestPicture const picture(64, 48);
    CxTestPicture smaller(32, 20);
    smaller.fillNoise(1);
    CxOpenH264Encoder encoder;
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    QVERIFY(fx_Encode(encoder, smaller.buf).isOk);
    QCOMPARE(fx_OpenH264Double().created, 1); // no new one for another size
    SxEncodedPicture const& seen = fx_OpenH264Double().pictures.back();
    QCOMPARE(seen.header.iPicWidth, 32);
    QCOMPARE(seen.header.iPicHeight, 20);
    QVERIFY(seen.planes == fx_ExpectedPlanes(smaller.buf));
}

void tst_openH264Encoder::sizeThatWrapsIsRefused_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<qint64>("capacity");
    // The planes of these need 6 and 12 GiB, which 32 bits count as 2 GiB and as nothing.
    QTest::newRow("to 2 GiB") << 65536u << 65536u << qint64(0x80000000);
    QTest::newRow("to nothing") << 131072u << 65536u << qint64(0);
}

void tst_openH264Encoder::sizeThatWrapsIsRefused()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QFETCH(qint64, capacity);
    CxTestPicture picture(16, 16);
    picture.buf.width = width;
    picture.buf.height = height;
    CxOpenH264Encoder encoder;
    SxResult const result = fx_Encode(encoder, picture.buf, false, capacity, 0);
    QVERIFY(!result.isOk);
    QVERIFY(result.isGuardIntact);
    QCOMPARE(m_messages->takeTexts(), fx_Texts("CxOpenH264Encoder::encode(): ConvertPicBuftoIYUV failed"));
    QVERIFY(fx_OpenH264Double().pictures.empty());
}

void tst_openH264Encoder::keyFramesAreForcedAtTheirInterval_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<QByteArray>("answers");  // empty: the double's usual ones
    QTest::addColumn<QByteArray>("expected"); // one letter a picture: F forced
    QTest::newRow("default") << 5 << QByteArray() << QByteArray("F----F----F-");
    QTest::newRow("1") << 1 << QByteArray() << QByteArray("FFFFFFFFFFFF");
    QTest::newRow("0") << 0 << QByteArray() << QByteArray("FFFFFFFFFFFF");
    QTest::newRow("negative") << -3 << QByteArray() << QByteArray("FFFFFFFFFFFF");
    QTest::newRow("3") << 3 << QByteArray() << QByteArray("F--F--F--F--");
    QTest::newRow("larger than the stream") << 100 << QByteArray() << QByteArray("F-----------");
    // The library starts a key frame by itself: the distance counts from there.
    QTest::newRow("the library's own") << 5 << QByteArray("IPPIPPPPIPPP") << QByteArray("F-------F---");
    // Only IDR counts. Picture 0 was none, so the distance is still that to the stream's start.
    QTest::newRow("forced, but not IDR") << 5 << QByteArray("iPPPPPPPPPPP") << QByteArray("F---FFFFFFFF");
    QTest::newRow("intra in between") << 5 << QByteArray("IPiPPIPPPPIP") << QByteArray("F----F----F-");
    QTest::newRow("skip") << 5 << QByteArray("IPSPPPIPPPPI") << QByteArray("F-----F----F");
    QTest::newRow("skip at the start") << 5 << QByteArray("SSIPPPPIPPPP") << QByteArray("FFF----F----");
    QTest::newRow("skip of a forced one") << 5 << QByteArray("IPPPPSSIPPPP") << QByteArray("F----FFF----");
    QTest::newRow("failures") << 5 << QByteArray("!0oIPPPP!PI") << QByteArray("FFFF----FFF");
}

void tst_openH264Encoder::keyFramesAreForcedAtTheirInterval()
{
    QFETCH(int, rate);
    QFETCH(QByteArray, answers);
    QFETCH(QByteArray, expected);
    fx_OpenH264Double().answers = fx_Answers(answers);
    CxTestPicture const picture(16, 16);
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions({{"h264_keyframerate", rate}});
    for (int i = 0; i < expected.size(); ++i) {
        bool const fails = i < answers.size() && strchr("!0o", answers[i]);
        QCOMPARE(fx_Encode(encoder, picture.buf).isOk, !fails);
    }
    m_messages->takeRaw(); // the failures' texts are another test's

    QByteArray forced;
    for (SxEncodedPicture const& seen : fx_OpenH264Double().pictures)
        forced += seen.isForced ? 'F' : '-';
    QCOMPARE(forced, expected);
}

void tst_openH264Encoder::laterKeyFrameIntervalCounts()
{
    CxTestPicture const picture(16, 16);
    CxOpenH264Encoder encoder;
    for (int i = 0; i < 4; ++i)
        QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    encoder.setEncoderOptions({{"h264_keyframerate", 2}}); // picture 4 is overdue now
    for (int i = 0; i < 3; ++i)
        QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    encoder.setEncoderOptions({{"h264_keyframerate", 10}});
    for (int i = 0; i < 11; ++i)
        QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    QVERIFY((fx_OpenH264Double().forcedPictures() == std::vector<int>{0, 4, 6, 16}));
}

void tst_openH264Encoder::keyFlagIsThatOfTheFrame_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("expected");
    QTest::newRow("IDR") << QByteArray("I") << true;
    QTest::newRow("intra") << QByteArray("i") << false;
    QTest::newRow("P") << QByteArray("P") << false;
    QTest::newRow("mixed") << QByteArray("M") << false;
}

void tst_openH264Encoder::keyFlagIsThatOfTheFrame()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, expected);
    CxTestPicture const picture(16, 16);
    for (bool const before : {false, true}) {
        fx_OpenH264Double().pictures.clear();
        fx_OpenH264Double().answers = fx_Answers(answer);
        CxOpenH264Encoder encoder;
        SxResult const result = fx_Encode(encoder, picture.buf, before);
        QVERIFY(result.isOk);
        QCOMPARE(result.size, 1ul);
        QCOMPARE(result.keyFrame, expected);
    }

    // Who does not ask gets the same pictures.
    fx_OpenH264Double().pictures.clear();
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions({{"h264_keyframerate", 2}});
    fx_OpenH264Double().answers = fx_Answers("IPI");
    for (int i = 0; i < 3; ++i) {
        QByteArray out(384, kUnwritten);
        unsigned long size = 384;
        QVERIFY(encoder.encode(picture.buf, out.data(), size, nullptr));
        QCOMPARE(size, 1ul);
    }
    QVERIFY((fx_OpenH264Double().forcedPictures() == std::vector<int>{0, 2}));
}

void tst_openH264Encoder::skippedPictureWritesNothing()
{
    CxTestPicture const picture(16, 16);
    for (bool const before : {false, true}) {
        fx_OpenH264Double().pictures.clear();
        fx_OpenH264Double().answers = fx_Answers("S");
        CxOpenH264Encoder encoder;
        SxResult const result = fx_Encode(encoder, picture.buf, before);
        QVERIFY(result.isOk);
        QCOMPARE(result.size, 0ul);
        QCOMPARE(result.keyFrame, before);
        QCOMPARE(result.bytes, QByteArray(384, kUnwritten)); // what the record still holds is no picture's
    }
}

void tst_openH264Encoder::failedPictureIsReported_data()
{
    QTest::addColumn<SxEncodeAnswer*>("answer");
    QTest::addColumn<QString>("text");
    static SxEncodeAnswer error = fx_Answers("!")[0];
    static SxEncodeAnswer negative = error;
    negative.error = -5;
    static SxEncodeAnswer invalid = fx_Answers("0")[0];
    static SxEncodeAnswer both = invalid;
    both.error = 1;
    QTest::newRow("error") << &error << QStringLiteral("EncodeFrame failed with error 3");
    QTest::newRow("negative error") << &negative << QStringLiteral("EncodeFrame failed with error -5");
    QTest::newRow("invalid") << &invalid << QStringLiteral("EncodeFrame made videoFrameTypeInvalid");
    QTest::newRow("error and invalid") << &both << QStringLiteral("EncodeFrame failed with error 1");
}
Q_DECLARE_METATYPE(SxEncodeAnswer*)

void tst_openH264Encoder::failedPictureIsReported()
{
    QFETCH(SxEncodeAnswer*, answer);
    QFETCH(QString, text);
    fx_OpenH264Double().answers = {*answer};
    CxTestPicture const picture(16, 16);
    CxOpenH264Encoder encoder;
    for (bool const before : {false, true}) {
        fx_OpenH264Double().pictures.clear();
        SxResult const result = fx_Encode(encoder, picture.buf, before, 400);
        QVERIFY(!result.isOk);
        QCOMPARE(result.size, 400ul);
        QCOMPARE(result.keyFrame, before);
        QCOMPARE(m_messages->takeTexts(),
                 QStringList(QStringLiteral("CxOpenH264Encoder::encode(): ") + text));
    }
    // The next picture goes on with the same instance.
    fx_OpenH264Double().answers.clear();
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    QCOMPARE(fx_OpenH264Double().created, 1);
}

void tst_openH264Encoder::layersAreConcatenated_data()
{
    QTest::addColumn<QStringList>("layers"); // NAL units parted by |
    QTest::addColumn<int>("layerCount");
    QTest::addColumn<int>("emptyNalCount");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("one unit") << QStringList("abc") << 1 << 0 << QByteArray("abc");
    QTest::newRow("units") << QStringList("abc|de|f") << 1 << 0 << QByteArray("abcdef");
    QTest::newRow("layers") << QStringList{"sps|pps", "idr", "p|q"} << 3 << 0 << QByteArray("spsppsidrpq");
    QTest::newRow("only the first of them")
        << QStringList{"sps|pps", "idr"} << 1 << 0 << QByteArray("spspps");
    QTest::newRow("empty layer") << QStringList{"a", "", "b"} << 3 << 0 << QByteArray("ab");
    QTest::newRow("negative unit count") << QStringList{"a", "", "b"} << 3 << -2 << QByteArray("ab");
    QTest::newRow("no layer") << QStringList("abc") << 0 << 0 << QByteArray();
    QTest::newRow("negative layer count") << QStringList("abc") << -1 << 0 << QByteArray();
    QTest::newRow("just fitting") << QStringList{QString(200, 'x'), QString(184, 'y')} << 2 << 0
                                  << QByteArray(200, 'x') + QByteArray(184, 'y');
}

static SxEncodeAnswer fx_LayerAnswer(QStringList const& layers)
{
    SxEncodeAnswer answer;
    answer.type = videoFrameTypeIDR;
    for (QString const& layer : layers) {
        std::vector<std::string> nals;
        for (QString const& nal : layer.split('|', Qt::SkipEmptyParts))
            nals.push_back(nal.toStdString());
        answer.layers.push_back(nals);
    }
    return answer;
}

void tst_openH264Encoder::layersAreConcatenated()
{
    QFETCH(QStringList, layers);
    QFETCH(int, layerCount);
    QFETCH(int, emptyNalCount);
    QFETCH(QByteArray, expected);
    SxEncodeAnswer answer = fx_LayerAnswer(layers);
    answer.layerCount = layerCount;
    answer.emptyNalCount = emptyNalCount;
    fx_OpenH264Double().answers = {answer};
    CxTestPicture const picture(16, 16);
    CxOpenH264Encoder encoder;
    SxResult const result = fx_Encode(encoder, picture.buf);
    QVERIFY(result.isOk);
    QVERIFY(result.isGuardIntact);
    QCOMPARE(result.size, static_cast<unsigned long>(expected.size()));
    QCOMPARE(result.bytes, expected + QByteArray(384 - expected.size(), kUnwritten));
    QCOMPARE(result.keyFrame, true);
    QVERIFY(fx_Encode(encoder, picture.buf).isOk); // it counted as a picture: the next is not forced
    QVERIFY(fx_OpenH264Double().forcedPictures() == std::vector<int>{0});
}

void tst_openH264Encoder::layersBeyondTheBufferAreRefused_data()
{
    QTest::addColumn<QStringList>("layers");
    QTest::addColumn<QByteArray>("written");
    QTest::newRow("first layer") << QStringList(QString(385, 'x')) << QByteArray();
    QTest::newRow("second layer") << QStringList{"abc", QString(382, 'x')} << QByteArray("abc");
    QTest::newRow("third layer") << QStringList{"abc", "de", QString(1000, 'x')} << QByteArray("abcde");
}

void tst_openH264Encoder::layersBeyondTheBufferAreRefused()
{
    QFETCH(QStringList, layers);
    QFETCH(QByteArray, written);
    CxTestPicture const picture(16, 16);
    // A larger buffer changes nothing: the limit is what the encoder said that it needs, 384 bytes.
    for (int const capacity : {384, 484}) {
        fx_OpenH264Double().pictures.clear();
        fx_OpenH264Double().answers = {fx_LayerAnswer(layers)};
        CxOpenH264Encoder encoder;
        SxResult const result = fx_Encode(encoder, picture.buf, false, capacity, 384);
        QVERIFY(!result.isOk);
        QVERIFY(result.isGuardIntact);
        QCOMPARE(result.size, static_cast<unsigned long>(capacity));
        QCOMPARE(result.keyFrame, false);
        QCOMPARE(result.bytes, written + QByteArray(384 - written.size(), kUnwritten));
        QCOMPARE(m_messages->takeRaw(), QStringList()); // the host's saver tells
        QVERIFY(fx_Encode(encoder, picture.buf).isOk);
        QVERIFY((fx_OpenH264Double().forcedPictures() == std::vector<int>{0, 1}));
    }
}

void tst_openH264Encoder::libraryIsDestroyedWithItsObject()
{
    CxTestPicture const picture(16, 16);
    {
        CxOpenH264Encoder unused;
    }
    QCOMPARE(fx_OpenH264Double().destroyed, 0);
    {
        std::unique_ptr<IxVideoEncoder> const encoder(new CxOpenH264Encoder); // as the host's owners do
        QByteArray out(384, kUnwritten);
        unsigned long size = 384;
        QVERIFY(encoder->encode(picture.buf, out.data(), size, nullptr));
        QCOMPARE(fx_OpenH264Double().destroyed, 0);
    }
    QCOMPARE(fx_OpenH264Double().destroyed, 1);
    QCOMPARE(fx_OpenH264Double().uninitialized, 0);
}

/// A block of memory, and how many of OpenH264's encoders were gone when it was freed.
static void const* s_watchedBlock = nullptr;
static int s_destroyedWhenFreed = -1;

// NOLINTBEGIN(bugprone-reserved-identifier): the names are those that the linker's --wrap makes.
extern "C" {
void __real_free(void* block);
void __wrap_free(void* block);
}
void __wrap_free(void* block)
{
    if (block && block == s_watchedBlock)
        s_destroyedWhenFreed = fx_OpenH264Double().destroyed;
    __real_free(block);
}
// NOLINTEND(bugprone-reserved-identifier)

void tst_openH264Encoder::planesOutliveTheLibrarysEncoder()
{
    CxTestPicture const picture(16, 16);
    {
        CxOpenH264Encoder encoder;
        QVERIFY(fx_Encode(encoder, picture.buf).isOk);
        s_watchedBlock = fx_OpenH264Double().pictures.back().header.pData[0];
    }
    s_watchedBlock = nullptr;
    QCOMPARE(s_destroyedWhenFreed, 1);
}

/// The types of the NAL units of an access unit with four-byte start codes.
static std::vector<int> fx_NalTypes(QByteArray const& bytes)
{
    std::vector<int> types;
    QByteArray const startCode("\0\0\0\1", 4);
    for (auto at = bytes.indexOf(startCode); at >= 0; at = bytes.indexOf(startCode, at + 4))
        types.push_back(bytes.at(at + 4) & 31);
    return types;
}

void tst_openH264Encoder::libraryCodesPictures()
{
    fx_OpenH264Double().forwards = true;
    CxTestPicture picture(320, 240);
    CxOpenH264Encoder encoder;
    for (unsigned i = 0; i < 12; ++i) {
        picture.fillSmooth(i);
        picture.buf.timestamp = i * 33333;
        SxResult const result = fx_Encode(encoder, picture.buf);
        QVERIFY(result.isOk);
        QVERIFY(result.isGuardIntact);
        QCOMPARE(result.keyFrame, i % 5 == 0);
        std::vector<int> const types = fx_NalTypes(result.bytes.left(static_cast<int>(result.size)));
        QVERIFY((types == (i % 5 == 0 ? std::vector<int>{7, 8, 5} : std::vector<int>{1})));
    }
    QVERIFY((fx_OpenH264Double().forcedPictures() == std::vector<int>{0, 5, 10}));
}

void tst_openH264Encoder::libraryCodesEverySize_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<quint32>("components");
    for (quint32 const components : {1u, 4u}) {
        for (QSize const size : {QSize(64, 48), QSize(17, 17), QSize(33, 18), QSize(18, 33), QSize(641, 481),
                                 QSize(1001, 501), QSize(100, 1001), QSize(1001, 100)}) {
            QTest::addRow("%d x %d, %u components", size.width(), size.height(), components)
                << quint32(size.width()) << quint32(size.height()) << components;
        }
    }
}

void tst_openH264Encoder::libraryCodesEverySize()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QFETCH(quint32, components);
    fx_OpenH264Double().forwards = true;
    CxTestPicture picture(width, height, components);
    CxOpenH264Encoder encoder;
    for (unsigned i = 0; i < 3; ++i) {
        picture.fillSmooth(i);
        SxResult const result = fx_Encode(encoder, picture.buf);
        QVERIFY(result.isOk);
        QVERIFY(result.isGuardIntact);
        QVERIFY(result.size > 0);
    }
}

void tst_openH264Encoder::libraryTakesOtherSizesLater()
{
    fx_OpenH264Double().forwards = true;
    CxOpenH264Encoder encoder;
    CxTestPicture picture(128, 96);
    picture.fillNoise(1);
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
    // Whatever the library says to them: it must get pictures that are all there.
    for (QSize const size : {QSize(64, 48), QSize(63, 47), QSize(96, 128), QSize(16, 16), QSize(130, 90)}) {
        CxTestPicture other(quint32(size.width()), quint32(size.height()));
        other.fillNoise(2);
        SxResult const result = fx_Encode(encoder, other.buf);
        QVERIFY(result.isGuardIntact);
        m_messages->takeRaw();
    }
    QVERIFY(fx_Encode(encoder, picture.buf).isOk);
}

QTEST_GUILESS_MAIN(tst_openH264Encoder)
#include "tst_openH264Encoder.moc"

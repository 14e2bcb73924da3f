#include <QtTest>

#include <functional>
#include <vector>

#include "CxPicBufAPI.h"
#include "openH264Decoder.h"
#include "support/AllocationFailure.h"
#include "support/FakeAccessor.h"
#include "support/MessageRecorder.h"
#include "support/OpenH264DecoderDouble.h"
#include "support/TestPicture.h"

static constexpr int kLumaBase = 100; ///< luma of frame 0's picture; that of frame n is n more

/// A start code of four bytes and a unit.
static QByteArray fx_Unit(int header, QByteArray const& payload)
{
    return QByteArray::fromHex("00000001") + static_cast<char>(header) + payload;
}

static QByteArray fx_Slice(int header, int luma)
{
    return fx_Unit(header, QByteArray(1, static_cast<char>(luma)) + '\x80');
}

static QByteArray fx_KeyFrame(int luma)
{
    return fx_Unit(0x67, "\x42\x01\x02") + fx_Unit(0x68, "\xCE\x03") + fx_Slice(0x65, luma);
}

static QByteArray fx_Frame(int number, bool isKey)
{
    return isKey ? fx_KeyFrame(kLumaBase + number) : fx_Slice(0x61, kLumaBase + number);
}

static void fx_Fill(CxFakeAccessor& accessor, int count, QList<int> const& keys)
{
    accessor.keys = keys;
    for (int frame = 0; frame < count; ++frame)
        accessor.frames.append(fx_Frame(frame, keys.contains(frame)));
}

static QList<int> fx_Range(int first, int last)
{
    QList<int> numbers;
    for (int number = first; number <= last; ++number)
        numbers.append(number);
    return numbers;
}

/// Luma of a grey RGB32 picture; -1 when a pixel is another or not opaque.
static int fx_Luma(SxPicBuf const& picture)
{
    for (quint32 y = 0; y < picture.height; ++y) {
        for (quint32 x = 0; x < picture.width; ++x) {
            uchar const* const pixel = picture.data + y * picture.pitch + x * 4;
            if (pixel[0] != picture.data[0] || pixel[1] != pixel[0] || pixel[2] != pixel[0] ||
                pixel[3] != 255)
                return -1;
        }
    }
    return picture.data[0];
}

/// What a decode() without memory for the picture gave.
struct SxOutcome
{
    bool result = false;
    int luma = -1; ///< -1 without a picture
    QList<int> asked;
};

static SxOutcome fx_Decode(CxOpenH264Decoder& decoder, CxFakeAccessor& accessor, int frame)
{
    accessor.asked.clear();
    SxPicBuf picture;
    SxOutcome outcome;
    outcome.result = decoder.decode(frame, &accessor, picture);
    outcome.luma = picture.data ? fx_Luma(picture) : -1;
    outcome.asked = accessor.asked;
    CxPicBufAPI::FreePicBuf(picture, true);
    return outcome;
}

/// The frames to feed for a target, counted out group by group.
static QList<int> fx_ExpectedWalk(QList<int> const& keys, int last, int target)
{
    if (keys.contains(target))
        return {target};
    int group = 0; // before the first key frame everything counts from frame 0
    for (int const key : keys)
        group = key < target ? key : group;
    if (last >= 0 && last == target - 1)
        return {target};
    int lastGroup = keys.first();
    for (int const key : keys)
        lastGroup = key < last ? key : lastGroup;
    return fx_Range(lastGroup == group && last < target ? last + 1 : group, target);
}

class tst_openH264Decoder : public QObject
{
    Q_OBJECT

private slots:
    void init() { fx_OpenH264DecoderDouble() = SxOpenH264DecoderDouble(); }
    void cleanup();

    void isADecoder();
    void libraryIsSetUpOnceWithFixedParameters();
    void libraryEndsWithItsObject();
    void libraryIsUntouchedWithoutDecoding();
    void frameIsFedUnitByUnit_data();
    void frameIsFedUnitByUnit();
    void libraryIsAskedForEachPicture_data();
    void libraryIsAskedForEachPicture();
    void everyWalkFeedsTheFramesExpected_data();
    void everyWalkFeedsTheFramesExpected();
    void walkStartsAtKeyFrameUnlessInStep_data();
    void walkStartsAtKeyFrameUnlessInStep();
    void impossibleFrameIsRefusedWithoutAsking();
    void emptyFrameIsNothingToDecode();
    void emptyFrameShowsTheOneBeforeItOnItsWay();
    void picturesOnTheWayAreNotWritten();
    void missingMemorySkipsTheFrame();
    void suppliedPictureMustBeRGB32_data();
    void suppliedPictureMustBeRGB32();
    void suppliedPictureMustHaveTheSize_data();
    void suppliedPictureMustHaveTheSize();
    void pictureWithoutMemoryGetsIt();
    void paddedPlanesAreReadByTheirStride();
    void sizeThatChangesWithinTheWalkIsRefused();
    void failureIsReportedOnce_data();
    void failureIsReportedOnce();
    void failedCreationIsTriedAgain_data();
    void failedCreationIsTriedAgain();
    void startsAfreshAfterFailure_data();
    void startsAfreshAfterFailure();
    void staysInStepWhenNothingWasFed_data();
    void staysInStepWhenNothingWasFed();
    void failedRestartIsTriedAgain();
    void heldPictureIsNeverServedLater_data();
    void heldPictureIsNeverServedLater();
    void stuckFlushEnds();
    void malformedFrameGivesNoPicture_data();
    void malformedFrameGivesNoPicture();
    void sizesThatLieAreSurvived_data();
    void sizesThatLieAreSurvived();
    void keyFramesThatLieAreSurvived_data();
    void keyFramesThatLieAreSurvived();
};

Q_DECLARE_METATYPE(Delivery)
using Action = std::function<void(CxFakeAccessor&)>;
Q_DECLARE_METATYPE(Action)

/// What holds in every test: nothing leaks, and the library is used in the one way agreed.
void tst_openH264Decoder::cleanup()
{
    SxOpenH264DecoderDouble const& record = fx_OpenH264DecoderDouble();
    QCOMPARE(record.destroyed, record.created);
    QCOMPARE(record.uninitialised, 0);
    QCOMPARE(record.otherCalls, 0);
    QVERIFY(record.areOutputsCleared);
}

void tst_openH264Decoder::isADecoder()
{
    CxOpenH264Decoder decoder;
    QCOMPARE(decoder.name(), QStringLiteral("OpenH264"));
    QCOMPARE(decoder.fourCC(), 0x34363248u);
    QVERIFY(decoder.qt_metacast("IxVideoDecoder") == static_cast<IxVideoDecoder*>(&decoder));
    int const info = decoder.metaObject()->indexOfClassInfo("CustomName");
    QCOMPARE(QByteArray(decoder.metaObject()->classInfo(info).value()), QByteArray("H.264 Video Decoder"));
    std::unique_ptr<QObject> const created(CxOpenH264Decoder::staticMetaObject.newInstance());
    QVERIFY(qobject_cast<CxOpenH264Decoder*>(created.get()) != nullptr);
    decoderLog(nullptr, 0, nullptr);
}

void tst_openH264Decoder::libraryIsSetUpOnceWithFixedParameters()
{
    CxFakeAccessor accessor;
    fx_Fill(accessor, 2, {0});
    CxOpenH264Decoder decoder;
    for (int frame = 0; frame < 2; ++frame)
        QVERIFY(fx_Decode(decoder, accessor, frame).result);

    SxOpenH264DecoderDouble const& record = fx_OpenH264DecoderDouble();
    QCOMPARE(record.created, 1);
    QCOMPARE(record.initialised, 1);
    QCOMPARE(static_cast<int>(record.param.uiTargetDqLayer), 255);
    QCOMPARE(static_cast<int>(record.param.eEcActiveIdc), 2);
    QCOMPARE(record.param.sVideoProperty.size, 8u);
    QCOMPARE(static_cast<int>(record.param.sVideoProperty.eVideoBsType), 1);
    QVERIFY(record.isParamZeroBeside);
}

void tst_openH264Decoder::libraryEndsWithItsObject()
{
    CxFakeAccessor accessor;
    fx_Fill(accessor, 1, {0});
    {
        CxOpenH264Decoder decoder;
        QVERIFY(fx_Decode(decoder, accessor, 0).result);
        fx_OpenH264DecoderDouble().calls.clear();
    }
    QCOMPARE(fx_OpenH264DecoderDouble().calls, QStringList({"end", "destroy"}));
}

void tst_openH264Decoder::libraryIsUntouchedWithoutDecoding()
{
    {
        CxOpenH264Decoder decoder;
    }
    QCOMPARE(fx_OpenH264DecoderDouble().created, 0);
    QCOMPARE(fx_OpenH264DecoderDouble().calls, QStringList());
}

void tst_openH264Decoder::frameIsFedUnitByUnit_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<QStringList>("units");

    QTest::newRow("one unit") << QByteArray("00000001 65 6480") << QStringList("00000001656480");
    QTest::newRow("start code of three bytes") << QByteArray("000001 65 6480") << QStringList("000001656480");
    QTest::newRow("three units") << QByteArray("00000001 67 4201 00000001 68 CE 000001 65 6480")
                                 << QStringList({"00000001674201", "0000000168ce", "000001656480"});
    QTest::newRow("zeros ahead of a start code of four bytes belong to the unit before")
        << QByteArray("00000001 67 42 0000 00000001 65 6480")
        << QStringList({"0000000167420000", "00000001656480"});
    QTest::newRow("a zero ahead of a start code of three bytes makes it one of four")
        << QByteArray("000001 67 42 00000001 65 6480") << QStringList({"0000016742", "00000001656480"});
    QTest::newRow("look-alikes are payload") << QByteArray("00000001 67 000002 000003 0001 00000001 65 6480")
                                             << QStringList({"00000001670000020000030001", "00000001656480"});
    QTest::newRow("units without any bytes") << QByteArray("000001 000001 00000001 000001 65 6480")
                                             << QStringList({"000001", "000001", "00000001", "000001656480"});
    QTest::newRow("nothing behind the picture is fed")
        << QByteArray("00000001 65 6480 00000001 68 CE 00000001 65 6580") << QStringList("00000001656480");
}

void tst_openH264Decoder::frameIsFedUnitByUnit()
{
    QFETCH(QByteArray, frame);
    QFETCH(QStringList, units);
    CxFakeAccessor accessor;
    accessor.keys = {0};
    accessor.frames = {QByteArray::fromHex(frame)};
    CxOpenH264Decoder decoder;
    QCOMPARE(fx_Decode(decoder, accessor, 0).luma, 0x64);
    QStringList actual;
    for (QByteArray const& unit : std::as_const(fx_OpenH264DecoderDouble().units))
        actual.append(QString::fromLatin1(unit.toHex()));
    QCOMPARE(actual, units);
}

void tst_openH264Decoder::libraryIsAskedForEachPicture_data()
{
    QTest::addColumn<Delivery>("delivery");
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QStringList>("calls");

    QByteArray const key = fx_KeyFrame(kLumaBase);
    QByteArray const slice = fx_Slice(0x61, kLumaBase);
    QStringList const sets = {"unit 67", "empty", "unit 68", "empty"};
    QTest::newRow("picture with its slice")
        << Delivery::AtUnit << key << true << (sets + QStringList("unit 65"));
    QTest::newRow("picture with the empty call")
        << Delivery::AtEmptyCall << key << true << (sets + QStringList({"unit 65", "empty"}));
    QTest::newRow("picture held back")
        << Delivery::AtFlush << key << true << (sets + QStringList({"unit 65", "empty", "held?", "flush"}));
    QTest::newRow("no picture") << Delivery::Never << key << false
                                << (sets + QStringList({"unit 65", "empty", "held?"}));
    QTest::newRow("slice, picture with it") << Delivery::AtUnit << slice << true << QStringList("unit 61");
    QTest::newRow("slice, picture with the empty call")
        << Delivery::AtEmptyCall << slice << true << QStringList({"unit 61", "empty"});
    QTest::newRow("slice, picture held back")
        << Delivery::AtFlush << slice << true << QStringList({"unit 61", "empty", "held?", "flush"});
    for (int const header : {0x66, 0x67, 0x68, 0x09, 0x0C})
        QTest::addRow("only slices are asked for held pictures, not %02x", static_cast<unsigned>(header))
            << Delivery::AtFlush << fx_Unit(header, "\x01\x02") << false
            << QStringList({QStringLiteral("unit %1").arg(header, 2, 16, QLatin1Char('0')), "empty"});
    QTest::newRow("a slice without header asks neither")
        << Delivery::AtFlush << QByteArray::fromHex("00000001") << false << QStringList({"unit ", "empty"});
}

void tst_openH264Decoder::libraryIsAskedForEachPicture()
{
    QFETCH(Delivery, delivery);
    QFETCH(QByteArray, frame);
    QFETCH(bool, result);
    QFETCH(QStringList, calls);
    fx_OpenH264DecoderDouble().delivery = delivery;
    CxFakeAccessor accessor;
    accessor.keys = {0};
    accessor.frames = {frame};
    CxOpenH264Decoder decoder;
    CxMessageRecorder messages;
    QCOMPARE(fx_Decode(decoder, accessor, 0).result, result);
    QCOMPARE(fx_OpenH264DecoderDouble().calls, calls);
    QCOMPARE(messages.takeRaw(), QStringList());
}

void tst_openH264Decoder::everyWalkFeedsTheFramesExpected_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::newRow("0") << QList<int>{0};
    QTest::newRow("0, 10, 20, 30") << QList<int>{0, 10, 20, 30};
    QTest::newRow("all") << fx_Range(0, 39);
    QTest::newRow("irregular") << QList<int>{0, 1, 2, 7, 8, 21, 39};
    QTest::newRow("not from the first") << QList<int>{5, 15, 16};
    QTest::newRow("the last only") << QList<int>{39};
    QTest::newRow("every fifth") << QList<int>{0, 5, 10, 15, 20, 25, 30, 35};
}

void tst_openH264Decoder::everyWalkFeedsTheFramesExpected()
{
    QFETCH(QList<int>, keys);
    CxFakeAccessor accessor;
    fx_Fill(accessor, 40, keys);
    CxOpenH264Decoder kept; // all in one object, and each in an object of its own
    for (int last = -1; last < 40; ++last) {
        for (int target = 0; target < 40; ++target) {
            accessor.last = last;
            QList<int> const expected = fx_ExpectedWalk(keys, last, target);
            CxOpenH264Decoder fresh;
            for (CxOpenH264Decoder* const decoder : {&kept, &fresh}) {
                SxOutcome const outcome = fx_Decode(*decoder, accessor, target);
                QVERIFY(outcome.result);
                QCOMPARE(outcome.asked, expected);
                QCOMPARE(outcome.luma, kLumaBase + target);
            }
        }
    }
}

void tst_openH264Decoder::walkStartsAtKeyFrameUnlessInStep_data()
{
    QTest::addColumn<int>("last");
    QTest::addColumn<int>("target");
    QTest::addColumn<QList<int>>("asked");

    QTest::newRow("frame 0") << -1 << 0 << QList<int>{0};
    QTest::newRow("goes on in the group") << 12 << 15 << QList<int>{13, 14, 15};
    QTest::newRow("back into an earlier group") << 25 << 15 << fx_Range(10, 15);
    QTest::newRow("the next") << 14 << 15 << QList<int>{15};
    QTest::newRow("a key frame") << 3 << 10 << QList<int>{10};
    QTest::newRow("the same once more") << 15 << 15 << fx_Range(10, 15);
    QTest::newRow("back in the group") << 17 << 15 << fx_Range(10, 15);
    QTest::newRow("the last one is the key frame itself") << 10 << 12 << QList<int>{10, 11, 12};
    QTest::newRow("behind the key frame") << 10 << 11 << QList<int>{11};
    QTest::newRow("nothing processed") << -1 << 5 << fx_Range(0, 5);
    QTest::newRow("a last frame that makes no sense") << -9 << 5 << fx_Range(0, 5);
    QTest::newRow("a last frame behind the end") << 4711 << 25 << fx_Range(20, 25);
}

void tst_openH264Decoder::walkStartsAtKeyFrameUnlessInStep()
{
    QFETCH(int, last);
    QFETCH(int, target);
    QFETCH(QList<int>, asked);
    CxFakeAccessor accessor;
    fx_Fill(accessor, 30, {0, 10, 20});
    accessor.last = last;
    CxOpenH264Decoder decoder;
    SxOutcome const outcome = fx_Decode(decoder, accessor, target);
    QVERIFY(outcome.result);
    QCOMPARE(outcome.asked, asked);
    QCOMPARE(outcome.luma, kLumaBase + target);
}

void tst_openH264Decoder::impossibleFrameIsRefusedWithoutAsking()
{
    CxMessageRecorder messages;
    CxFakeAccessor accessor;
    fx_Fill(accessor, 3, {0});
    CxOpenH264Decoder decoder;
    SxPicBuf picture;
    QVERIFY(!decoder.decode(0, nullptr, picture));
    for (int const frame : {-1, 3, 4, INT_MAX, INT_MIN})
        QVERIFY(!fx_Decode(decoder, accessor, frame).result);
    accessor.keys.clear();
    QVERIFY(!fx_Decode(decoder, accessor, 0).result);
    accessor.count = 0;
    QVERIFY(!fx_Decode(decoder, accessor, 0).result);
    QCOMPARE(accessor.asked, QList<int>());
    QCOMPARE(fx_OpenH264DecoderDouble().created, 0);
    QCOMPARE(messages.takeRaw(), QStringList());
}

void tst_openH264Decoder::emptyFrameIsNothingToDecode()
{
    CxFakeAccessor accessor;
    fx_Fill(accessor, 3, {0});
    accessor.frames[1].clear();
    accessor.last = 0;
    CxOpenH264Decoder decoder;
    SxPicBuf none;
    QVERIFY(decoder.decode(1, &accessor, none));
    QVERIFY(!none.data);
    CxTestPicture supplied(16, 16);
    supplied.buf.formatFlag = true;
    supplied.fillNoise(1);
    QByteArray const before(reinterpret_cast<char*>(supplied.buf.data), 16 * 64);
    QVERIFY(decoder.decode(1, &accessor, supplied.buf));
    QCOMPARE(QByteArray(reinterpret_cast<char*>(supplied.buf.data), 16 * 64), before);
    QCOMPARE(accessor.asked, QList<int>());
    accessor.last = 1; // it counts as processed
    QCOMPARE(fx_Decode(decoder, accessor, 2).asked, QList<int>{2});
}

void tst_openH264Decoder::emptyFrameShowsTheOneBeforeItOnItsWay()
{
    CxFakeAccessor accessor;
    fx_Fill(accessor, 5, {0});
    accessor.frames[3].clear();
    accessor.frames[4].clear();
    CxOpenH264Decoder decoder;
    SxOutcome const outcome = fx_Decode(decoder, accessor, 4);
    QVERIFY(outcome.result);
    QCOMPARE(outcome.luma, kLumaBase + 2);
}

void tst_openH264Decoder::picturesOnTheWayAreNotWritten()
{
    CxFakeAccessor accessor;
    fx_Fill(accessor, 5, {0});
    accessor.refused = {4};
    CxOpenH264Decoder decoder;
    CxTestPicture supplied(16, 16);
    supplied.buf.formatFlag = true;
    supplied.fillNoise(1);
    QByteArray const before(reinterpret_cast<char*>(supplied.buf.data), 16 * 64);
    QVERIFY(!decoder.decode(4, &accessor, supplied.buf));
    QCOMPARE(accessor.asked, fx_Range(0, 4));
    QCOMPARE(QByteArray(reinterpret_cast<char*>(supplied.buf.data), 16 * 64), before);
}

void tst_openH264Decoder::missingMemorySkipsTheFrame()
{
    CxFakeAccessor accessor;
    fx_Fill(accessor, 6, {0});
    accessor.last = 3;
    accessor.frames[4] += QByteArray(1 << 20, '\x55');
    CxOpenH264Decoder decoder;
    {
        CxAllocationFailure const failure(1 << 20);
        CxMessageRecorder messages;
        SxOutcome const skipped = fx_Decode(decoder, accessor, 4);
        QVERIFY(skipped.result);
        QCOMPARE(skipped.luma, -1);
        QCOMPARE(skipped.asked, QList<int>());
        QCOMPARE(messages.takeRaw(), QStringList());
    }
    // The reference pictures lack a frame now.
    accessor.last = 4;
    QCOMPARE(fx_Decode(decoder, accessor, 5).asked, fx_Range(0, 5));
}

void tst_openH264Decoder::suppliedPictureMustBeRGB32_data()
{
    QTest::addColumn<quint32>("components");
    QTest::addColumn<quint32>("sampleType");
    QTest::addColumn<quint32>("layout");
    QTest::addColumn<bool>("formatFlag");
    QTest::addColumn<bool>("isAccepted");

    QTest::newRow("RGB32") << 4u << 2u << 1u << true << true;
    for (quint32 const components : {0u, 1u, 2u, 3u, 5u})
        QTest::addRow("%u components", components) << components << 2u << 1u << true << false;
    for (quint32 type = 0; type <= 14; ++type)
        QTest::addRow("sample type %u", type) << 4u << type << 1u << true << (type < 3 || type > 11);
    for (quint32 const layout : {0u, 2u})
        QTest::addRow("layout %u", layout) << 4u << 2u << layout << true << false;
    QTest::newRow("without the flag") << 4u << 2u << 1u << false << false;
}

void tst_openH264Decoder::suppliedPictureMustBeRGB32()
{
    QFETCH(quint32, components);
    QFETCH(quint32, sampleType);
    QFETCH(quint32, layout);
    QFETCH(bool, formatFlag);
    QFETCH(bool, isAccepted);
    CxFakeAccessor accessor;
    fx_Fill(accessor, 1, {0});
    CxTestPicture picture(16, 16);
    picture.fillNoise(3);
    picture.buf.components = components;
    picture.buf.sampleType = sampleType;
    picture.buf.layout = layout;
    picture.buf.formatFlag = formatFlag;
    QByteArray const before(reinterpret_cast<char*>(picture.buf.data), 16 * 64);

    CxOpenH264Decoder decoder;
    CxMessageRecorder messages;
    QCOMPARE(decoder.decode(0, &accessor, picture.buf), isAccepted);
    QCOMPARE(!accessor.asked.isEmpty(), isAccepted);
    if (isAccepted)
        QCOMPARE(fx_Luma(picture.buf), kLumaBase);
    else
        QCOMPARE(QByteArray(reinterpret_cast<char*>(picture.buf.data), 16 * 64), before);
    QCOMPARE(messages.takeRaw(), QStringList());
}

void tst_openH264Decoder::suppliedPictureMustHaveTheSize_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<quint32>("pitch");
    QTest::addColumn<bool>("isAccepted");

    QTest::newRow("the stream's") << 32u << 16u << 128u << true;
    QTest::newRow("with padding") << 32u << 16u << 256u << true;
    QTest::newRow("wider") << 34u << 16u << 136u << false;
    QTest::newRow("narrower") << 30u << 16u << 120u << false;
    QTest::newRow("higher") << 32u << 18u << 128u << false;
    QTest::newRow("lower") << 32u << 14u << 128u << false;
    QTest::newRow("turned") << 16u << 32u << 64u << false;
    QTest::newRow("rows shorter than their pixels") << 32u << 16u << 124u << false;
    QTest::newRow("rows of nothing") << 32u << 16u << 0u << false;
}

void tst_openH264Decoder::suppliedPictureMustHaveTheSize()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QFETCH(quint32, pitch);
    QFETCH(bool, isAccepted);
    fx_OpenH264DecoderDouble().width = 32;
    CxFakeAccessor accessor;
    fx_Fill(accessor, 1, {0});
    std::vector<uchar> bytes(size_t(pitch) * height, 0x5A);
    SxPicBuf picture;
    picture.width = width;
    picture.height = height;
    picture.pitch = pitch;
    picture.components = 4;
    picture.sampleType = 2;
    picture.formatFlag = true;
    uchar none = 0;
    picture.data = bytes.empty() ? &none : bytes.data();

    CxOpenH264Decoder decoder;
    CxMessageRecorder messages;
    QCOMPARE(decoder.decode(0, &accessor, picture), isAccepted);
    if (isAccepted)
        QCOMPARE(fx_Luma(picture), kLumaBase);
    else
        QVERIFY(bytes == std::vector<uchar>(bytes.size(), 0x5A));
    QVERIFY(picture.data != nullptr); // never freed: the memory is the caller's
    QCOMPARE(messages.takeRaw(), QStringList());
}

void tst_openH264Decoder::pictureWithoutMemoryGetsIt()
{
    fx_OpenH264DecoderDouble().width = 48;
    fx_OpenH264DecoderDouble().height = 32;
    CxFakeAccessor accessor;
    fx_Fill(accessor, 1, {0});
    CxOpenH264Decoder decoder;
    SxPicBuf picture;
    QVERIFY(decoder.decode(0, &accessor, picture));
    QCOMPARE(picture.width, 48u);
    QCOMPARE(picture.height, 32u);
    QVERIFY(picture.pitch >= 48u * 4u);
    QCOMPARE(picture.components, 4u);
    QCOMPARE(picture.bitsPerSample, 8u);
    QCOMPARE(picture.auxField, 0u);
    QCOMPARE(picture.sampleType, 2u);
    QCOMPARE(picture.layout, 1u);
    QCOMPARE(picture.formatVariant, 0u);
    QVERIFY(picture.formatFlag);
    QCOMPARE(fx_Luma(picture), kLumaBase);
    CxPicBufAPI::FreePicBuf(picture, true);
}

void tst_openH264Decoder::paddedPlanesAreReadByTheirStride()
{
    fx_OpenH264DecoderDouble().width = 30;
    fx_OpenH264DecoderDouble().height = 18;
    CxFakeAccessor accessor;
    fx_Fill(accessor, 1, {0});
    for (int const padding : {0, 2, 34, 64}) {
        fx_OpenH264DecoderDouble().stridePadding = padding;
        CxOpenH264Decoder decoder;
        QCOMPARE(fx_Decode(decoder, accessor, 0).luma, kLumaBase);
    }
}

void tst_openH264Decoder::sizeThatChangesWithinTheWalkIsRefused()
{
    CxFakeAccessor accessor;
    fx_Fill(accessor, 3, {0});
    accessor.frames[1] = fx_Unit(0x61, "\x70\x02\x01"); // 32 x 16
    CxOpenH264Decoder decoder;
    SxPicBuf picture;
    QVERIFY(!decoder.decode(2, &accessor, picture));
    QVERIFY(picture.data != nullptr); // frame 0's, now the caller's
    QCOMPARE(picture.width, 16u);
    CxPicBufAPI::FreePicBuf(picture, true);
    QCOMPARE(fx_Decode(decoder, accessor, 0).luma, kLumaBase);
    accessor.last = 0;
    QCOMPARE(fx_Decode(decoder, accessor, 1).luma, 0x70); // by itself it has a picture of its size
}

void tst_openH264Decoder::failureIsReportedOnce_data()
{
    QTest::addColumn<Delivery>("delivery");
    QTest::addColumn<int>("unitError");
    QTest::addColumn<int>("emptyError");
    QTest::addColumn<int>("flushError");
    QTest::addColumn<QString>("text");

    QString const text = QStringLiteral("CxOpenH264Decoder::decode(): The decoder failed with code: %1");
    QTest::newRow("unit") << Delivery::AtEmptyCall << 4 << 0 << 0 << text.arg(4);
    QTest::newRow("unit that gave a picture") << Delivery::AtUnit << 32 << 0 << 0 << text.arg(32);
    QTest::newRow("empty call") << Delivery::AtEmptyCall << 0 << 16 << 0 << text.arg(16);
    QTest::newRow("flush") << Delivery::AtFlush << 0 << 0 << 16384 << text.arg(16384);
    QTest::newRow("no picture is no message") << Delivery::Never << 0 << 0 << 0 << QString();
}

void tst_openH264Decoder::failureIsReportedOnce()
{
    QFETCH(Delivery, delivery);
    QFETCH(int, unitError);
    QFETCH(int, emptyError);
    QFETCH(int, flushError);
    QFETCH(QString, text);
    SxOpenH264DecoderDouble& script = fx_OpenH264DecoderDouble();
    script.delivery = delivery;
    script.unitError = unitError;
    script.emptyError = emptyError;
    script.flushError = flushError;
    script.errorAt = kLumaBase;
    CxFakeAccessor accessor;
    fx_Fill(accessor, 1, {0});
    CxOpenH264Decoder decoder;
    CxMessageRecorder messages;
    SxOutcome const outcome = fx_Decode(decoder, accessor, 0);
    QVERIFY(!outcome.result);
    QCOMPARE(outcome.luma, -1);
    QCOMPARE(messages.takeTexts(), text.isEmpty() ? QStringList() : QStringList(text));
    QCOMPARE(script.destroyed, 0); // a failure keeps the library's object
}

void tst_openH264Decoder::failedCreationIsTriedAgain_data()
{
    QTest::addColumn<int>("createError");
    QTest::addColumn<bool>("givesHandle");
    QTest::addColumn<int>("initError");
    QTest::addColumn<bool>("isReported");

    QTest::newRow("no handle") << 1 << false << 0 << true;
    QTest::newRow("error with a handle") << 1 << true << 0 << true;
    QTest::newRow("not initialised") << 0 << true << 1 << false;
}

void tst_openH264Decoder::failedCreationIsTriedAgain()
{
    QFETCH(int, createError);
    QFETCH(bool, givesHandle);
    QFETCH(int, initError);
    QFETCH(bool, isReported);
    QString const text = QStringLiteral("CxOpenH264Decoder::decode(): Cannot create the OpenH264 decoder.");
    SxOpenH264DecoderDouble& script = fx_OpenH264DecoderDouble();
    script.createError = createError;
    script.givesHandle = givesHandle;
    script.initError = initError;
    CxFakeAccessor accessor;
    fx_Fill(accessor, 1, {0});
    CxOpenH264Decoder decoder;
    CxMessageRecorder messages;
    for (int attempt = 0; attempt < 2; ++attempt) {
        SxOutcome const outcome = fx_Decode(decoder, accessor, 0);
        QVERIFY(!outcome.result);
        QCOMPARE(outcome.asked, QList<int>());
        QCOMPARE(messages.takeTexts(), isReported ? QStringList(text) : QStringList());
        QCOMPARE(script.destroyed, script.created);
    }

    script.createError = script.initError = 0;
    script.givesHandle = true;
    QCOMPARE(fx_Decode(decoder, accessor, 0).luma, kLumaBase);
}

void tst_openH264Decoder::startsAfreshAfterFailure_data()
{
    QTest::addColumn<Delivery>("delivery");
    QTest::addColumn<Action>("damage");

    auto const at = [](int frame) { return kLumaBase + frame; };
    QTest::newRow("unit refused") << Delivery::AtEmptyCall << Action([at](CxFakeAccessor&) {
        fx_OpenH264DecoderDouble().errorAt = at(12);
        fx_OpenH264DecoderDouble().unitError = 4;
    });
    QTest::newRow("unit refused, in a stream whose pictures are held")
        << Delivery::AtFlush << Action([at](CxFakeAccessor&) {
               fx_OpenH264DecoderDouble().errorAt = at(12);
               fx_OpenH264DecoderDouble().unitError = 4;
           });
    QTest::newRow("empty call refused") << Delivery::AtEmptyCall << Action([at](CxFakeAccessor&) {
        fx_OpenH264DecoderDouble().errorAt = at(12);
        fx_OpenH264DecoderDouble().emptyError = 4;
    });
    QTest::newRow("flush refused") << Delivery::AtFlush << Action([](CxFakeAccessor&) {
        fx_OpenH264DecoderDouble().flushError = 4;
    });
    QTest::newRow("no slice") << Delivery::AtEmptyCall
                              << Action([](CxFakeAccessor& a) { a.frames[12] = fx_Unit(0x68, "\x01\x02"); });
    QTest::newRow("no picture") << Delivery::AtFlush << Action([](CxFakeAccessor&) {
        fx_OpenH264DecoderDouble().isFlushStuck = true;
    });
    QTest::newRow("picture of no size")
        << Delivery::AtEmptyCall
        << Action([](CxFakeAccessor& a) { a.frames[12] = fx_Unit(0x61, QByteArray("\x70\x00\x00", 3)); });
    QTest::newRow("bytes missing once something was fed")
        << Delivery::AtEmptyCall << Action([](CxFakeAccessor& a) { a.refused = {13}; });
}

void tst_openH264Decoder::startsAfreshAfterFailure()
{
    QFETCH(Delivery, delivery);
    QFETCH(Action, damage);
    fx_OpenH264DecoderDouble().delivery = delivery;
    CxFakeAccessor accessor;
    fx_Fill(accessor, 30, {0, 10, 20});
    CxFakeAccessor const intact = accessor;
    CxOpenH264Decoder decoder;
    CxMessageRecorder messages;
    QVERIFY(fx_Decode(decoder, accessor, 11).result);
    accessor.last = 11;
    damage(accessor);
    QVERIFY(!fx_Decode(decoder, accessor, 13).result);
    QVERIFY(!fx_Decode(decoder, accessor, 13).result); // however often

    SxOpenH264DecoderDouble& script = fx_OpenH264DecoderDouble();
    script.errorAt = -1;
    script.flushError = 0;
    script.isFlushStuck = false;
    accessor = intact;
    accessor.last = 11;
    // Going on behind frame 11 would be the way, did the reference pictures match.
    SxOutcome const outcome = fx_Decode(decoder, accessor, 13);
    QVERIFY(outcome.result);
    QCOMPARE(outcome.asked, fx_Range(10, 13));
    QCOMPARE(outcome.luma, kLumaBase + 13);
    accessor.last = 13;
    QCOMPARE(fx_Decode(decoder, accessor, 14).asked, QList<int>{14});
    QCOMPARE(script.created, 1);
}

void tst_openH264Decoder::staysInStepWhenNothingWasFed_data()
{
    QTest::addColumn<Action>("damage");

    QTest::newRow("bytes missing") << Action([](CxFakeAccessor& a) { a.refused = {12}; });
    QTest::newRow("no start code") << Action([](CxFakeAccessor& a) { a.frames[12] = "\x01\x02\x03\x04"; });
    QTest::newRow("three bytes") << Action([](CxFakeAccessor& a) { a.frames[12] = QByteArray("\0\0\1", 3); });
    QTest::newRow("size out of the buffer") << Action([](CxFakeAccessor& a) { a.reported = 4711; });
}

void tst_openH264Decoder::staysInStepWhenNothingWasFed()
{
    QFETCH(Action, damage);
    CxFakeAccessor accessor;
    fx_Fill(accessor, 30, {0, 10, 20});
    CxFakeAccessor const intact = accessor;
    CxOpenH264Decoder decoder;
    QVERIFY(fx_Decode(decoder, accessor, 11).result);
    accessor.last = 11;
    damage(accessor);
    CxMessageRecorder messages;
    SxOutcome const failed = fx_Decode(decoder, accessor, 12);
    QVERIFY(!failed.result);
    QCOMPARE(messages.takeRaw(), QStringList());
    accessor = intact;
    accessor.last = 11;
    SxOutcome const outcome = fx_Decode(decoder, accessor, 12);
    QCOMPARE(outcome.asked, QList<int>{12});
    QCOMPARE(outcome.luma, kLumaBase + 12);
}

void tst_openH264Decoder::failedRestartIsTriedAgain()
{
    SxOpenH264DecoderDouble& script = fx_OpenH264DecoderDouble();
    CxFakeAccessor accessor;
    fx_Fill(accessor, 5, {0});
    accessor.last = 1;
    CxOpenH264Decoder decoder;
    CxMessageRecorder messages;
    script.errorAt = kLumaBase + 2;
    script.unitError = 4;
    QVERIFY(!fx_Decode(decoder, accessor, 2).result);
    script.errorAt = -1;
    script.initError = 1;
    QVERIFY(!fx_Decode(decoder, accessor, 2).result);
    script.initError = 0;
    SxOutcome const outcome = fx_Decode(decoder, accessor, 2);
    QCOMPARE(outcome.asked, fx_Range(0, 2));
    QCOMPARE(outcome.luma, kLumaBase + 2);
}

void tst_openH264Decoder::heldPictureIsNeverServedLater_data()
{
    QTest::addColumn<int>("unitError");
    QTest::addColumn<int>("emptyError");
    QTest::addColumn<int>("flushError");
    QTest::addColumn<bool>("isFlushStuck");

    QTest::newRow("unit") << 4 << 0 << 0 << false;
    QTest::newRow("empty call") << 0 << 4 << 0 << false;
    QTest::newRow("flush") << 0 << 0 << 4 << false;
    QTest::newRow("flush without a picture") << 0 << 0 << 0 << true;
}

void tst_openH264Decoder::heldPictureIsNeverServedLater()
{
    QFETCH(int, unitError);
    QFETCH(int, emptyError);
    QFETCH(int, flushError);
    QFETCH(bool, isFlushStuck);
    SxOpenH264DecoderDouble& script = fx_OpenH264DecoderDouble();
    CxFakeAccessor accessor;
    fx_Fill(accessor, 20, {0, 5, 10, 15});
    for (Delivery const delivery : {Delivery::AtEmptyCall, Delivery::AtFlush}) {
        for (int const next : {3, 4, 5, 6, 12, 19, 0, 1}) {
            script.delivery = delivery;
            CxOpenH264Decoder decoder;
            CxMessageRecorder messages;
            accessor.last = 2;
            script.errorAt = kLumaBase + 3;
            script.unitError = unitError;
            script.emptyError = emptyError;
            script.flushError = flushError;
            script.isFlushStuck = isFlushStuck;
            SxOutcome const failed = fx_Decode(decoder, accessor, 3);
            QVERIFY(!failed.result || failed.luma == kLumaBase + 3);
            script.errorAt = -1;
            script.flushError = 0;
            script.isFlushStuck = false;
            QCOMPARE(fx_Decode(decoder, accessor, next).luma, kLumaBase + next);
        }
    }
}

void tst_openH264Decoder::stuckFlushEnds()
{
    SxOpenH264DecoderDouble& script = fx_OpenH264DecoderDouble();
    script.delivery = Delivery::AtFlush;
    script.isFlushStuck = true;
    CxFakeAccessor accessor;
    fx_Fill(accessor, 5, {0});
    CxOpenH264Decoder decoder;
    for (int frame = 0; frame < 5; ++frame)
        QVERIFY(!fx_Decode(decoder, accessor, frame).result);
}

void tst_openH264Decoder::malformedFrameGivesNoPicture_data()
{
    QTest::addColumn<QByteArray>("hex");

    for (char const* hex : {"00", "0000", "000001", "00000000", "01000000", "00000165", "0000016500",
                            "000001000001", "0000000100000001", "00000001", "000001650000", "67420029"})
        QTest::newRow(hex) << QByteArray(hex);
}

void tst_openH264Decoder::malformedFrameGivesNoPicture()
{
    QFETCH(QByteArray, hex);
    CxFakeAccessor accessor;
    accessor.frames = {QByteArray::fromHex(hex)};
    accessor.keys = {0};
    fx_OpenH264DecoderDouble().delivery = Delivery::Never;
    CxOpenH264Decoder decoder;
    QVERIFY(!fx_Decode(decoder, accessor, 0).result);
    QByteArray fed;
    for (QByteArray const& unit : std::as_const(fx_OpenH264DecoderDouble().units))
        fed += unit;
    QVERIFY(accessor.frames.first().startsWith(fed));
}

void tst_openH264Decoder::sizesThatLieAreSurvived_data()
{
    QTest::addColumn<unsigned long>("announced");
    QTest::addColumn<unsigned long>("reported");
    QTest::addColumn<bool>("result");

    auto const size = static_cast<unsigned long>(fx_KeyFrame(kLumaBase).size());
    QTest::newRow("truth") << size << size << true;
    QTest::newRow("more announced than there is") << size + 1000 << size << true;
    QTest::newRow("more announced, and as much reported") << size + 1000 << size + 1000 << true;
    QTest::newRow("less announced than there is") << size - 1 << 0ul << false;
    QTest::newRow("one byte announced") << 1ul << 0ul << false;
    QTest::newRow("more reported than announced") << size << size + 1 << false;
    QTest::newRow("far more reported") << size << ~0ul << false;
    QTest::newRow("as good as nothing reported") << size << 3ul << false;
    QTest::newRow("half of it reported") << size << size / 2 << false;
    QTest::newRow("more announced than there is memory") << ~0ul / 2 << 0ul << true;
}

void tst_openH264Decoder::sizesThatLieAreSurvived()
{
    QFETCH(unsigned long, announced);
    QFETCH(unsigned long, reported);
    QFETCH(bool, result);
    CxAllocationFailure const failure(size_t(1) << 40);
    CxFakeAccessor accessor;
    fx_Fill(accessor, 1, {0});
    accessor.announced = announced;
    accessor.reported = reported;
    CxOpenH264Decoder decoder;
    CxMessageRecorder messages;
    QCOMPARE(fx_Decode(decoder, accessor, 0).result, result);
    QCOMPARE(messages.takeRaw(), QStringList());
}

void tst_openH264Decoder::keyFramesThatLieAreSurvived_data()
{
    QTest::addColumn<QList<int>>("keys");

    QTest::newRow("falling") << QList<int>{9, 5, 0};
    QTest::newRow("mixed") << QList<int>{5, 0, 9, 2};
    QTest::newRow("negative") << QList<int>{-7, -1};
    QTest::newRow("negative and others") << QList<int>{-7, 0, 5};
    QTest::newRow("behind the end") << QList<int>{0, 50, 100};
    QTest::newRow("only behind the end") << QList<int>{50, 100};
    QTest::newRow("extremes") << QList<int>{INT_MIN, INT_MAX};
    QTest::newRow("twice") << QList<int>{0, 0, 5, 5};
}

/// Whatever the list says: a picture of the frame asked for, or none, and no frame that is not there.
void tst_openH264Decoder::keyFramesThatLieAreSurvived()
{
    QFETCH(QList<int>, keys);
    CxFakeAccessor accessor;
    fx_Fill(accessor, 10, {0, 5});
    accessor.keys = keys;
    for (int count : {10, 12}) { // also a count that is too high
        accessor.count = count;
        for (int last : {INT_MIN, -2, -1, 0, 3, 8, 9, 40, INT_MAX}) {
            for (int target = 0; target < count; ++target) {
                CxOpenH264Decoder decoder;
                accessor.last = last;
                SxOutcome const outcome = fx_Decode(decoder, accessor, target);
                QVERIFY(target >= 10 || !outcome.result || outcome.luma == kLumaBase + target);
                for (int const frame : outcome.asked)
                    QVERIFY(frame >= 0 && frame < 10);
            }
        }
    }
}

QTEST_APPLESS_MAIN(tst_openH264Decoder)

#include "tst_openH264Decoder.moc"

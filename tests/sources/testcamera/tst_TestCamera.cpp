#include <QCryptographicHash>
#include <QtTest>

#include "LedDigits.h"
#include "PictureFormat.h"
#include "TestCamera.h"

/// The test camera: the same bytes everywhere, numbers that can be read, pictures of every format.
class tst_TestCamera : public QObject
{
    Q_OBJECT

private slots:
    void sameSeedSameBytesEverywhere_data();
    void sameSeedSameBytesEverywhere();
    void seedChangesOnlyTheNoise();
    void everyPictureDiffersFromTheOneBefore();
    void samplesUseTheirBitsAndNoMore_data();
    void samplesUseTheirBitsAndNoMore();
    void everySizeIsDrawn_data();
    void everySizeIsDrawn();
    void endsAfterItsFrames();
    void timestampsCountThirtyASecond();
    void memoryOfTheLastPictureIsUsedAgain();
    void frameNumberStandsInThePicture();
};

static SxTestCameraOptions fx_Options(quint32 width, quint32 height, QString const& format)
{
    SxTestCameraOptions options;
    options.width = width;
    options.height = height;
    options.format = *fx_TestCameraFormat(format);
    return options;
}

/// The bytes of a picture's pixels without the gaps between rows.
static QByteArray fx_Pixels(SxPicBuf const& picture)
{
    int const row = static_cast<int>(picture.width * picture.components * (fx_IsWordFormat(picture) ? 2 : 1));
    QByteArray pixels;
    for (quint32 y = 0; y < picture.height; ++y)
        pixels.append(reinterpret_cast<char const*>(picture.data) + size_t{y} * picture.pitch, row);
    return pixels;
}

static QByteArray fx_Hash(QByteArray const& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex();
}

void tst_TestCamera::sameSeedSameBytesEverywhere_data()
{
    // Words are hashed as this machine stores them: little-endian, as every machine of ours.
    QTest::addColumn<QByteArray>("hash");
    QTest::newRow("mono8") << QByteArray("055a195e2d3d77ae07401e5049217dfc");
    QTest::newRow("mono10") << QByteArray("29da1730e5fcdec7643635851d7a2224");
    QTest::newRow("mono12") << QByteArray("f5eeeae35517f3d27677dfbe2696599f");
    QTest::newRow("mono16") << QByteArray("9d6b0a747f5feedf806259699b040397");
    QTest::newRow("bgr24") << QByteArray("a03f68254d90fd99900928e179b5cef3");
    QTest::newRow("bgr32") << QByteArray("d086f9ca1e213bd283f0752a9d041c80");
    QTest::newRow("bgr48") << QByteArray("d66387ba3e21e136a63d47c91d37daf9");
    QTest::newRow("bgr64") << QByteArray("9717729e1219572bc25352732ce2f1f1");
}

void tst_TestCamera::sameSeedSameBytesEverywhere()
{
    QFETCH(QByteArray, hash);
    CxTestCamera camera(fx_Options(322, 182, QString::fromLatin1(QTest::currentDataTag())));
    CxOwnedPicture picture;
    QByteArray bytes;
    for (int frame = 0; frame < 5; ++frame) {
        QVERIFY(camera.next(picture.get()) == IxPictureSource::Result::Picture);
        bytes += fx_Pixels(picture.get());
    }
    QCOMPARE(fx_Hash(bytes), hash);
}

void tst_TestCamera::seedChangesOnlyTheNoise()
{
    SxTestCameraOptions options = fx_Options(160, 96, "mono8");
    CxTestCamera one(options);
    options.seed = 2;
    CxTestCamera two(options);
    CxOwnedPicture a;
    CxOwnedPicture b;
    QVERIFY(one.next(a.get()) == IxPictureSource::Result::Picture);
    QVERIFY(two.next(b.get()) == IxPictureSource::Result::Picture);
    QByteArray const pixelsA = fx_Pixels(a.get());
    QByteArray const pixelsB = fx_Pixels(b.get());
    QVERIFY(pixelsA != pixelsB);
    for (int i = 0; i < pixelsA.size(); ++i)
        QVERIFY(std::abs(static_cast<uchar>(pixelsA[i]) - static_cast<uchar>(pixelsB[i])) <= 9);
}

void tst_TestCamera::everyPictureDiffersFromTheOneBefore()
{
    CxTestScene scene(160, 96); // without noise, which always differs
    std::vector<quint16> before = scene.draw(0).samples;
    for (int frame = 1; frame < 100; ++frame) {
        std::vector<quint16> const& now = scene.draw(frame).samples;
        QVERIFY(now != before);
        before = now;
    }
}

void tst_TestCamera::samplesUseTheirBitsAndNoMore_data()
{
    QTest::addColumn<quint32>("components");
    QTest::addColumn<quint32>("bits");
    QTest::addColumn<quint32>("sampleType");
    QTest::newRow("mono8") << 1U << 8U << 2U;
    QTest::newRow("mono10") << 1U << 10U << 4U;
    QTest::newRow("mono12") << 1U << 12U << 4U;
    QTest::newRow("mono16") << 1U << 16U << 4U;
    QTest::newRow("bgr24") << 3U << 8U << 2U;
    QTest::newRow("bgr32") << 4U << 8U << 2U;
    QTest::newRow("bgr48") << 3U << 16U << 4U;
    QTest::newRow("bgr64") << 4U << 16U << 4U;
}

void tst_TestCamera::samplesUseTheirBitsAndNoMore()
{
    QFETCH(quint32, components);
    QFETCH(quint32, bits);
    QFETCH(quint32, sampleType);
    CxTestCamera camera(fx_Options(160, 96, QString::fromLatin1(QTest::currentDataTag())));
    CxOwnedPicture owned;
    QVERIFY(camera.next(owned.get()) == IxPictureSource::Result::Picture);
    SxPicBuf const& picture = owned.get();
    QCOMPARE(picture.components, components);
    QCOMPARE(picture.bitsPerSample, bits);
    QCOMPARE(picture.sampleType, sampleType);
    QCOMPARE(picture.layout, 1U);
    QCOMPARE(picture.width, 160U);
    QCOMPARE(picture.height, 96U);
    if (sampleType == 4) {
        quint32 const most = (1U << bits) - 1;
        QVERIFY(fx_HighestSample(picture) <= most);
        QVERIFY(fx_HighestSample(picture) > most / 8 * 7);
    }
}

void tst_TestCamera::everySizeIsDrawn_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::newRow("smallest") << 16U << 16U;
    QTest::newRow("odd") << 17U << 33U;
    QTest::newRow("flat") << 1000U << 16U;
    QTest::newRow("upright") << 16U << 1000U;
    QTest::newRow("wide rows") << 5000U << 20U;
}

void tst_TestCamera::everySizeIsDrawn()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    for (QString const& format : fx_TestCameraFormats()) {
        CxTestCamera camera(fx_Options(width, height, format));
        CxOwnedPicture picture;
        QSet<QByteArray> hashes;
        for (int frame = 0; frame < 20; ++frame) {
            QVERIFY(camera.next(picture.get()) == IxPictureSource::Result::Picture);
            hashes.insert(fx_Hash(fx_Pixels(picture.get())));
        }
        QCOMPARE(hashes.size(), 20);
    }
}

void tst_TestCamera::endsAfterItsFrames()
{
    SxTestCameraOptions options = fx_Options(16, 16, "mono8");
    options.frames = 2;
    CxTestCamera camera(options);
    QCOMPARE(camera.expectedPictures(), 2);
    CxOwnedPicture picture;
    QVERIFY(camera.next(picture.get()) == IxPictureSource::Result::Picture);
    QVERIFY(camera.next(picture.get()) == IxPictureSource::Result::Picture);
    QVERIFY(camera.next(picture.get()) == IxPictureSource::Result::End);
    QVERIFY(camera.next(picture.get()) == IxPictureSource::Result::End);

    options.frames = 0;
    CxTestCamera endless(options);
    QCOMPARE(endless.expectedPictures(), -1);
    for (int frame = 0; frame < 400; ++frame)
        QVERIFY(endless.next(picture.get()) == IxPictureSource::Result::Picture);
}

void tst_TestCamera::timestampsCountThirtyASecond()
{
    CxTestCamera camera(fx_Options(16, 16, "mono8"));
    CxOwnedPicture picture;
    for (quint64 frame = 0; frame < 61; ++frame) {
        QVERIFY(camera.next(picture.get()) == IxPictureSource::Result::Picture);
        QCOMPARE(picture.get().timestamp, frame * 1000000 / 30);
    }
}

void tst_TestCamera::memoryOfTheLastPictureIsUsedAgain()
{
    CxTestCamera grey(fx_Options(64, 48, "mono8"));
    CxTestCamera colour(fx_Options(64, 48, "bgr64"));
    CxOwnedPicture picture;
    QVERIFY(grey.next(picture.get()) == IxPictureSource::Result::Picture);
    unsigned char const* const memory = picture.get().data;
    QVERIFY(grey.next(picture.get()) == IxPictureSource::Result::Picture);
    QVERIFY(picture.get().data == memory);
    // Another format gets memory that fits; the address sanitizer watches.
    QVERIFY(colour.next(picture.get()) == IxPictureSource::Result::Picture);
    QCOMPARE(picture.get().components, 4U);
}

void tst_TestCamera::frameNumberStandsInThePicture()
{
    // Where the digits stand in a 1280 x 720 picture, every lit segment of the number shows.
    CxTestScene scene(1280, 720);
    SxCanvas const& picture = scene.draw(4711);
    SxCanvas digits{1280, 720, std::vector<quint16>(1280 * 720 * 3)};
    fx_DrawLed(digits, 28, 28, 158, "04711", fx_Rgb(120, 255, 214));
    SxColour48 const lit = fx_Rgb(120, 255, 214);
    int count = 0;
    for (size_t i = 0; i < digits.samples.size(); i += 3) {
        if (digits.samples[i + 1] != lit.green)
            continue;
        ++count;
        QCOMPARE(picture.samples[i], lit.blue);
        QCOMPARE(picture.samples[i + 1], lit.green);
        QCOMPARE(picture.samples[i + 2], lit.red);
    }
    QVERIFY(count > 10000);
}

QTEST_GUILESS_MAIN(tst_TestCamera)
#include "tst_TestCamera.moc"

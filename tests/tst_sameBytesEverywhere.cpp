#include <QtTest>

#include <memory>

#include <wels/codec_api.h>

#include "CxImageData.h"
#include "H264VideoLoader.h"
#include "IYUVConversion.h"
#include "PictureFormat.h"
#include "TestCamera.h"
#include "openH264Encoder.h"

/// What people compare between machines: the same pictures give the same planes, recordings and decoded
/// pictures on every system, processor and build. Only a recording may depend on the version of OpenH264.
class tst_sameBytesEverywhere : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void planesAndPixelsAreTheSame_data();
    void planesAndPixelsAreTheSame();
    void recordingIsTheSameWithTheSameOpenH264_data();
    void recordingIsTheSameWithTheSameOpenH264();
    void decodedPicturesAreTheSameWithEveryOpenH264();
};

static QByteArray fx_OpenH264Version()
{
    OpenH264Version const version = WelsGetCodecVersion();
    return QByteArray::number(version.uMajor) + '.' + QByteArray::number(version.uMinor) + '.' +
           QByteArray::number(version.uRevision);
}

static QByteArray fx_Hash(QByteArray const& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex();
}

static CxTestCamera fx_Camera(QString const& format)
{
    SxTestCameraOptions options;
    options.width = 322; // no multiple of a vector's width
    options.height = 182;
    options.format = *fx_TestCameraFormat(format);
    return CxTestCamera(options);
}

void tst_sameBytesEverywhere::initTestCase() { qInfo("OpenH264 %s", fx_OpenH264Version().constData()); }

void tst_sameBytesEverywhere::planesAndPixelsAreTheSame_data()
{
    QTest::addColumn<QByteArray>("planes");
    QTest::addColumn<QByteArray>("pixels");
    // The camera's formats show one scene in other steps: eight bits of each are the same.
    for (char const* format : {"mono8", "mono12"})
        QTest::newRow(format) << QByteArray("9680b0e81f99732b4e13497f73e5d665")
                              << QByteArray("1bb6915ffff7eaedc65a61dbfc2857c2");
    for (char const* format : {"bgr24", "bgr32", "bgr48", "bgr64"})
        QTest::newRow(format) << QByteArray("281230ffd5a4caba025fe8da23f38a68")
                              << QByteArray("c8a310399612c8a399bb2dcb45429516");
}

void tst_sameBytesEverywhere::planesAndPixelsAreTheSame()
{
    QFETCH(QByteArray, planes);
    QFETCH(QByteArray, pixels);
    CxTestCamera camera = fx_Camera(QString::fromLatin1(QTest::currentDataTag()));
    CxOwnedPicture picture;
    QVERIFY(camera.next(picture.get()) == IxPictureSource::Result::Picture);
    quint32 const width = picture.get().width;
    quint32 const height = picture.get().height;
    auto const capacity = GetIYUVSize(picture.get());
    QByteArray converted(static_cast<int>(capacity), '\0');
    auto* const y = reinterpret_cast<uchar*>(converted.data());
    QVERIFY(ConvertPicBuftoIYUV(picture.get(), y, capacity));
    QCOMPARE(fx_Hash(converted), planes);

    QByteArray shown(static_cast<int>(width * height * 4), '\0');
    SxPicBuf target;
    static_cast<SxPicBufInfo&>(target) = fx_PackedFormat(width, height, 4, 8);
    target.pitch = width * 4;
    target.data = reinterpret_cast<uchar*>(shown.data());
    uchar const* const u = y + width * height;
    QVERIFY(ConvertIYUVtoRGB32(target, y, u, u + width * height / 4, capacity, width, width / 2));
    QCOMPARE(fx_Hash(shown), pixels);
}

void tst_sameBytesEverywhere::recordingIsTheSameWithTheSameOpenH264_data()
{
    QTest::addColumn<QMap<QString, QVariant>>("options");
    QTest::addColumn<QMap<QString, QVariant>>("hashes"); // by the version of OpenH264
    auto const row = [](char const* name, QMap<QString, QVariant> const& options,
                        QMap<QString, QVariant> const& hashes) { QTest::newRow(name) << options << hashes; };
    row("as it comes", {},
        {{"2.3.1", "500db09147c43602ea9c36f583e16579"}, {"2.6.0", "5708187c1f3cc47d5dfbd164ba0e6c9a"}});
    row("lowest quality", {{"h264_quality", 1}, {"h264_keyframerate", 30}},
        {{"2.3.1", "3a98e2560c42120d7f9d48259c9df724"}, {"2.6.0", "3c4eb1585e53a3d28a9eb853ee670106"}});
    row("high profile, high complexity",
        {{"h264_quality", 10}, {"h264_complexity", 2}, {"h264_profile_idc", 100}},
        {{"2.3.1", "e4a0948069204ecec65b12e3946636b9"}, {"2.6.0", "b1c570e7665dbe527028c09bc86c81e2"}});
}

void tst_sameBytesEverywhere::recordingIsTheSameWithTheSameOpenH264()
{
    using Options = QMap<QString, QVariant>;
    QFETCH(Options, options);
    QFETCH(Options, hashes);
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions(options);
    CxTestCamera camera = fx_Camera(QStringLiteral("bgr32"));
    CxOwnedPicture picture;
    QByteArray stream;
    for (int frame = 0; frame < 40; ++frame) {
        QVERIFY(camera.next(picture.get()) == IxPictureSource::Result::Picture);
        unsigned long size = encoder.maxEncodedSize(picture.get());
        QByteArray coded(static_cast<int>(size), '\0');
        QVERIFY(encoder.encode(picture.get(), coded.data(), size, nullptr));
        stream.append(coded.constData(), static_cast<int>(size));
    }
    QByteArray const hash = fx_Hash(stream);
    QByteArray const version = fx_OpenH264Version();
    if (!hashes.contains(QString::fromLatin1(version)))
        QSKIP(("Not known of OpenH264 " + version + ", which gives " + hash).constData(), );
    QCOMPARE(hash, hashes[QString::fromLatin1(version)].toByteArray());
}

void tst_sameBytesEverywhere::decodedPicturesAreTheSameWithEveryOpenH264()
{
    CxH264VideoLoader loader;
    loader.setInputFile(QStringLiteral(CAMERA_RECORDING));
    QVERIFY(loader.load());
    QCOMPARE(loader.sequenceSize(), 12);
    QCryptographicHash hash(QCryptographicHash::Md5);
    for (int frame : {0, 11, 6, 5, 1, 2, 3, 10, 9, 8, 7, 4}) {
        std::unique_ptr<IxChainData> const data(loader.loadedData(frame));
        auto const* const image = qobject_cast<CxImageData const*>(data.get());
        QVERIFY(image);
        SxPicBuf const& picture = *image->picBuf();
        for (quint32 y = 0; y < picture.height; ++y)
            hash.addData(QByteArray::fromRawData(
                reinterpret_cast<char const*>(picture.data + size_t(y) * picture.pitch),
                static_cast<int>(picture.width * 4)));
    }
    QCOMPARE(hash.result().toHex(), QByteArray("f28c3c0d08334dbb159dc72e7c78e1f1"));
}

QTEST_GUILESS_MAIN(tst_sameBytesEverywhere)
#include "tst_sameBytesEverywhere.moc"

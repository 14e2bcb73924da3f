#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include "FFmpegSource.h"
#include "PictureFormat.h"
#include "support/PictureFiles.h"
#include "support/VideoFile.h"

/// Pictures through FFmpeg: every sample where it belongs, at the depth that the file has.
class tst_FFmpegSource : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void samplesAreExact_data();
    void samplesAreExact();
    void lossyPicturesComeClose();
    void bitsAreTheUsersWhereTheFileIsSilent();
    void bitsThatTheFileKnowsStay();
    void pnmFilesKnowTheirBits_data();
    void pnmFilesKnowTheirBits();
    void filesFollowEachOther();
    void timestampsAreThoseOfTheVideo();
    void rateIsThatOfTheVideo_data();
    void rateIsThatOfTheVideo();
    void rotationIsThatOfTheVideo_data();
    void rotationIsThatOfTheVideo();
    void rotationIsThatOfEachPicture();
    void timestampsOfARawStreamFollowTheRateThatItNames();
    void rawPicturesAreCopied_data();
    void rawPicturesAreCopied();
    void errorNamesTheFile();
    void inputsWithoutAPictureAreLeftOutAndNamed_data();
    void inputsWithoutAPictureAreLeftOutAndNamed();
    void damagedJpegsAreDeliveredAndNamed_data();
    void damagedJpegsAreDeliveredAndNamed();
    void fillBytesOfAJpegAreNoDamage();
    void cutStreamsAreToldAtTheirEnd_data();
    void cutStreamsAreToldAtTheirEnd();
    void packetsThatABroadcastLostAreTold();
    void damagedPicturesOfAVideoAreCounted();
    void aviWithEmptyPlacesIsWhole();
    void stopEndsTheWait();
    void devicesAreOpenedByName_data();
    void devicesAreOpenedByName();

private:
    QString path(QString const& name) const { return m_folder->filePath(name); }
    std::unique_ptr<QTemporaryDir> m_folder;
};

static int const kWidth = 19; // no multiple of anything, so that rows have gaps
static int const kHeight = 5;

void tst_FFmpegSource::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    CxFFmpegSource::setLogShown(false);
}

/// Samples that differ everywhere, below 1 << \p bits, as bytes or as words of one byte order.
static QVector<quint16> fx_Samples(int count, int bits)
{
    QVector<quint16> samples;
    for (int i = 0; i < count; ++i)
        samples += static_cast<quint16>((i * 40503 + 977) & ((1 << bits) - 1));
    return samples;
}

static QByteArray fx_Stored(QVector<quint16> const& samples, int bytes, bool bigEndian)
{
    QByteArray stored;
    for (quint16 const sample : samples) {
        if (bytes == 2 && bigEndian)
            stored += static_cast<char>(sample >> 8);
        stored += static_cast<char>(sample & 0xFF);
        if (bytes == 2 && !bigEndian)
            stored += static_cast<char>(sample >> 8);
    }
    return stored;
}

/// A picture's samples, row after row.
static QVector<quint16> fx_SamplesOf(SxPicBuf const& picture)
{
    QVector<quint16> samples;
    for (quint32 y = 0; y < picture.height; ++y) {
        unsigned char const* const row = picture.data + size_t{y} * picture.pitch;
        for (quint32 i = 0; i < picture.width * picture.components; ++i)
            samples += fx_IsWordFormat(picture) ? reinterpret_cast<quint16 const*>(row)[i] : quint16{row[i]};
    }
    return samples;
}

void tst_FFmpegSource::samplesAreExact_data()
{
    QTest::addColumn<int>("codec"); // AV_CODEC_ID_NONE: PNM by hand
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("stored"); // components in the file, in the order red, green, blue, alpha
    QTest::addColumn<int>("bits");
    QTest::addColumn<QVector<int>>("order"); // which stored component becomes which of the picture's

    QVector<int> const grey{0};
    QVector<int> const bgr{2, 1, 0};
    QVector<int> const bgra{2, 1, 0, 3};
    QTest::newRow("PGM 8") << int(AV_CODEC_ID_NONE) << 0 << 1 << 8 << grey;
    QTest::newRow("PGM 16") << int(AV_CODEC_ID_NONE) << 0 << 1 << 16 << grey;
    QTest::newRow("PPM 8") << int(AV_CODEC_ID_NONE) << 0 << 3 << 8 << bgr;
    QTest::newRow("PPM 16") << int(AV_CODEC_ID_NONE) << 0 << 3 << 16 << bgr;
    QTest::newRow("PNG grey 8") << int(AV_CODEC_ID_PNG) << int(AV_PIX_FMT_GRAY8) << 1 << 8 << grey;
    QTest::newRow("PNG grey 16") << int(AV_CODEC_ID_PNG) << int(AV_PIX_FMT_GRAY16BE) << 1 << 16 << grey;
    QTest::newRow("PNG grey 8 and alpha") << int(AV_CODEC_ID_PNG) << int(AV_PIX_FMT_YA8) << 2 << 8 << grey;
    QTest::newRow("PNG grey 16 and alpha")
        << int(AV_CODEC_ID_PNG) << int(AV_PIX_FMT_YA16BE) << 2 << 16 << grey;
    QTest::newRow("PNG colour 8") << int(AV_CODEC_ID_PNG) << int(AV_PIX_FMT_RGB24) << 3 << 8 << bgr;
    QTest::newRow("PNG colour 8 and alpha") << int(AV_CODEC_ID_PNG) << int(AV_PIX_FMT_RGBA) << 4 << 8 << bgra;
    QTest::newRow("PNG colour 16") << int(AV_CODEC_ID_PNG) << int(AV_PIX_FMT_RGB48BE) << 3 << 16 << bgr;
    QTest::newRow("PNG colour 16 and alpha")
        << int(AV_CODEC_ID_PNG) << int(AV_PIX_FMT_RGBA64BE) << 4 << 16 << bgra;
    QTest::newRow("TIFF grey 16") << int(AV_CODEC_ID_TIFF) << int(AV_PIX_FMT_GRAY16LE) << 1 << 16 << grey;
    QTest::newRow("TIFF colour 8") << int(AV_CODEC_ID_TIFF) << int(AV_PIX_FMT_RGB24) << 3 << 8 << bgr;
    QTest::newRow("TIFF colour 16") << int(AV_CODEC_ID_TIFF) << int(AV_PIX_FMT_RGB48LE) << 3 << 16 << bgr;
    QTest::newRow("BMP colour") << int(AV_CODEC_ID_BMP) << int(AV_PIX_FMT_BGR24) << 3 << 8
                                << QVector<int>{0, 1, 2};
    QTest::newRow("BMP grey") << int(AV_CODEC_ID_BMP) << int(AV_PIX_FMT_GRAY8) << 1 << 8
                              << QVector<int>{0, 0, 0, -1};
}

void tst_FFmpegSource::samplesAreExact()
{
    QFETCH(int, codec);
    QFETCH(int, format);
    QFETCH(int, stored);
    QFETCH(int, bits);
    QFETCH(QVector<int>, order);
    QVector<quint16> const samples = fx_Samples(kWidth * kHeight * stored, bits);
    bool const littleEndian = format == AV_PIX_FMT_GRAY16LE || format == AV_PIX_FMT_RGB48LE;
    QByteArray const bytes = fx_Stored(samples, bits / 8, !littleEndian);
    QByteArray const file =
        codec == AV_CODEC_ID_NONE
            ? fx_PnmFile(kWidth, kHeight, stored, (1 << bits) - 1, bytes)
            : fx_CodedPicture(AVCodecID(codec), AVPixelFormat(format), kWidth, kHeight, bytes);
    QVERIFY(fx_WriteFile(path("picture"), file)); // known by its content, not by its name

    CxFFmpegSource source({path("picture")}, 0, nullptr);
    CxOwnedPicture picture;
    QVERIFY2(source.next(picture.get()) == IxPictureSource::Result::Picture, qPrintable(source.errorText()));
    QCOMPARE(picture.get().width, quint32(kWidth));
    QCOMPARE(picture.get().height, quint32(kHeight));
    QCOMPARE(picture.get().components, quint32(order.size()));
    QCOMPARE(picture.get().bitsPerSample, quint32(bits));
    QCOMPARE(fx_IsWordFormat(picture.get()), bits > 8);
    QCOMPARE(source.knowsSignificantBits(), bits == 8);
    QVector<quint16> expected;
    for (int pixel = 0; pixel < kWidth * kHeight; ++pixel) {
        for (int const component : order)
            expected += component < 0 ? quint16{255} : samples[pixel * stored + component];
    }
    QCOMPARE(fx_SamplesOf(picture.get()), expected);
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::End);
}

void tst_FFmpegSource::lossyPicturesComeClose()
{
    // A plain colour survives JPEG; its full range must not be taken for a video's.
    QByteArray planes(64 * 48, char(250));
    planes += QByteArray(64 * 48 / 4, char(128)) + QByteArray(64 * 48 / 4, char(128));
    QVERIFY(
        fx_WriteFile(path("p.jpg"), fx_CodedPicture(AV_CODEC_ID_MJPEG, AV_PIX_FMT_YUVJ420P, 64, 48, planes)));
    CxFFmpegSource source({path("p.jpg")}, 0, nullptr);
    CxOwnedPicture picture;
    QVERIFY2(source.next(picture.get()) == IxPictureSource::Result::Picture, qPrintable(source.errorText()));
    QCOMPARE(picture.get().bitsPerSample, 8U);
    for (int i = 0; i < 3; ++i)
        QVERIFY(std::abs(picture.get().data[i] - 250) <= 2);
}

void tst_FFmpegSource::bitsAreTheUsersWhereTheFileIsSilent()
{
    QVERIFY(fx_WriteFile(path("p.pgm"), fx_PnmFile(16, 16, 1, 65535, QByteArray(16 * 16 * 2, '\1'))));
    CxFFmpegSource source({path("p.pgm")}, 12, nullptr);
    CxOwnedPicture picture;
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
    QCOMPARE(picture.get().bitsPerSample, 12U);
    QCOMPARE(fx_HighestSample(picture.get()), quint16{257});
    QCOMPARE(source.takeWarnings(), QStringList());
}

void tst_FFmpegSource::bitsThatTheFileKnowsStay()
{
    QVERIFY(fx_WriteFile(path("p.pgm"), fx_PnmFile(16, 16, 1, 255, QByteArray(16 * 16, '\1'))));
    CxFFmpegSource source({path("p.pgm"), path("p.pgm")}, 12, nullptr);
    CxOwnedPicture picture;
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
    QCOMPARE(picture.get().bitsPerSample, 8U);
    QStringList const warnings = source.takeWarnings();
    QCOMPARE(warnings.size(), 1);
    QVERIFY(warnings[0].contains("8 bits"));
    QCOMPARE(source.takeWarnings(), QStringList());
}

void tst_FFmpegSource::pnmFilesKnowTheirBits_data()
{
    QTest::addColumn<QByteArray>("magic");
    QTest::addColumn<int>("maxval");
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isKnown");
    struct
    {
        int maxval, bits;
    } const depths[] = {{511, 9}, {1023, 10}, {4095, 12}, {16383, 14}, {32767, 15}, {65535, 16}, {1000, 16}};
    for (QByteArray const magic : {"P2", "P3", "P5", "P6", "P7"}) {
        for (auto const& depth : depths)
            QTest::newRow(magic + ' ' + QByteArray::number(depth.maxval))
                << magic << depth.maxval << depth.bits << (depth.maxval != 65535);
    }
}

void tst_FFmpegSource::pnmFilesKnowTheirBits()
{
    QFETCH(QByteArray, magic);
    QFETCH(int, maxval);
    QFETCH(int, bits);
    QFETCH(bool, isKnown);
    bool const isColour = magic == "P3" || magic == "P6";
    bool const isText = magic == "P2" || magic == "P3";
    int const components = isColour ? 3 : 1;
    QVector<quint16> samples{0, 1, static_cast<quint16>(maxval)};
    for (quint16 const sample : fx_Samples(kWidth * kHeight * components - 3, 16))
        samples += static_cast<quint16>(sample % (maxval + 1));
    QByteArray const most = QByteArray::number(maxval);
    QByteArray file =
        magic == "P7" ? "P7\nWIDTH 19\nHEIGHT 5\nDEPTH 1\nMAXVAL " + most + "\nTUPLTYPE GRAYSCALE\nENDHDR\n"
                      : magic + "\n# 255 by 255\n19 5\n" + most + '\n';
    for (quint16 const sample : samples)
        file += isText ? QByteArray::number(sample) + '\n' : fx_Stored({sample}, 2, true);
    QString const name = path(magic == "P7" ? "picture.pam" : "picture"); // PAM is known by its name only
    QVERIFY(fx_WriteFile(name, file));

    for (int const asked : {0, 12}) {
        CxFFmpegSource source({name}, asked, nullptr);
        CxOwnedPicture picture;
        QVERIFY2(source.next(picture.get()) == IxPictureSource::Result::Picture,
                 qPrintable(source.errorText()));
        QCOMPARE(source.knowsSignificantBits(), isKnown);
        QCOMPARE(picture.get().bitsPerSample, static_cast<quint32>(isKnown || asked == 0 ? bits : asked));
        QVector<quint16> actual = fx_SamplesOf(picture.get());
        for (int i = 0; isColour && i < actual.size(); i += 3)
            std::swap(actual[i], actual[i + 2]);
        if (bits < 16 || !isKnown) {
            QCOMPARE(actual, samples);
        } else { // no power of two: white is white
            QCOMPARE(actual[0], quint16{0});
            QCOMPARE(actual[2], quint16{65535});
        }
    }
}

void tst_FFmpegSource::filesFollowEachOther()
{
    QByteArray const planes(64 * 48 * 3 / 2, char(128));
    QVERIFY(fx_WriteFile(path("a.pgm"), fx_PnmFile(64, 48, 1, 255, QByteArray(64 * 48, 'a'))));
    QVERIFY(fx_WriteFile(path("b.y4m"), fx_Y4mFile(64, 48, "420jpeg", planes, 3)));
    QVERIFY(fx_WriteFile(path("c.ppm"), fx_PnmFile(64, 48, 3, 65535, QByteArray(64 * 48 * 6, 'c'))));
    CxFFmpegSource source({path("a.pgm"), path("b.y4m"), path("c.ppm")}, 0, nullptr);
    CxOwnedPicture picture;
    QVector<quint32> components;
    quint64 time = 0;
    while (source.next(picture.get()) == IxPictureSource::Result::Picture) {
        QVERIFY(components.isEmpty() || picture.get().timestamp > time);
        time = picture.get().timestamp;
        components += picture.get().components;
    }
    QCOMPARE(source.errorText(), QString());
    QCOMPARE(components, (QVector<quint32>{1, 4, 4, 4, 3}));

    CxFFmpegSource pictures({path("a.pgm"), path("a.pgm"), path("c.ppm")}, 0, nullptr);
    QCOMPARE(pictures.expectedPictures(), -1);
    for (quint64 i = 0; i < 3; ++i) {
        QVERIFY(pictures.next(picture.get()) == IxPictureSource::Result::Picture);
        QCOMPARE(pictures.expectedPictures(), 3);
        QCOMPARE(picture.get().timestamp, i * 1000000 / 30);
    }
}

void tst_FFmpegSource::timestampsAreThoseOfTheVideo()
{
    QByteArray file = fx_Y4mFile(64, 48, "420jpeg", QByteArray(64 * 48 * 3 / 2, char(128)), 3);
    file.replace("F30:1", "F10:1");
    QVERIFY(fx_WriteFile(path("v.y4m"), file));
    CxFFmpegSource source({path("v.y4m")}, 0, nullptr);
    CxOwnedPicture picture;
    for (quint64 i = 0; i < 3; ++i) {
        QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
        QCOMPARE(picture.get().timestamp, i * 100000);
    }
}

void tst_FFmpegSource::timestampsOfARawStreamFollowTheRateThatItNames()
{
    CxFFmpegSource source({TEST_DATA "/foreign/x264-rising.264"}, 0, nullptr);
    CxOwnedPicture picture;
    for (quint64 i = 0; i < 12; ++i) {
        QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
        QCOMPARE(picture.get().timestamp, i * 40000);
    }
}

void tst_FFmpegSource::rawPicturesAreCopied_data()
{
    QTest::addColumn<QString>("format");
    QTest::newRow("bgra") << "bgra";
    QTest::newRow("bgr0") << "bgr0";
}

void tst_FFmpegSource::rawPicturesAreCopied()
{
    QFETCH(QString, format);
    QVector<quint16> const samples = fx_Samples(kWidth * kHeight * 4, 8);
    QVERIFY(fx_WriteFile(path("raw"), fx_Stored(samples, 1, false).repeated(3)));
    SxFFmpegOptions const options{"rawvideo",
                                  {{"video_size", QStringLiteral("%1x%2").arg(kWidth).arg(kHeight)},
                                   {"pixel_format", format},
                                   {"framerate", "10"}}};
    CxFFmpegSource source({path("raw")}, 0, nullptr, options);
    CxOwnedPicture picture;
    for (quint64 i = 0; i < 3; ++i) {
        QVERIFY2(source.next(picture.get()) == IxPictureSource::Result::Picture,
                 qPrintable(source.errorText()));
        QCOMPARE(picture.get().components, 4U);
        QCOMPARE(picture.get().timestamp, i * 100000);
        QCOMPARE(fx_SamplesOf(picture.get()), samples);
    }
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::End);
}

void tst_FFmpegSource::errorNamesTheFile()
{
    QVERIFY(fx_WriteFile(path("good.pgm"), fx_PnmFile(16, 16, 1, 255, QByteArray(16 * 16, 'a'))));
    CxFFmpegSource source({path("good.pgm"), path("none.pgm"), path("good.pgm")}, 0, nullptr);
    CxOwnedPicture picture;
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Error);
    QVERIFY2(source.errorText().startsWith(path("none.pgm") + ": "), qPrintable(source.errorText()));
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Error); // it stays one
}

/// A picture with edges everywhere, so that no byte of its JPEG or PNG is there for nothing.
static QByteArray fx_CodedNoise(AVCodecID codec, AVPixelFormat format, int bytes)
{
    QByteArray samples;
    for (quint16 const sample : fx_Samples(bytes, 8))
        samples += static_cast<char>(sample);
    return fx_CodedPicture(codec, format, 64, 48, samples);
}

static QByteArray fx_Jpeg() { return fx_CodedNoise(AV_CODEC_ID_MJPEG, AV_PIX_FMT_YUVJ420P, 64 * 48 * 3 / 2); }

struct SxDelivered
{
    int pictures = 0;
    QStringList warnings;
};

static SxDelivered fx_ReadAll(CxFFmpegSource& source)
{
    SxDelivered delivered;
    CxOwnedPicture picture;
    while (source.next(picture.get()) == IxPictureSource::Result::Picture) {
        ++delivered.pictures;
        delivered.warnings += source.takeWarnings();
    }
    delivered.warnings += source.takeWarnings();
    return delivered;
}

void tst_FFmpegSource::rateIsThatOfTheVideo_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("step");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("rate");
    QTest::addColumn<bool>("isAverage");
    QTest::newRow("video") << "video.avi" << 1 << QString() << "30" << false;
    QTest::newRow("every second picture") << "video.mkv" << 2 << QString() << "15" << true;
    QTest::newRow("raw stream with a clock")
        << TEST_DATA "/foreign/x264-baseline.264" << -1 << QString() << "25" << false;
    QTest::newRow("raw stream without") << TEST_DATA "/camera.h264" << -1 << QString() << QString() << false;
    QTest::newRow("raw stream, told") << TEST_DATA "/camera.h264" << -1 << "30"
                                      << "30" << false;
    QTest::newRow("picture file") << "picture.pgm" << 0 << QString() << QString() << false;
    QTest::newRow("picture file, told") << "picture.pgm" << 0 << "7.5"
                                        << "7.5" << false;
}

void tst_FFmpegSource::rateIsThatOfTheVideo()
{
    QFETCH(QString, file);
    QFETCH(int, step);
    QFETCH(QString, given);
    QString const name = step < 0 ? file : path(file);
    if (step > 0)
        QVERIFY(fx_WriteVideo(name, step == 1 ? "avi" : "matroska", AV_CODEC_ID_MJPEG, 31, step));
    else if (step == 0)
        QVERIFY(fx_WriteFile(name, fx_PnmFile(16, 16, 1, 255, QByteArray(256, 'g'))));
    SxFFmpegOptions options;
    if (!given.isEmpty())
        options.options.insert(QStringLiteral("framerate"), given);
    CxFFmpegSource source({name}, 0, nullptr, options);
    fx_ReadAll(source);
    QVERIFY2(source.errorText().isEmpty(), qPrintable(source.errorText()));
    QTEST(source.rate().isKnown() ? source.rate().text() : QString(), "rate");
    QTEST(source.rate().isAverage, "isAverage");
}

void tst_FFmpegSource::rotationIsThatOfTheVideo_data()
{
    QTest::addColumn<QByteArray>("matrix"); // the upper left two by two (ISO/IEC 14496-12, 8.3.2)
    QTest::addColumn<int>("rotation");
    QByteArray const none = QByteArray::fromHex("00010000000000000000000000000000"
                                                "00010000");
    QTest::newRow("upright") << none << 0;
    QTest::newRow("quarter") << QByteArray::fromHex("000000000001000000000000ffff0000"
                                                    "00000000")
                             << 90;
    QTest::newRow("half") << QByteArray::fromHex("ffff0000000000000000000000000000"
                                                 "ffff0000")
                          << 180;
    QTest::newRow("three quarters") << QByteArray::fromHex("00000000ffff00000000000000010000"
                                                           "00000000")
                                    << 270;
}

void tst_FFmpegSource::rotationIsThatOfTheVideo()
{
    QFETCH(QByteArray, matrix);
    QVERIFY(fx_WriteVideo(path("turned.mp4"), "mp4", AV_CODEC_ID_MPEG4, 2));
    QByteArray bytes = fx_FileBytes(path("turned.mp4"));
    // The last is the track's, the one before it the file's.
    auto const place = bytes.lastIndexOf(QByteArray::fromHex("00010000000000000000000000000000"
                                                             "00010000"));
    QVERIFY(place > 0);
    bytes.replace(place, matrix.size(), matrix);
    QVERIFY(fx_WriteFile(path("turned.mp4"), bytes));
    CxFFmpegSource source({path("turned.mp4")}, 0, nullptr);
    fx_ReadAll(source);
    QTEST(source.rotation(), "rotation");
}

/// A JPEG that says its orientation in numbers of Exif; 0: says nothing.
static QByteArray fx_OrientedJpeg(char orientation)
{
    QByteArray jpeg = fx_Jpeg();
    // A segment with an entry of a TIFF directory: tag 0x0112, one word.
    QByteArray const segment = QByteArray::fromHex("ffe1002245786966000049492a00080000000100120103000100"
                                                   "0000") +
                               orientation + QByteArray(7, '\0');
    return orientation == 0 ? jpeg : jpeg.insert(2, segment);
}

void tst_FFmpegSource::rotationIsThatOfEachPicture()
{
    QStringList files;
    for (char const orientation : {char(6), char(0), char(3), char(8), char(1)}) {
        files += path(QStringLiteral("%1.jpg").arg(int(orientation)));
        QVERIFY(fx_WriteFile(files.last(), fx_OrientedJpeg(orientation)));
    }
    CxFFmpegSource source(files, 0, nullptr);
    CxOwnedPicture picture;
    for (int const rotation : {90, 0, 180, 270, 0}) {
        QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
        QCOMPARE(source.rotation(), rotation);
    }
}

void tst_FFmpegSource::inputsWithoutAPictureAreLeftOutAndNamed_data()
{
    QTest::addColumn<QByteArray>("file");
    QByteArray const png = fx_CodedNoise(AV_CODEC_ID_PNG, AV_PIX_FMT_GRAY8, 64 * 48);
    QTest::newRow("words") << QByteArray("no picture at all, only words");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("PNG cut off") << png.left(png.size() / 2);
    QTest::newRow("PNG without its last byte") << png.left(png.size() - 1);
    QByteArray const jpeg = fx_Jpeg();
    QTest::newRow("JPEG cut off before its pixels") << jpeg.left(jpeg.indexOf("\xFF\xDA"));
    QTest::newRow("sound") << QByteArray("RIFF\x2C\0\0\0WAVEfmt \x10\0\0\0\1\0\1\0", 24) +
                                  QByteArray("\x40\x1F\0\0\x40\x1F\0\0\1\0\x08\0data\x08\0\0\0", 20) +
                                  QByteArray(8, '\x80');
    QTest::newRow("PGM cut off") << fx_PnmFile(16, 16, 1, 255, QByteArray(16 * 15, 'a'));
}

void tst_FFmpegSource::inputsWithoutAPictureAreLeftOutAndNamed()
{
    QFETCH(QByteArray, file);
    QVERIFY(fx_WriteFile(path("good.pgm"), fx_PnmFile(16, 16, 1, 255, QByteArray(16 * 16, 'a'))));
    QVERIFY(fx_WriteFile(path("bad"), file));
    CxFFmpegSource source({path("good.pgm"), path("bad"), path("good.pgm")}, 0, nullptr);
    SxDelivered const delivered = fx_ReadAll(source);
    QCOMPARE(source.errorText(), QString());
    QCOMPARE(delivered.pictures, 2);
    QCOMPARE(delivered.warnings.size(), 1);
    QVERIFY2(delivered.warnings[0].startsWith(path("bad") + ": "), qPrintable(delivered.warnings[0]));
    QVERIFY2(delivered.warnings[0].endsWith("; it is left out."), qPrintable(delivered.warnings[0]));
    QVERIFY(source.isDamaged());

    CxFFmpegSource alone({path("bad")}, 0, nullptr);
    QCOMPARE(fx_ReadAll(alone).pictures, 0);
    QVERIFY2(alone.errorText().startsWith(path("bad") + ": "), qPrintable(alone.errorText()));
}

void tst_FFmpegSource::damagedJpegsAreDeliveredAndNamed_data()
{
    QTest::addColumn<QByteArray>("file");
    QByteArray const jpeg = fx_Jpeg();
    QTest::newRow("cut in the middle") << jpeg.left(jpeg.size() / 2);
    QTest::newRow("without its last byte") << jpeg.left(jpeg.size() - 1);
    QByteArray flipped = jpeg;
    for (auto i = flipped.size() / 2; i < flipped.size() / 2 + 16; ++i)
        flipped[i] = static_cast<char>(~flipped[i] & 0x7F); // 0x7F: no markers
    QTest::newRow("flipped bytes") << flipped;
}

void tst_FFmpegSource::damagedJpegsAreDeliveredAndNamed()
{
    QFETCH(QByteArray, file);
    QVERIFY(fx_WriteFile(path("good.jpg"), fx_Jpeg()));
    QVERIFY(fx_WriteFile(path("bad.jpg"), file));
    CxFFmpegSource source({path("good.jpg"), path("bad.jpg"), path("good.jpg")}, 0, nullptr);
    SxDelivered const delivered = fx_ReadAll(source);
    QCOMPARE(source.errorText(), QString());
    QCOMPARE(delivered.pictures, 3);
    QCOMPARE(delivered.warnings, QStringList{path("bad.jpg") + ": picture 1 is damaged."});
    QVERIFY(source.isDamaged());

    QVERIFY(fx_WriteFile(path("more.jpg"), fx_Jpeg() + '\n'));
    CxFFmpegSource sound({path("good.jpg"), path("more.jpg")}, 0, nullptr);
    QCOMPARE(fx_ReadAll(sound).warnings, QStringList());
    QVERIFY(!sound.isDamaged());
}

/// Any number of them may stand before a marker (ITU-T T.81, B.1.1.2).
void tst_FFmpegSource::fillBytesOfAJpegAreNoDamage()
{
    QByteArray jpeg = fx_Jpeg();
    for (char const* marker : {"\xFF\xDA", "\xFF\xC0", "\xFF\xDB"})
        jpeg.insert(jpeg.indexOf(marker), "\xFF\xFF\xFF");
    QVERIFY(fx_WriteFile(path("fill.jpg"), jpeg));
    CxFFmpegSource source({path("fill.jpg")}, 0, nullptr);
    SxDelivered const delivered = fx_ReadAll(source);
    QCOMPARE(source.errorText(), QString());
    QCOMPARE(delivered.pictures, 1);
    QCOMPARE(delivered.warnings, QStringList());
    QVERIFY(!source.isDamaged());
}

void tst_FFmpegSource::cutStreamsAreToldAtTheirEnd_data()
{
    QTest::addColumn<QByteArray>("muxer");
    QTest::addColumn<int>("codec");
    QTest::addColumn<QString>("warning");
    QTest::newRow("Y4M") << QByteArray("yuv4mpegpipe") << int(AV_CODEC_ID_WRAPPED_AVFRAME)
                         << "it ends in the middle of a picture.";
    QTest::newRow("AVI") << QByteArray("avi") << int(AV_CODEC_ID_MPEG4) << "of its 60 pictures are there.";
    QTest::newRow("AVI of JPEGs") << QByteArray("avi") << int(AV_CODEC_ID_MJPEG)
                                  << "of its 60 pictures are there.";
    QTest::newRow("MOV") << QByteArray("mov") << int(AV_CODEC_ID_MPEG4) << "of its 60 pictures are there.";
    QTest::newRow("MP4") << QByteArray("mp4") << int(AV_CODEC_ID_MPEG4) << "of its 60 pictures are there.";
    QTest::newRow("Matroska") << QByteArray("matroska") << int(AV_CODEC_ID_MPEG4) << "of 2.0 s.";
    QTest::newRow("FLV") << QByteArray("flv") << int(AV_CODEC_ID_FLV1) << "of 2.0 s.";
}

void tst_FFmpegSource::cutStreamsAreToldAtTheirEnd()
{
    QFETCH(QByteArray, muxer);
    QFETCH(int, codec);
    QFETCH(QString, warning);
    if (codec == AV_CODEC_ID_WRAPPED_AVFRAME) {
        QByteArray const planes(64 * 48 * 3 / 2, char(128));
        QVERIFY(fx_WriteFile(path("whole"), fx_Y4mFile(64, 48, "420jpeg", planes, 60)));
    } else {
        QVERIFY(fx_WriteVideo(path("whole"), muxer.constData(), AVCodecID(codec), 60));
    }
    CxFFmpegSource whole({path("whole")}, 0, nullptr);
    SxDelivered const all = fx_ReadAll(whole);
    QCOMPARE(all.pictures, 60);
    QCOMPARE(all.warnings, QStringList());
    QVERIFY(!whole.isDamaged());

    QFile file(path("whole"));
    QVERIFY(file.resize(file.size() * 6 / 10));
    CxFFmpegSource cut({path("whole")}, 0, nullptr);
    SxDelivered const some = fx_ReadAll(cut);
    QCOMPARE(cut.errorText(), QString());
    QVERIFY2(some.pictures > 20 && some.pictures < 60, qPrintable(QString::number(some.pictures)));
    QVERIFY(!some.warnings.isEmpty());
    QVERIFY2(some.warnings.last().endsWith(warning), qPrintable(some.warnings.join(' ')));
    QVERIFY(cut.isDamaged());
}

/// An AVI's header counts the places that hold no picture, too.
void tst_FFmpegSource::aviWithEmptyPlacesIsWhole()
{
    QVERIFY(fx_WriteVideo(path("v.avi"), "avi", AV_CODEC_ID_MPEG4, 20, 3));
    CxFFmpegSource source({path("v.avi")}, 0, nullptr);
    SxDelivered const delivered = fx_ReadAll(source);
    QCOMPARE(delivered.pictures, 20);
    QCOMPARE(delivered.warnings, QStringList());
    QVERIFY(!source.isDamaged());
}

void tst_FFmpegSource::packetsThatABroadcastLostAreTold()
{
    static constexpr int kPacket = 188; // bytes (ISO/IEC 13818-1, 2.4.3.2)
    QVERIFY(fx_WriteVideo(path("v.ts"), "mpegts", AV_CODEC_ID_MPEG2VIDEO, 30));
    QByteArray file = fx_FileBytes(path("v.ts"));
    CxFFmpegSource whole({path("v.ts")}, 0, nullptr);
    QCOMPARE(fx_ReadAll(whole).warnings, QStringList());
    file.remove(static_cast<int>(file.size()) / kPacket / 2 * kPacket, 3 * kPacket);
    QVERIFY(fx_WriteFile(path("v.ts"), file));
    CxFFmpegSource source({path("v.ts")}, 0, nullptr);
    SxDelivered const delivered = fx_ReadAll(source);
    QVERIFY(delivered.pictures > 20);
    QVERIFY(!delivered.warnings.isEmpty());
    QCOMPARE(delivered.warnings.last(), path("v.ts") + ": some of its data are damaged or missing.");
    QVERIFY(source.isDamaged());
}

void tst_FFmpegSource::damagedPicturesOfAVideoAreCounted()
{
    QVERIFY(fx_WriteVideo(path("v.avi"), "avi", AV_CODEC_ID_MJPEG, 10));
    QByteArray file = fx_FileBytes(path("v.avi"));
    int at = static_cast<int>(file.indexOf("movi"));
    for (int number = 0; number < 8; ++number) {
        at = static_cast<int>(file.indexOf("00dc", at)); // the chunk of a picture: name, size, bytes
        QVERIFY(at > 0);
        int const size = static_cast<int>(qFromLittleEndian<quint32>(file.constData() + at + 4));
        at += 8;
        if (number == 3 || number == 4 ||
            number == 7) // ends too early: the end marker, and nothing behind it
            file.replace(at + size * 3 / 4, size / 4, "\xFF\xD9" + QByteArray(size / 4 - 2, '\0'));
        at += size;
    }
    QVERIFY(fx_WriteFile(path("v.avi"), file));
    CxFFmpegSource source({path("v.avi")}, 0, nullptr);
    SxDelivered const delivered = fx_ReadAll(source);
    QCOMPARE(delivered.pictures, 10);
    QCOMPARE(delivered.warnings,
             (QStringList{path("v.avi") + ": picture 3 is damaged.",
                          path("v.avi") + ": 3 pictures are damaged, the first is 3, the last 7."}));
    QVERIFY(source.isDamaged());
}

void tst_FFmpegSource::stopEndsTheWait()
{
    QVERIFY(fx_WriteFile(path("good.pgm"), fx_PnmFile(16, 16, 1, 255, QByteArray(16 * 16, 'a'))));
    std::atomic<bool> stop{false};
    CxFFmpegSource source({path("good.pgm"), path("good.pgm")}, 0, &stop);
    CxOwnedPicture picture;
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
    stop = true;
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::End);
    QCOMPARE(source.errorText(), QString());
}

void tst_FFmpegSource::devicesAreOpenedByName_data()
{
    QTest::addColumn<QString>("reader");
    QTest::addColumn<QString>("before");
    QTest::newRow("before the colon") << QString() << "lavfi:";
    QTest::newRow("chosen") << "lavfi" << QString();
    QTest::newRow("both") << "lavfi"
                          << "lavfi:";
}

void tst_FFmpegSource::devicesAreOpenedByName()
{
    QFETCH(QString, reader);
    QFETCH(QString, before);
    // FFmpeg's own test device stands in for a webcam.
    CxFFmpegSource source({before + "testsrc2=size=64x48:rate=30:duration=0.2"}, 0, nullptr, {reader, {}});
    CxOwnedPicture picture;
    int count = 0;
    while (source.next(picture.get()) == IxPictureSource::Result::Picture)
        ++count;
    QCOMPARE(source.errorText(), QString());
    QCOMPARE(count, 6);
    QCOMPARE(picture.get().width, 64U);
}

QTEST_GUILESS_MAIN(tst_FFmpegSource)
#include "tst_FFmpegSource.moc"

#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QtTest>

#include "Sidecar.h"
#include "support/FFmpegDecoder.h"
#include "support/FFprobe.h"
#include "support/Minihost.h"
#include "support/PictureFiles.h"

/// The options that change what is recorded, through the built program.
class tst_SourceArguments : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void foreignStreamKeepsEveryPictureInDisplayOrder_data();
    void foreignStreamKeepsEveryPictureInDisplayOrder();
    void picturesAreTurnedThenCroppedThenScaled();
    void changesThatChangeNothingGiveTheSameBytes();
    void scaledPicturesKeepTheirTwelveBits();
    void partOfAVideoIsThatPart();
    void partOfTheCameraEndsByItself_data();
    void partOfTheCameraEndsByItself();
    void startBehindTheEndRecordsNothing();
    void foldersAndPatternsAreRecordedInNaturalOrder_data();
    void foldersAndPatternsAreRecordedInNaturalOrder();
    void sizesThatDifferAreToldBeforeAnythingIsRecorded();
    void onlySizesOfThePartMatter_data();
    void onlySizesOfThePartMatter();
    void unreadableFilesAreToldBeforeAnythingIsRecorded_data();
    void unreadableFilesAreToldBeforeAnythingIsRecorded();
    void missingNumbersOfAPatternAreAWarning();
    void whatARecordingCannotSayIsTold_data();
    void whatARecordingCannotSayIsTold();
    void pictureThatSaysHowIsTurned();
    void rotationThatMatroskaLosesIsTold();
    void noteOfARecordingSaysHowItIsTurned();
    void noteOfAnotherRecordingIsIgnoredAloud();
    void notesOfOtherProgramsBesideASourceAreNotRead();
    void valuesThatMakeNoSenseAreWrongUsage_data();
    void valuesThatMakeNoSenseAreWrongUsage();
    void cropBeyondThePictureRecordsNothing();
    void helpShowsEveryOptionWithAnExample();

private:
    QString path(QString const& name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_SourceArguments::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

/// A grey PGM of 64 x 48 whose left upper quarter is white, the rest black.
static QByteArray fx_QuarterFile()
{
    QByteArray samples;
    for (int i = 0; i < 64 * 48; ++i)
        samples += i % 64 < 32 && i / 64 < 24 ? '\xff' : '\0';
    return fx_PnmFile(64, 48, 1, 255, samples);
}

static int fx_Luma(SxDecodedPicture const& picture, int x, int y)
{
    return picture.i420[static_cast<size_t>(y * picture.width + x)];
}

void tst_SourceArguments::foreignStreamKeepsEveryPictureInDisplayOrder_data()
{
    QTest::addColumn<QString>("stream");
    for (char const* stream : {"x264-rising.264", "x265-rising.265", "mpeg2-rising.m2v"})
        QTest::newRow(stream) << stream;
}

/// Each picture is 16 steps of limited range brighter than the one before it; as coded, B pictures come late.
void tst_SourceArguments::foreignStreamKeepsEveryPictureInDisplayOrder()
{
    QFETCH(QString, stream);
    SxMinihostRun const run =
        fx_RunMinihost({"record", TEST_DATA "/foreign/" + stream, path("out.h264"), "--quality", "10"});
    QVERIFY2(run.exitCode == 0, run.err);
    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path("out.h264"), error);
    QCOMPARE(decoded.size(), size_t{12});
    for (int i = 0; i < 12; ++i)
        QVERIFY(std::abs(fx_Luma(decoded[static_cast<size_t>(i)], 32, 24) - (16 + 16 * i) * 255 / 219) < 4);
}

void tst_SourceArguments::picturesAreTurnedThenCroppedThenScaled()
{
    QVERIFY(fx_WriteFile(path("in.pgm"), fx_QuarterFile()));
    // Turned, the white quarter is the right upper one of 48 x 64; of that the lower half is cut off.
    SxMinihostRun const run = fx_RunMinihost({"record", "--scale", "96x64", "--crop", "48x32+0+0", "--rotate",
                                              "90", "--quality", "10", path("in.pgm"), path("out.h264")});
    QVERIFY2(run.exitCode == 0, run.err);
    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path("out.h264"), error);
    QCOMPARE(decoded.size(), size_t{1});
    QCOMPARE(decoded[0].width, 96);
    QCOMPARE(decoded[0].height, 64);
    QVERIFY(fx_Luma(decoded[0], 20, 10) < 20);
    QVERIFY(fx_Luma(decoded[0], 20, 60) < 20);
    QVERIFY(fx_Luma(decoded[0], 80, 10) > 235);
    QVERIFY(fx_Luma(decoded[0], 80, 60) > 235);
}

/// What is there already is not made again.
void tst_SourceArguments::changesThatChangeNothingGiveTheSameBytes()
{
    QStringList const common{"record", "camera:", "--size", "64x48", "--frames", "3", "-q"};
    QCOMPARE(fx_RunMinihost(common + QStringList{path("plain.h264")}).exitCode, 0);
    QCOMPARE(
        fx_RunMinihost(common + QStringList{"--crop", "64x48+0+0", "--scale", "64x48", path("same.h264")})
            .exitCode,
        0);
    QCOMPARE(fx_FileBytes(path("same.h264")), fx_FileBytes(path("plain.h264")));
}

void tst_SourceArguments::scaledPicturesKeepTheirTwelveBits()
{
    QByteArray samples;
    for (int i = 0; i < 64 * 48; ++i)
        samples += QByteArray("\x0f\xff", 2); // 4095: white
    QVERIFY(fx_WriteFile(path("in.pgm"), fx_PnmFile(64, 48, 1, 4095, samples)));
    SxMinihostRun const run =
        fx_RunMinihost({"record", "--scale", "32x32", path("in.pgm"), path("out.h264"), "--quality", "10"});
    QVERIFY2(run.exitCode == 0, run.err);
    QVERIFY2(!run.err.contains("--bits"), run.err);
    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path("out.h264"), error);
    QCOMPARE(decoded.size(), size_t{1});
    QVERIFY(fx_Luma(decoded[0], 16, 16) >= 250);
}

void tst_SourceArguments::partOfAVideoIsThatPart()
{
    QByteArray stream = fx_Y4mFile(64, 48, "420jpeg", QByteArray(), 0); // 30 pictures a second
    for (int i = 0; i < 20; ++i)
        stream += "FRAME\n" + QByteArray(64 * 48, char(i * 10)) + QByteArray(64 * 48 / 2, char(128));
    QVERIFY(fx_WriteFile(path("in.y4m"), stream));
    SxMinihostRun const run = fx_RunMinihost({"record", "--start", "0:00.4", "--duration", "3f", "--quality",
                                              "10", "--json", path("in.y4m"), path("out.h264")});
    QVERIFY2(run.exitCode == 0, run.err);
    QCOMPARE(run.json().value("given").toInt(), 3);
    QCOMPARE(run.json().value("expected").toInt(), 3);
    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path("out.h264"), error);
    QCOMPARE(decoded.size(), size_t{3});
    // The samples are of limited range: 16 is black, and a step of 10 comes out as some 11.6.
    for (int i = 0; i < 3; ++i)
        QVERIFY(std::abs(fx_Luma(decoded[static_cast<size_t>(i)], 32, 24) -
                         ((12 + i) * 10 - 16) * 255 / 219) < 4);
}

void tst_SourceArguments::partOfTheCameraEndsByItself_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("count");
    QTest::newRow("start") << QStringList{"--start", "295f"} << 5;
    QTest::newRow("duration") << QStringList{"--duration", "100ms"} << 3;
    QTest::newRow("duration beyond the usual end") << QStringList{"--start", "10s", "--duration", "2f"} << 2;
    QTest::newRow("start and frames") << QStringList{"--start", "9s", "--frames", "4"} << 4;
}

void tst_SourceArguments::partOfTheCameraEndsByItself()
{
    QFETCH(QStringList, options);
    QFETCH(int, count);
    SxMinihostRun const run = fx_RunMinihost(
        QStringList{"record", "camera:", "--size", "64x48", "--json", path("out.h264")} + options);
    QVERIFY2(run.exitCode == 0, run.err);
    QCOMPARE(run.json().value("given").toInt(), count);
    QCOMPARE(run.json().value("expected").toInt(), count);
}

void tst_SourceArguments::startBehindTheEndRecordsNothing()
{
    QVERIFY(fx_WriteFile(path("in.pgm"), fx_QuarterFile()));
    SxMinihostRun const run = fx_RunMinihost({"record", "--start", "1s", path("in.pgm"), path("out.h264")});
    QCOMPARE(run.exitCode, 4);
    QVERIFY2(run.err.contains("The last of the pictures is number 0, at 0.000 s: the start lies behind it."),
             run.err);
    QVERIFY(!QFile::exists(path("out.h264")));
}

static QByteArray fx_GreyFile(int width, int height, int grey)
{
    return fx_PnmFile(width, height, 1, 255, QByteArray(width * height, char(grey)));
}

void tst_SourceArguments::foldersAndPatternsAreRecordedInNaturalOrder_data()
{
    QTest::addColumn<QString>("source");
    QTest::newRow("folder") << ".";
    QTest::newRow("pattern") << "shot %d ü.pgm";
}

void tst_SourceArguments::foldersAndPatternsAreRecordedInNaturalOrder()
{
    QFETCH(QString, source);
    for (int i = 8; i < 12; ++i)
        QVERIFY(fx_WriteFile(path(QStringLiteral("shot %1 ü.pgm").arg(i)), fx_GreyFile(32, 32, i * 20)));
    QVERIFY(fx_WriteFile(path("notes.txt"), "Dear diary"));
    SxMinihostRun const run =
        fx_RunMinihost({"record", path(source), path("out.h264"), "--quality", "10", "--json"});
    QVERIFY2(run.exitCode == 0, run.err);
    QCOMPARE(run.json().value("expected").toInt(), 4);
    QCOMPARE(run.err.contains("one thing that is no picture by its name, is passed over."), source == ".");
    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path("out.h264"), error);
    QCOMPARE(decoded.size(), size_t{4});
    for (int i = 0; i < 4; ++i)
        QVERIFY(std::abs(fx_Luma(decoded[static_cast<size_t>(i)], 16, 16) - (8 + i) * 20) < 4);
}

void tst_SourceArguments::sizesThatDifferAreToldBeforeAnythingIsRecorded()
{
    QVERIFY(fx_WriteFile(path("1.pgm"), fx_GreyFile(64, 48, 100)));
    QVERIFY(fx_WriteFile(path("2.pgm"), fx_GreyFile(48, 64, 100)));
    SxMinihostRun const run = fx_RunMinihost({"record", m_folder->path(), path("out.h264")});
    QCOMPARE(run.exitCode, 4);
    QVERIFY2(run.err.contains("2.pgm is 48 x 64, those before it are 64 x 48"), run.err);
    QCOMPARE(run.err.count('\n'), 1);
    QVERIFY(!QFile::exists(path("out.h264")));

    SxMinihostRun const scaled =
        fx_RunMinihost({"record", m_folder->path(), path("out.h264"), "--scale", "32x32", "--json"});
    QVERIFY2(scaled.exitCode == 0, scaled.err);
    QCOMPARE(scaled.json().value("given").toInt(), 2);
}

void tst_SourceArguments::onlySizesOfThePartMatter_data()
{
    QTest::addColumn<QStringList>("part");
    QTest::addColumn<int>("given"); // 0: refused
    QTest::newRow("pictures") << QStringList{"--start", "1f", "--duration", "2f"} << 2;
    QTest::newRow("times") << QStringList{"--start", "20ms", "--duration", "60ms"} << 2;
    QTest::newRow("frames") << QStringList{"--start", "1f", "--frames", "2"} << 2;
    QTest::newRow("less of them than asked for")
        << QStringList{"--start", "1f", "--duration", "1s", "--frames", "1"} << 1;
    QTest::newRow("one too many") << QStringList{"--start", "1f", "--duration", "3f"} << 0;
    QTest::newRow("to the end") << QStringList{"--start", "2f"} << 0;
    QTest::newRow("from the front") << QStringList{"--duration", "2f"} << 0;
}

void tst_SourceArguments::onlySizesOfThePartMatter()
{
    QFETCH(QStringList, part);
    QFETCH(int, given);
    for (int i = 0; i < 4; ++i)
        QVERIFY(fx_WriteFile(path(QStringLiteral("%1.pgm").arg(i)),
                             i == 1 || i == 2 ? fx_GreyFile(64, 48, 100) : fx_GreyFile(48, 64, 100)));
    SxMinihostRun const run =
        fx_RunMinihost(QStringList{"record", m_folder->path(), path("out.h264"), "--json"} + part);
    QVERIFY2(run.exitCode == (given > 0 ? 0 : 4), run.err);
    QCOMPARE(run.json().value("given").toInt(), given);
    QCOMPARE(run.err.contains("a recording has one size"), given == 0);
}

void tst_SourceArguments::unreadableFilesAreToldBeforeAnythingIsRecorded_data()
{
    QTest::addColumn<QString>("source");
    QTest::newRow("folder") << ".";
    QTest::newRow("pattern") << "%d.pgm";
}

void tst_SourceArguments::unreadableFilesAreToldBeforeAnythingIsRecorded()
{
    QFETCH(QString, source);
    QVERIFY(fx_WriteFile(path("1.pgm"), fx_GreyFile(64, 48, 100)));
    QVERIFY(QFile::link("nowhere", path("2.pgm")));
    SxMinihostRun const run = fx_RunMinihost({"record", source, "out.h264"}, QByteArray(), m_folder->path());
    QCOMPARE(run.exitCode, 4);
    QVERIFY2(run.err.endsWith("2.pgm: there is no such file.\n"), run.err);
    QVERIFY(!QFile::exists(path("out.h264")));
}

void tst_SourceArguments::missingNumbersOfAPatternAreAWarning()
{
    for (char const* name : {"s1.pgm", "s2.pgm", "s5.pgm"})
        QVERIFY(fx_WriteFile(path(name), fx_GreyFile(32, 32, 100)));
    SxMinihostRun const run = fx_RunMinihost({"record", path("s%d.pgm"), path("out.h264"), "--json"});
    QVERIFY2(run.exitCode == 0, run.err);
    QVERIFY2(run.err.contains("s%d.pgm: 2 numbers from 1 to 5 are missing: 3-4."), run.err);
    QCOMPARE(run.json().value("warnings").toArray().size(), 1);
}

void tst_SourceArguments::whatARecordingCannotSayIsTold_data()
{
    QTest::addColumn<QByteArray>("pixels");
    QTest::addColumn<QByteArray>("rate");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArrayList>("says");
    QByteArray const wide(
        "The pixels are to be shown at 16:11, width to height, and a recording's are square: --scale "
        "94x48 keeps the shape of what is seen.");
    QByteArray const high(
        "The pixels are to be shown at 8:9, width to height, and a recording's are square: --scale "
        "64x54 keeps the shape of what is seen.");
    QByteArray const turned(
        "The pixels are to be shown at 11:16, width to height, and a recording's are square: --scale "
        "48x94 keeps the shape of what is seen.");
    QByteArray const rate(
        "The source has 25 pictures a second, and nothing will say so: players show a recording's at 30 "
        "or 25.");
    QTest::newRow("nothing") << QByteArray("1:1") << QByteArray("30:1") << QStringList() << QByteArrayList();
    QTest::newRow("not known") << QByteArray("0:0") << QByteArray("30:1") << QStringList()
                               << QByteArrayList();
    QTest::newRow("wide pixels") << QByteArray("32:22") << QByteArray("30:1") << QStringList()
                                 << QByteArrayList{wide};
    QTest::newRow("high pixels") << QByteArray("8:9") << QByteArray("30:1") << QStringList()
                                 << QByteArrayList{high};
    QTest::newRow("wide pixels, turned") << QByteArray("16:11") << QByteArray("30:1")
                                         << QStringList{"--rotate", "90"} << QByteArrayList{turned};
    QTest::newRow("wide pixels, scaled")
        << QByteArray("16:11") << QByteArray("30:1") << QStringList{"--scale", "94x48"} << QByteArrayList();
    QTest::newRow("rate that is noted")
        << QByteArray("1:1") << QByteArray("25:1") << QStringList() << QByteArrayList();
    QTest::newRow("rate that is not noted")
        << QByteArray("1:1") << QByteArray("25:1") << QStringList{"--no-sidecar"} << QByteArrayList{rate};
}

void tst_SourceArguments::whatARecordingCannotSayIsTold()
{
    QFETCH(QByteArray, pixels);
    QFETCH(QByteArray, rate);
    QFETCH(QStringList, options);
    QFETCH(QByteArrayList, says);
    QByteArray stream = fx_Y4mFile(64, 48, "420jpeg", QByteArray(64 * 48 * 3 / 2, char(128)), 2);
    stream.replace("A1:1", "A" + pixels).replace("F30:1", "F" + rate);
    QVERIFY(fx_WriteFile(path("in.y4m"), stream));
    SxMinihostRun const run =
        fx_RunMinihost(QStringList{"record", path("in.y4m"), path("out.h264")} + options);
    QVERIFY2(run.exitCode == 0, run.err);
    QByteArrayList said;
    for (QByteArray const& line : run.err.split('\n')) {
        if (line.startsWith("The "))
            said += line;
    }
    QCOMPARE(said, says);
}

/// A JPEG of 64 x 48 that is to be turned clockwise by a quarter: Exif, orientation 6.
static QByteArray fx_LyingJpeg()
{
    QByteArray const exif = QByteArray::fromHex("ffe1002245786966000049492a000800000001001201030001000000"
                                                "0600000000000000");
    return fx_CodedPicture(AV_CODEC_ID_MJPEG, AV_PIX_FMT_YUVJ420P, 64, 48, QByteArray(64 * 48 * 3 / 2, 'a'))
        .insert(2, exif);
}

void tst_SourceArguments::pictureThatSaysHowIsTurned()
{
    QVERIFY(fx_WriteFile(path("in.jpg"), fx_LyingJpeg()));
    SxMinihostRun const run = fx_RunMinihost({"record", path("in.jpg"), path("out.h264"), "--json"});
    QVERIFY2(run.exitCode == 0, run.err);
    QVERIFY2(run.err.contains(
                 "The pictures are to be turned clockwise by 90 degrees, which a recording cannot say but in "
                 "the note beside it: --rotate auto turns them."),
             run.err);
    QCOMPARE(run.json().value("width").toInt(), 64);

    SxMinihostRun const turned =
        fx_RunMinihost({"record", path("in.jpg"), path("turned.h264"), "--json", "--rotate", "auto"});
    QVERIFY2(turned.exitCode == 0, turned.err);
    QVERIFY2(!turned.err.contains("clockwise"), turned.err);
    QCOMPARE(turned.json().value("width").toInt(), 48);
    QVERIFY(!QFile::exists(path("turned.h264.json")));

    // A container says it.
    SxMinihostRun const contained = fx_RunMinihost({"record", path("in.jpg"), path("out.mp4")});
    QVERIFY2(contained.exitCode == 0, contained.err);
    QVERIFY2(!contained.err.contains("turned"), contained.err);
}

/// FFmpeg's writer of Matroska keeps no rotation before FFmpeg 7.
void tst_SourceArguments::rotationThatMatroskaLosesIsTold()
{
    QVERIFY(fx_WriteFile(path("in.jpg"), fx_LyingJpeg()));
    SxMinihostRun const run = fx_RunMinihost({"record", path("in.jpg"), path("out.mkv")});
    QVERIFY2(run.exitCode == 0, run.err);
    bool const isKept = !fx_ProbedStream(path("out.mkv")).value("side_data_list").toArray().isEmpty();
    QVERIFY2(
        isKept !=
            run.err.contains(
                "out.mkv: its pictures are to be turned by 90 degrees clockwise, which it does not say."),
        run.err);
}

void tst_SourceArguments::noteOfARecordingSaysHowItIsTurned()
{
    QCOMPARE(
        fx_RunMinihost({"record", "camera:", "--size", "64x48", "--frames", "2", path("in.h264")}).exitCode,
        0);
    SxSidecar sidecar;
    sidecar.rate = {25};
    sidecar.rotation = 90;
    QString error;
    QVERIFY2(fx_WriteSidecar(path("in.h264"), sidecar, error), qPrintable(error));
    QByteArray const told("in.h264: its pictures are to be turned clockwise by 90 degrees, which is left "
                          "out: --rotate auto turns them.\n");
    struct SxCase
    {
        QStringList options;
        int width;
        bool isTold;
    };
    for (SxCase const& one : {SxCase{{}, 64, true}, SxCase{{"--rotate", "auto"}, 48, false},
                              SxCase{{"--rotate", "180"}, 64, false}}) {
        SxMinihostRun const run = fx_RunMinihost(
            QStringList{"record", "--overwrite", "--json", path("in.h264"), path("out.h264")} + one.options);
        QVERIFY2(run.exitCode == 0, run.err);
        QCOMPARE(run.json().value("width").toInt(), one.width);
        QVERIFY2(run.err.contains(told) == one.isTold, run.err);
        SxFoundSidecar const found = fx_FindSidecar(path("out.h264"));
        QVERIFY2(found.sidecar, qPrintable(found.warning));
        QCOMPARE(found.sidecar->rate.text(), QString("25"));
    }
}

void tst_SourceArguments::noteOfAnotherRecordingIsIgnoredAloud()
{
    for (char const* const name : {"a.h264", "b.h264"})
        QCOMPARE(fx_RunMinihost({"record", "camera:", "--size", "64x48", "--frames",
                                 name[0] == 'a' ? "2" : "3", path(name)})
                     .exitCode,
                 0);
    QString error;
    QVERIFY2(fx_WriteSidecar(path("b.h264"), {}, error), qPrintable(error));
    QVERIFY(QFile::rename(path("b.h264.json"), path("a.h264.json")));
    for (QStringList const& options : {QStringList(), QStringList{"--keep-all", "--quality", "10"}}) {
        SxMinihostRun const run = fx_RunMinihost(
            QStringList{"record", "--overwrite", "--json", path("a.h264"), path("out.h264")} + options);
        QVERIFY2(run.exitCode == 0, run.err);
        QCOMPARE(run.err.count("a.h264.json is ignored: it describes another recording.\n"), 1);
        QCOMPARE(run.json().value("warnings").toArray().size(), 1);
    }
}

void tst_SourceArguments::notesOfOtherProgramsBesideASourceAreNotRead()
{
    QVERIFY(fx_WriteFile(path("shot.pgm"), fx_QuarterFile()));
    QVERIFY(fx_WriteFile(path("shot.pgm.json"), "{\"camera\": 3}"));
    SxMinihostRun const run = fx_RunMinihost({"record", path("shot.pgm"), path("shot.h264")});
    QVERIFY2(run.exitCode == 0, run.err);
    QVERIFY2(!run.err.contains("json"), run.err);
}

void tst_SourceArguments::valuesThatMakeNoSenseAreWrongUsage_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("says");
    QByteArray const scale("--scale takes WIDTHxHEIGHT, both even and at least 16, such as 1280x720, not '");
    QByteArray const crop("--crop takes WIDTHxHEIGHT+LEFT+TOP, such as 640x480+0+120, not '");
    QByteArray const rotate("--rotate takes 90, 180, 270 or auto, not '");
    for (QString const value : {"0x0", "31x32", "14x32", "-32x32", "32", "wide", "32x32 ", ""})
        QTest::addRow("scale %s", qPrintable(value)) << "scale" << value << scale + value.toUtf8() + "'";
    QTest::newRow("scale beyond the level")
        << "scale"
        << "8000x6000" << QByteArray("--scale 8000x6000 is more than level 5.2 allows");
    for (QString const value : {"0x0+0+0", "32x32", "32x32+-1+0", "32x32-1-1", "1x0+0+0", "a", ""})
        QTest::addRow("crop %s", qPrintable(value)) << "crop" << value << crop + value.toUtf8() + "'";
    QTest::newRow("crop beyond the camera's picture")
        << "crop"
        << "64x64+1+0" << QByteArray("The picture of camera: is 64 x 64; 64 x 64 from column 1");
    for (QString const option : {"start", "duration"}) {
        for (QString const value : {"3", "-1s", "1:2", "1d", ""})
            QTest::addRow("%s %s", qPrintable(option), qPrintable(value))
                << option << value
                << "--" + option.toUtf8() +
                       " takes a time such as 1:02.5, 3s, 10m or 500ms, or pictures such as 100f";
    }
    QTest::newRow("duration 0s") << "duration"
                                 << "0s" << QByteArray("--duration takes a time");
    for (QString const value : {"0", "45", "360", "-90", "left", ""})
        QTest::addRow("rotate %s", qPrintable(value)) << "rotate" << value << rotate + value.toUtf8() + "'";
}

void tst_SourceArguments::valuesThatMakeNoSenseAreWrongUsage()
{
    QFETCH(QString, option);
    QFETCH(QString, value);
    QFETCH(QByteArray, says);
    SxMinihostRun const run = fx_RunMinihost(
        {"record", "camera:", path("out.h264"), "--size", "64x64", "--" + option + "=" + value});
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.err.contains(says), run.err);
    QVERIFY(!QFile::exists(path("out.h264")));
}

void tst_SourceArguments::cropBeyondThePictureRecordsNothing()
{
    QVERIFY(fx_WriteFile(path("in.pgm"), fx_QuarterFile()));
    SxMinihostRun const run =
        fx_RunMinihost({"record", "--crop", "32x32+0+20", path("in.pgm"), path("out.h264")});
    QCOMPARE(run.exitCode, 4);
    QVERIFY2(run.err.contains("Picture 0 is 64 x 48; 32 x 32 from column 0 and row 20 on are not within it."),
             run.err);
    QVERIFY(!QFile::exists(path("out.h264")));
}

void tst_SourceArguments::helpShowsEveryOptionWithAnExample()
{
    SxMinihostRun const run = fx_RunMinihost({"record", "--help"});
    QCOMPARE(run.exitCode, 0);
    for (char const* text : {"--rotate R", "auto", "--crop WxH+X+Y", "640x480+0+120", "--scale WxH",
                             "1280x720", "--start T", "1:02.5", "500ms", "100f", "--duration T", "300f"})
        QVERIFY2(run.out.contains(text), text);
    QByteArray const examples = run.out.left(run.out.indexOf("Usage:"));
    for (char const* option :
         {"--size",         "--format",     "--seed",          "--frames",     "--bits",    "--input-format",
          "--input-option", "--quality",    "--keyframe-rate", "--complexity", "--profile", "--level",
          "--keep-all",     "--may-change", "--rotate",        "--crop",       "--scale",   "--start",
          "--duration",     "--overwrite",  "--strict",        "--no-sidecar", "--json",    "-q"})
        QVERIFY2(examples.contains(QByteArray(" ") + option + ' '), option);
}

QTEST_GUILESS_MAIN(tst_SourceArguments)
#include "tst_SourceArguments.moc"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>

#include "PictureFormat.h"
#include "TestCamera.h"
#include "support/ConversionOracle.h"
#include "support/FFmpegDecoder.h"
#include "support/Minihost.h"
#include "support/PictureFiles.h"

/// The record command as its user meets it: the built program, real files, FFmpeg as the judge.
class tst_RecordCommand : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void cameraIsRecordedInEveryFormat_data();
    void cameraIsRecordedInEveryFormat();
    void defaultsAreThoseOfTheHelp();
    void encoderOptionsReachTheStream();
    void levelThatTheEncoderChoosesIsTold();
    void oddPicturesLoseTheirLastColumnAndRow();
    void picturesLargerThanTheLevelAreScaled();
    void keyFramesComeAtTheirRate();

    void pictureFilesAreRecordedInTheOrderGiven();
    void videoOnStandardInputIsRecorded();
    void picturesOnStandardInputAreRecorded();
    void rawPicturesOnStandardInputAreRecorded();
    void inputOptionsThatFitNothingAreNamed_data();
    void inputOptionsThatFitNothingAreNamed();
    void framesEndsARecordingEarly();
    void picturesOfAnotherSizeEndTheRecording();
    void damagedSourceIsRecordedAndEndsWithExitCodeFour_data();
    void damagedSourceIsRecordedAndEndsWithExitCodeFour();
    void unreadableSourceLeavesNoOutput_data();
    void unreadableSourceLeavesNoOutput();
    void tooSmallPicturesLeaveNoOutput();

    void skippedPicturesAreReported();
    void adviceAgainstSkippingHolds_data();
    void adviceAgainstSkippingHolds();
    void adviceThatCouldNotBeTriedSaysProbably_data();
    void adviceThatCouldNotBeTriedSaysProbably();
    void adviceNamesTheLevelThatIsTooLow();
    void bitsThatContradictThePicturesAreQuestioned_data();
    void bitsThatContradictThePicturesAreQuestioned();

    void existingFileNeedsOverwrite();
    void ownSourceIsNeverReplaced_data();
    void ownSourceIsNeverReplaced();
    void listNeverReplacesAFile();
    void textIsNoPicture();
    void missingFolderIsNamed();
    void fullDiskFailsWithASummary();
    void diskThatFillsUpKeepsCompletePictures_data();
    void diskThatFillsUpKeepsCompletePictures();
    void fullDiskLeavesNoEmptyFile();
    void interruptKeepsWhatWasRecorded_data();
    void interruptKeepsWhatWasRecorded();
    void interruptEndsTheWaitForData();
    void interruptedConversionIsNoSuccess_data();
    void interruptedConversionIsNoSuccess();
    void interruptBeforeTheFirstPictureIsNoSuccess();
    void interruptedCountOfACameraIsNoSuccess();
    void pipeTakesARecording();
    void skippedPicturesAreReportedThroughAPipe();
    void closedReaderIsAFailureWithItsCause();
    void pipeWithoutItsOtherEndAnswersTheInterrupt_data();
    void pipeWithoutItsOtherEndAnswersTheInterrupt();
    void readerThatTakesNothingDoesNotHoldTheInterrupt();
    void secondRecordingToTheSameFileIsRefused();

    void jsonSummaryCountsPicturesAndBytes();
    void quietSaysNothing();
    void verboseShowsTheRawMessage();
    void memoryStaysFlat();

private:
    QString path(QString const& name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

/// The test camera's pictures as the encoder sees them, by the oracle's conversion.
static std::vector<std::vector<uchar>> fx_CameraPictures(QString const& format, int count)
{
    SxTestCameraOptions options;
    options.width = 320;
    options.height = 240;
    options.frames = count;
    options.format = *fx_TestCameraFormat(format);
    CxTestCamera camera(options);
    std::vector<std::vector<uchar>> pictures;
    CxOwnedPicture picture;
    while (camera.next(picture.get()) == IxPictureSource::Result::Picture) {
        std::vector<uchar> planes(options.width * options.height * 3 / 2);
        if (fx_OracleToIYUV(picture.get(), planes))
            pictures.push_back(planes);
    }
    return pictures;
}

void tst_RecordCommand::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_RecordCommand::cameraIsRecordedInEveryFormat_data()
{
    QTest::addColumn<QString>("format");
    for (QString const& format : fx_TestCameraFormats())
        QTest::newRow(qPrintable(format)) << format;
}

void tst_RecordCommand::cameraIsRecordedInEveryFormat()
{
    QFETCH(QString, format);
    SxMinihostRun const run = fx_RunMinihost(
        {"record", "camera:", path("out.h264"), "--size", "320x240", "--frames", "40", "--format", format});
    QVERIFY2(run.exitCode == 0, run.err);

    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path("out.h264"), error);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    std::vector<std::vector<uchar>> const expected = fx_CameraPictures(format, 40);
    QCOMPARE(expected.size(), size_t{40});
    QCOMPARE(decoded.size(), expected.size());
    for (size_t i = 0; i < decoded.size(); ++i) {
        QCOMPARE(decoded[i].width, 320);
        QCOMPARE(decoded[i].height, 240);
        double const psnr = fx_Psnr(decoded[i].i420, expected[i]);
        QVERIFY2(psnr >= 35, qPrintable(QStringLiteral("picture %1: %2 dB").arg(i).arg(psnr)));
    }
}

void tst_RecordCommand::defaultsAreThoseOfTheHelp()
{
    // Low complexity only to save time.
    SxMinihostRun const run =
        fx_RunMinihost({"record", "camera:", path("out.h264"), "--json", "--complexity", "low"});
    QVERIFY2(run.exitCode == 0, run.err);
    QCOMPARE(run.json().value("given").toInt(), 300);
    QCOMPARE(run.json().value("skipped").toInt(-1), 0);
    QJsonObject const info = fx_RunMinihost({"info", "--json", path("out.h264")}).json();
    QCOMPARE(info.value("frames").toInt(), 300);
    QCOMPARE(info.value("width").toInt(), 1280);
    QCOMPARE(info.value("height").toInt(), 720);
    QCOMPARE(info.value("keyFrames").toInt(), 60);
    QCOMPARE(info.value("profile").toString(), QStringLiteral("baseline"));
    QCOMPARE(info.value("level").toString(), QStringLiteral("5.2"));
}

/// profile_idc and level_idc of the first sequence parameter set, its bytes 1 and 3 behind the header.
static std::pair<int, int> fx_ProfileAndLevel(QString const& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {-1, -1};
    QByteArray const start = file.read(64);
    int const sps = static_cast<int>(start.indexOf(QByteArray::fromHex("00000167")));
    return sps < 0 ? std::make_pair(-1, -1)
                   : std::make_pair(int{static_cast<uchar>(start[sps + 4])},
                                    int{static_cast<uchar>(start[sps + 6])});
}

void tst_RecordCommand::encoderOptionsReachTheStream()
{
    QStringList const common{"record",   "camera:", "--size",      "320x240",
                             "--frames", "20",      "--overwrite", path("out.h264")};
    QCOMPARE(fx_RunMinihost(common).exitCode, 0);
    QCOMPARE(fx_ProfileAndLevel(path("out.h264")), std::make_pair(66, 52));
    qint64 const size = QFileInfo(path("out.h264")).size();

    QCOMPARE(fx_RunMinihost(common + QStringList{"--profile", "high", "--level", "4.1"}).exitCode, 0);
    QCOMPARE(fx_ProfileAndLevel(path("out.h264")), std::make_pair(100, 41));
    QCOMPARE(fx_RunMinihost(common + QStringList{"--profile", "Main", "--level", "3.0"}).exitCode, 0);
    QCOMPARE(fx_ProfileAndLevel(path("out.h264")), std::make_pair(77, 30));

    SxMinihostRun const extended = fx_RunMinihost(common + QStringList{"--profile", "extended"});
    QCOMPARE(fx_ProfileAndLevel(path("out.h264")), std::make_pair(66, 52));
    QVERIFY2(extended.err.contains("the recording is Baseline"), extended.err);

    QCOMPARE(fx_RunMinihost(common + QStringList{"--quality", "1"}).exitCode, 0);
    QVERIFY(QFileInfo(path("out.h264")).size() < size);
}

void tst_RecordCommand::levelThatTheEncoderChoosesIsTold()
{
    // Level 1 holds 15 such pictures a second, and a recording's play at 30.
    QStringList const common{"record", "camera:", "--size", "176x132", "--frames", "2", "--level", "1"};
    QByteArray const warning("warning: OpenH264 made the recording level 1.1, not level 1 as asked.\n");
    SxMinihostRun const raised = fx_RunMinihost(common + QStringList{path("out.h264"), "--json"});
    QVERIFY2(raised.err.contains(warning), raised.err);
    QCOMPARE(raised.json().value("level").toString(), QStringLiteral("1.1"));
    QVERIFY(
        raised.json().value("warnings").toArray().contains(QString::fromLatin1(warning.mid(9).trimmed())));
    SxMinihostRun const piped = fx_RunMinihost(common + QStringList{"/dev/stdout"});
    QVERIFY2(piped.err.contains(warning), piped.err);

    SxMinihostRun const kept = fx_RunMinihost({"record", "camera:", path("kept.h264"), "--size", "176x132",
                                               "--frames", "2", "--level", "1.1", "--json"});
    QVERIFY2(!kept.err.contains("OpenH264 made"), kept.err);
    QCOMPARE(kept.json().value("level").toString(), QStringLiteral("1.1"));
}

void tst_RecordCommand::oddPicturesLoseTheirLastColumnAndRow()
{
    QVERIFY(fx_WriteFile(path("in.pgm"), fx_PnmFile(33, 25, 1, 255, QByteArray(33 * 25, 'a'))));
    SxMinihostRun const run = fx_RunMinihost({"record", path("in.pgm"), path("out.h264"), "--json"});
    QVERIFY2(run.exitCode == 0, run.err);
    QVERIFY2(run.err.contains("without their last column and row the pictures of 33 x 25 become 32 x 24"),
             run.err);
    QCOMPARE(run.json().value("width").toInt(), 32);
    QCOMPARE(run.json().value("height").toInt(), 24);
}

void tst_RecordCommand::picturesLargerThanTheLevelAreScaled()
{
    SxMinihostRun const run = fx_RunMinihost(
        {"record", "camera:", path("out.h264"), "--size", "640x480", "--frames", "3", "--level", "2", "-q"});
    QVERIFY2(run.exitCode == 0, run.err);
    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path("out.h264"), error);
    QVERIFY2(!decoded.empty(), qPrintable(error));
    QCOMPARE(decoded[0].width, 352);
    QCOMPARE(decoded[0].height, 264);
}

void tst_RecordCommand::keyFramesComeAtTheirRate()
{
    SxMinihostRun const run = fx_RunMinihost({"record", "camera:", path("out.h264"), "--size", "320x240",
                                              "--frames", "22", "--keyframe-rate", "7"});
    QVERIFY2(run.exitCode == 0, run.err);
    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path("out.h264"), error);
    QCOMPARE(decoded.size(), size_t{22});
    for (size_t i = 0; i < decoded.size(); ++i)
        QVERIFY2(decoded[i].isKeyFrame == (i % 7 == 0), qPrintable(QString::number(i)));
}

void tst_RecordCommand::pictureFilesAreRecordedInTheOrderGiven()
{
    // Grey levels tell the pictures apart; names that sort otherwise and look like patterns stay literal.
    QStringList const names{"z.pgm", "a%02d.png", "b:1.pgm"};
    QVector<int> const levels{40, 120, 200};
    QVERIFY(fx_WriteFile(path(names[0]), fx_PnmFile(64, 48, 1, 255, QByteArray(64 * 48, char(40)))));
    QVERIFY(fx_WriteFile(path(names[1]), fx_CodedPicture(AV_CODEC_ID_PNG, AV_PIX_FMT_GRAY8, 64, 48,
                                                         QByteArray(64 * 48, char(120)))));
    QVERIFY(fx_WriteFile(path(names[2]), fx_PnmFile(64, 48, 1, 255, QByteArray(64 * 48, char(200)))));
    SxMinihostRun const run = fx_RunMinihost(QStringList{"record"} + names + QStringList{"out.h264"},
                                             QByteArray(), m_folder->path());
    QVERIFY2(run.exitCode == 0, run.err);
    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path("out.h264"), error);
    QCOMPARE(decoded.size(), size_t{3});
    for (int i = 0; i < 3; ++i)
        QVERIFY(std::abs(decoded[static_cast<size_t>(i)].i420[0] - levels[i]) <= 3);
}

void tst_RecordCommand::videoOnStandardInputIsRecorded()
{
    QByteArray const picture = QByteArray(64 * 48, char(90)) + QByteArray(64 * 48 / 2, char(128));
    SxMinihostRun const run =
        fx_RunMinihost({"record", "-", path("out.h264")}, fx_Y4mFile(64, 48, "420jpeg", picture, 9));
    QVERIFY2(run.exitCode == 0, run.err);
    QString error;
    QCOMPARE(fx_DecodeH264File(path("out.h264"), error).size(), size_t{9});
}

void tst_RecordCommand::picturesOnStandardInputAreRecorded()
{
    QByteArray const picture = fx_PnmFile(64, 48, 1, 255, QByteArray(64 * 48, char(90)));
    SxMinihostRun const run = fx_RunMinihost({"record", "-", path("out.h264")}, picture.repeated(7));
    QVERIFY2(run.exitCode == 0, run.err);
    QString error;
    QCOMPARE(fx_DecodeH264File(path("out.h264"), error).size(), size_t{7});
}

void tst_RecordCommand::rawPicturesOnStandardInputAreRecorded()
{
    QByteArray const picture = QByteArray::fromHex("20406000").repeated(64 * 48);
    QStringList const options{"--input-format",   "rawvideo",       "--input-option",
                              "video_size=64x48", "--input-option", "pixel_format=bgr0"};
    SxMinihostRun const run = fx_RunMinihost(
        QStringList{"record"} + options + QStringList{"-", path("out.h264")}, picture.repeated(5));
    QVERIFY2(run.exitCode == 0, run.err);
    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path("out.h264"), error);
    QCOMPARE(decoded.size(), size_t{5});
    QVERIFY(qAbs(decoded[4].i420[64 * 20] - 70) <= 2); // 0.114 * 32 + 0.587 * 64 + 0.299 * 96
}

void tst_RecordCommand::inputOptionsThatFitNothingAreNamed_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("sentence");
    QStringList const raw{"--input-format", "rawvideo", "--input-option"};
    QTest::newRow("unknown option") << raw + QStringList{"video_size=64x48", "--input-option", "colour=red"}
                                    << QByteArray("reader 'rawvideo' has no option 'colour'");
    QTest::newRow("missing size") << raw + QStringList{"pixel_format=bgra"}
                                  << QByteArray("reader 'rawvideo' refuses these options or needs more");
    QTest::newRow("unknown pixel format")
        << raw + QStringList{"video_size=64x48", "--input-option", "pixel_format=rainbow"}
        << QByteArray("reader 'rawvideo' refuses these options");
}

void tst_RecordCommand::inputOptionsThatFitNothingAreNamed()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, sentence);
    SxMinihostRun const run = fx_RunMinihost(
        QStringList{"record"} + options + QStringList{"-", path("out.h264")}, QByteArray(64 * 48 * 4, 'a'));
    QCOMPARE(run.exitCode, 4);
    QVERIFY2(run.err.contains(sentence), run.err);
    QVERIFY(!QFile::exists(path("out.h264")));
}

void tst_RecordCommand::framesEndsARecordingEarly()
{
    QByteArray const picture = QByteArray(64 * 48, char(90)) + QByteArray(64 * 48 / 2, char(128));
    QVERIFY(fx_WriteFile(path("in.y4m"), fx_Y4mFile(64, 48, "420jpeg", picture, 9)));
    SxMinihostRun const run =
        fx_RunMinihost({"record", path("in.y4m"), path("out.h264"), "--frames", "4", "--json"});
    QVERIFY2(run.exitCode == 0, run.err);
    QCOMPARE(run.json().value("given").toInt(), 4);
    QCOMPARE(run.json().value("stopped").toBool(true), false);
}

void tst_RecordCommand::picturesOfAnotherSizeEndTheRecording()
{
    QByteArray const pictures = fx_PnmFile(64, 48, 1, 255, QByteArray(64 * 48, 'a')) +
                                fx_PnmFile(48, 64, 1, 255, QByteArray(64 * 48, 'a'));
    SxMinihostRun const run = fx_RunMinihost({"record", "-", path("out.h264")}, pictures);
    QCOMPARE(run.exitCode, 4);
    QVERIFY2(run.err.contains("Picture 1 has 48 x 64 pixels, those before it 64 x 48"), run.err);
    QString error;
    QCOMPARE(fx_DecodeH264File(path("out.h264"), error).size(), size_t{1});
}

void tst_RecordCommand::damagedSourceIsRecordedAndEndsWithExitCodeFour_data()
{
    QTest::addColumn<int>("lost");
    QTest::newRow("whole") << 0;
    QTest::newRow("cut in the middle of a picture") << 1000;
}

void tst_RecordCommand::damagedSourceIsRecordedAndEndsWithExitCodeFour()
{
    QFETCH(int, lost);
    bool const isWhole = lost == 0;
    QByteArray stream = fx_Y4mFile(64, 48, "420jpeg", QByteArray(64 * 48 * 3 / 2, char(128)), 4);
    stream.chop(lost);
    SxMinihostRun const run = fx_RunMinihost({"record", "-", path("out.h264"), "--json"}, stream);
    QCOMPARE(run.exitCode, isWhole ? 0 : 4);
    QCOMPARE(run.json().value("sourceDamaged").toBool(isWhole), !isWhole);
    QCOMPARE(run.json().value("warnings").toArray().size(), isWhole ? 0 : 1);
    QVERIFY(isWhole || run.err.contains("warning: standard input: it ends in the middle of a picture."));
    QCOMPARE(fx_RunMinihost({"info", "--json", path("out.h264")}).json().value("frames").toInt(),
             isWhole ? 4 : 3);
}

void tst_RecordCommand::unreadableSourceLeavesNoOutput_data()
{
    QTest::addColumn<QByteArray>("content"); // null: no such file
    QTest::addColumn<QByteArray>("cause");

    QTest::newRow("missing") << QByteArray() << QByteArray("there is no such file");
    QTest::newRow("empty") << QByteArray("") << QByteArray("no picture");
    QTest::newRow("text") << QByteArray("Dear diary,\n").repeated(50) << QByteArray("no picture");
    QTest::newRow("broken picture") << fx_PnmFile(64, 48, 1, 255, QByteArray()) << QByteArray("no picture");
}

void tst_RecordCommand::unreadableSourceLeavesNoOutput()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, cause);
    if (!content.isNull())
        QVERIFY(fx_WriteFile(path("in.pgm"), content));
    SxMinihostRun const run = fx_RunMinihost({"record", path("in.pgm"), path("out.h264")});
    QCOMPARE(run.exitCode, 4);
    QVERIFY2(run.err.contains("in.pgm") && run.err.contains(cause), run.err);
    QCOMPARE(run.err.count('\n'), 1);
    QVERIFY(!QFile::exists(path("out.h264")));
}

void tst_RecordCommand::tooSmallPicturesLeaveNoOutput()
{
    QVERIFY(fx_WriteFile(path("in.pgm"), fx_PnmFile(15, 40, 1, 255, QByteArray(15 * 40, 'a'))));
    SxMinihostRun const run = fx_RunMinihost({"record", path("in.pgm"), path("out.h264")});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.contains("15 x 40 are too small"), run.err);
    QVERIFY(!QFile::exists(path("out.h264")));

    // So flat that the level leaves no height.
    SxMinihostRun const flat =
        fx_RunMinihost({"record", "camera:", path("out.h264"), "--size", "3000x40", "--level", "1"});
    QCOMPARE(flat.exitCode, 1);
    QVERIFY2(flat.err.contains("3000 x 40 would be saved as "), flat.err);
}

void tst_RecordCommand::skippedPicturesAreReported()
{
    QVERIFY(fx_WriteFile(path("in.y4m"), fx_NoiseY4mFile(160, 120, 30)));
    SxMinihostRun const run =
        fx_RunMinihost({"record", path("in.y4m"), path("out.h264"), "--quality", "1", "--json"});
    QVERIFY2(run.exitCode == 0, run.err);
    QJsonObject const json = run.json();
    QJsonArray const skipped = json.value("skippedPictures").toArray();
    QCOMPARE(json.value("given").toInt(), 30);
    QVERIFY(skipped.size() > 0);
    QCOMPARE(json.value("skipped").toInt(), skipped.size());
    QCOMPARE(json.value("coded").toInt(), 30 - skipped.size());
    QCOMPARE(json.value("bytes").toDouble(), double(QFileInfo(path("out.h264")).size()));
    int previous = 0; // the first picture is always coded
    for (QJsonValue const& number : skipped) {
        QVERIFY(number.toInt() > previous && number.toInt() < 30);
        previous = number.toInt();
    }
    // Only who asks for whole recordings is told by the exit code.
    QCOMPARE(fx_RunMinihost({"record", path("in.y4m"), path("strict.h264"), "--quality", "1", "--strict"})
                 .exitCode,
             3);
    QCOMPARE(fx_RunMinihost(
                 {"record", "camera:", path("whole.h264"), "--size", "320x240", "--frames", "9", "--strict"})
                 .exitCode,
             0);
    QVERIFY2(run.err.contains(QByteArray("warning: the encoder begins to skip pictures, at picture ") +
                              QByteArray::number(skipped[0].toInt())),
             run.err);
    QVERIFY2(run.err.contains(QByteArray::number(skipped.size()) + " of 30 pictures"), run.err);
    QString error;
    QCOMPARE(static_cast<int>(fx_DecodeH264File(path("out.h264"), error).size()), 30 - skipped.size());
}

/// The options that the advice against skipped pictures names.
static QStringList fx_Advised(QByteArray const& err)
{
    QRegularExpression const options(
        QStringLiteral("(?:--level (\\S+) with )?--quality (\\d+) keeps them all"));
    QRegularExpressionMatch const advice = options.match(QString::fromUtf8(err));
    if (!advice.hasMatch())
        return {};
    QStringList const quality{"--quality", advice.captured(2)};
    return advice.captured(1).isEmpty() ? quality : quality + QStringList{"--level", advice.captured(1)};
}

void tst_RecordCommand::adviceAgainstSkippingHolds_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("noise"); // 0: the test camera
    QTest::addColumn<QString>("quality");
    for (char const* quality : {"1", "2", "3"}) {
        for (int const noise : {0, 4, 12, 30}) {
            for (QSize const size : {QSize(64, 48), QSize(160, 120)})
                QTest::addRow("%d x %d, noise %d, quality %s", size.width(), size.height(), noise, quality)
                    << size << noise << quality;
        }
    }
    QTest::newRow("quality that nearly suffices") << QSize(320, 240) << 12 << "2";
}

void tst_RecordCommand::adviceAgainstSkippingHolds()
{
    QFETCH(QSize, size);
    QFETCH(int, noise);
    QFETCH(QString, quality);
    QString const dimensions = QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
    QStringList source{"camera:", "--size", dimensions, "--frames", "60"};
    if (noise > 0) {
        QVERIFY(fx_WriteFile(path("in.y4m"), fx_NoisyY4mFile(size.width(), size.height(), 60, noise)));
        source = QStringList{path("in.y4m")};
    }
    QStringList const common = QStringList{"record", "--overwrite", "--json"} + source;
    SxMinihostRun const run = fx_RunMinihost(common + QStringList{path("out.h264"), "--quality", quality});
    if (run.json().value("skipped").toInt() == 0)
        return; // nothing to advise
    QStringList const advised = fx_Advised(run.err);
    bool const isHopeless = run.err.contains("not even --quality 10 would keep them all");
    QVERIFY2(advised.isEmpty() == isHopeless, run.err);
    SxMinihostRun const better = fx_RunMinihost(common + QStringList{path("out.h264")} +
                                                (isHopeless ? QStringList{"--quality", "10"} : advised));
    QVERIFY2((better.json().value("skipped").toInt(-1) > 0) == isHopeless, run.err + better.err);
    if (!isHopeless)
        return;
    QVERIFY2(run.err.contains(", but --keyframe-rate 1 does: "), run.err);
    SxMinihostRun const keys =
        fx_RunMinihost(common + QStringList{path("out.h264"), "--quality", quality, "--keyframe-rate", "1"});
    QCOMPARE(keys.json().value("skipped").toInt(-1), 0);
}

void tst_RecordCommand::adviceNamesTheLevelThatIsTooLow()
{
    QStringList const common{"record",   "camera:", path("out.h264"), "--size", "128x96",
                             "--frames", "60",      "--overwrite",    "--json"};
    SxMinihostRun const run = fx_RunMinihost(common + QStringList{"--level", "1"});
    QVERIFY2(run.err.contains("level 1 allows no more, --level 5.2 with --quality "), run.err);
    SxMinihostRun const better = fx_RunMinihost(common + fx_Advised(run.err));
    QVERIFY2(better.json().value("skipped").toInt(-1) == 0, run.err + better.err);
}

void tst_RecordCommand::adviceThatCouldNotBeTriedSaysProbably_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("count");
    QTest::newRow("pipe") << "-"
                          << "60";
    QTest::newRow("long, so only its worst part is tried") << "camera:"
                                                           << "1100";
}

void tst_RecordCommand::adviceThatCouldNotBeTriedSaysProbably()
{
    QFETCH(QString, source);
    QFETCH(QString, count);
    QStringList arguments{"record", source, path("out.h264"), "--frames", count, "--quality", "1"};
    if (source == "camera:")
        arguments += {"--size", "160x120"};
    SxMinihostRun const run = fx_RunMinihost(arguments, fx_NoisyY4mFile(160, 120, 60, 12));
    QVERIFY2(run.err.contains(" probably keeps them all.\n"), run.err);
}

void tst_RecordCommand::bitsThatContradictThePicturesAreQuestioned_data()
{
    QTest::addColumn<int>("highest");
    QTest::addColumn<QString>("bits");
    QTest::addColumn<QByteArray>("question"); // empty: none expected

    QTest::newRow("12 bits in words")
        << 4095 << "" << QByteArray("highest value seen 4095: did you mean --bits 12?");
    QTest::newRow("10 bits in words")
        << 1000 << "" << QByteArray("highest value seen 1000: did you mean --bits 10?");
    QTest::newRow("16 bits") << 65535 << "" << QByteArray();
    QTest::newRow("12 bits, said so") << 4095 << "12" << QByteArray();
    QTest::newRow("more than said") << 16383 << "12"
                                    << QByteArray("highest value seen 16383: did you mean --bits 14?");
    QTest::newRow("black") << 0 << "" << QByteArray();
}

void tst_RecordCommand::bitsThatContradictThePicturesAreQuestioned()
{
    QFETCH(int, highest);
    QFETCH(QString, bits);
    QFETCH(QByteArray, question);
    QByteArray samples;
    for (int i = 0; i < 64 * 48; ++i) {
        int const value = highest * (i % 64) / 63;
        samples += static_cast<char>(value >> 8);
        samples += static_cast<char>(value & 0xFF);
    }
    QVERIFY(fx_WriteFile(path("in.pgm"), fx_PnmFile(64, 48, 1, 65535, samples)));
    QStringList arguments{"record", path("in.pgm"), path("out.h264"), "-q"};
    if (!bits.isEmpty())
        arguments += {"--bits", bits};
    SxMinihostRun const run = fx_RunMinihost(arguments);
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.err, question.isEmpty() ? QByteArray() : "warning: " + question + '\n');

    if (bits == QLatin1String("12") && highest == 4095) { // the brightest column is white
        QString error;
        std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path("out.h264"), error);
        QCOMPARE(decoded.size(), size_t{1});
        QVERIFY(decoded[0].i420[63] > 245);
    }
}

void tst_RecordCommand::existingFileNeedsOverwrite()
{
    QByteArray const precious("precious");
    QVERIFY(fx_WriteFile(path("out.h264"), precious));
    QStringList const arguments{"record", "camera:", path("out.h264"), "--size", "64x48", "--frames", "2"};
    SxMinihostRun const refused = fx_RunMinihost(arguments);
    QCOMPARE(refused.exitCode, 5);
    QVERIFY2(refused.err.contains("out.h264: the file exists; --overwrite replaces it."), refused.err);
    QCOMPARE(QFileInfo(path("out.h264")).size(), qint64{precious.size()});

    QCOMPARE(fx_RunMinihost(arguments + QStringList{"--overwrite"}).exitCode, 0);
    QString error;
    QCOMPARE(fx_DecodeH264File(path("out.h264"), error).size(), size_t{2});
}

void tst_RecordCommand::ownSourceIsNeverReplaced_data()
{
    QTest::addColumn<QString>("output");
    QTest::newRow("same name") << "in.h264";
    QTest::newRow("other way to write it") << "../%1/./in.h264";
    QTest::newRow("symbolic link") << "soft.h264";
    QTest::newRow("hard link") << "hard.h264";
    for (char const* protocol : {"file:", "cache:", "concat:"})
        QTest::newRow(protocol) << protocol;
}

void tst_RecordCommand::ownSourceIsNeverReplaced()
{
    QFETCH(QString, output);
    QCOMPARE(
        fx_RunMinihost({"record", "camera:", path("in.h264"), "--size", "64x48", "--frames", "2"}).exitCode,
        0);
    qint64 const size = QFileInfo(path("in.h264")).size();
    QVERIFY(QFile::link(path("in.h264"), path("soft.h264")));
    QCOMPARE(::link(qPrintable(path("in.h264")), qPrintable(path("hard.h264"))), 0);

    QString const protocol = output.endsWith(':') ? output : QString();
    if (!protocol.isEmpty())
        output = "in.h264";
    SxMinihostRun const run = fx_RunMinihost(
        {"record", protocol + path("in.h264"),
         path(output.contains('%') ? output.arg(QFileInfo(m_folder->path()).fileName()) : output),
         "--overwrite"});
    QCOMPARE(run.exitCode, 5);
    QVERIFY2(run.err.contains("would replace its own source"), run.err);
    QCOMPARE(QFileInfo(path("in.h264")).size(), size);
}

void tst_RecordCommand::listNeverReplacesAFile()
{
    QVERIFY(fx_WriteFile(path("old.h264"), "precious"));
    QVERIFY(fx_WriteFile(path("list.txt"), "file old.h264\n"));
    SxMinihostRun const run = fx_RunMinihost(
        {"record", "--input-format", "concat", path("list.txt"), path("old.h264"), "--overwrite"});
    QCOMPARE(run.exitCode, 5);
    QVERIFY2(run.err.contains("the list may name it as a source"), run.err);
    QCOMPARE(fx_FileBytes(path("old.h264")), QByteArray("precious"));
}

void tst_RecordCommand::textIsNoPicture()
{
    QVERIFY(fx_WriteFile(path("notes.txt"), QByteArray("hello world\n").repeated(1000)));
    SxMinihostRun const run = fx_RunMinihost({"record", path("notes.txt"), path("out.h264")});
    QCOMPARE(run.exitCode, 4);
    QVERIFY2(run.err.startsWith("error: " + path("notes.txt").toUtf8()), run.err);
    QVERIFY(!QFile::exists(path("out.h264")));
}

void tst_RecordCommand::missingFolderIsNamed()
{
    SxMinihostRun const run = fx_RunMinihost({"record", "camera:", path("nowhere/out.h264")});
    QCOMPARE(run.exitCode, 5);
    QVERIFY2(run.err.contains("there is no folder") && run.err.contains("nowhere"), run.err);
}

void tst_RecordCommand::fullDiskFailsWithASummary()
{
    SxMinihostRun const run =
        fx_RunMinihost({"record", "camera:", "/dev/full", "--size", "320x240", "--frames", "5", "--json"});
    QCOMPARE(run.exitCode, 5);
    QVERIFY2(run.err.contains("error: /dev/full: No space left on device.\n"), run.err);
    QCOMPARE(run.json().value("error").toString(), QStringLiteral("/dev/full: No space left on device."));
    QCOMPARE(run.json().value("coded").toInt(), 0);
    QVERIFY(run.json().value("given").toInt() >= 1);
    QVERIFY(QFile::exists("/dev/full"));
}

/// For fx_RunMinihostInShell(): no file can grow beyond \p blocks of 512 bytes. Stands in for a full disk.
static QString fx_WithLimit(int blocks) { return QStringLiteral("ulimit -f %1; \"$@\"").arg(blocks); }

/// The same with a folder "disk" of 64 KiB.
static QString fx_WithSmallDisk()
{
    return QStringLiteral("mkdir disk && unshare --user --map-root-user --mount sh -c "
                          "'mount -t tmpfs -o size=64k none disk && (\"$@\"; code=$?; "
                          "cp disk/out.h264 copy.h264; exit $code)' sh \"$@\"");
}

void tst_RecordCommand::fullDiskLeavesNoEmptyFile()
{
    QStringList const arguments{"record", "camera:", path("out.h264"), "--size", "320x240", "--overwrite"};
    QCOMPARE(fx_RunMinihostInShell(fx_WithLimit(0), arguments).exitCode, 5);
    QVERIFY(!QFile::exists(path("out.h264")));

    // A file that was there stays there, whatever became of its content.
    QVERIFY(fx_WriteFile(path("out.h264"), "old"));
    QCOMPARE(fx_RunMinihostInShell(fx_WithLimit(0), arguments).exitCode, 5);
    QVERIFY(QFile::exists(path("out.h264")));
}

void tst_RecordCommand::diskThatFillsUpKeepsCompletePictures_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QByteArray>("cause");
    QByteArray const tooLarge("File too large");
    QTest::newRow("within the first picture") << fx_WithLimit(2) << "out.h264" << tooLarge;
    QTest::newRow("within a buffer") << fx_WithLimit(40) << "out.h264" << tooLarge;
    QTest::newRow("later") << fx_WithLimit(200) << "out.h264" << tooLarge;
    QTest::newRow("disk") << fx_WithSmallDisk() << "disk/out.h264" << QByteArray("No space left on device");
}

void tst_RecordCommand::diskThatFillsUpKeepsCompletePictures()
{
    QFETCH(QString, script);
    QFETCH(QString, output);
    QFETCH(QByteArray, cause);
    SxMinihostRun const run = fx_RunMinihostInShell(
        script, {"record", "camera:", output, "--size", "320x240", "--json"}, m_folder->path());
    bool const isDisk = output.startsWith("disk/");
    if (isDisk && !QFile::exists(path("copy.h264")))
        QSKIP("Small disks cannot be mounted here.", );
    QCOMPARE(run.exitCode, 5);
    QVERIFY2(run.err.contains("error: " + output.toLocal8Bit() +
                              ": Error when writing encoded frame to file (" + cause + ")."),
             run.err);
    QJsonObject const json = run.json();
    int const coded = json.value("coded").toInt();
    QVERIFY(coded < json.value("given").toInt());
    QString const left = path(isDisk ? "copy.h264" : "out.h264");
    QCOMPARE(json.value("bytes").toInt(), int(QFileInfo(left).size()));
    QCOMPARE(QFile::exists(left), coded > 0);
    if (coded == 0)
        return;
    // No half picture at the end.
    QString error;
    QCOMPARE(static_cast<int>(fx_DecodeH264File(left, error).size()), coded);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    SxMinihostRun const verified = fx_RunMinihost({"verify", left});
    QVERIFY2(verified.exitCode == 0, verified.err);
    QCOMPARE(fx_RunMinihost({"info", "--json", left}).json().value("frames").toInt(), coded);
}

void tst_RecordCommand::interruptKeepsWhatWasRecorded_data()
{
    QTest::addColumn<QString>("source"); // has no end, so that stopping it is no failure
    QTest::newRow("test camera") << "camera:";
    QTest::newRow("device") << "lavfi:testsrc=size=640x480";
}

void tst_RecordCommand::interruptKeepsWhatWasRecorded()
{
    QFETCH(QString, source);
    QProcess process;
    process.start(fx_MinihostProgram(), {"record", source, path("out.h264"), "--frames", "0", "--json"});
    QVERIFY(process.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(path("out.h264")).size() > 100000, 60000);
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished(-1));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QJsonObject const json = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
    QCOMPARE(json.value("stopped").toBool(), true);
    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path("out.h264"), error);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    QCOMPARE(static_cast<int>(decoded.size()), json.value("coded").toInt());
}

void tst_RecordCommand::interruptEndsTheWaitForData()
{
    QProcess process; // its standard input stays open and empty behind three pictures
    process.start(fx_MinihostProgram(), {"record", "-", path("out.h264"), "-q"});
    QVERIFY(process.waitForStarted());
    QByteArray const picture = QByteArray(640 * 480, char(90)) + QByteArray(640 * 480 / 2, char(128));
    process.write(fx_Y4mFile(640, 480, "420jpeg", picture, 3));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path("out.h264")), 60000); // the first was read
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGTERM), 0);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 128 + SIGTERM); // a pipe has an end, which did not come
    QString error;
    QVERIFY2(!fx_DecodeH264File(path("out.h264"), error).empty(), qPrintable(error));
}

void tst_RecordCommand::interruptedConversionIsNoSuccess_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("INT") << SIGINT;
    QTest::newRow("TERM") << SIGTERM;
    QTest::newRow("HUP") << SIGHUP;
}

void tst_RecordCommand::interruptedConversionIsNoSuccess()
{
    QFETCH(int, signal);
    // The second of three pictures is a pipe that nobody writes to: the conversion waits there.
    QVERIFY(fx_WriteFile(path("a.pgm"), fx_PnmFile(64, 48, 1, 255, QByteArray(64 * 48, 'a'))));
    QCOMPARE(::mkfifo(qPrintable(path("b.pgm")), 0600), 0);
    QProcess process;
    process.start(fx_MinihostProgram(),
                  {"record", path("a.pgm"), path("b.pgm"), path("a.pgm"), path("out.h264"), "--json"});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path("out.h264")), 60000);
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), signal), 0);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 128 + signal);
    QByteArray const err = process.readAllStandardError();
    QVERIFY2(err.contains("out.h264: 1 of 3 pictures of 64 x 48, stopped\n"), err);
    QVERIFY2(err.contains("error: " + path("out.h264").toLocal8Bit() +
                          ": interrupted after 1 of 3 pictures; the rest is missing"),
             err);
    QJsonObject const json = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
    QCOMPARE(json.value("interrupted").toBool(), true);
    QCOMPARE(json.value("given").toInt(), 1);
    QCOMPARE(json.value("expected").toInt(), 3);
    QVERIFY(json.value("error").toString().contains("the rest is missing"));
    QString error;
    QCOMPARE(fx_DecodeH264File(path("out.h264"), error).size(), size_t{1});
}

/// True once the program catches interrupts, which only the system knows.
static bool fx_CatchesInterrupts(QProcess const& process)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(process.processId()));
    QRegularExpression const caught(QStringLiteral("SigCgt:\\s*([0-9a-f]+)"));
    return status.open(QIODevice::ReadOnly) &&
           (caught.match(QString::fromLatin1(status.readAll())).captured(1).toULongLong(nullptr, 16) &
            (1ULL << (SIGINT - 1))) != 0;
}

void tst_RecordCommand::interruptBeforeTheFirstPictureIsNoSuccess()
{
    QProcess process; // its standard input stays open and empty
    process.start(fx_MinihostProgram(), {"record", "-", path("out.h264"), "--verbose", "--json"});
    QVERIFY(process.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(fx_CatchesInterrupts(process), 60000);
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 128 + SIGINT);
    QByteArray const err = process.readAllStandardError();
    QVERIFY2(err.contains("error: Interrupted before the first picture; nothing was recorded.\n"), err);
    QJsonObject const json = QJsonDocument::fromJson(process.readAllStandardOutput()).object();
    QCOMPARE(json.value("interrupted").toBool(), true);
    QVERIFY(!QFile::exists(path("out.h264")));
}

void tst_RecordCommand::interruptedCountOfACameraIsNoSuccess()
{
    QProcess process;
    process.start(fx_MinihostProgram(), {"record", "camera:", path("out.h264"), "--frames", "1000000000"});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path("out.h264")), 60000);
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitCode(), 128 + SIGINT);
    QByteArray const err = process.readAllStandardError();
    QVERIFY2(err.contains(" of 1000000000 pictures; the rest is missing"), err);
}

void tst_RecordCommand::pipeTakesARecording()
{
    SxMinihostRun const run =
        fx_RunMinihost({"record", "camera:", "/dev/stdout", "--size", "320x240", "--frames", "12"});
    QVERIFY2(run.exitCode == 0, run.err);
    QVERIFY2(run.err.contains("12 coded, 0 skipped\n"), run.err);
    QVERIFY(fx_WriteFile(path("copy.h264"), run.out));
    QString error;
    QCOMPARE(fx_DecodeH264File(path("copy.h264"), error).size(), size_t{12});
}

void tst_RecordCommand::skippedPicturesAreReportedThroughAPipe()
{
    QVERIFY(fx_WriteFile(path("in.y4m"), fx_NoiseY4mFile(160, 120, 30)));
    QStringList const options{"--quality", "1", "--strict"};
    SxMinihostRun const toFile =
        fx_RunMinihost(QStringList{"record", path("in.y4m"), path("out.h264"), "--json"} + options);
    int const skipped = toFile.json().value("skipped").toInt();
    QVERIFY(skipped > 0);

    SxMinihostRun const piped =
        fx_RunMinihost(QStringList{"record", path("in.y4m"), "/dev/stdout"} + options);
    QCOMPARE(piped.exitCode, 3);
    QVERIFY2(piped.err.contains("warning: the encoder begins to skip pictures, at picture "), piped.err);
    QVERIFY2(piped.err.contains(QByteArray::number(skipped) + " of 30 pictures"), piped.err);
    QVERIFY2(piped.err.contains(QByteArray::number(30 - skipped) + " coded, " + QByteArray::number(skipped)),
             piped.err);
    QVERIFY(piped.out == fx_FileBytes(path("out.h264")));
}

void tst_RecordCommand::closedReaderIsAFailureWithItsCause()
{
    SxMinihostRun const run =
        fx_RunMinihostInShell("{ \"$@\"; echo $? >code; } | head -c 100 >part",
                              {"record", "camera:", "/dev/stdout", "--size", "320x240"}, m_folder->path());
    QCOMPARE(fx_FileBytes(path("code")), QByteArray("5\n"));
    QVERIFY2(run.err.contains("error: /dev/stdout: Broken pipe.\n"), run.err);
}

void tst_RecordCommand::pipeWithoutItsOtherEndAnswersTheInterrupt_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("output");
    QTest::newRow("no writer") << "pipe.h264"
                               << "out.h264";
    QTest::newRow("no reader") << "camera:"
                               << "pipe.h264";
}

void tst_RecordCommand::pipeWithoutItsOtherEndAnswersTheInterrupt()
{
    QFETCH(QString, source);
    QFETCH(QString, output);
    QCOMPARE(::mkfifo(qPrintable(path("pipe.h264")), 0600), 0);
    QProcess process;
    process.setWorkingDirectory(m_folder->path());
    process.start(fx_MinihostProgram(), {"record", source, output});
    QVERIFY(process.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(fx_CatchesInterrupts(process), 60000);
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 128 + SIGINT);
    QCOMPARE(process.readAllStandardError(),
             QByteArray("error: Interrupted before the first picture; nothing was recorded.\n"));
    QVERIFY(!QFile::exists(path("out.h264")));
}

void tst_RecordCommand::readerThatTakesNothingDoesNotHoldTheInterrupt()
{
    QVERIFY(fx_WriteFile(path("in.y4m"), fx_NoiseY4mFile(640, 480, 1))); // coded, more than a pipe holds
    QCOMPARE(::mkfifo(qPrintable(path("pipe.h264")), 0600), 0);
    QFile reader(path("pipe.h264"));
    int const held = ::open(qPrintable(path("pipe.h264")), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    QVERIFY(reader.open(held, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle));
    QProcess process;
    process.start(fx_MinihostProgram(),
                  {"record", path("in.y4m"), path("pipe.h264"), "--quality", "10", "-q"});
    auto const hasBytes = [held] {
        int bytes = 0;
        return ::ioctl(held, FIONREAD, &bytes) == 0 && bytes > 0;
    };
    QTRY_VERIFY_WITH_TIMEOUT(hasBytes(), 60000);
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 5);
    QByteArray const err = process.readAllStandardError();
    QVERIFY2(err.contains("pipe.h264: its reader takes no more.\n"), err);
}

void tst_RecordCommand::secondRecordingToTheSameFileIsRefused()
{
    QProcess first; // waits for its fourth picture
    first.start(fx_MinihostProgram(), {"record", "-", path("out.h264")});
    QVERIFY(first.waitForStarted());
    QByteArray const picture = QByteArray(640 * 480, char(90)) + QByteArray(640 * 480 / 2, char(128));
    first.write(fx_Y4mFile(640, 480, "420jpeg", picture, 3));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path("out.h264")), 60000);

    QVERIFY(QFile::link(path("out.h264"), path("link.h264")));
    for (QString const& name : {path("out.h264"), path("link.h264")}) {
        SxMinihostRun const second =
            fx_RunMinihost({"record", "camera:", name, "--overwrite", "--size", "64x48", "--frames", "1"});
        QCOMPARE(second.exitCode, 5);
        QCOMPARE(second.err,
                 "error: " + name.toLocal8Bit() + ": another recording is being written to it.\n");
    }
    first.closeWriteChannel();
    QVERIFY(first.waitForFinished(60000));
    QCOMPARE(first.exitCode(), 0);
    QString error;
    QCOMPARE(fx_DecodeH264File(path("out.h264"), error).size(), size_t{3});
    // Nothing is left of the lock.
    QStringList const left =
        QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    QCOMPARE(left, (QStringList{"link.h264", "out.h264"}));
    QCOMPARE(fx_RunMinihost(
                 {"record", "camera:", path("out.h264"), "--overwrite", "--size", "64x48", "--frames", "1"})
                 .exitCode,
             0);
}

void tst_RecordCommand::jsonSummaryCountsPicturesAndBytes()
{
    SxMinihostRun const run = fx_RunMinihost(
        {"record", "camera:", path("out.h264"), "--size", "320x240", "--frames", "30", "--json"});
    QJsonObject const json = run.json();
    QCOMPARE(json.value("output").toString(), path("out.h264"));
    QCOMPARE(json.value("width").toInt(), 320);
    QCOMPARE(json.value("height").toInt(), 240);
    QCOMPARE(json.value("given").toInt(), 30);
    QCOMPARE(json.value("coded").toInt(), 30);
    QCOMPARE(json.value("skippedPictures").toArray(), QJsonArray());
    double const bytes = double(QFileInfo(path("out.h264")).size());
    QCOMPARE(json.value("bytes").toDouble(), bytes);
    QCOMPARE(json.value("meanBitRate").toDouble(), bytes * 8); // 30 pictures are one second
    QVERIFY(json.value("encodingMsPerPicture").toDouble() > 0);
    QVERIFY(json.value("msPerPicture").toDouble() >= json.value("encodingMsPerPicture").toDouble());
    QVERIFY(json.value("error").isNull());
    QCOMPARE(json.value("warnings").toArray(), QJsonArray());
    // The summary for people is on standard error, and no progress line where nobody watches.
    QVERIFY2(run.err.contains("30 coded, 0 skipped"), run.err);
    QVERIFY(!run.err.contains('\r'));
}

void tst_RecordCommand::quietSaysNothing()
{
    SxMinihostRun const run =
        fx_RunMinihost({"record", "camera:", path("out.h264"), "--size", "320x240", "--frames", "3", "-q"});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.err, QByteArray());
}

void tst_RecordCommand::verboseShowsTheRawMessage()
{
    SxMinihostRun const run = fx_RunMinihostInShell(
        fx_WithLimit(0), {"record", "camera:", path("out.h264"), "--size", "320x240", "--verbose"});
    QVERIFY2(run.err.contains("\"CxH264VideoSaver::save(): Error when writing encoded frame to file.\""),
             run.err);
}

void tst_RecordCommand::memoryStaysFlat()
{
    QStringList const common{"record", "camera:",     path("out.h264"), "--size", "160x120",
                             "-q",     "--overwrite", "--quality",      "10"};
    long const after100 = fx_MinihostPeakKb(common + QStringList{"--frames", "100"});
    long const after1000 = fx_MinihostPeakKb(common + QStringList{"--frames", "1000"});
    QVERIFY(after100 > 0 && after1000 > 0);
    QVERIFY2(after1000 <= after100 * 11 / 10,
             qPrintable(QStringLiteral("%1 kB, then %2").arg(after100).arg(after1000)));
}

QTEST_GUILESS_MAIN(tst_RecordCommand)
#include "tst_RecordCommand.moc"

#include <QCryptographicHash>
#include <QFile>
#include <QJsonArray>
#include <QProcess>
#include <QtTest>
#include <csignal>
#include <unistd.h>

#include "FFmpegSource.h"
#include "PictureFormat.h"
#include "support/ConversionOracle.h"
#include "support/FFmpegDecoder.h"
#include "support/NotedCopy.h"
#include "support/PictureFiles.h"
#include "support/RecordedCamera.h"

/// Rows of an RGB32 picture without gaps.
using Rgb32 = std::vector<uchar>;

/// The export command as its user meets it: the built program, real recordings,
/// FFmpeg's decoder as the judge.
class tst_ExportCommand : public QObject, private CxRecordedCamera
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { makeFolder(); }

    void hashesAreThoseOfFFmpegsPictures_data();
    void hashesAreThoseOfFFmpegsPictures();
    void framesComeInTheOrderAsked();
    void losslessFilesHoldTheExactPicture_data();
    void losslessFilesHoldTheExactPicture();
    void jpegPictureComesClose();
    void rawStreamIsExact_data();
    void rawStreamIsExact();
    void streamToAFileIsThatOfThePipe_data();
    void placesForNumbersInNamesAreToldAsTheyAre();
    void streamToAFileIsThatOfThePipe();
    void y4mStreamIsReadByOthers();
    void timesAreThoseOfTheNotedRate();
    void closedPipeEndsQuietly_data();
    void closedPipeEndsQuietly();
    void fullOutputIsAnError();
    void contactSheetHoldsExactPicturesWithNumbers();
    void patternNamesTheFiles_data();
    void patternNamesTheFiles();
    void existingFilesNeedOverwrite();
    void recordingIsNeverReplaced();
    void fullDiskLeavesTheOldFileAsItWas_data();
    void fullDiskLeavesTheOldFileAsItWas();
    void interruptedStreamLeavesTheOldFileAsItWas();
    void jsonNamesEveryFile();
    void keepGoingLeavesOutWhatCannotBeDecoded_data();
    void keepGoingLeavesOutWhatCannotBeDecoded();
    void keepGoingWithNothingDecodedWritesNothing();
    void withoutKeepGoingTheFirstBrokenFrameEndsIt();
    void interruptedExportFails_data();
    void interruptedExportFails();

    void wrongUsageIsExplained_data();
    void wrongUsageIsExplained();
    void missingFrameIsNamed();

private:
    void makeBroken() const;

    std::vector<Rgb32> m_pictures; ///< of the recording
};

static Rgb32 fx_ToRGB32(SxDecodedPicture const& decoded)
{
    auto const width = static_cast<size_t>(decoded.width);
    auto const height = static_cast<size_t>(decoded.height);
    uchar const* const y = decoded.i420.data();
    uchar const* const u = y + width * height;
    uchar const* const v = u + width / 2 * (height / 2);
    Rgb32 picture(width * height * 4);
    for (size_t row = 0; row < height; ++row) {
        for (size_t x = 0; x < width; ++x) {
            size_t const chroma = row / 2 * (width / 2) + x / 2;
            fx_OracleToRGB32(y[row * width + x], u[chroma], v[chroma], &picture[(row * width + x) * 4]);
        }
    }
    return picture;
}

/// The pictures of a recording as FFmpeg decodes them and the reference conversion colours them.
static std::vector<Rgb32> fx_ExpectedPictures(QString const& fileName)
{
    QString error;
    std::vector<Rgb32> pictures;
    for (SxDecodedPicture const& decoded : fx_DecodeH264File(fileName, error))
        pictures.push_back(fx_ToRGB32(decoded));
    return pictures;
}

static QByteArray fx_Md5(Rgb32 const& picture)
{
    QByteArray const bytes(reinterpret_cast<char const*>(picture.data()), static_cast<int>(picture.size()));
    return QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex();
}

/// What `export --hash md5` has to print for these frames.
static QByteArray fx_HashLines(std::vector<Rgb32> const& pictures, QVector<int> const& frames)
{
    QByteArray lines;
    for (int const frame : frames)
        lines += QByteArray::number(frame) + ' ' + fx_Md5(pictures[static_cast<size_t>(frame)]) + '\n';
    return lines;
}

/// Largest difference of blue, green and red between a picture that FFmpeg read and an RGB32 one; 256
/// when their sizes differ.
static int fx_LargestDifference(SxPicBuf const& actual, Rgb32 const& expected)
{
    if (actual.width != kWidth || actual.height != kHeight || actual.components < 3 ||
        fx_IsWordFormat(actual))
        return 256;
    int largest = 0;
    for (size_t y = 0; y < kHeight; ++y) {
        for (size_t x = 0; x < kWidth; ++x) {
            uchar const* const pixel = actual.data + y * actual.pitch + x * actual.components;
            for (size_t c = 0; c < 3; ++c)
                largest = std::max(largest, std::abs(pixel[c] - expected[(y * kWidth + x) * 4 + c]));
        }
    }
    return largest;
}

/// Mean difference, likewise.
static double fx_MeanDifference(SxPicBuf const& actual, Rgb32 const& expected)
{
    if (actual.width != kWidth || actual.height != kHeight || actual.components < 3)
        return 256;
    double sum = 0;
    for (size_t y = 0; y < kHeight; ++y) {
        for (size_t x = 0; x < kWidth; ++x) {
            uchar const* const pixel = actual.data + y * actual.pitch + x * actual.components;
            for (size_t c = 0; c < 3; ++c)
                sum += std::abs(pixel[c] - expected[(y * kWidth + x) * 4 + c]);
        }
    }
    return sum / (3.0 * kWidth * kHeight);
}

void tst_ExportCommand::initTestCase()
{
    CxFFmpegSource::setLogShown(false);
    makeRecording();
    m_pictures = fx_ExpectedPictures(m_recording);
    QCOMPARE(m_pictures.size(), size_t{kFrames});
}

void tst_ExportCommand::hashesAreThoseOfFFmpegsPictures_data()
{
    QTest::addColumn<QString>("profile");
    for (char const* profile : {"baseline", "main", "extended", "high"})
        QTest::newRow(profile) << profile;
}

void tst_ExportCommand::hashesAreThoseOfFFmpegsPictures()
{
    QFETCH(QString, profile);
    SxMinihostRun const recorded = run({"record", "camera:", "p.h264", "--size", "322x242", "--frames", "12",
                                        "--profile", profile, "--keyframe-rate", "6"});
    QVERIFY2(recorded.exitCode == 0, recorded.err);
    std::vector<Rgb32> const pictures = fx_ExpectedPictures(path("p.h264"));
    QCOMPARE(pictures.size(), size_t{12});
    QVector<int> const order{11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 0, 1, 2, 3, 9, 4, 10, 11};
    SxMinihostRun const hashed = run({"export", "p.h264", "--frames", "11-0,0-3,9,4,10-11", "--hash", "md5"});
    QVERIFY2(hashed.exitCode == 0, hashed.err);
    QCOMPARE(hashed.out, fx_HashLines(pictures, order));
}

void tst_ExportCommand::framesComeInTheOrderAsked()
{
    SxMinihostRun const hashed =
        run({"export", m_recording, "--frames", "29,0,7-5,7,key,20-29:3", "--hash", "md5"});
    QVERIFY2(hashed.exitCode == 0, hashed.err);
    QVector<int> const order{29, 0, 7, 6, 5, 7, 0, 5, 10, 15, 20, 25, 20, 23, 26, 29};
    QCOMPARE(hashed.out, fx_HashLines(m_pictures, order));
    // Nothing else is said, and no progress line where nobody watches.
    QCOMPARE(hashed.err, QByteArray());

    QJsonArray const json = run({"export", m_recording, "--frames", "29,0", "--hash", "md5", "--json"})
                                .json()
                                .value("exported")
                                .toArray();
    QCOMPARE(json.size(), 2);
    QCOMPARE(json[0].toObject().value("frame").toInt(), 29);
    QCOMPARE(json[0].toObject().value("md5").toString().toLatin1(), fx_Md5(m_pictures[29]));
    QCOMPARE(json[1].toObject().value("md5").toString().toLatin1(), fx_Md5(m_pictures[0]));
}

void tst_ExportCommand::losslessFilesHoldTheExactPicture_data()
{
    QTest::addColumn<QString>("suffix");
    for (char const* suffix : {"png", "PNG", "ppm", "pnm"})
        QTest::newRow(suffix) << suffix;
}

void tst_ExportCommand::losslessFilesHoldTheExactPicture()
{
    QFETCH(QString, suffix);
    SxMinihostRun const exported =
        run({"export", m_recording, "--frames", "28,3,28", "--output", "f_%05d." + suffix});
    QVERIFY2(exported.exitCode == 0, exported.err);
    QVERIFY2(exported.err.contains("2 pictures of 320 x 240 written"), exported.err);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files).size(), 2);

    CxFFmpegSource source({path("f_00003." + suffix), path("f_00028." + suffix)}, 0, nullptr);
    CxOwnedPicture picture;
    for (size_t const frame : {3U, 28U}) {
        QVERIFY2(source.next(picture.get()) == IxPictureSource::Result::Picture,
                 qPrintable(source.errorText()));
        QCOMPARE(fx_LargestDifference(picture.get(), m_pictures[frame]), 0);
    }
}

void tst_ExportCommand::jpegPictureComesClose()
{
    QCOMPARE(run({"export", m_recording, "--frames", "4", "-o", "frame.jpg"}).exitCode, 0);
    CxFFmpegSource source({path("frame.jpg")}, 0, nullptr);
    CxOwnedPicture picture;
    QVERIFY2(source.next(picture.get()) == IxPictureSource::Result::Picture, qPrintable(source.errorText()));
    double const difference = fx_MeanDifference(picture.get(), m_pictures[4]);
    QVERIFY2(difference < 4, qPrintable(QString::number(difference)));
}

void tst_ExportCommand::rawStreamIsExact_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QVector<int>>("order"); // which of blue, green, red, 255 stands where
    QTest::newRow("bgra") << "bgra" << QVector<int>{0, 1, 2, 3};
    QTest::newRow("rgb24") << "rgb24" << QVector<int>{2, 1, 0};
}

void tst_ExportCommand::rawStreamIsExact()
{
    QFETCH(QString, format);
    QFETCH(QVector<int>, order);
    SxMinihostRun const piped =
        run({"export", m_recording, "--frames", "9,2", "--output", "-", "--stream", format});
    QVERIFY2(piped.exitCode == 0, piped.err);
    QByteArray expected;
    for (size_t const frame : {9U, 2U}) {
        for (size_t pixel = 0; pixel < m_pictures[frame].size(); pixel += 4)
            for (int const component : order)
                expected += static_cast<char>(m_pictures[frame][pixel + static_cast<size_t>(component)]);
    }
    QCOMPARE(piped.out.size(), expected.size());
    QVERIFY(piped.out == expected);
}

void tst_ExportCommand::streamToAFileIsThatOfThePipe_data()
{
    QTest::addColumn<QStringList>("format");
    QTest::addColumn<QString>("file");
    QTest::newRow("y4m by its name") << QStringList{} << "all.y4m";
    QTest::newRow("rgb24") << QStringList{"--stream", "rgb24"} << "all.raw";
    QTest::newRow("bgra") << QStringList{"--stream", "bgra"} << "all.raw";
}

void tst_ExportCommand::placesForNumbersInNamesAreToldAsTheyAre()
{
    SxMinihostRun const exported =
        run({"export", m_recording, "--frames", "0,7", "-o", "%%1_%02d_%%4.ppm", "--jobs", "1"});
    QVERIFY2(exported.exitCode == 0, exported.err);
    QCOMPARE(exported.err, QByteArray("%%1_%02d_%%4.ppm: 2 pictures of 320 x 240 written.\n"));
}

void tst_ExportCommand::streamToAFileIsThatOfThePipe()
{
    QFETCH(QStringList, format);
    QFETCH(QString, file);
    QStringList const asked = QStringList{"export", m_recording, "--frames", "9,2,2"} + format;
    SxMinihostRun const piped = run(asked + QStringList{"-o", "-"});
    SxMinihostRun const filed = run(asked + QStringList{"-o", file});
    QVERIFY2(filed.exitCode == 0 && piped.exitCode == 0, filed.err);
    QVERIFY2(filed.err.contains("3 pictures of 320 x 240 written."), filed.err);
    QVERIFY(fx_FileBytes(path(file)) == piped.out);

    SxMinihostRun const refused = run(asked + QStringList{"-o", file});
    QCOMPARE(refused.exitCode, 5);
    QVERIFY2(refused.err.contains("the file exists; --overwrite replaces it."), refused.err);
    SxMinihostRun const replaced = run(asked + QStringList{"-o", file, "--overwrite", "--json"});
    QCOMPARE(replaced.exitCode, 0);
    QCOMPARE(replaced.json()["exported"].toArray().size(), 3);
}

void tst_ExportCommand::timesAreThoseOfTheNotedRate()
{
    SxSidecar sidecar = fx_ExampleSidecar();
    sidecar.rate = {30000, 1001};
    QVERIFY(fx_CopyWithSidecar(m_recording, path("noted.h264"), sidecar));
    SxMinihostRun const piped = run({"export", "noted.h264", "--frames", "0", "-o", "-"});
    QVERIFY2(piped.out.startsWith("YUV4MPEG2 W320 H240 F30000:1001 "), piped.out.left(80));

    QStringList const options{"--frames", "15", "--hash", "md5", "--json"};
    QJsonObject const noted = run(QStringList{"export", "noted.h264"} + options).json();
    QCOMPARE(noted.value("fps").toDouble(), 30000.0 / 1001);
    QCOMPARE(noted.value("fpsIsAssumed").toBool(true), false);
    QCOMPARE(noted.value("exported").toArray()[0].toObject().value("seconds").toDouble(),
             15 * 1001.0 / 30000);
    QJsonObject const assumed = run(QStringList{"export", m_recording} + options).json();
    QCOMPARE(assumed.value("fpsIsAssumed").toBool(), true);
    QCOMPARE(assumed.value("exported").toArray()[0].toObject().value("seconds").toDouble(), 0.5);
}

void tst_ExportCommand::y4mStreamIsReadByOthers()
{
    SxMinihostRun const piped = run({"export", m_recording, "--frames", "29-0", "-o", "-"});
    QVERIFY2(piped.exitCode == 0, piped.err);
    QVERIFY2(piped.out.startsWith("YUV4MPEG2 W320 H240 F30:1 "), piped.out.left(80));
    QVERIFY(fx_WriteFile(path("piped.y4m"), piped.out));

    CxFFmpegSource source({path("piped.y4m")}, 0, nullptr);
    CxOwnedPicture picture;
    for (size_t frame = kFrames; frame-- > 0;) {
        QVERIFY2(source.next(picture.get()) == IxPictureSource::Result::Picture,
                 qPrintable(source.errorText()));
        double const difference = fx_MeanDifference(picture.get(), m_pictures[frame]);
        QVERIFY2(difference < 4, qPrintable(QString::number(difference)));
    }
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::End);
}

void tst_ExportCommand::closedPipeEndsQuietly_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("stream") << QStringList{"--output", "-"};
    QTest::newRow("hashes") << QStringList{"--hash", "md5"};
}

void tst_ExportCommand::closedPipeEndsQuietly()
{
    QFETCH(QStringList, arguments);
    // The reader is gone before the first byte, whatever the timing.
    QProcess process;
    process.start("/bin/sh",
                  QStringList{"-c", R"(exec 3>&1; { read line; "$@" 2>&3; echo $? >&3; } |
                                                  { exec 0<&-; echo; } | cat >/dev/null)",
                              "sh", fx_MinihostProgram(), "export", m_recording, "--frames", "all"} +
                      arguments);
    process.write("\n");
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished(-1));
    QCOMPARE(process.readAllStandardOutput(), QByteArray("0\n")); // errors would stand here, then the code
}

void tst_ExportCommand::fullOutputIsAnError()
{
    for (QStringList const& arguments : {QStringList{"-o", "-"}, QStringList{"--hash", "md5"}}) {
        QProcess process;
        process.setStandardOutputFile("/dev/full");
        process.start(fx_MinihostProgram(), QStringList{"export", m_recording, "--frames", "0"} + arguments);
        QVERIFY(process.waitForFinished(-1));
        QCOMPARE(process.exitCode(), 5);
        QCOMPARE(process.readAllStandardError(),
                 QByteArray("error: Standard output: No space left on device.\n"));
    }
}

void tst_ExportCommand::contactSheetHoldsExactPicturesWithNumbers()
{
    SxMinihostRun const exported =
        run({"export", m_recording, "--frames", "0-29:5,29", "--sheet", "3", "-o", "sheet.png"});
    QVERIFY2(exported.exitCode == 0, exported.err);
    QVERIFY2(exported.err.contains("a sheet of 7 pictures"), exported.err);

    CxFFmpegSource source({path("sheet.png")}, 0, nullptr);
    CxOwnedPicture sheet;
    QVERIFY2(source.next(sheet.get()) == IxPictureSource::Result::Picture, qPrintable(source.errorText()));
    // Three columns and three rows of 320 x 240, so the tiles are the pictures themselves.
    int const gap = 8, label = 30;
    QCOMPARE(sheet.get().width, quint32(gap + 3 * (kWidth + gap)));
    QCOMPARE(sheet.get().height, quint32(gap + 3 * (kHeight + label)));
    int tile = 0;
    for (size_t const frame : {0U, 5U, 10U, 15U, 20U, 25U, 29U}) {
        SxPicBuf part = sheet.get(); // a window on the sheet, nobody's to free
        part.width = kWidth;
        part.height = kHeight;
        auto const x = static_cast<size_t>(gap + tile % 3 * (kWidth + gap));
        auto const y = static_cast<size_t>(gap + tile / 3 * (kHeight + label));
        part.data = sheet.get().data + y * part.pitch + x * part.components;
        QCOMPARE(fx_LargestDifference(part, m_pictures[frame]), 0);
        // Below it the number is written: something brighter than the sheet's ground.
        uchar const* const below = part.data + static_cast<size_t>(kHeight) * part.pitch;
        uchar brightest = 0;
        for (size_t row = 0; row < 20; ++row)
            for (size_t column = 0; column < 30; ++column)
                brightest = std::max(brightest, below[row * part.pitch + column * part.components + 1]);
        QVERIFY(brightest > 150);
        ++tile;
    }
}

void tst_ExportCommand::patternNamesTheFiles_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("frames");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("padded") << "f_%05d.ppm"
                            << "7" << QStringList{"f_00007.ppm"};
    QTest::newRow("plain") << "%d.ppm"
                           << "7,11" << QStringList{"11.ppm", "7.ppm"};
    QTest::newRow("narrow") << "%01d.ppm"
                            << "11" << QStringList{"11.ppm"};
    QTest::newRow("blanks") << "%3d.ppm"
                            << "11" << QStringList{" 11.ppm"};
    QTest::newRow("percent sign") << "100%%_%d.ppm"
                                  << "7" << QStringList{"100%_7.ppm"};
    QTest::newRow("no number needed") << "one.ppm"
                                      << "7,7" << QStringList{"one.ppm"};
    QTest::newRow("number twice") << "%d-%02d.ppm"
                                  << "7" << QStringList{"7-07.ppm"};
}

void tst_ExportCommand::patternNamesTheFiles()
{
    QFETCH(QString, pattern);
    QFETCH(QString, frames);
    QFETCH(QStringList, expected);
    SxMinihostRun const exported = run({"export", m_recording, "--frames", frames, "-o", pattern});
    QVERIFY2(exported.exitCode == 0, exported.err);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files, QDir::Name), expected);
}

void tst_ExportCommand::existingFilesNeedOverwrite()
{
    QVERIFY(fx_WriteFile(path("f_2.png"), "precious"));
    QStringList const arguments{"export", m_recording, "--frames", "0-3", "-o", "f_%d.png"};
    SxMinihostRun const refused = run(arguments);
    QCOMPARE(refused.exitCode, 5);
    QCOMPARE(refused.err, QByteArray("error: f_2.png: the file exists; --overwrite replaces it.\n"));
    QCOMPARE(fx_FileBytes(path("f_2.png")), QByteArray("precious"));
    QVERIFY(!QFile::exists(path("f_0.png"))); // seen before anything was written

    QCOMPARE(run(arguments + QStringList{"--overwrite"}).exitCode, 0);
    QVERIFY(fx_FileBytes(path("f_2.png")).size() > 1000);

    SxMinihostRun const nowhere = run({"export", m_recording, "--frames", "0", "-o", "nowhere/f.png"});
    QCOMPARE(nowhere.exitCode, 5);
    QVERIFY2(nowhere.err.contains("nowhere/f.png: there is no folder "), nowhere.err);
}

void tst_ExportCommand::recordingIsNeverReplaced()
{
    QVERIFY(fx_WriteFile(path("in.png"), m_bytes));
    QVERIFY(QFile::link(path("in.png"), path("link.png")));
    QCOMPARE(::link(qPrintable(path("in.png")), qPrintable(path("hard.png"))), 0);
    QCOMPARE(::link(qPrintable(path("in.png")), qPrintable(path("hard.y4m"))), 0);
    for (char const* output : {"in.png", "./in.png", "link.png", "hard.png", "hard.y4m"}) {
        SxMinihostRun const refused = run({"export", "in.png", "--frames", "0", "-o", output, "--overwrite"});
        QCOMPARE(refused.exitCode, 5);
        QVERIFY2(refused.err.contains("would replace the recording"), refused.err);
    }
    QVERIFY(fx_FileBytes(path("in.png")) == m_bytes);
}

void tst_ExportCommand::fullDiskLeavesTheOldFileAsItWas_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QStringList>("options");
    QTest::newRow("picture") << "o.png" << QStringList{"--frames", "0"};
    QTest::newRow("stream") << "o.y4m" << QStringList{"--frames", "all"};
    QTest::newRow("sheet") << "o.png" << QStringList{"--frames", "all", "--sheet", "3"};
}

void tst_ExportCommand::fullDiskLeavesTheOldFileAsItWas()
{
    QFETCH(QString, file);
    QFETCH(QStringList, options);
    QVERIFY(fx_WriteFile(path(file), "precious"));
    // A limit of a few kilobytes stands for a disk that fills up on the way.
    QProcess process;
    process.setWorkingDirectory(m_folder->path());
    process.start("/bin/sh",
                  QStringList{"-c", "trap '' XFSZ; ulimit -f 8; exec \"$@\"", "sh", fx_MinihostProgram(),
                              "export", m_recording, "-o", file, "--overwrite"} +
                      options);
    QVERIFY(process.waitForFinished(-1));
    QCOMPARE(process.exitCode(), 5);
    QCOMPARE(process.readAllStandardError(), "error: " + file.toUtf8() + ": File too large.\n");
    QCOMPARE(fx_FileBytes(path(file)), QByteArray("precious"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{file});
}

/// Whether a process has a file in \p folder open, be it without a name.
static bool fx_HasFileOpenIn(QString const& folder, qint64 process)
{
    QDir const opened(QStringLiteral("/proc/%1/fd").arg(process));
    for (QFileInfo const& entry : opened.entryInfoList(QDir::Files | QDir::System)) {
        if (entry.symLinkTarget().startsWith(folder + '/'))
            return true;
    }
    return false;
}

void tst_ExportCommand::interruptedStreamLeavesTheOldFileAsItWas()
{
    QVERIFY(fx_WriteFile(path("o.y4m"), "precious"));
    QProcess process;
    process.setWorkingDirectory(m_folder->path());
    QString const endless = QStringLiteral("all,").repeated(1999) + "all";
    process.start(fx_MinihostProgram(),
                  {"export", m_recording, "--frames", endless, "-o", "o.y4m", "--overwrite"});
    QTRY_VERIFY_WITH_TIMEOUT(fx_HasFileOpenIn(m_folder->path(), process.processId()), 60000); // it has begun
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished(-1));
    QCOMPARE(process.exitCode(), 128 + SIGINT);
    QByteArray const err = process.readAllStandardError();
    QVERIFY2(err.endsWith(" of 60000 pictures. Nothing was written.\n"), err);
    QCOMPARE(fx_FileBytes(path("o.y4m")), QByteArray("precious"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{"o.y4m"});
}

/// Writes broken.h264, whose picture 12 is damaged, and with it 13 and 14, which build on it.
void tst_ExportCommand::makeBroken() const
{
    QJsonArray const frames =
        fx_RunMinihost({"info", "--json", "--frames", m_recording}).json().value("frameList").toArray();
    QByteArray broken = m_bytes;
    for (int i = frames[12].toObject().value("offset").toInt() + 20;
         i < frames[13].toObject().value("offset").toInt(); ++i)
        broken[i] = static_cast<char>(0x10 + i * 37 % 0x60);
    QVERIFY(fx_WriteFile(path("broken.h264"), broken));
}

void tst_ExportCommand::keepGoingLeavesOutWhatCannotBeDecoded_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("a warning") << QStringList{} << 0;
    QTest::newRow("strict") << QStringList{"--strict"} << 3;
}

void tst_ExportCommand::keepGoingLeavesOutWhatCannotBeDecoded()
{
    QFETCH(QStringList, options);
    QFETCH(int, exitCode);
    makeBroken();
    QVector<int> whole;
    for (int frame = 0; frame < kFrames; ++frame) {
        if (frame < 12 || frame > 14)
            whole += frame;
    }
    SxMinihostRun const hashed = run(
        QStringList{"export", "broken.h264", "--frames", "all", "--hash", "md5", "--keep-going"} + options);
    QCOMPARE(hashed.exitCode, exitCode);
    QCOMPARE(hashed.out, fx_HashLines(m_pictures, whole));
    QVERIFY2(hashed.err.startsWith(
                 "warning: broken.h264: 3 frames cannot be decoded and left out: 12-14 (frame 12: "),
             hashed.err);

    SxMinihostRun const streamed =
        run(QStringList{"export", "broken.h264", "--frames", "all", "-o", "o.y4m", "--keep-going", "--json"} +
            options);
    QCOMPARE(streamed.exitCode, exitCode);
    QCOMPARE(streamed.json().value("leftOut").toArray(), (QJsonArray{12, 13, 14}));
    QCOMPARE(streamed.json().value("exported").toArray().size(), 27);
    QVERIFY(QFile::exists(path("o.y4m")));
}

void tst_ExportCommand::keepGoingWithNothingDecodedWritesNothing()
{
    makeBroken();
    for (QStringList const& output :
         {QStringList{"-o", "o.y4m"}, QStringList{"-o", "o.png", "--sheet", "2"}}) {
        SxMinihostRun const refused =
            run(QStringList{"export", "broken.h264", "--frames", "12-14", "--keep-going"} + output);
        QCOMPARE(refused.exitCode, 4);
        QVERIFY2(refused.err.startsWith(
                     "error: broken.h264: none of the frames can be decoded, nothing was written"),
                 refused.err);
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{"broken.h264"});
    }
}

void tst_ExportCommand::withoutKeepGoingTheFirstBrokenFrameEndsIt()
{
    makeBroken();
    SxMinihostRun const ended = run({"export", "broken.h264", "--frames", "10-20", "-o", "f_%d.png"});
    QCOMPARE(ended.exitCode, 4);
    QVERIFY2(ended.err.startsWith("error: broken.h264: frame 12 cannot be decoded: "), ended.err);
    QVERIFY(QFile::exists(path("f_11.png")) && !QFile::exists(path("f_15.png")));
}

void tst_ExportCommand::jsonNamesEveryFile()
{
    QJsonObject const json =
        run({"export", m_recording, "--frames", "6,1", "-o", "f_%d.png", "--json"}).json();
    QCOMPARE(json.value("file").toString(), m_recording);
    QVERIFY(json.value("error").isNull());
    QJsonArray const exported = json.value("exported").toArray();
    QCOMPARE(exported.size(), 2);
    QCOMPARE(exported[0].toObject().value("frame").toInt(), 6);
    QCOMPARE(exported[0].toObject().value("file").toString(), QString("f_6.png"));
    QCOMPARE(exported[1].toObject().value("file").toString(), QString("f_1.png"));
}

void tst_ExportCommand::interruptedExportFails_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("INT") << SIGINT;
    QTest::newRow("TERM") << SIGTERM;
    QTest::newRow("HUP") << SIGHUP;
}

void tst_ExportCommand::interruptedExportFails()
{
    QFETCH(int, signal);
    // Frames without end in sight, so that the signal comes in between.
    QString spec("all");
    for (int i = 0; i < 2000; ++i)
        spec += QStringLiteral(",all");
    QProcess process;
    process.start(fx_MinihostProgram(), {"export", m_recording, "--frames", spec, "--hash", "md5"});
    QVERIFY(process.waitForStarted());
    QVERIFY(process.waitForReadyRead(-1));
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), signal), 0);
    QVERIFY(process.waitForFinished(-1));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 128 + signal);
    QByteArray const err = process.readAllStandardError();
    QVERIFY2(err.contains("in.h264: stopped after ") && err.contains(" of 60030 pictures."), err);
}

void tst_ExportCommand::wrongUsageIsExplained_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("sentence");
    QStringList const frame0{"export", "in.h264", "--frames", "0"};
    QTest::newRow("no frames") << QStringList{"export", "a", "-o", "a.png"}
                               << "No --frames are given; --frames all takes every frame.";
    QTest::newRow("wrong frames") << QStringList{"export", "a", "--frames", "x", "-o", "a.png"} << "not 'x'.";
    QTest::newRow("no output") << frame0 << "No --output is given.";
    QTest::newRow("no picture file") << frame0 + QStringList{"-o", "a.gif"}
                                     << "'a.gif' must end in one of .png, .jpg, .jpeg, .ppm, .pnm.";
    QTest::newRow("strange pattern") << frame0 + QStringList{"-o", "a_%s.png"}
                                     << "'a_%s.png' has a percent sign";
    QTest::newRow("stream to a picture")
        << frame0 + QStringList{"-o", "a.png", "--stream", "bgra"} << "'a.png' is a picture's name";
    QTest::newRow("stream under another's name")
        << frame0 + QStringList{"-o", "a.y4m", "--stream", "bgra"} << "'a.y4m' must hold y4m";
    QTest::newRow("stream and sheet")
        << frame0 + QStringList{"-o", "a.raw", "--stream", "bgra", "--sheet", "2"}
        << "--sheet makes one picture, so --stream has no place.";
    QTest::newRow("unknown stream") << frame0 + QStringList{"-o", "-", "--stream", "avi"}
                                    << "--stream takes one of y4m, bgra, rgb24, not 'avi'.";
    QTest::newRow("unknown hash") << frame0 + QStringList{"--hash", "crc"} << "--hash takes md5, not 'crc'.";
    QTest::newRow("hash and output") << frame0 + QStringList{"--hash", "md5", "-o", "a.png"}
                                     << "so --output has no place.";
    QTest::newRow("sheet of no column") << frame0 + QStringList{"-o", "a.png", "--sheet", "0"}
                                        << "--sheet takes the pictures in a row, 1 to 100, not '0'.";
    QTest::newRow("sheet to a pipe") << frame0 + QStringList{"-o", "-", "--sheet", "2"}
                                     << "--sheet needs a file as --output.";
    QTest::newRow("sheet with a number")
        << frame0 + QStringList{"-o", "a_%d.png", "--sheet", "2"} << "A contact sheet is one picture";
    QTest::newRow("two on standard output") << frame0 + QStringList{"-o", "-", "--json"}
                                            << "--json and the pictures cannot both go to standard output.";
    QTest::newRow("many into one file") << QStringList{"export", "in.h264", "--frames", "0-1", "-o", "a.png"}
                                        << "'a.png' needs a place for the frame number";
}

void tst_ExportCommand::wrongUsageIsExplained()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, sentence);
    checkRefused(arguments, sentence);
}

void tst_ExportCommand::missingFrameIsNamed()
{
    SxMinihostRun const refused = run({"export", m_recording, "--frames", "0,4711", "-o", "f_%d.png"});
    QCOMPARE(refused.exitCode, 6);
    QCOMPARE(refused.err,
             "error: " + m_recording.toUtf8() + ": frame 4711: the recording has 30 frames, 0 to 29.\n");
    QVERIFY(QDir(m_folder->path()).isEmpty());
}

QTEST_GUILESS_MAIN(tst_ExportCommand)
#include "tst_ExportCommand.moc"

#include <QJsonArray>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "Sidecar.h"
#include "support/Minihost.h"
#include "support/PictureFiles.h"

/// record --split and --for, with the built program: numbered files that lack no picture.
class tst_SplitRecording : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void timesAreTheSources();
    void filesHoldWhatOneRecordingHolds();
    void sizeEndsAFile();
    void eachFileHasItsSidecar();
    void framesCountOverAllFiles();
    void existingFilesNeedOverwrite();
    void whatStandsInALaterFilesWayIsFoundBeforeTheFirst_data();
    void whatStandsInALaterFilesWayIsFoundBeforeTheFirst();
    void interruptEndsTheLastFile();
    void whatDoesNotGoTogetherIsWrongUsage_data();
    void whatDoesNotGoTogetherIsWrongUsage();

private:
    QString path(QString const& name) const { return m_folder->filePath(name); }
    QStringList files() const { return QDir(m_folder->path()).entryList(QDir::Files); }
    SxMinihostRun record(QStringList const& arguments) const
    {
        return fx_RunMinihost(QStringList{"record", "--json"} + arguments);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

static QStringList fx_Camera() { return {"--size", "64x48", "--quality", "10", "camera:"}; }

/// One number of each file's summary.
static QVector<int> fx_Numbers(QJsonObject const& json, char const* key)
{
    QVector<int> numbers;
    for (QJsonValue const file : json.value("files").toArray())
        numbers.append(file.toObject().value(QLatin1String(key)).toInt(-1));
    return numbers;
}

void tst_SplitRecording::timesAreTheSources()
{
    SxMinihostRun const run =
        record(QStringList{"--split", "2s", "--for", "5s"} + fx_Camera() + QStringList{path("x.h264")});
    QVERIFY2(run.exitCode == 0, run.err);
    QCOMPARE(fx_Numbers(run.json(), "given"), (QVector<int>{60, 60, 30}));
    QCOMPARE(run.json().value("given").toInt(), 150);
    QCOMPARE(files(), (QStringList{"x_001.h264", "x_002.h264", "x_003.h264"}));
    for (char const* name : {"x_001.h264: 60 pictures", "x_002.h264: 60 pictures", "x_003.h264: 30 pictures"})
        QVERIFY2(run.err.contains(name), run.err);
    SxMinihostRun const info = fx_RunMinihost({"info", "--json", path("x_003.h264")});
    QCOMPARE(info.json().value("frames").toInt(), 30);
}

void tst_SplitRecording::filesHoldWhatOneRecordingHolds()
{
    // Each picture has its number in it; all are key frames, so that it is coded alike wherever a file
    // begins.
    QStringList const options{"--keyframe-rate", "1", "--frames", "25"};
    SxMinihostRun const split =
        record(QStringList{"--split", "0.3s"} + options + fx_Camera() + QStringList{path("x.h264")});
    QVERIFY2(split.exitCode == 0, split.err);
    QCOMPARE(fx_Numbers(split.json(), "given"), (QVector<int>{9, 9, 7}));
    QCOMPARE(record(options + fx_Camera() + QStringList{path("one.h264")}).exitCode, 0);
    auto const hashes = [this](QStringList const& names) {
        QByteArrayList all;
        for (QString const& name : names) {
            SxMinihostRun const run =
                fx_RunMinihost({"export", "--frames", "all", "--hash", "md5", path(name)});
            for (QByteArray const& line : run.out.trimmed().split('\n'))
                all += line.simplified().split(' ').last();
        }
        return all;
    };
    QByteArrayList const parts = hashes({"x_001.h264", "x_002.h264", "x_003.h264"});
    QCOMPARE(static_cast<int>(parts.size()), 25);
    QCOMPARE(parts[0], hashes({"one.h264"})[0]);
    QSet<QByteArray> const different(parts.begin(), parts.end());
    QCOMPARE(static_cast<int>(different.size()), 25);
}

void tst_SplitRecording::sizeEndsAFile()
{
    SxMinihostRun const run =
        record(QStringList{"--split", "10kB", "--frames", "40", "--keyframe-rate", "1"} + fx_Camera() +
               QStringList{path("x.h264")});
    QVERIFY2(run.exitCode == 0, run.err);
    QVector<int> const bytes = fx_Numbers(run.json(), "bytes");
    QVERIFY(bytes.size() > 1);
    for (int i = 0; i < bytes.size() - 1; ++i)
        QVERIFY2(bytes[i] >= 10000 && bytes[i] < 20000, qPrintable(QString::number(bytes[i])));
    QCOMPARE(run.json().value("coded").toInt(), 40);
}

void tst_SplitRecording::eachFileHasItsSidecar()
{
    QByteArray const picture = QByteArray(64 * 48, char(90)) + QByteArray(64 * 48 / 2, char(128));
    QVERIFY(fx_WriteFile(path("in.y4m"),
                         fx_Y4mFile(64, 48, "420jpeg", picture, 12).replace(" F30:1 ", " F25:1 ")));
    SxMinihostRun const run = record({"--split", "200ms", path("in.y4m"), path("x.h264")});
    QVERIFY2(run.exitCode == 0, run.err);
    QCOMPARE(fx_Numbers(run.json(), "given"), (QVector<int>{5, 5, 2}));
    for (char const* name : {"x_001.h264", "x_002.h264", "x_003.h264"}) {
        SxFoundSidecar const found = fx_FindSidecar(path(name));
        QVERIFY2(found.sidecar, qPrintable(found.warning));
        QCOMPARE(found.sidecar->rate.text(), QString("25"));
    }
}

void tst_SplitRecording::framesCountOverAllFiles()
{
    SxMinihostRun const run =
        record(QStringList{"--split", "100ms", "--frames", "6"} + fx_Camera() + QStringList{path("x.h264")});
    QVERIFY2(run.exitCode == 0, run.err);
    QCOMPARE(fx_Numbers(run.json(), "given"), (QVector<int>{3, 3}));
}

void tst_SplitRecording::existingFilesNeedOverwrite()
{
    QVERIFY(fx_WriteFile(path("x_002.h264"), "old"));
    QVERIFY(fx_WriteFile(path("x_12.h264"), "another")); // no name of ours
    QStringList const arguments = QStringList{"--split", "100ms", "--frames", "6"} + fx_Camera();
    SxMinihostRun const refused = record(arguments + QStringList{path("x.h264")});
    QCOMPARE(refused.exitCode, 5);
    QVERIFY2(refused.err.contains("x_002.h264: the file exists; --overwrite replaces such files.\n"),
             refused.err);
    QCOMPARE(files().size(), 2);
    SxMinihostRun const run = record(arguments + QStringList{"--overwrite", path("x.h264")});
    QVERIFY2(run.exitCode == 0, run.err);
    QVERIFY(QFileInfo(path("x_002.h264")).size() > 3);
}

void tst_SplitRecording::whatStandsInALaterFilesWayIsFoundBeforeTheFirst_data()
{
    QTest::addColumn<QString>("making");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("folder") << "mkdir x_002.h264"
                            << "this is no regular file";
    QTest::newRow("pipe") << "mkfifo x_002.h264"
                          << "this is no regular file";
    QTest::newRow("source") << "ln in.pgm x_002.h264"
                            << "the recording would replace its own source.";
}

void tst_SplitRecording::whatStandsInALaterFilesWayIsFoundBeforeTheFirst()
{
    QFETCH(QString, making);
    QFETCH(QString, sentence);
    QVERIFY(fx_WriteFile(path("in.pgm"), fx_PnmFile(64, 48, 1, 255, QByteArray(64 * 48, 'a'))));
    QProcess shell;
    shell.setWorkingDirectory(m_folder->path());
    shell.start("sh", {"-c", making});
    QVERIFY(shell.waitForFinished() && shell.exitCode() == 0);
    SxMinihostRun const run = record({"--split", "1s", "--overwrite", path("in.pgm"), path("x.h264")});
    QCOMPARE(run.exitCode, 5);
    QVERIFY2(run.err.contains(sentence.toUtf8()), run.err);
    QVERIFY(!QFile::exists(path("x_001.h264")));
}

void tst_SplitRecording::interruptEndsTheLastFile()
{
    QProcess process;
    process.start(fx_MinihostProgram(), QStringList{"record", "--json", "--frames", "0", "--split", "1s"} +
                                            fx_Camera() + QStringList{path("x.h264")});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path("x_003.h264")), 60000);
    process.terminate();
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitCode(), 0); // the camera has no end
    QVector<int> const given =
        fx_Numbers(QJsonDocument::fromJson(process.readAllStandardOutput()).object(), "given");
    QVERIFY(given.size() >= 3);
    for (int i = 0; i < given.size() - 1; ++i)
        QCOMPARE(given[i], 30);
    QCOMPARE(files().size(), given.size());
}

void tst_SplitRecording::whatDoesNotGoTogetherIsWrongUsage_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QByteArray>("sentence");
    QTest::newRow("container") << QStringList{"--split", "1s"} << "x.mp4"
                               << QByteArray("--split writes raw streams, .h264, not containers");
    QTest::newRow("keep all") << QStringList{"--split", "1s", "--keep-all"} << "x.h264"
                              << QByteArray("--split does not go with --keep-all");
    QTest::newRow("device") << QStringList{"--split", "1s"} << "/dev/null"
                            << QByteArray("--split needs files: '/dev/null' is none.");
    QTest::newRow("pictures") << QStringList{"--split", "100f"} << "x.h264"
                              << QByteArray(
                                     "--split takes a time such as 10m or a size such as 4GB, not '100f'.");
    QTest::newRow("for a size") << QStringList{"--for", "1GB"} << "x.h264"
                                << QByteArray("--for takes a time such as 1h, 10m or 90s, not '1GB'.");
    QTest::newRow("for and duration")
        << QStringList{"--for", "1s", "--duration", "1s"} << "x.h264"
        << QByteArray("--for and --duration say the same: one of them is enough.");
}

void tst_SplitRecording::whatDoesNotGoTogetherIsWrongUsage()
{
    QFETCH(QStringList, options);
    QFETCH(QString, output);
    QFETCH(QByteArray, sentence);
    SxMinihostRun const run =
        record(options + fx_Camera() + QStringList{output.startsWith('/') ? output : path(output)});
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.err.contains(sentence), run.err);
    QVERIFY(files().isEmpty());
}

QTEST_GUILESS_MAIN(tst_SplitRecording)
#include "tst_SplitRecording.moc"

#include <QTemporaryDir>
#include <QtTest>
#include <sys/file.h>

#include "Sidecar.h"
#include "support/Minihost.h"
#include "support/PictureFiles.h"

/// record --keep-all, with the built program on small noisy clips of which the encoder skips pictures.
class tst_KeepAll : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void qualityRisesUntilNothingIsSkipped();
    void whatIsKeptAtOnceStaysAsAsked();
    void whatCannotBeHadIsToldAndWritesNothing();
    void oldFileStaysUntilEveryPictureIsKept();
    void consentIsUsedWhereQualityDoesNotDo_data();
    void consentIsUsedWhereQualityDoesNotDo();
    void wholeRecordingReplacesTheOld();
    void sourceThatComesOnlyOnceHasTheHighestQualityAndExitCodeThree();
    void highestQualityHasOtherOptionsLeft();
    void containerHoldsEveryPicture();
    void outputOfAnotherRecordingIsLeftAlone();
    void attemptThatWasKilledIsNamed();
    void damagedSourceKeepsWhatCouldBeRead();
    void consentWithoutItsOptionIsWrongUsage_data();
    void consentWithoutItsOptionIsWrongUsage();

private:
    QString path(QString const& name) const { return m_folder->filePath(name); }
    SxMinihostRun record(QString const& source, QStringList const& options = {},
                         QByteArray const& input = {}) const
    {
        QString const name = source == "-" ? source : m_clips.filePath(source);
        return fx_RunMinihost(QStringList{"record", "--keep-all", "--json"} + options +
                                  QStringList{name, path("out.h264")},
                              input);
    }
    QStringList files() const { return QDir(m_folder->path()).entryList(QDir::Files); }

    QTemporaryDir m_clips;
    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_KeepAll::initTestCase()
{
    QVERIFY(fx_WriteFile(m_clips.filePath("noisy.y4m"), fx_NoisyY4mFile(64, 48, 40, 12)));
    QVERIFY(fx_WriteFile(m_clips.filePath("noise.y4m"), fx_NoiseY4mFile(64, 48, 20)));
}

void tst_KeepAll::init() { m_folder = std::make_unique<QTemporaryDir>(); }

void tst_KeepAll::qualityRisesUntilNothingIsSkipped()
{
    SxMinihostRun const run = record("noisy.y4m", {"--quality", "1"});
    QVERIFY2(run.exitCode == 0, run.err);
    QJsonObject const json = run.json();
    QCOMPARE(json.value("skipped").toInt(-1), 0);
    QCOMPARE(json.value("coded").toInt(), 40);
    int const quality = json.value("quality").toInt();
    QVERIFY(quality > 1);
    QVERIFY2(run.err.contains("Every picture is kept with --quality " + QByteArray::number(quality) +
                              ", found in 2 attempts.\n"),
             run.err);
    QVERIFY2(!run.err.contains("warning:"), run.err);
    QCOMPARE(fx_RunMinihost({"info", "--json", path("out.h264")}).json().value("frames").toInt(), 40);
    QCOMPARE(files(), QStringList{"out.h264"});
    // One less loses some.
    SxMinihostRun const less = fx_RunMinihost({"record", "--json", "--quality", QString::number(quality - 1),
                                               m_clips.filePath("noisy.y4m"), path("less.h264")});
    QVERIFY(less.json().value("skipped").toInt() > 0);
}

void tst_KeepAll::whatIsKeptAtOnceStaysAsAsked()
{
    SxMinihostRun const run = record("noisy.y4m", {"--quality", "10", "--keyframe-rate", "7"});
    QVERIFY2(run.exitCode == 0, run.err);
    QCOMPARE(run.json().value("quality").toInt(), 10);
    QCOMPARE(run.json().value("keyframeRate").toInt(), 7);
    QVERIFY2(!run.err.contains("Every picture is kept"), run.err);
    // The bytes are those of the same recording without the option.
    QCOMPARE(fx_RunMinihost({"record", "--quality", "10", "--keyframe-rate", "7",
                             m_clips.filePath("noisy.y4m"), path("plain.h264")})
                 .exitCode,
             0);
    QVERIFY(fx_FileBytes(path("out.h264")) == fx_FileBytes(path("plain.h264")));
}

void tst_KeepAll::whatCannotBeHadIsToldAndWritesNothing()
{
    SxMinihostRun const run = record("noise.y4m");
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.contains("error: " + path("out.h264").toLocal8Bit() +
                              ": not every picture can be kept, not even with --quality 10 --level 5.2 "
                              "--keyframe-rate 5 (with --quality 5 "),
             run.err);
    QVERIFY2(run.err.contains(
                 "--keyframe-rate 1 probably does it, which --may-change allows. Nothing was written.\n"),
             run.err);
    QCOMPARE(run.json().value("coded").toInt(-1), 0);
    QCOMPARE(files(), QStringList());
}

void tst_KeepAll::oldFileStaysUntilEveryPictureIsKept()
{
    QVERIFY(fx_WriteFile(path("out.h264"), "old"));
    QVERIFY(fx_WriteFile(path("out.h264.attempt1"), "the user's"));
    QCOMPARE(record("noisy.y4m").exitCode, 5); // without --overwrite
    QCOMPARE(record("noise.y4m", {"--overwrite"}).exitCode, 1);
    QCOMPARE(fx_FileBytes(path("out.h264")), QByteArray("old"));
    QCOMPARE(fx_FileBytes(path("out.h264.attempt1")), QByteArray("the user's"));
    QCOMPARE(files().size(), 2);
}

void tst_KeepAll::consentIsUsedWhereQualityDoesNotDo_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("changesLevel");
    QTest::addColumn<bool>("changesKeyFrames");
    QTest::newRow("level") << "noisy.y4m" << QStringList{"--level", "1", "--may-change", "level"} << true
                           << false;
    QTest::newRow("key frames") << "noise.y4m" << QStringList{"--may-change", "keyframe-rate"} << false
                                << true;
    QTest::newRow("level suffices") << "noisy.y4m"
                                    << QStringList{"--level", "1", "--may-change", "level,keyframe-rate"}
                                    << true << false;
    QTest::newRow("quality suffices")
        << "noisy.y4m" << QStringList{"--may-change", "level,keyframe-rate"} << false << false;
}

void tst_KeepAll::consentIsUsedWhereQualityDoesNotDo()
{
    QFETCH(QString, source);
    QFETCH(QStringList, options);
    SxMinihostRun const run = record(source, options);
    QVERIFY2(run.exitCode == 0, run.err);
    QCOMPARE(run.json().value("skipped").toInt(-1), 0);
    QTEST(run.err.contains("--level "), "changesLevel");
    QTEST(run.json().value("keyframeRate").toInt() != 5, "changesKeyFrames");
}

void tst_KeepAll::wholeRecordingReplacesTheOld()
{
    QVERIFY(fx_WriteFile(path("real.h264"), "old"));
    QVERIFY(QFile::setPermissions(path("real.h264"), QFile::ReadOwner | QFile::WriteOwner));
    QVERIFY(QFile::link("real.h264", path("out.h264")));
    QByteArray video = fx_FileBytes(m_clips.filePath("noisy.y4m"));
    QVERIFY(fx_WriteFile(m_clips.filePath("25.y4m"), video.replace(" F30:1 ", " F25:1 ")));
    SxMinihostRun const run = record("25.y4m", {"--quality", "1", "--overwrite"});
    QVERIFY2(run.exitCode == 0, run.err);
    QVERIFY(QFileInfo(path("out.h264")).isSymLink());
    QVERIFY(QFileInfo(path("real.h264")).size() > 3);
    QCOMPARE(int(QFile::permissions(path("real.h264")) & (QFile::ReadGroup | QFile::ReadOther)), 0);
    SxFoundSidecar const found = fx_FindSidecar(path("out.h264"));
    QVERIFY2(found.sidecar, qPrintable(found.warning));
    QCOMPARE(found.sidecar->rate.text(), QString("25"));
    QCOMPARE(found.sidecar->options.value("quality").toInt(), run.json().value("quality").toInt());
}

void tst_KeepAll::sourceThatComesOnlyOnceHasTheHighestQualityAndExitCodeThree()
{
    QByteArray const noise = fx_FileBytes(m_clips.filePath("noise.y4m"));
    SxMinihostRun const run = record("-", {"--quality", "2"}, noise);
    QCOMPARE(run.exitCode, 3);
    QCOMPARE(run.json().value("quality").toInt(), 10);
    int const skipped = run.json().value("skipped").toInt();
    QVERIFY(skipped > 0);
    QVERIFY2(run.err.trimmed().split('\n').last().startsWith("warning: PICTURES ARE MISSING in "), run.err);
    QCOMPARE(fx_RunMinihost({"info", "--json", path("out.h264")}).json().value("frames").toInt(),
             20 - skipped);

    SxMinihostRun const allowed = record("-", {"--overwrite", "--may-change", "keyframe-rate"}, noise);
    QVERIFY2(allowed.exitCode == 0, allowed.err);
    QCOMPARE(allowed.json().value("skipped").toInt(-1), 0);

    QByteArray const noisy = fx_FileBytes(m_clips.filePath("noisy.y4m"));
    SxMinihostRun const higher = record("-", {"--overwrite", "--level", "1", "--may-change", "level"}, noisy);
    QVERIFY2(higher.exitCode == 0, higher.err);
    QCOMPARE(higher.json().value("skipped").toInt(-1), 0);
}

void tst_KeepAll::highestQualityHasOtherOptionsLeft()
{
    SxMinihostRun const run = record("noise.y4m", {"--quality", "10", "--may-change", "keyframe-rate"});
    QVERIFY2(run.exitCode == 0, run.err);
    QCOMPARE(run.json().value("skipped").toInt(-1), 0);
    QVERIFY(run.json().value("keyframeRate").toInt() < 5);
}

void tst_KeepAll::containerHoldsEveryPicture()
{
    SxMinihostRun const run = fx_RunMinihost(
        {"record", "--keep-all", "--json", "--quality", "1", m_clips.filePath("noisy.y4m"), path("out.mp4")});
    QVERIFY2(run.exitCode == 0, run.err);
    QCOMPARE(run.json().value("skipped").toInt(-1), 0);
    QCOMPARE(files(), QStringList{"out.mp4"});
    QCOMPARE(fx_RunMinihost({"record", "--json", "--quality", "10", path("out.mp4"), path("again.h264")})
                 .json()
                 .value("given")
                 .toInt(),
             40);
}

void tst_KeepAll::outputOfAnotherRecordingIsLeftAlone()
{
    QVERIFY(fx_WriteFile(path("out.h264"), "old"));
    QFile recorder(path("out.h264"));
    QVERIFY(recorder.open(QIODevice::ReadWrite));
    QCOMPARE(flock(recorder.handle(), LOCK_EX), 0);
    SxMinihostRun const run = record("noisy.y4m", {"--overwrite"});
    QCOMPARE(run.exitCode, 5);
    QVERIFY2(run.err.contains("out.h264: another recording is being written to it."), run.err);
    QCOMPARE(fx_FileBytes(path("out.h264")), QByteArray("old"));
    QCOMPARE(files(), QStringList{"out.h264"});
}

void tst_KeepAll::attemptThatWasKilledIsNamed()
{
    QVERIFY(fx_WriteFile(path("out.h264.attempt1"), "left"));
    QVERIFY(fx_WriteFile(path("out.h264.attempt-notes"), "mine"));
    SxMinihostRun const run = record("noisy.y4m", {"--quality", "1"});
    QVERIFY2(run.exitCode == 0, run.err);
    QVERIFY2(
        run.err.contains("out.h264.attempt1: left by a recording with --keep-all that was killed; nothing "
                         "needs it any more.\n"),
        run.err);
    QVERIFY2(!run.err.contains("notes"), run.err);
    QCOMPARE(fx_FileBytes(path("out.h264.attempt1")), QByteArray("left")); // whose it is, a person says
}

void tst_KeepAll::damagedSourceKeepsWhatCouldBeRead()
{
    QByteArray const video = fx_FileBytes(m_clips.filePath("noisy.y4m"));
    QVERIFY(fx_WriteFile(m_clips.filePath("cut.y4m"), video.left(video.size() - 1000)));
    SxMinihostRun const run = record("cut.y4m", {"--quality", "1"});
    QCOMPARE(run.exitCode, 4);
    QCOMPARE(run.json().value("skipped").toInt(-1), 0);
    QCOMPARE(run.err.count("warning: "), 1); // not once an attempt
    QCOMPARE(fx_RunMinihost({"info", "--json", path("out.h264")}).json().value("frames").toInt(),
             run.json().value("given").toInt());
}

void tst_KeepAll::consentWithoutItsOptionIsWrongUsage_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("sentence");
    QTest::newRow("alone") << QStringList{"--may-change", "level"}
                           << QByteArray("--may-change is only for --keep-all.");
    QTest::newRow("unknown") << QStringList{"--keep-all", "--may-change", "level,size"}
                             << QByteArray("--may-change takes level, keyframe-rate or level,keyframe-rate, "
                                           "not 'level,size'.");
}

void tst_KeepAll::consentWithoutItsOptionIsWrongUsage()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, sentence);
    SxMinihostRun const run = fx_RunMinihost(QStringList{"record", "camera:", path("out.h264")} + options);
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.err.contains(sentence), run.err);
}

QTEST_GUILESS_MAIN(tst_KeepAll)
#include "tst_KeepAll.moc"

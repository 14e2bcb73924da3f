#include <QtTest>

#include "support/RecordedCamera.h"

/// Several workers at a time find what one finds, in the same words.
class tst_VerifyJobs : public QObject, private CxRecordedCamera
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { makeFolder(); }

    void anyNumberOfJobsFindsTheSame_data();
    void anyNumberOfJobsFindsTheSame();
    void anyNumberOfJobsFindsTheSameCrash_data();
    void anyNumberOfJobsFindsTheSameCrash();
    void hangInALaterShareIsReported();
    void otherNumbersAreWrongUsage_data();
    void otherNumbersAreWrongUsage();

private:
    void compareJobs(QStringList const& arguments, int exitCode, QString const& most = "5") const;

    QByteArray m_long; ///< of 480 frames, a key frame every 5
};

static QByteArray fx_Unit(int header) { return QByteArray::fromHex("00000001") + static_cast<char>(header); }

/// Where the key frame nearest to \p part of the recording begins.
static int fx_KeyAt(QByteArray const& recording, double part)
{
    return static_cast<int>(
        recording.indexOf(fx_Unit(0x67), static_cast<int>(static_cast<double>(recording.size()) * part)));
}

void tst_VerifyJobs::initTestCase()
{
    makeRecording();
    QTemporaryDir folder;
    QString const name = folder.filePath("long.h264");
    SxMinihostRun const recorded =
        fx_RunMinihost({"record", "camera:", name, "--frames", "480", "--size", "96x64", "--quality", "10"});
    QVERIFY2(recorded.exitCode == 0, recorded.err);
    m_long = fx_FileBytes(name);
}

/// Runs verify with one and with more jobs, \p most at most: each is a process to start.
void tst_VerifyJobs::compareJobs(QStringList const& arguments, int exitCode, QString const& most) const
{
    for (QStringList const& more : {QStringList("--json"), QStringList("--first")}) {
        SxMinihostRun const one = run(QStringList{"verify", "--jobs", "1"} + arguments + more);
        QCOMPARE(one.exitCode, exitCode);
        for (QString const& jobs : {QString("2"), most}) {
            SxMinihostRun const several = run(QStringList{"verify", "--jobs", jobs} + arguments + more);
            QCOMPARE(several.exitCode, exitCode);
            QCOMPARE(several.err, one.err);
            QCOMPARE(several.out, one.out);
        }
    }
}

void tst_VerifyJobs::anyNumberOfJobsFindsTheSame_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("sound") << m_long << 0;
    QTest::newRow("cut off") << m_long.left(m_long.size() - 40) << 4;
    QByteArray late = m_long;
    late.replace(m_long.size() * 9 / 10, 400, QByteArray(400, '\x5A'));
    QTest::newRow("late damage") << late << 4;
    QByteArray both = late;
    both.replace(m_long.size() / 10, 400, QByteArray(400, '\x5A'));
    QTest::newRow("early and late damage") << both << 4;
    // Frames behind it may be decodable with what groups far before said.
    QByteArray noKey = m_long;
    int const key = fx_KeyAt(m_long, 0.8);
    noKey.remove(key, static_cast<int>(m_long.indexOf(fx_Unit(0x61), key)) - key);
    QTest::newRow("a key frame vanished") << noKey << 4;
    QByteArray noSets = m_long;
    for (double const part : {0.32, 0.33, 0.34, 0.49, 0.5, 0.51, 0.65, 0.66, 0.67}) {
        int const set = static_cast<int>(m_long.indexOf(fx_Unit(0x68), fx_KeyAt(m_long, part)));
        noSets[set + 5] = static_cast<char>(~noSets.at(set + 5));
    }
    QTest::newRow("parameter sets damaged where shares begin") << noSets << 4;
}

void tst_VerifyJobs::anyNumberOfJobsFindsTheSame()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, exitCode);
    QVERIFY(fx_WriteFile(path("long.h264"), bytes));
    bool const isAtBothEnds = qstrcmp(QTest::currentDataTag(), "early and late damage") == 0;
    compareJobs({"long.h264"}, exitCode, isAtBothEnds ? "16" : "5");
}

void tst_VerifyJobs::anyNumberOfJobsFindsTheSameCrash_data()
{
    QTest::addColumn<QByteArray>("words");
    QTest::newRow("first share") << QByteArray("frames 600 crash 7");
    QTest::newRow("a later share") << QByteArray("frames 600 crash 407");
    QTest::newRow("several") << QByteArray("frames 600 chain crash 6 crash 307 crash 308 crash 559 fail 590");
}

void tst_VerifyJobs::anyNumberOfJobsFindsTheSameCrash()
{
    QFETCH(QByteArray, words);
    QVERIFY(fx_WriteFile(path("c.h264"), words.leftJustified(6000, ' ')));
    compareJobs({"--plugin-path", DYING_PLUGIN, "c.h264"}, 4);
}

void tst_VerifyJobs::hangInALaterShareIsReported()
{
    QVERIFY(fx_WriteFile(path("c.h264"), QByteArray("frames 600 hang 409").leftJustified(6000, ' ')));
    QVERIFY(qputenv("MINIHOST_VERIFY_PATIENCE_MS", "8000"));
    SxMinihostRun const verified = run({"verify", "--jobs", "2", "--plugin-path", DYING_PLUGIN, "c.h264"});
    QVERIFY(qunsetenv("MINIHOST_VERIFY_PATIENCE_MS"));
    QCOMPARE(verified.exitCode, 4);
    QVERIFY2(
        verified.err.contains("frame 409 at byte 4090 (10 bytes) cannot be decoded: the decoder did not come "
                              "back within 8 s."),
        verified.err);
}

void tst_VerifyJobs::otherNumbersAreWrongUsage_data()
{
    QTest::addColumn<QString>("jobs");
    for (char const* const jobs : {"0", "-1", "257", "two", ""})
        QTest::newRow(jobs) << QString(jobs);
}

void tst_VerifyJobs::otherNumbersAreWrongUsage()
{
    QFETCH(QString, jobs);
    checkRefused({"verify", m_recording, "--jobs=" + jobs},
                 "--jobs takes a number from 1 to 256, not '" + jobs + "'.");
}

QTEST_GUILESS_MAIN(tst_VerifyJobs)
#include "tst_VerifyJobs.moc"

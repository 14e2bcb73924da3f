#include <QtTest>

#include "support/RecordedCamera.h"

/// Several threads export what one exports, in the same order and words.
class tst_ExportJobs : public QObject, private CxRecordedCamera
{
    Q_OBJECT

private slots:
    void initTestCase() { makeRecording(); }
    void init() { makeFolder(); }

    void anyNumberOfJobsExportsTheSame_data();
    void anyNumberOfJobsExportsTheSame();
    void anyNumberOfJobsLeavesOutTheSame_data();
    void anyNumberOfJobsLeavesOutTheSame();
    void readerThatGoesEndsAllThreads();
    void otherNumbersAreWrongUsage();

private:
    QByteArray exported(QString const& jobs, QStringList const& arguments) const;
};

/// All that an export leaves: its exit code, what it says and the files that it writes.
QByteArray tst_ExportJobs::exported(QString const& jobs, QStringList const& arguments) const
{
    QDir folder(m_folder->path());
    folder.mkdir("out");
    SxMinihostRun const run =
        fx_RunMinihost(QStringList{"export", "--jobs", jobs} + arguments, QByteArray(), m_folder->path());
    QByteArray all = QByteArray::number(run.exitCode) + '\n' + run.out + run.err;
    folder.cd("out");
    for (QString const& name : folder.entryList(QDir::Files, QDir::Name))
        all += name.toUtf8() + '\n' + fx_FileBytes(folder.filePath(name));
    folder.removeRecursively();
    return all;
}

void tst_ExportJobs::anyNumberOfJobsExportsTheSame_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("files") << QStringList{"--frames", "all", "-o", "out/%03d.jpg"};
    QTest::newRow("one picture twice") << QStringList{"--frames", "7,20,7", "-o", "out/%03d.ppm"};
    QTest::newRow("stream") << QStringList{"--frames", "all", "-o", "out/a.y4m"};
    QTest::newRow("stream of the pictures' own bytes")
        << QStringList{"--frames", "29-0", "--stream", "bgra", "-o", "-"};
    QTest::newRow("sheet") << QStringList{"--frames", "key", "--sheet", "3", "-o", "out/sheet.png"};
    QTest::newRow("hashes") << QStringList{"--frames", "key,0-29:3,12-3", "--hash", "md5"};
    QTest::newRow("JSON") << QStringList{"--frames", "all", "--hash", "md5", "--json"};
}

void tst_ExportJobs::anyNumberOfJobsExportsTheSame()
{
    QFETCH(QStringList, arguments);
    QByteArray const one = exported("1", arguments + QStringList{m_recording});
    QVERIFY2(one.startsWith("0\n"), one.left(500));
    for (char const* const jobs : {"2", "16"})
        QVERIFY(exported(jobs, arguments + QStringList{m_recording}) == one);
}

void tst_ExportJobs::anyNumberOfJobsLeavesOutTheSame_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("ends at the first") << QStringList{"--frames", "all", "--hash", "md5"};
    QTest::newRow("goes on") << QStringList{"--frames", "all", "--hash", "md5", "--keep-going"};
    QTest::newRow("backwards") << QStringList{"--frames", "29-0", "--hash", "md5", "--keep-going", "--json"};
}

void tst_ExportJobs::anyNumberOfJobsLeavesOutTheSame()
{
    QFETCH(QStringList, arguments);
    // The last parameter sets say nothing any more: those of the groups before serve.
    QByteArray damaged = m_bytes;
    int const set = static_cast<int>(damaged.lastIndexOf(QByteArray::fromHex("0000000168")));
    damaged[set + 5] = static_cast<char>(~damaged.at(set + 5));
    damaged.replace(damaged.size() / 2, 300, QByteArray(300, '\x5A'));
    QVERIFY(fx_WriteFile(path("hurt.h264"), damaged));
    QByteArray const one = exported("1", arguments + QStringList{"hurt.h264"});
    QVERIFY2(one.contains("cannot be decoded"), one.left(500));
    for (char const* const jobs : {"2", "16"})
        QCOMPARE(exported(jobs, arguments + QStringList{"hurt.h264"}), one);
}

void tst_ExportJobs::readerThatGoesEndsAllThreads()
{
    SxMinihostRun const run = fx_RunMinihostInShell(
        "{ \"$@\"; echo \"$?\" >&2; } | head -c 100 >/dev/null",
        {"export", m_recording, "--frames", "all", "--stream", "bgra", "-o", "-", "--jobs", "4"},
        m_folder->path());
    QCOMPARE(run.err, QByteArray("0\n"));
}

void tst_ExportJobs::otherNumbersAreWrongUsage()
{
    checkRefused({"export", m_recording, "--frames", "0", "--hash", "md5", "--jobs", "0"},
                 "--jobs takes a number from 1 to 256, not '0'.");
}

QTEST_GUILESS_MAIN(tst_ExportJobs)
#include "tst_ExportJobs.moc"

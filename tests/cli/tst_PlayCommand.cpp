#include <QDir>
#include <QtTest>

#include "support/RecordedCamera.h"

/// What info, export and verify have in common: how they open a recording and how they are asked.
class tst_PlayCommand : public QObject, private CxRecordedCamera
{
    Q_OBJECT

private slots:
    void initTestCase() { makeRecording(); }
    void init() { makeFolder(); }

    void unreadableRecordingIsRefusedWithItsCause_data();
    void unreadableRecordingIsRefusedWithItsCause();
    void streamOfAnotherEncoderIsRefusedWithTheWayToUseIt_data();
    void streamOfAnotherEncoderIsRefusedWithTheWayToUseIt();
    void wrongUsageIsExplained_data();
    void wrongUsageIsExplained();
    void quietSaysNothing();
    void everyCommandHasItsHelp_data();
    void everyCommandHasItsHelp();
};

void tst_PlayCommand::unreadableRecordingIsRefusedWithItsCause_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("cause");
    QTest::newRow("empty") << QByteArray("") << "the file is empty.";
    QTest::newRow("text") << QByteArray("no video at all\n")
                          << "this is no raw H.264 stream, since it does not begin with a start code.";
    QTest::newRow("short") << QByteArray("\0\0\1", 3)
                           << "this is no raw H.264 stream, since it does not begin with a start code.";
    QTest::newRow("no SPS")
        << QByteArray::fromHex("000000016188804000000001618880400000")
        << "the picture size is unknown, since the stream holds no sequence parameter set.";
    QTest::newRow("front lost") << QByteArray::fromHex("8841070000000167428034") + QByteArray(40, 'x')
                                << "this is no raw H.264 stream, since it does not begin with a start code: "
                                   "its first 3 bytes belong to "
                                   "no picture; 'tail -c +4 bad.h264 > out.h264' keeps what follows.";
    QTest::newRow("video")
        << QByteArray("YUV4MPEG2 W16 H16 F25:1\nFRAME\n") + QByteArray(384, '\x40')
        << "this is no raw H.264 stream, since it does not begin with a start code: it looks "
           "like YUV4MPEG pipe; 'minihost record bad.h264 out.h264' makes a recording of it.";
    QTest::newRow("missing") << QByteArray() << "there is no such file.";
}

void tst_PlayCommand::unreadableRecordingIsRefusedWithItsCause()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, cause);
    if (!bytes.isNull())
        QVERIFY(fx_WriteFile(path("bad.h264"), bytes));
    QByteArray const expected = "error: bad.h264: " + cause.toUtf8() + '\n';
    for (QStringList const& arguments :
         {QStringList{"info", "bad.h264"}, QStringList{"verify", "bad.h264"},
          QStringList{"export", "bad.h264", "--frames", "0", "--hash", "md5"}}) {
        SxMinihostRun const refused = run(arguments);
        QCOMPARE(refused.exitCode, 4);
        QCOMPARE(refused.err, expected);
        QCOMPARE(refused.out, QByteArray());
    }
    QCOMPARE(run({"info", "."}).err, QByteArray("error: .: this is a folder.\n"));
}

void tst_PlayCommand::streamOfAnotherEncoderIsRefusedWithTheWayToUseIt_data()
{
    QTest::addColumn<QString>("file");
    QDir const folder(TEST_DATA "/foreign");
    for (QString const& name : folder.entryList(QDir::Files)) {
        if (!name.contains(QStringLiteral("keys-alone"))) // which is as good as a recording
            QTest::newRow(qPrintable(name)) << folder.filePath(name);
    }
}

void tst_PlayCommand::streamOfAnotherEncoderIsRefusedWithTheWayToUseIt()
{
    QFETCH(QString, file);
    QByteArray const command = "minihost record " + file.toUtf8() + " out.h264";
    for (QStringList const& arguments :
         {QStringList{"verify", file}, QStringList{"export", file, "--frames", "0", "--hash", "md5"}}) {
        SxMinihostRun const refused = run(arguments);
        QCOMPARE(refused.exitCode, 4);
        QVERIFY2(refused.err.contains(": this is no recording but ") &&
                     refused.err.endsWith(", 12 pictures; '" + command + "' makes a recording of it.\n"),
                 refused.err);
    }
    QCOMPARE(run({"record", file, "out.h264"}).exitCode, 0);
    QVERIFY(run({"verify", "out.h264"}).err.startsWith("out.h264: all 12 frames decode"));

    SxMinihostRun const told = run({"info", file});
    QCOMPARE(told.exitCode, 0);
    QCOMPARE(told.err, QByteArray());
    QVERIFY2(told.out.contains(", 64 x 48\n  12 pictures, ") && told.out.contains("  no recording but ") &&
                 told.out.contains("  " + command + " makes a recording of it\n"),
             told.out);
    QJsonObject const json = run({"info", file, "--json"}).json();
    QCOMPARE(json.value("recording").toBool(true), false);
    QCOMPARE(json.value("pictures").toInt(), 12);
    QCOMPARE(json.value("toRecord").toString().toUtf8(), command);
}

void tst_PlayCommand::wrongUsageIsExplained_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("info of nothing") << QStringList{"info"} << "No recording is given.";
    QTest::newRow("info of two") << QStringList{"info", "a", "b"}
                                 << "One recording at a time: 'b' is one too many.";
    QTest::newRow("verify of nothing") << QStringList{"verify"} << "No recording is given.";
    QTest::newRow("unknown option") << QStringList{"info", "--fast", "a"} << "Unknown option 'fast'.";
}

void tst_PlayCommand::wrongUsageIsExplained()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, sentence);
    checkRefused(arguments, sentence);
}

void tst_PlayCommand::quietSaysNothing()
{
    for (QStringList const& arguments :
         {QStringList{"verify", m_recording, "-q"},
          QStringList{"export", m_recording, "--frames", "0", "-o", "f.png", "--quiet"}}) {
        SxMinihostRun const quiet = run(arguments);
        QCOMPARE(quiet.exitCode, 0);
        QCOMPARE(quiet.out, QByteArray());
        QCOMPARE(quiet.err, QByteArray());
    }
}

void tst_PlayCommand::everyCommandHasItsHelp_data()
{
    QTest::addColumn<QString>("command");
    for (char const* command : {"info", "export", "verify"})
        QTest::newRow(command) << command;
}

void tst_PlayCommand::everyCommandHasItsHelp()
{
    QFETCH(QString, command);
    SxMinihostRun const help = run({command, "--help"});
    QCOMPARE(help.exitCode, 0);
    QVERIFY(help.out.contains("Usage: minihost " + command.toUtf8() + ' '));
    for (QByteArray const& line : help.out.split('\n'))
        QVERIFY2(QString::fromUtf8(line).size() <= 100, line);
    QVERIFY(run({"--help"}).out.contains("\n  " + command.toUtf8() + ' '));
    QCOMPARE(run({"help", command}).out, help.out);
}

QTEST_GUILESS_MAIN(tst_PlayCommand)
#include "tst_PlayCommand.moc"

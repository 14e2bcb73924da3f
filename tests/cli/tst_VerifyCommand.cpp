#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QtTest>
#include <csignal>

#include "support/NotedCopy.h"
#include "support/RecordedCamera.h"

/// The verify command as its user meets it: the built program, sound and damaged recordings.
class tst_VerifyCommand : public QObject, private CxRecordedCamera
{
    Q_OBJECT

private slots:
    void initTestCase() { makeRecording(); }
    void init() { makeFolder(); }

    void verifyPassesSoundRecording();
    void verifyTellsTheLengthAtTheNotedRate();
    void verifyFindsCutOffFrame();
    void verifyFindsDamagedFrame();
    void verifyFindsBytesOfNoFrame();
    void verifyFindsCrowdedFrames();
    void everyDamagedRangeIsReported();
    void firstDamageAloneIsReportedOnRequest();
    void severalFilesAreToldALineEach();
    void severalFilesAreAJsonArray();
    void picturesThatVanishedAreCounted_data();
    void picturesThatVanishedAreCounted();
    void groupsThatVanishedAreCounted();
    void shorterGroupIsAWarning();
    void recordingWithSkippedPicturesIsWhole();
    void crashIsReportedAndTheRestGoesOn();
    void crashThatLaterFramesMeetAgainIsPassedAtAKeyFrame();
    void workerRefusesInALine();
    void tooManyCrashesEndTheFile();
    void crashWhileOpeningIsReported();
    void hangIsReportedAndTheNextFileGoesOn();
    void interruptedVerifyTakesItsWorkerAlong_data();
    void interruptedVerifyTakesItsWorkerAlong();
    void fileThatShrinksMeanwhileFailsWithoutACrash();
    void tooFewFileDescriptorsAreNamed_data();
    void tooFewFileDescriptorsAreNamed();

private:
    /// A run with a plug-in whose loader does what the file says.
    SxMinihostRun runDying(QStringList const& arguments) const
    {
        return run(QStringList{"verify", "--plugin-path", DYING_PLUGIN} + arguments);
    }
    QByteArray damagedAt(QVector<int> const& frames) const;
};

/// Offset of frame \p frame as `info` lists it.
static int fx_Offset(QString const& recording, int frame)
{
    QJsonObject const json = fx_RunMinihost({"info", "--json", "--frames", recording}).json();
    return json.value("frameList").toArray()[frame].toObject().value("offset").toInt(-1);
}

/// What a file for the plug-in that dies says, as long as its \p frames of ten bytes.
static QByteArray fx_Orders(QByteArray const& words, int frames)
{
    return words.leftJustified(frames * 10, ' ');
}

/// The recording with these frames overwritten.
QByteArray tst_VerifyCommand::damagedAt(QVector<int> const& frames) const
{
    QByteArray damaged = m_bytes;
    for (int const frame : frames) {
        int const begin = fx_Offset(m_recording, frame);
        int const end = fx_Offset(m_recording, frame + 1);
        // No zeros, which would form start codes, and no ones, which stand for an unchanged picture.
        for (int i = begin + 20; i < end; ++i)
            damaged[i] = static_cast<char>(0x10 + i * 37 % 0x60);
    }
    return damaged;
}

void tst_VerifyCommand::verifyTellsTheLengthAtTheNotedRate()
{
    QVERIFY(fx_CopyWithSidecar(m_recording, path("noted.h264")));
    SxMinihostRun const verified = run({"verify", "noted.h264"});
    QCOMPARE(verified.err,
             QByteArray("noted.h264: all 30 frames decode, plays 1.2 s at 25 pictures a second.\n"));
}

void tst_VerifyCommand::verifyPassesSoundRecording()
{
    SxMinihostRun const verified = run({"verify", m_recording});
    QCOMPARE(verified.exitCode, 0);
    QCOMPARE(verified.out, QByteArray());
    QCOMPARE(verified.err, m_recording.toUtf8() +
                               ": all 30 frames decode, plays 1.0 s at 30 pictures a second (assumed).\n");

    QJsonObject const json = run({"verify", m_recording, "--json"}).json();
    QCOMPARE(json.value("frames").toInt(), kFrames);
    QCOMPARE(json.value("decoded").toInt(), kFrames);
    QCOMPARE(json.value("looseBytes").toInt(-1), 0);
    QVERIFY(json.contains("failed") && json.value("failed").isNull());
    QVERIFY(json.contains("error") && json.value("error").isNull());
    QCOMPARE(json.value("warnings").toArray(), QJsonArray());
}

void tst_VerifyCommand::verifyFindsCutOffFrame()
{
    int const last = fx_Offset(m_recording, kFrames - 1);
    QVERIFY(last > 0);
    QVERIFY(fx_WriteFile(path("cut.h264"), m_bytes.left(last + (m_bytes.size() - last) / 2)));
    SxMinihostRun const verified = run({"verify", "cut.h264", "--json"});
    QCOMPARE(verified.exitCode, 4);
    QByteArray const start = "error: cut.h264: frame 29 at byte " + QByteArray::number(last) + " (" +
                             QByteArray::number((m_bytes.size() - last) / 2) + " bytes) cannot be decoded: ";
    QVERIFY2(verified.err.startsWith(start), verified.err);
    QVERIFY2(verified.err.contains("damaged or cut off"), verified.err);
    QCOMPARE(verified.err.count('\n'), 1);
    QJsonObject const failed = verified.json().value("failed").toObject();
    QCOMPARE(failed.value("frame").toInt(), 29);
    QCOMPARE(failed.value("offset").toInt(), last);
    QCOMPARE(verified.json().value("decoded").toInt(), 29);
    QVERIFY(verified.json().value("error").toString().startsWith("cut.h264: frame 29 at byte "));

    // With -v the plug-in's own words come through as well.
    QVERIFY(run({"verify", "cut.h264", "-v"})
                .err.contains("\"CxOpenH264Decoder::decode(): The decoder failed with code: "));
    // A single frame gives the same reason.
    SxMinihostRun const exported = run({"export", "cut.h264", "--frames", "29", "-o", "f.png"});
    QCOMPARE(exported.exitCode, 4);
    QVERIFY2(exported.err.startsWith("error: cut.h264: frame 29 cannot be decoded: "), exported.err);
    QVERIFY(!QFile::exists(path("f.png")));
}

void tst_VerifyCommand::verifyFindsDamagedFrame()
{
    int const begin = fx_Offset(m_recording, 12);
    QVERIFY(fx_WriteFile(path("damaged.h264"), damagedAt({12})));
    SxMinihostRun const verified = run({"verify", "damaged.h264", "--json"});
    QCOMPARE(verified.exitCode, 4);
    QCOMPARE(verified.json().value("failed").toObject().value("frame").toInt(), 12);
    QCOMPARE(verified.json().value("failed").toObject().value("offset").toInt(), begin);
    QCOMPARE(verified.json().value("decoded").toInt(), 27); // 13 and 14 build on it, 15 is a key frame
}

void tst_VerifyCommand::verifyFindsBytesOfNoFrame()
{
    // A file that ends with a whole start code: the frame before it was never closed.
    int const last = fx_Offset(m_recording, kFrames - 1);
    QVERIFY(fx_WriteFile(path("loose.h264"), m_bytes.left(last) + QByteArray("\0\0\0\1", 4)));
    int const before = fx_Offset(m_recording, kFrames - 2);
    SxMinihostRun const verified = run({"verify", "loose.h264"});
    QCOMPARE(verified.exitCode, 4);
    QCOMPARE(verified.err, "error: loose.h264: the last " + QByteArray::number(last + 4 - before) +
                               " bytes, from byte " + QByteArray::number(before) +
                               " on, belong to no frame; the file seems cut off.\n");
}

void tst_VerifyCommand::verifyFindsCrowdedFrames()
{
    // Slices that later pictures do not refer to (header 0x01) stay in the frame before them.
    QByteArray crowded = m_bytes;
    crowded.replace(QByteArray::fromHex("0000000161"), QByteArray::fromHex("0000000101"));
    QVERIFY(fx_WriteFile(path("crowded.h264"), crowded));
    SxMinihostRun const verified = run({"verify", "crowded.h264"});
    QCOMPARE(verified.exitCode, 4);
    QVERIFY2(
        verified.err.startsWith("error: crowded.h264: this is no recording but H.264 of another encoder ("),
        verified.err);
    QVERIFY2(verified.err.contains("), 30 pictures; "), verified.err);
}

void tst_VerifyCommand::everyDamagedRangeIsReported()
{
    QVERIFY(fx_WriteFile(path("d.h264"), damagedAt({3, 12, 13, 21})));
    SxMinihostRun const verified = run({"verify", "d.h264", "--json"});
    QCOMPARE(verified.exitCode, 4);
    QByteArrayList const lines = verified.err.split('\n');
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines[0], QByteArray("error: d.h264: 9 of 30 frames cannot be decoded, in 3 places:"));
    QVERIFY2(lines[1].startsWith("  frames 3-4 at byte "), lines[1]);
    QVERIFY2(lines[2].startsWith("  frames 12-14 at byte "), lines[2]);
    QVERIFY2(lines[3].startsWith("  frames 21-24 at byte "), lines[3]);

    QJsonObject const json = verified.json();
    QCOMPARE(json.value("decoded").toInt(), 21);
    QJsonArray const damage = json.value("damage").toArray();
    QCOMPARE(damage.size(), 3);
    QCOMPARE(json.value("failed"), QJsonValue(damage[0]));
    QCOMPARE(damage[1].toObject().value("frame").toInt(), 12);
    QCOMPARE(damage[1].toObject().value("lastFrame").toInt(), 14);
    int const begin = fx_Offset(m_recording, 12);
    QCOMPARE(damage[1].toObject().value("offset").toInt(), begin);
    QCOMPARE(damage[1].toObject().value("size").toInt(), fx_Offset(m_recording, 15) - begin);
}

void tst_VerifyCommand::firstDamageAloneIsReportedOnRequest()
{
    QVERIFY(fx_WriteFile(path("d.h264"), damagedAt({3, 12})));
    SxMinihostRun const verified = run({"verify", "--first", "d.h264", "--json"});
    QCOMPARE(verified.exitCode, 4);
    QVERIFY2(verified.err.startsWith("error: d.h264: frame 3 at byte "), verified.err);
    QCOMPARE(verified.err.count('\n'), 1);
    QCOMPARE(verified.json().value("decoded").toInt(), 3);
    QCOMPARE(verified.json().value("damage").toArray().size(), 1);
}

void tst_VerifyCommand::severalFilesAreToldALineEach()
{
    QVERIFY(fx_WriteFile(path("good.h264"), m_bytes));
    QVERIFY(fx_WriteFile(path("bad.h264"), damagedAt({12})));
    SxMinihostRun const verified = run({"verify", "good.h264", "bad.h264", "none.h264", "good.h264"});
    QCOMPARE(verified.exitCode, 4);
    QByteArrayList const lines = verified.err.split('\n');
    QCOMPARE(lines.size(), 5);
    QVERIFY2(lines[0].startsWith("good.h264: all 30 frames decode"), lines[0]);
    QVERIFY2(lines[1].startsWith("error: bad.h264: frames 12-14 at byte "), lines[1]);
    QCOMPARE(lines[2], QByteArray("error: none.h264: there is no such file."));
    QCOMPARE(lines[3], lines[0]);
    QCOMPARE(run({"verify", "good.h264", "good.h264"}).exitCode, 0);
}

void tst_VerifyCommand::severalFilesAreAJsonArray()
{
    QVERIFY(fx_WriteFile(path("good.h264"), m_bytes));
    SxMinihostRun const verified = run({"verify", "--json", "-q", "good.h264", "none.h264"});
    QCOMPARE(verified.exitCode, 4);
    QJsonArray const json = QJsonDocument::fromJson(verified.out).array();
    QCOMPARE(json.size(), 2);
    QCOMPARE(json[0].toObject().value("decoded").toInt(), kFrames);
    QCOMPARE(json[1].toObject().value("file").toString(), QString("none.h264"));
    QCOMPARE(json[1].toObject().value("error").toString(), QString("none.h264: there is no such file."));
}

void tst_VerifyCommand::picturesThatVanishedAreCounted_data()
{
    QTest::addColumn<int>("frame"); // whose unit becomes one that nobody knows
    QTest::newRow("in a group") << 12;
    QTest::newRow("the last of a group") << 14;
    QTest::newRow("a key") << 15;
}

void tst_VerifyCommand::picturesThatVanishedAreCounted()
{
    QFETCH(int, frame);
    QByteArray damaged = m_bytes;
    damaged[fx_Offset(m_recording, frame) + 4] = '\x6f';
    QVERIFY(fx_WriteFile(path("v.h264"), damaged));
    SxMinihostRun const verified = run({"verify", "v.h264", "--json"});
    QCOMPARE(verified.exitCode, 4);
    QVERIFY2(verified.err.contains("1 picture vanished, the first before frame " + QByteArray::number(frame) +
                                   "; numbers are too small from there on.\n"),
             verified.err);
    QCOMPARE(verified.json().value("frames").toInt(), kFrames - 1);
    QJsonArray const vanished = verified.json().value("vanished").toArray();
    QCOMPARE(vanished.size(), 1);
    QCOMPARE(vanished[0].toObject().value("beforeFrame").toInt(), frame);
    QCOMPARE(vanished[0].toObject().value("pictures").toInt(), 1);
}

void tst_VerifyCommand::groupsThatVanishedAreCounted()
{
    int const begin = fx_Offset(m_recording, 10);
    int const end = fx_Offset(m_recording, 25);
    QVERIFY(fx_WriteFile(path("g.h264"), m_bytes.left(begin) + m_bytes.mid(end)));
    SxMinihostRun const verified = run({"verify", "g.h264", "--json"});
    QCOMPARE(verified.exitCode, 4);
    QCOMPARE(verified.err,
             QByteArray("error: g.h264: about 15 pictures, 3 key frames among them, vanished, the first "
                        "before frame 10; numbers are too small from there on.\n"));
    QJsonArray const vanished = verified.json().value("vanished").toArray();
    QCOMPARE(vanished.size(), 1);
    QCOMPARE(vanished[0].toObject().value("pictures").toInt(), 15);
    QCOMPARE(vanished[0].toObject().value("keyFrames").toInt(), 3);
    QCOMPARE(vanished[0].toObject().value("certain").toBool(), true);

    // Two recordings one behind the other are whole.
    QVERIFY(fx_WriteFile(path("two.h264"), m_bytes + m_bytes));
    QCOMPARE(run({"verify", "two.h264"}).exitCode, 0);
}

void tst_VerifyCommand::shorterGroupIsAWarning()
{
    int const begin = fx_Offset(m_recording, 14);
    int const end = fx_Offset(m_recording, 15);
    QVERIFY(fx_WriteFile(path("s.h264"), m_bytes.left(begin) + m_bytes.mid(end)));
    SxMinihostRun const verified = run({"verify", "s.h264"});
    QCOMPARE(verified.exitCode, 0); // the encoder may have done so, too
    QVERIFY2(
        verified.err.startsWith("warning: s.h264: 1 picture may be missing, the first before frame 14: "),
        verified.err);
}

void tst_VerifyCommand::recordingWithSkippedPicturesIsWhole()
{
    SxMinihostRun const recorded = run({"record", "camera:", "q.h264", "--frames", "60", "--quality", "1"});
    QCOMPARE(recorded.exitCode, 0);
    QVERIFY2(recorded.err.contains("The encoder skipped "), recorded.err);
    SxMinihostRun const verified = run({"verify", "q.h264"});
    QCOMPARE(verified.exitCode, 0);
    QVERIFY2(verified.err.startsWith("q.h264: all "), verified.err);
}

void tst_VerifyCommand::crashIsReportedAndTheRestGoesOn()
{
    QVERIFY(fx_WriteFile(path("c.h264"), "frames 20 crash 7"));
    SxMinihostRun const verified = runDying({"c.h264", "--json"});
    QCOMPARE(verified.exitCode, 4);
    QCOMPARE(verified.err,
             QByteArray("error: c.h264: frame 7 at byte 70 (10 bytes) cannot be decoded: the decoder "
                        "crashed (signal 11).\n"));
    QCOMPARE(verified.json().value("decoded").toInt(), 19);
    QCOMPARE(verified.json().value("failed").toObject().value("frame").toInt(), 7);
}

void tst_VerifyCommand::crashThatLaterFramesMeetAgainIsPassedAtAKeyFrame()
{
    QVERIFY(fx_WriteFile(path("c.h264"), fx_Orders("frames 20 chain crash 6 crash 18", 20)));
    SxMinihostRun const verified = runDying({"c.h264", "--json"});
    QCOMPARE(verified.exitCode, 4);
    QVERIFY2(
        verified.err.contains("\n  frames 6-9 at byte 60 (40 bytes): the decoder crashed (signal 11).\n"
                              "  frames 18-19 at byte 180 (20 bytes): the decoder crashed (signal 11).\n"),
        verified.err);
    QCOMPARE(verified.json().value("decoded").toInt(), 14);
    QCOMPARE(verified.json().value("vanished").toArray(),
             QJsonArray()); // nobody looked, so nothing is missing
    QVERIFY2(!verified.err.contains("warning"), verified.err);
}

/// The process that decodes for verify says why it cannot begin, and ends as verify is to end.
void tst_VerifyCommand::workerRefusesInALine()
{
    QStringList const whole{"verify", "--worker", "0", "30", "0"};
    SxMinihostRun const noPlugin = run(whole + QStringList{path("none"), m_recording});
    QCOMPARE(noPlugin.exitCode, 1);
    QCOMPARE(noPlugin.out.count('\n'), 1);
    QVERIFY2(noPlugin.out.startsWith("refused 1 " + path("none").toUtf8() + ": "), noPlugin.out);
    SxMinihostRun const noFile = run(whole + QStringList{PLUGIN_FILE, "none.h264"});
    QCOMPARE(noFile.exitCode, 4);
    QCOMPARE(noFile.out, QByteArray("refused 4 none.h264: there is no such file.\n"));
}

void tst_VerifyCommand::tooManyCrashesEndTheFile()
{
    QByteArray orders("frames 100 chain");
    for (int frame = 0; frame < 100; frame += 5)
        orders += " crash " + QByteArray::number(frame);
    QVERIFY(fx_WriteFile(path("c.h264"), fx_Orders(orders, 100)));
    SxMinihostRun const verified = runDying({"c.h264"});
    QCOMPARE(verified.exitCode, 4);
    QVERIFY2(verified.err.startsWith("error: c.h264: 100 of 100 frames cannot be decoded, in 2 places:\n"),
             verified.err);
    QVERIFY2(verified.err.contains(": not looked at after 12 crashes.\n"), verified.err);
}

void tst_VerifyCommand::crashWhileOpeningIsReported()
{
    QVERIFY(fx_WriteFile(path("c.h264"), "crash open"));
    QVERIFY(fx_WriteFile(path("good.h264"), "frames 3"));
    SxMinihostRun const verified = runDying({"c.h264", "good.h264"});
    QCOMPARE(verified.exitCode, 4);
    QVERIFY2(
        verified.err.startsWith(
            "error: c.h264: it cannot be opened: the decoder crashed (signal 11).\ngood.h264: all 3 frames"),
        verified.err);
}

void tst_VerifyCommand::hangIsReportedAndTheNextFileGoesOn()
{
    QVERIFY(fx_WriteFile(path("h.h264"), "frames 9 hang 4"));
    QVERIFY(fx_WriteFile(path("good.h264"), "frames 3"));
    qputenv("MINIHOST_VERIFY_PATIENCE_MS", "5000"); // 30 s are long to wait for
    SxMinihostRun const verified = runDying({"h.h264", "good.h264"});
    qunsetenv("MINIHOST_VERIFY_PATIENCE_MS");
    QCOMPARE(verified.exitCode, 4);
    QVERIFY2(
        verified.err.startsWith("error: h.h264: frame 4 at byte 40 (10 bytes) cannot be decoded: the decoder "
                                "did not come back within 5 s.\ngood.h264: all 3 frames"),
        verified.err);
}

void tst_VerifyCommand::interruptedVerifyTakesItsWorkerAlong_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("INT") << SIGINT;
    QTest::newRow("TERM") << SIGTERM;
    QTest::newRow("HUP") << SIGHUP;
}

void tst_VerifyCommand::interruptedVerifyTakesItsWorkerAlong()
{
    QFETCH(int, signal);
    QVERIFY(fx_WriteFile(path("h.h264"), "frames 9 hang 4"));
    QProcess process;
    process.setWorkingDirectory(m_folder->path());
    process.start(fx_MinihostProgram(), {"verify", "--plugin-path", DYING_PLUGIN, "h.h264", "h.h264"});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path("h.h264.pid")), 60000);
    auto const worker = static_cast<pid_t>(fx_FileBytes(path("h.h264.pid")).toInt());
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), signal), 0);
    QVERIFY(process.waitForFinished(-1));
    QCOMPARE(process.exitCode(), 128 + signal);
    QCOMPARE(process.readAllStandardError(),
             QByteArray("error: h.h264: stopped after 4 of 9 frames, which all decode.\n"));
    QCOMPARE(::kill(worker, 0), -1);
}

void tst_VerifyCommand::fileThatShrinksMeanwhileFailsWithoutACrash()
{
    QVERIFY(fx_WriteFile(path("s.h264"), m_bytes + m_bytes + m_bytes));
    QProcess process;
    process.setWorkingDirectory(m_folder->path());
    process.start(fx_MinihostProgram(), {"verify", "s.h264"});
    QVERIFY(process.waitForStarted());
    QFile file(path("s.h264"));
    qint64 const step = file.size() / 100;
    while (file.size() > step && !process.waitForFinished(1))
        QVERIFY(file.resize(file.size() - step));
    QVERIFY(process.waitForFinished(-1));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QByteArray const err = process.readAllStandardError();
    QCOMPARE(process.exitCode(), 4);
    QVERIFY2(err.startsWith("error: s.h264: "), err);
}

void tst_VerifyCommand::tooFewFileDescriptorsAreNamed_data()
{
    QTest::addColumn<int>("descriptors");
    for (int const count : {8, 10, 12}) // with fewer the loader of libraries may give up itself
        QTest::addRow("%d", count) << count;
}

void tst_VerifyCommand::tooFewFileDescriptorsAreNamed()
{
    QFETCH(int, descriptors);
    SxMinihostRun const result = fx_RunMinihostInShell(
        QStringLiteral("ulimit -n %1; exec \"$@\"").arg(descriptors), {"verify", m_recording});
    QCOMPARE(result.exitCode, 1);
    QCOMPARE(result.err.trimmed(),
             QByteArray("error: The process that decodes cannot be started: Too many open files."));
}

QTEST_GUILESS_MAIN(tst_VerifyCommand)
#include "tst_VerifyCommand.moc"

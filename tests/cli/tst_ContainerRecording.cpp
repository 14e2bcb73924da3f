#include <QDir>
#include <QProcess>
#include <QtTest>
#include <csignal>
#include <sys/stat.h>

#include "support/FFprobe.h"
#include "support/RecordedCamera.h"

/// Recordings that end in a container, and those that were kept from it.
class tst_ContainerRecording : public QObject, private CxRecordedCamera
{
    Q_OBJECT

private slots:
    void initTestCase() { makeRecording(); }
    void init() { makeFolder(); }

    void containerHoldsTheSamePictures_data();
    void containerHoldsTheSamePictures();
    void rateIsTheSources();
    void jsonNamesTheContainer();
    void stoppedCameraIsInTheContainer();
    void killedRecordingIsFoundAndFinished();
    void recordingThatGoesOnIsNotTouched();
    void fullDiskLeavesTheRawFile();
    void containerThatCannotBeMadeLeavesTheRawFile();
    void outputThatIsInTheWayIsNamed();

private:
    QStringList files() const { return QDir(m_folder->path()).entryList(QDir::Files); }
    QStringList cameraTo(QString const& name) const
    {
        return {"record", "camera:", name, "--size", "320x240", "--frames", QString::number(kFrames)};
    }
    void startEndless(QProcess& process, QString const& name) const;
};

/// Starts a recording without end and waits until some of it is on the disk.
void tst_ContainerRecording::startEndless(QProcess& process, QString const& name) const
{
    process.setWorkingDirectory(m_folder->path());
    process.start(fx_MinihostProgram(), {"record", "camera:", name, "--size", "64x48", "--frames", "0"});
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(path(name + ".h264")).size() > 20000, 60000);
}

void tst_ContainerRecording::containerHoldsTheSamePictures_data()
{
    QTest::addColumn<QString>("name");
    for (char const* name : {"o.mp4", "o.mov", "o.mkv"})
        QTest::newRow(name) << name;
}

void tst_ContainerRecording::containerHoldsTheSamePictures()
{
    QFETCH(QString, name);
    SxMinihostRun const recorded = run(cameraTo(name));
    QVERIFY2(recorded.exitCode == 0, recorded.err);
    QVERIFY2(recorded.err.startsWith(name.toUtf8() + ": 30 pictures of 320 x 240\n"), recorded.err);
    QCOMPARE(files(), QStringList{name});
    QCOMPARE(fx_DecodedHashes(path(name)), fx_DecodedHashes(m_recording));
    QJsonObject const stream = fx_ProbedStream(path(name));
    QCOMPARE(stream.value("color_range").toString(), QString("pc"));
    QCOMPARE(stream.value("r_frame_rate").toString(), QString("30/1"));

    SxMinihostRun const again = run(cameraTo(name));
    QCOMPARE(again.exitCode, 5);
    QVERIFY2(again.err.contains("the file exists; --overwrite replaces it."), again.err);
    QCOMPARE(run(cameraTo(name) + QStringList{"--overwrite", "--quality", "10"}).exitCode, 0);
    QVERIFY(fx_DecodedHashes(path(name)) != fx_DecodedHashes(m_recording));
    QCOMPARE(files(), QStringList{name});
}

void tst_ContainerRecording::rateIsTheSources()
{
    QCOMPARE(run({"remux", "--fps", "25", m_recording, "in.mp4"}).exitCode, 0);
    SxMinihostRun const recorded = run({"record", "in.mp4", "o.mp4"});
    QVERIFY2(recorded.exitCode == 0, recorded.err);
    QCOMPARE(fx_ProbedStream(path("o.mp4")).value("r_frame_rate").toString(), QString("25/1"));
    QCOMPARE(fx_DecodedHashes(path("o.mp4")).size(), int{kFrames});
}

void tst_ContainerRecording::jsonNamesTheContainer()
{
    SxMinihostRun const recorded = run(cameraTo("o.mp4") + QStringList{"--json", "-q"});
    QCOMPARE(recorded.exitCode, 0);
    QCOMPARE(recorded.err, QByteArray());
    QJsonObject const json = recorded.json();
    QCOMPARE(json.value("output").toString(), QString("o.mp4"));
    QCOMPARE(json.value("bytes").toInt(), int(QFileInfo(path("o.mp4")).size()));
    QVERIFY(json.value("error").isNull());
}

void tst_ContainerRecording::stoppedCameraIsInTheContainer()
{
    QProcess process;
    startEndless(process, "o.mp4");
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished(-1));
    QCOMPARE(process.exitCode(), 0); // a camera has no end of its own
    QCOMPARE(files(), QStringList{"o.mp4"});
    QVERIFY(fx_DecodedHashes(path("o.mp4")).size() > 10);
}

void tst_ContainerRecording::killedRecordingIsFoundAndFinished()
{
    QProcess process;
    startEndless(process, "it's.mp4");
    process.kill();
    QVERIFY(process.waitForFinished(-1));
    QCOMPARE(files(), QStringList{"it's.mp4.h264"});
    QByteArray const left = fx_FileBytes(path("it's.mp4.h264"));

    // Whoever comes next is told, and nothing is replaced.
    QByteArray const offer("'minihost remux --remove-input 'it'\\''s.mp4.h264' 'it'\\''s.mp4'' finishes it");
    for (QStringList const& next :
         {cameraTo("it's.mp4"), cameraTo("it's.mp4") + QStringList{"--overwrite"}}) {
        SxMinihostRun const refused = run(next);
        QCOMPARE(refused.exitCode, 5);
        QVERIFY2(refused.err.contains(offer), refused.err);
    }
    SxMinihostRun const asked = run({"info", "it's.mp4"});
    QCOMPARE(asked.exitCode, 4);
    QVERIFY2(asked.err.contains(offer), asked.err);
    SxMinihostRun const info = run({"info", "it's.mp4.h264"});
    QVERIFY2(info.exitCode == 0 && info.out.contains(offer), info.out);
    QCOMPARE(fx_FileBytes(path("it's.mp4.h264")), left);

    // The command, as a shell takes it. Where the kill cut a picture off, that is told.
    int const frames = run({"info", "--json", "it's.mp4.h264"}).json().value("frames").toInt();
    SxMinihostRun const done = fx_RunMinihostInShell(
        "\"$1\" remux --remove-input 'it'\\''s.mp4.h264' 'it'\\''s.mp4'", {}, m_folder->path());
    bool const isCutOff = done.exitCode == 4;
    QVERIFY2(done.exitCode == 0 || (isCutOff && done.err.contains("its last picture is cut off")), done.err);
    QCOMPARE(files(), QStringList{"it's.mp4"});
    QCOMPARE(fx_DecodedHashes(path("it's.mp4")).size(), frames - (isCutOff ? 1 : 0));
    QCOMPARE(run(cameraTo("it's.mp4") + QStringList{"--overwrite"}).exitCode, 0);
}

void tst_ContainerRecording::recordingThatGoesOnIsNotTouched()
{
    QProcess process;
    startEndless(process, "o.mp4");
    SxMinihostRun const second = run(cameraTo("o.mp4"));
    SxMinihostRun const info = run({"info", "o.mp4.h264"});
    process.kill();
    QVERIFY(process.waitForFinished(-1));
    QCOMPARE(second.exitCode, 5);
    QCOMPARE(second.err, QByteArray("error: o.mp4: another recording is being written to it.\n"));
    QVERIFY2(info.out.contains("a recording to o.mp4 that goes on"), info.out);
}

void tst_ContainerRecording::fullDiskLeavesTheRawFile()
{
    // A limit of a few kilobytes stands for a disk that fills up on the way.
    SxMinihostRun const failed =
        fx_RunMinihostInShell("trap '' XFSZ; ulimit -f 80; exec \"$@\"", cameraTo("o.mp4"), m_folder->path());
    QCOMPARE(failed.exitCode, 5);
    QVERIFY2(failed.err.contains("(File too large). What was recorded lies in o.mp4.h264; "
                                 "'minihost remux --remove-input o.mp4.h264 o.mp4' makes the container."),
             failed.err);
    QCOMPARE(files(), QStringList{"o.mp4.h264"});
    QCOMPARE(run({"verify", "o.mp4.h264"}).exitCode, 0);
}

void tst_ContainerRecording::containerThatCannotBeMadeLeavesTheRawFile()
{
    QVERIFY(QFile::link("/no/such/folder/o.mp4", path("o.mp4")));
    SxMinihostRun const failed = run(cameraTo("o.mp4"));
    QCOMPARE(failed.exitCode, 5);
    QVERIFY2(failed.err.contains("What was recorded lies in o.mp4.h264; "), failed.err);
    QCOMPARE(fx_FileBytes(path("o.mp4.h264")), m_bytes);
}

void tst_ContainerRecording::outputThatIsInTheWayIsNamed()
{
    QCOMPARE(mkfifo(path("pipe.mp4").toLocal8Bit().constData(), 0600), 0);
    SxMinihostRun const pipe = run(cameraTo("pipe.mp4"));
    QCOMPARE(pipe.exitCode, 5);
    QVERIFY2(pipe.err.contains("pipe.mp4: this is no regular file"), pipe.err);
    SxMinihostRun const avi = run(cameraTo("o.avi"));
    QCOMPARE(avi.exitCode, 2);
    QVERIFY2(avi.err.contains("its name must end in .h264, .mp4, .mov or .mkv."), avi.err);
    QCOMPARE(run({"remux", m_recording, "own.mp4"}).exitCode, 0);
    SxMinihostRun const own = run({"record", "own.mp4", "own.mp4", "--overwrite"});
    QCOMPARE(own.exitCode, 5);
    QVERIFY2(own.err.contains("the recording would replace its own source."), own.err);
    QCOMPARE(fx_DecodedHashes(path("own.mp4")).size(), int{kFrames});
}

QTEST_GUILESS_MAIN(tst_ContainerRecording)
#include "tst_ContainerRecording.moc"

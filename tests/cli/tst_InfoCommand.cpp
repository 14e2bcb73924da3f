#include <QJsonArray>
#include <QtTest>

#include "support/DescribedStream.h"
#include "support/NotedCopy.h"
#include "support/RecordedCamera.h"

/// The info command as its user meets it: the built program, real recordings.
class tst_InfoCommand : public QObject, private CxRecordedCamera
{
    Q_OBJECT

private slots:
    void initTestCase() { makeRecording(); }
    void init() { makeFolder(); }

    void infoTellsWhatIsThere();
    void infoTellsWhatTheSidecarNotes();
    void sidecarOfAnotherRecordingIsIgnoredWithAWarning();
    void infoListsTheFrames();
    void infoSaysHowOtherPlayersMisread_data();
    void infoSaysHowOtherPlayersMisread();
    void streamThatDescribesItselfIsMisreadByNobody();
    void oneFrameHasNoKeyFrameSpacing();
    void infoWarnsOfUndecodableFrame();
};

void tst_InfoCommand::infoTellsWhatIsThere()
{
    SxMinihostRun const text = run({"info", m_recording});
    QCOMPARE(text.exitCode, 0);
    QCOMPARE(text.err, QByteArray());
    for (char const* part :
         {"in.h264: H.264 baseline, level 5.2, 320 x 240\n", "  30 frames, 6 key frames, one every 5\n",
          "  plays 1.0 s at 30 pictures a second (assumed)\n"})
        QVERIFY2(text.out.contains(part), text.out);

    QJsonObject const json = run({"info", "--json", m_recording}).json();
    QCOMPARE(json.value("file").toString(), m_recording);
    QCOMPARE(json.value("codec").toString(), QString("H.264"));
    QCOMPARE(json.value("profile").toString(), QString("baseline"));
    QCOMPARE(json.value("level").toString(), QString("5.2"));
    QCOMPARE(json.value("width").toInt(), kWidth);
    QCOMPARE(json.value("height").toInt(), kHeight);
    QCOMPARE(json.value("frames").toInt(), kFrames);
    QCOMPARE(json.value("keyFrames").toInt(), 6);
    QCOMPARE(json.value("smallestKeyFrameSpacing").toInt(), 5);
    QCOMPARE(json.value("largestKeyFrameSpacing").toInt(), 5);
    QCOMPARE(json.value("fps").toDouble(), 30.0);
    QCOMPARE(json.value("fpsIsAssumed").toBool(), true);
    QCOMPARE(json.value("seconds").toDouble(), 1.0);
    QCOMPARE(json.value("bytes").toInt(), m_bytes.size());
    QCOMPARE(json.value("meanBitRate").toDouble(), static_cast<double>(m_bytes.size()) * 8.0);
    QVERIFY(!json.contains("frameList"));
}

void tst_InfoCommand::infoTellsWhatTheSidecarNotes()
{
    QVERIFY(fx_CopyWithSidecar(m_recording, path("noted.h264")));
    SxMinihostRun const text = run({"info", "noted.h264"});
    QCOMPARE(text.exitCode, 0);
    QCOMPARE(text.err, QByteArray());
    for (char const* part :
         {"  plays 1.2 s at 25 pictures a second\n", "  recorded from phone.mp4 by minihost 1\n",
          "  to be turned by 90 degrees clockwise\n", "  4 of the source's 34 pictures skipped: 3-5, 7\n"})
        QVERIFY2(text.out.contains(part), text.out);
    QVERIFY2(!text.out.contains("assumed"), text.out);

    QJsonObject const json = run({"info", "--json", "noted.h264"}).json();
    QCOMPARE(json.value("fps").toDouble(), 25.0);
    QCOMPARE(json.value("fpsIsAssumed").toBool(true), false);
    QCOMPARE(json.value("seconds").toDouble(), 1.2);
    QJsonObject const sidecar = json.value("sidecar").toObject();
    QCOMPARE(sidecar.value("rate").toString(), QString("25"));
    QCOMPARE(sidecar.value("rotation").toInt(), 90);
    QCOMPARE(sidecar.value("skipped").toString(), QString("3-5, 7"));
    QCOMPARE(sidecar.value("options").toObject(), fx_ExampleSidecar().options);
}

void tst_InfoCommand::sidecarOfAnotherRecordingIsIgnoredWithAWarning()
{
    QVERIFY(fx_CopyWithSidecar(m_recording, path("noted.h264")));
    QVERIFY(fx_WriteFile(path("noted.h264"), m_bytes + m_bytes));
    SxMinihostRun const text = run({"info", "noted.h264"});
    QCOMPARE(text.exitCode, 0);
    QCOMPARE(text.err, QByteArray("warning: noted.h264.json is ignored: it describes another recording.\n"));
    QVERIFY2(text.out.contains("at 30 pictures a second (assumed)\n"), text.out);
    QJsonObject const json = run({"info", "--json", "noted.h264"}).json();
    QVERIFY(json.value("sidecar").isNull());
    QVERIFY(json.value("fpsIsAssumed").toBool());
}

void tst_InfoCommand::infoListsTheFrames()
{
    QJsonObject const json = run({"info", "--json", "--frames", m_recording}).json();
    QJsonArray const list = json.value("frameList").toArray();
    QCOMPARE(list.size(), kFrames);
    SxMinihostRun const text = run({"info", "--frames", m_recording});
    auto const begin = text.out.indexOf("   frame        offset      size\n");
    QVERIFY(begin > 0);
    QList<QByteArray> const lines = text.out.mid(begin).trimmed().split('\n').mid(1);
    QCOMPARE(lines.size(), kFrames);

    int end = 0, largest = 0, smallest = static_cast<int>(m_bytes.size());
    for (int i = 0; i < kFrames; ++i) {
        QJsonObject const frame = list[i].toObject();
        int const offset = frame.value("offset").toInt(-1);
        int const size = frame.value("size").toInt();
        bool const isKey = frame.value("key").toBool();
        QCOMPARE(frame.value("frame").toInt(-1), i);
        QCOMPARE(offset, end); // back to back
        QCOMPARE(isKey, i % 5 == 0);
        QCOMPARE(m_bytes.mid(offset, 5), QByteArray::fromHex(isKey ? "0000000167" : "0000000161"));
        QCOMPARE(lines[i].simplified(), QByteArray::number(i) + ' ' + QByteArray::number(offset) + ' ' +
                                            QByteArray::number(size) + (isKey ? " key" : ""));
        end = offset + size;
        largest = std::max(largest, size);
        smallest = std::min(smallest, size);
    }
    QCOMPARE(end, m_bytes.size());
    QCOMPARE(json.value("largestFrame").toObject().value("size").toInt(), largest);
    QCOMPARE(json.value("smallestFrame").toObject().value("size").toInt(), smallest);
    QCOMPARE(list[json.value("smallestFrame").toObject().value("frame").toInt()].toObject(),
             json.value("smallestFrame").toObject());
}

void tst_InfoCommand::infoSaysHowOtherPlayersMisread_data()
{
    QTest::addColumn<QString>("rate"); // noted; empty: no sidecar
    QTest::addColumn<int>("rotation");
    QTest::addColumn<QByteArray>("sentence");
    QTest::addColumn<QByteArray>("mpv");
    QTest::addColumn<QByteArray>("ffplay");
    QByteArray const colours = "in wrong colours, full-range BT.601 being taken for limited-range BT.601";
    QByteArray const format = " --vf=format:colorlevels=full:colormatrix=bt.601:primaries=bt.709";
    QByteArray const params = " -vf setparams=range=pc:colorspace=smpte170m";
    QTest::newRow("assumed") << QString() << 0
                             << QByteArray("too slow, at 25 pictures a second,\n  and " + colours)
                             << QByteArray(" --demuxer-lavf-o=framerate=30" + format)
                             << QByteArray(" -framerate 30" + params);
    QTest::newRow("slow") << "12.5" << 0 << QByteArray("too fast, at 25 pictures a second,\n  and " + colours)
                          << QByteArray(" --demuxer-lavf-o=framerate=12500/1000" + format)
                          << QByteArray(" -framerate 12500/1000" + params);
    QTest::newRow("turned") << "25" << 90 << QByteArray(colours + ",\n  and turned")
                            << QByteArray(format + " --video-rotate=90")
                            << QByteArray(params + ",transpose=clock");
    QTest::newRow("upside down") << "25" << 180 << QByteArray(colours + ",\n  and turned")
                                 << QByteArray(format + " --video-rotate=180")
                                 << QByteArray(params + ",hflip,vflip");
    QTest::newRow("turned left") << "25" << 270 << QByteArray(colours + ",\n  and turned")
                                 << QByteArray(format + " --video-rotate=270")
                                 << QByteArray(params + ",transpose=cclock");
}

void tst_InfoCommand::infoSaysHowOtherPlayersMisread()
{
    QFETCH(QString, rate);
    QFETCH(int, rotation);
    QFETCH(QByteArray, sentence);
    QFETCH(QByteArray, mpv);
    QFETCH(QByteArray, ffplay);
    SxSidecar sidecar = fx_ExampleSidecar();
    sidecar.rate = fx_RateFromText(rate).value_or(SxPictureRate());
    sidecar.rotation = rotation;
    QVERIFY(fx_CopyWithSidecar(m_recording, path("my clip.h264"), sidecar));
    if (rate.isEmpty())
        QVERIFY(QFile::remove(path("my clip.h264.json")));
    SxMinihostRun const text = run({"info", "my clip.h264"});
    QVERIFY2(text.out.contains("\n  other players show it " + sentence +
                               "; right are\n"
                               "    minihost remux 'my clip.h264' 'my clip.mp4'\n"
                               "    mpv" +
                               mpv + " 'my clip.h264'\n    ffplay" + ffplay + " 'my clip.h264'\n"),
             text.out);
    QJsonObject const json = run({"info", "--json", "my clip.h264"}).json().value("otherPlayers").toObject();
    QCOMPARE(json.value("rateIsMisread").toBool(), rate != "25");
    QCOMPARE(json.value("coloursAreMisread").toBool(), true);
    QCOMPARE(json.value("rotation").toInt(), rotation);
    QCOMPARE(json.value("ffplay").toString().toUtf8(), "ffplay" + ffplay + " 'my clip.h264'");
}

void tst_InfoCommand::streamThatDescribesItselfIsMisreadByNobody()
{
    QByteArray const described = fx_DescribedStream(m_bytes, 20);
    QVERIFY(described.size() > m_bytes.size());
    QVERIFY(fx_WriteFile(path("described.h264"), described));
    SxMinihostRun const text = run({"info", "described.h264"});
    QVERIFY2(text.out.contains("  30 frames, 6 key frames, one every 5\n"), text.out);
    QVERIFY2(text.out.contains("  plays 1.5 s at 20 pictures a second\n"), text.out);
    QVERIFY2(!text.out.contains("other players"), text.out);
}

void tst_InfoCommand::oneFrameHasNoKeyFrameSpacing()
{
    QCOMPARE(run({"record", "camera:", "one.h264", "--size", "64x48", "--frames", "1", "--profile", "high",
                  "--level", "3"})
                 .exitCode,
             0);
    SxMinihostRun const text = run({"info", "one.h264"});
    QVERIFY2(text.out.startsWith("one.h264: H.264 high, level 3, 64 x 48\n  1 frame, 1 key frame\n"),
             text.out);
    QJsonObject const json = run({"info", "one.h264", "--json"}).json();
    QVERIFY(json.value("largestKeyFrameSpacing").isNull());
    QCOMPARE(json.value("largestFrame").toObject(), json.value("smallestFrame").toObject());
}

void tst_InfoCommand::infoWarnsOfUndecodableFrame()
{
    QVERIFY(fx_WriteFile(path("cut.h264"), m_bytes.left(60)));
    SxMinihostRun const text = run({"info", "cut.h264"});
    QCOMPARE(text.exitCode, 0);
    QVERIFY2(text.out.contains("baseline, level 5.2, 320 x 240\n  1 frame,"), text.out);
    QCOMPARE(text.err, QByteArray()); // nothing is decoded
}

QTEST_GUILESS_MAIN(tst_InfoCommand)
#include "tst_InfoCommand.moc"

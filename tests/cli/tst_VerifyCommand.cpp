#include <QJsonArray>
#include <QtTest>

#include "support/RecordedCamera.h"

/// The verify command as its user meets it: the built program, sound and damaged recordings.
class tst_VerifyCommand : public QObject, private CxRecordedCamera
{
    Q_OBJECT

private slots:
    void initTestCase() { makeRecording(); }
    void init() { makeFolder(); }

    void verifyPassesSoundRecording();
    void verifyFindsCutOffFrame();
    void verifyFindsDamagedFrame();
    void verifyFindsBytesOfNoFrame();
    void verifyFindsCrowdedFrames();
};

/// Offset of frame \p frame as `info` lists it.
static int fx_Offset(QString const& recording, int frame)
{
    QJsonObject const json = fx_RunMinihost({"info", "--json", "--frames", recording}).json();
    return json.value("frameList").toArray()[frame].toObject().value("offset").toInt(-1);
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
    int const end = fx_Offset(m_recording, 13);
    QVERIFY(begin > 0 && end - begin > 100);
    QByteArray damaged = m_bytes;
    // No zeros, which would form start codes, and no ones, which stand for an unchanged picture.
    for (int i = begin + 20; i < end; ++i)
        damaged[i] = static_cast<char>(0x10 + i * 37 % 0x60);
    QVERIFY(fx_WriteFile(path("damaged.h264"), damaged));
    SxMinihostRun const verified = run({"verify", "damaged.h264", "--json"});
    QCOMPARE(verified.exitCode, 4);
    QCOMPARE(verified.json().value("failed").toObject().value("frame").toInt(), 12);
    QCOMPARE(verified.json().value("failed").toObject().value("offset").toInt(), begin);
    QCOMPARE(verified.json().value("decoded").toInt(), 12);
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
    SxMinihostRun const verified = run({"verify", "crowded.h264", "--json"});
    QCOMPARE(verified.exitCode, 0);
    QCOMPARE(verified.json().value("frames").toInt(), 6);
    QVERIFY2(verified.err.contains(
                 "warning: crowded.h264: 6 frames hold 30 pictures, of which only the first in each"),
             verified.err);
    QCOMPARE(verified.json().value("warnings").toArray().size(), 1);
}

QTEST_GUILESS_MAIN(tst_VerifyCommand)
#include "tst_VerifyCommand.moc"

#include <QTemporaryDir>
#include <QTest>

#include "NotedRate.h"
#include "Sidecar.h"
#include "support/FileBytes.h"
#include "support/NotedCopy.h"

class tst_NotedRate : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void rateIsNotedBesideTheRecording();
    void otherNotesStay();
    void unknownRateTakesTheNoteAway();
    void unknownRateLeavesOtherNotes();
    void fileOfOthersIsLeftAlone();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_recording;
};

void tst_NotedRate::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_recording = m_folder->filePath(QStringLiteral("out.h264"));
    QVERIFY(fx_WriteFile(m_recording, QByteArray("any bytes")));
}

void tst_NotedRate::rateIsNotedBesideTheRecording()
{
    QString error;
    QVERIFY2(fx_NoteRate(m_recording, 12, *fx_RateFromText("30000/1001"), error), qPrintable(error));
    SxFoundSidecar const found = fx_FindSidecar(m_recording);
    QVERIFY2(found.sidecar.has_value(), qPrintable(found.warning));
    QCOMPARE(found.sidecar->rate.exact(), QStringLiteral("30000/1001"));
    QCOMPARE(found.sidecar->pictures, 12);
    QCOMPARE(fx_FileBytes(m_recording), QByteArray("any bytes"));
}

void tst_NotedRate::otherNotesStay()
{
    QString error;
    QVERIFY(fx_WriteSidecar(m_recording, fx_ExampleSidecar(), error));
    QVERIFY(fx_NoteRate(m_recording, 30, {12}, error));
    SxFoundSidecar const found = fx_FindSidecar(m_recording);
    QVERIFY(found.sidecar.has_value());
    QCOMPARE(found.sidecar->rate.exact(), QStringLiteral("12"));
    QCOMPARE(found.sidecar->rotation, 90);
    QCOMPARE(found.sidecar->skippedCount, 4);
    QCOMPARE(found.sidecar->pictures, 34);
    QCOMPARE(found.sidecar->source, QStringLiteral("phone.mp4"));
}

void tst_NotedRate::unknownRateTakesTheNoteAway()
{
    QString error;
    QVERIFY(fx_NoteRate(m_recording, 12, {25}, error));
    QVERIFY(fx_NoteRate(m_recording, 12, {}, error));
    QVERIFY(!QFile::exists(fx_SidecarName(m_recording)));
}

void tst_NotedRate::unknownRateLeavesOtherNotes()
{
    QString error;
    QVERIFY(fx_WriteSidecar(m_recording, fx_ExampleSidecar(), error));
    QVERIFY(fx_NoteRate(m_recording, 30, {}, error));
    SxFoundSidecar const found = fx_FindSidecar(m_recording);
    QVERIFY(found.sidecar.has_value());
    QVERIFY(!found.sidecar->rate.isKnown());
    QCOMPARE(found.sidecar->rotation, 90);
}

void tst_NotedRate::fileOfOthersIsLeftAlone()
{
    QVERIFY(fx_WriteFile(fx_SidecarName(m_recording), QByteArray("{\"mine\": true}")));
    QString error;
    QVERIFY(!fx_NoteRate(m_recording, 12, {25}, error));
    QVERIFY2(error.contains(QStringLiteral("stays as it is")), qPrintable(error));
    QVERIFY(fx_NoteRate(m_recording, 12, {}, error));
    QCOMPARE(fx_FileBytes(fx_SidecarName(m_recording)), QByteArray("{\"mine\": true}"));
}

QTEST_GUILESS_MAIN(tst_NotedRate)
#include "tst_NotedRate.moc"

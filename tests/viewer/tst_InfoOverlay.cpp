#include <QFileInfo>
#include <QLocale>
#include <QSettings>
#include <QTest>

#include "support/Mouse.h"
#include "support/NotedCopy.h"
#include "support/ViewerWindow.h"

class tst_InfoOverlay : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void tellsOfTheRecordingAndThePicture();
    void saysWhenTheRateIsKnown();
    void tellsOfLiveSources();
    void fullScreenShowsTheTimelineWhileTheMouseMoves();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_InfoOverlay::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 8);
    QVERIFY(!m_recording.isEmpty());
}

void tst_InfoOverlay::tellsOfTheRecordingAndThePicture()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    auto* const info = viewer.child<QLabel>("infoOverlay");
    QVERIFY(!info->isVisible());
    viewer.key(Qt::Key_I, Qt::ControlModifier);
    QVERIFY(info->isVisible());
    SxOpenedRecording const& recording = viewer.window.player().info();
    QCOMPARE(recording.bytes.size(), 8);
    qint64 sum = 0;
    for (quint32 const bytes : recording.bytes)
        sum += bytes;
    QCOMPARE(sum, QFileInfo(m_recording).size());
    auto const bytes = [&](int number) { return QLocale().toString(recording.bytes[number]); };
    QStringList lines = info->text().split('\n');
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines[0], QStringLiteral("clip.h264"));
    QVERIFY2(lines[1].startsWith(QStringLiteral("H.264 ")), qPrintable(lines[1]));
    QVERIFY2(lines[1].contains(QStringLiteral("level")), qPrintable(lines[1]));
    QCOMPARE(lines[2], QStringLiteral("320 × 180, 8-bit colour, 30 a second (assumed)"));
    QCOMPARE(lines[3], QStringLiteral("Picture 0 of 0–7, key frame, %1 bytes").arg(bytes(0)));
    QCOMPARE(lines[4], QStringLiteral("0:00:00.000"));
    viewer.key(Qt::Key_Right);
    QTRY_VERIFY(info->text().contains(QStringLiteral("Picture 1 of 0–7, predicted, %1 bytes").arg(bytes(1))));
    viewer.key(Qt::Key_I, Qt::ControlModifier);
    QVERIFY(!info->isVisible());
}

void tst_InfoOverlay::saysWhenTheRateIsKnown()
{
    QString const noted = m_fixture->path(QStringLiteral("noted.h264"));
    QVERIFY(fx_CopyWithSidecar(m_recording, noted));
    CxViewerWindow viewer(*m_fixture);
    viewer.key(Qt::Key_I, Qt::ControlModifier); // before anything is open
    QVERIFY(viewer.open(noted));
    QTRY_VERIFY(viewer.text("infoOverlay").contains(QStringLiteral("25 a second\n")));
}

void tst_InfoOverlay::tellsOfLiveSources()
{
    CxViewerWindow viewer(*m_fixture);
    viewer.key(Qt::Key_I, Qt::ControlModifier);
    viewer.window.openLive(QStringLiteral("Gate 3"), fx_Camera(1, "mono12"));
    QTRY_COMPARE(viewer.text("infoOverlay"),
                 QStringLiteral("Gate 3\n160 × 120, 12-bit grey, live\nPicture 0\n0:00:00.000"));
}

void tst_InfoOverlay::fullScreenShowsTheTimelineWhileTheMouseMoves()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_F);
    QVERIFY(!viewer.timeline->isVisible());
    QSize const size = viewer.view->size();
    fx_MoveMouse(viewer.view, {100, 100});
    QVERIFY(viewer.timeline->isVisible());
    QVERIFY(viewer.child<QLabel>("number")->isVisible());
    QCOMPARE(viewer.view->size(), size); // the picture stays where it is
    QTest::mouseClick(viewer.timeline, Qt::LeftButton, {}, viewer.placeOf(6));
    QTRY_COMPARE(viewer.window.player().shownNumber(), 6);
    QTRY_VERIFY_WITH_TIMEOUT(!viewer.timeline->isVisible(), 30000);
    viewer.key(Qt::Key_Escape);
    QVERIFY(viewer.timeline->isVisible());
    QVERIFY(viewer.view->height() < viewer.window.height() - viewer.timeline->height()); // below it again
}

QTEST_MAIN(tst_InfoOverlay)
#include "tst_InfoOverlay.moc"

#include <QAction>
#include <QFile>
#include <QSettings>
#include <QTest>

#include "support/ViewerWindow.h"

class tst_LiveControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void showsRunningSource();
    void spaceFreezesPicture();
    void lastPictureStaysAtTheEnd();
    void saysWhySourceIsNotRead();
    void failedSourceKeepsWhatWasOpen();
    void buttonOffersPlayAfterLive();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_LiveControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
}

void tst_LiveControl::showsRunningSource()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.window.openNamed(QStringLiteral("camera:"));
    QTRY_VERIFY(!viewer.window.player().isOpen());
    QTRY_VERIFY(viewer.view->picture().number >= 2);
    QVERIFY(viewer.text("number").startsWith(QStringLiteral("Live, picture ")));
    QCOMPARE(viewer.text("format"), QStringLiteral("1280 × 720, 8-bit colour"));
    QVERIFY(!viewer.timeline->isVisible());
    QVERIFY(viewer.child<QAction>("record")->isEnabled());
    QVERIFY(!viewer.child<QAction>("nextPicture")->isEnabled());
    QVERIFY(viewer.open(m_recording));
    QVERIFY(viewer.timeline->isVisible());
}

void tst_LiveControl::spaceFreezesPicture()
{
    CxViewerWindow viewer(*m_fixture);
    viewer.openCamera();
    QTRY_VERIFY(viewer.view->picture().number >= 1);
    viewer.key(Qt::Key_Space);
    int const frozen = viewer.view->picture().number;
    viewer.key(Qt::Key_Space);
    QTRY_VERIFY(viewer.view->picture().number > frozen);
}

void tst_LiveControl::lastPictureStaysAtTheEnd()
{
    CxViewerWindow viewer(*m_fixture);
    viewer.window.openLive(QStringLiteral("camera"), fx_Camera(3, "bgr24"));
    QTRY_VERIFY(viewer.bar->text().contains(QStringLiteral("has ended")));
    QVERIFY(!viewer.view->picture().image.isNull()); // the last picture stays
    QVERIFY(!viewer.child<QAction>("record")->isEnabled());
}

void tst_LiveControl::saysWhySourceIsNotRead()
{
    QString const fileName = m_fixture->path(QStringLiteral("novideo.mp4"));
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("nothing");
    file.close();
    CxViewerWindow viewer(*m_fixture);
    viewer.window.openNamed(fileName);
    QTRY_VERIFY(viewer.bar->text().contains(QStringLiteral("cannot be read")));
    QVERIFY(viewer.bar->details().contains(QStringLiteral("novideo.mp4")));
}

void tst_LiveControl::failedSourceKeepsWhatWasOpen()
{
    QString const bad = m_fixture->path(QStringLiteral("bad.mp4"));
    QFile file(bad);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("nothing");
    file.close();
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.window.openNamed(bad);
    QTRY_VERIFY(viewer.bar->text().contains(QStringLiteral("cannot be read")));
    viewer.key(Qt::Key_Right);
    QTRY_COMPARE(viewer.view->picture().number, 1);
    QCOMPARE(viewer.window.windowTitle(), QStringLiteral("clip.h264 – minihost"));

    viewer.window.openNamed(QStringLiteral("camera:"));
    QTRY_VERIFY(!viewer.window.player().isOpen());
    viewer.window.openRecording(m_fixture->path(QStringLiteral("missing.h264")));
    QTRY_VERIFY(viewer.bar->text().contains(QStringLiteral("does not exist")));
    int const number = viewer.view->picture().number;
    QTRY_VERIFY(viewer.view->picture().number > number); // the camera runs on
    QVERIFY(viewer.child<QAction>("record")->isEnabled());
}

void tst_LiveControl::buttonOffersPlayAfterLive()
{
    CxViewerWindow viewer(*m_fixture);
    auto* const play = viewer.child<QAction>("play");
    viewer.openCamera();
    QTRY_VERIFY(!viewer.view->picture().image.isNull());
    QCOMPARE(play->text(), QStringLiteral("&Pause"));
    QVERIFY(viewer.open(m_recording));
    QCOMPARE(play->text(), QStringLiteral("&Play"));
    viewer.key(Qt::Key_Space);
    QVERIFY(viewer.window.player().isPlaying());
    QCOMPARE(play->text(), QStringLiteral("&Pause"));
    viewer.openCamera();
    QTRY_VERIFY(viewer.text("number").startsWith(QStringLiteral("Live")));
    QCOMPARE(play->text(), QStringLiteral("&Pause"));
}

QTEST_MAIN(tst_LiveControl)
#include "tst_LiveControl.moc"

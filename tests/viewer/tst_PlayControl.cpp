#include <QAction>
#include <QApplication>
#include <QFile>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include "support/Mouse.h"
#include "support/ViewerWindow.h"

class tst_PlayControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void clickOnTimelineShowsItsPicture();
    void dragShowsEveryPicturePassed();
    void playingResumesAfterDrag();
    void keysChoosePicture_data();
    void keysChoosePicture();
    void playsToTheEnd();
    void loopKeyStartsOver();
    void saysWhyFileDoesNotOpen_data();
    void saysWhyFileDoesNotOpen();
    void damagedPictureIsNamedAndNotShown();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_PlayControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
}

void tst_PlayControl::clickOnTimelineShowsItsPicture()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QTest::mouseClick(viewer.timeline, Qt::LeftButton, {}, viewer.placeOf(27));
    QTRY_COMPARE(viewer.text("number"), QStringLiteral("Picture 27 of 0–39"));
    QCOMPARE(viewer.view->picture().image, CxViewerFixture::decoded(m_recording, 27));
    QCOMPARE(viewer.text("time"), QStringLiteral("0:00:00.900"));
    QCOMPARE(viewer.timeline->value(), 27);
}

void tst_PlayControl::dragShowsEveryPicturePassed()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QTest::mousePress(viewer.timeline, Qt::LeftButton, {}, viewer.placeOf(0));
    for (int const number : {10, 20, 33}) {
        fx_MoveMouse(viewer.timeline, viewer.placeOf(number), Qt::LeftButton);
        QTRY_COMPARE(viewer.window.player().shownNumber(), number); // while the button is down
        QCOMPARE(viewer.text("number"), QStringLiteral("Picture %1 of 0–39").arg(number));
    }
    QTest::mouseRelease(viewer.timeline, Qt::LeftButton, {}, viewer.placeOf(33));
    QCOMPARE(viewer.timeline->value(), 33);
    QVERIFY(!viewer.window.player().isPlaying());
}

void tst_PlayControl::playingResumesAfterDrag()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_Space);
    QVERIFY(viewer.window.player().isPlaying());
    QTest::mousePress(viewer.timeline, Qt::LeftButton, {}, viewer.placeOf(20));
    QVERIFY(!viewer.window.player().isPlaying());
    QTest::mouseRelease(viewer.timeline, Qt::LeftButton, {}, viewer.placeOf(20));
    QVERIFY(viewer.window.player().isPlaying());
    QTRY_VERIFY(viewer.window.player().shownNumber() > 20);
}

void tst_PlayControl::keysChoosePicture_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("to");
    QTest::newRow("right") << 7 << int(Qt::Key_Right) << 0 << 8;
    QTest::newRow("left") << 7 << int(Qt::Key_Left) << 0 << 6;
    QTest::newRow("left to another group") << 10 << int(Qt::Key_Left) << 0 << 9;
    QTest::newRow("period") << 7 << int(Qt::Key_Period) << 0 << 8;
    QTest::newRow("comma") << 7 << int(Qt::Key_Comma) << 0 << 6;
    QTest::newRow("shift+right") << 7 << int(Qt::Key_Right) << int(Qt::ShiftModifier) << 10;
    QTest::newRow("shift+left") << 7 << int(Qt::Key_Left) << int(Qt::ShiftModifier) << 5;
    QTest::newRow("home") << 7 << int(Qt::Key_Home) << 0 << 0;
    QTest::newRow("end") << 7 << int(Qt::Key_End) << 0 << 39;
}

void tst_PlayControl::keysChoosePicture()
{
    QFETCH(int, from);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(int, to);
    for (bool const isTimelineFocused : {false, true}) {
        CxViewerWindow viewer(*m_fixture);
        QVERIFY(viewer.open(m_recording));
        viewer.window.player().seek(from);
        QTRY_COMPARE(viewer.window.player().shownNumber(), from);
        if (isTimelineFocused)
            viewer.timeline->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QTRY_COMPARE(viewer.window.player().shownNumber(), to);
        QCOMPARE(viewer.view->picture().image, CxViewerFixture::decoded(m_recording, to));
        QCOMPARE(viewer.timeline->value(), to);
    }
}

void tst_PlayControl::playsToTheEnd()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QSignalSpy shown(&viewer.window.player(), &CxPlayer::shown);
    auto* const play = viewer.child<QAction>("play");
    QString const before = play->text();
    QTest::mouseClick(viewer.child<QToolButton>("playButton"), Qt::LeftButton);
    QVERIFY(viewer.window.player().isPlaying());
    QVERIFY(play->text() != before);
    QTRY_VERIFY(!viewer.text("rate").isEmpty());
    QTRY_VERIFY(!viewer.window.player().isPlaying());
    QCOMPARE(shown.size(), 39); // none is passed over
    QCOMPARE(viewer.text("number"), QStringLiteral("Picture 39 of 0–39"));
    QCOMPARE(viewer.view->picture().image, CxViewerFixture::decoded(m_recording, 39));
    QCOMPARE(play->text(), before);
    QVERIFY(viewer.text("rate").isEmpty());
}

void tst_PlayControl::loopKeyStartsOver()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_L);
    QVERIFY(viewer.child<QAction>("loop")->isChecked());
    viewer.key(Qt::Key_End);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 39);
    viewer.key(Qt::Key_Left);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 38);
    viewer.key(Qt::Key_Space);
    QTRY_VERIFY(viewer.window.player().shownNumber() >= 1 && viewer.window.player().shownNumber() < 38);
    QVERIFY(viewer.window.player().isPlaying());
}

void tst_PlayControl::saysWhyFileDoesNotOpen_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("words");
    QTest::newRow("missing") << QByteArray() << "does not exist";
    QTest::newRow("empty") << QByteArray("") << "is empty";
    QTest::newRow("text") << QByteArray("This is no video at all.") << "is not an H.264 recording";
    QTest::newRow("without parameters")
        << QByteArray("\0\0\0\1\x61\x9a\x00\x11\x22\x33\x44\x55", 12) << "is not an H.264 recording";
}

void tst_PlayControl::saysWhyFileDoesNotOpen()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, words);
    QString const fileName = m_fixture->path(QStringLiteral("bad.h264"));
    QFile::remove(fileName);
    if (!content.isNull()) {
        QFile file(fileName);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    CxViewerWindow viewer(*m_fixture);
    viewer.window.openNamed(fileName);
    QTRY_VERIFY(!viewer.bar->text().isEmpty());
    QVERIFY2(viewer.bar->text().contains(words), qPrintable(viewer.bar->text()));
    QVERIFY(viewer.bar->isVisible());
    QVERIFY(!viewer.bar->details().isEmpty());
    QVERIFY(viewer.child<QWidget>("startPage")->isVisible());

    auto* const details = viewer.child<QPushButton>("messageDetails");
    QTest::mouseClick(details, Qt::LeftButton);
    QVERIFY(details->isChecked());
    QTest::mouseClick(viewer.child<QToolButton>("messageClose"), Qt::LeftButton);
    QVERIFY(!viewer.bar->isVisible());
    QVERIFY(viewer.open(m_recording)); // nothing is left of it
}

void tst_PlayControl::damagedPictureIsNamedAndNotShown()
{
    QFile source(m_recording);
    QVERIFY(source.open(QIODevice::ReadOnly));
    QByteArray bytes = source.readAll();
    // Where the slices of the second half stood is now nothing that a decoder knows.
    auto const from = bytes.indexOf(QByteArray("\0\0\0\1\x67", 5), bytes.size() / 2) + 60;
    for (auto i = from; i < from + 400; ++i)
        bytes[i] = '\x55';
    QString const fileName = m_fixture->path(QStringLiteral("damaged.h264"));
    QFile target(fileName);
    QVERIFY(target.open(QIODevice::WriteOnly));
    target.write(bytes);
    target.close();

    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(fileName));
    viewer.key(Qt::Key_Space);
    QTRY_VERIFY(!viewer.bar->text().isEmpty());
    QVERIFY(!viewer.window.player().isPlaying());
    QVERIFY2(viewer.bar->text().contains(QStringLiteral("cannot be shown")), qPrintable(viewer.bar->text()));
    QVERIFY2(
        viewer.bar->details().contains(QStringLiteral("(decoder code ")), // as the command line explains it
        qPrintable(viewer.bar->details()));
    QVERIFY(viewer.view->picture().image.isNull()); // no picture under a number that is not its own
    int const broken = viewer.timeline->value();
    QCOMPARE(viewer.text("number"), QStringLiteral("Picture %1 of 0–39").arg(broken));
    viewer.key(Qt::Key_Left);
    QTRY_COMPARE(viewer.window.player().shownNumber(), broken - 1);
    QVERIFY(!viewer.view->picture().image.isNull());
    viewer.key(Qt::Key_End); // beyond the damage
    QTRY_COMPARE(viewer.window.player().shownNumber(), 39);
}

QTEST_MAIN(tst_PlayControl)
#include "tst_PlayControl.moc"

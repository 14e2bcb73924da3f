#include <QAction>
#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include "support/FileBytes.h"
#include "support/Mouse.h"
#include "support/NotedCopy.h"
#include "support/ViewerWindow.h"

/// Steps from the middle on until a picture is broken; its number, or -1 when none is.
static int fx_GoToFirstBroken(CxViewerWindow& viewer)
{
    QSignalSpy failed(&viewer.window.player(), &CxPlayer::pictureFailed);
    for (int number = 15; number < 39; ++number) {
        QTest::mouseClick(viewer.timeline, Qt::LeftButton, {}, viewer.placeOf(number));
        if (!QTest::qWaitFor(
                [&] { return viewer.window.player().shownNumber() == number || !failed.isEmpty(); }))
            return -1;
        if (!failed.isEmpty())
            return number;
    }
    return -1;
}

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
    void goesToPictureWithNumber();
    void goesToPictureAtTime_data();
    void goesToPictureAtTime();
    void keysSkipSeconds();
    void playsBackwardsByKey();
    void playsToTheEnd();
    void loopKeyStartsOver();
    void saysWhyFileDoesNotOpen_data();
    void saysWhyFileDoesNotOpen();
    void failedOpenKeepsWhatWasOpen();
    void timesAreThoseOfTheNotedRate();
    void sidecarOfAnotherRecordingIsToldOf();
    void damagedPictureIsNamedAndNotShown();
    void playsPastDamagedPictures();
    void messageOfAnotherKindStays();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
    QString m_damaged; ///< the same with broken pictures behind the first half
};

void tst_PlayControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
    m_damaged = m_fixture->damage(m_recording, QStringLiteral("damaged.h264"));
    QVERIFY(!m_damaged.isEmpty());
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

void tst_PlayControl::goesToPictureWithNumber()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_G, Qt::ControlModifier);
    auto* const number = viewer.child<QLineEdit>("goToNumber");
    auto* const note = viewer.child<QLabel>("goToNote");
    QVERIFY(number);
    for (QString const text : {"9999", "40", "-1", "x", "", "1:61", "0:02", "1.34 s"}) {
        number->selectAll();
        QTest::keyClick(number, Qt::Key_Delete);
        QTest::keyClicks(number, text);
        QTest::keyClick(number, Qt::Key_Return);
        QVERIFY(note->isVisible());
        QCOMPARE(
            note->text(),
            QStringLiteral("There is no picture “%1”: they are numbered from 0 to 39, and the last begins at "
                           "0:00:01.300.")
                .arg(text));
    }
    number->selectAll();
    QTest::keyClicks(number, QStringLiteral("31"));
    QTest::keyClick(number, Qt::Key_Return);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 31);
    QTRY_VERIFY(!viewer.window.findChild<QDialog*>(QStringLiteral("goToDialog")));
}

void tst_PlayControl::goesToPictureAtTime_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("number");
    QTest::newRow("as shown") << "0:00:00.900" << 27;
    QTest::newRow("as shown, rounded off") << "0:00:00.766" << 23;
    QTest::newRow("just before") << "0:00:00.899" << 26;
    QTest::newRow("minutes") << "0:01" << 30;
    QTest::newRow("seconds") << "1 s" << 30;
    QTest::newRow("comma") << "0,5" << 15;
}

void tst_PlayControl::goesToPictureAtTime()
{
    QFETCH(QString, text);
    QFETCH(int, number);
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_G, Qt::ControlModifier);
    auto* const place = viewer.child<QLineEdit>("goToNumber");
    QVERIFY(place);
    QTest::keyClicks(place, text);
    QVERIFY(viewer.text("goToMeaning").startsWith(QStringLiteral("Picture %1, ").arg(number)));
    QTest::keyClick(place, Qt::Key_Return);
    QTRY_COMPARE(viewer.window.player().shownNumber(), number);
}

void tst_PlayControl::keysSkipSeconds()
{
    QString const noted = m_fixture->path(QStringLiteral("slow.h264"));
    SxSidecar sidecar;
    sidecar.rate = {2};
    QVERIFY(fx_CopyWithSidecar(m_recording, noted, sidecar));
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(noted));
    auto const goesTo = [&](Qt::Key key, Qt::KeyboardModifiers modifiers, int number) {
        viewer.key(key, modifiers);
        return QTest::qWaitFor([&] { return viewer.window.player().shownNumber() == number; });
    };
    Qt::KeyboardModifiers const both = Qt::ControlModifier | Qt::ShiftModifier;
    QVERIFY(goesTo(Qt::Key_Right, Qt::ControlModifier, 2));
    QVERIFY(goesTo(Qt::Key_Right, both, 22));
    QVERIFY(goesTo(Qt::Key_Right, both, 39));
    QVERIFY(goesTo(Qt::Key_Left, Qt::ControlModifier, 37));
    QVERIFY(goesTo(Qt::Key_Left, both, 17));
}

void tst_PlayControl::playsBackwardsByKey()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_End);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 39);
    viewer.key(Qt::Key_J);
    QTRY_VERIFY(viewer.window.player().shownNumber() < 36);
    QVERIFY(viewer.window.player().isPlaying());
    viewer.key(Qt::Key_Space); // pauses
    QVERIFY(!viewer.window.player().isPlaying());
    int const paused = viewer.window.player().shownNumber();
    viewer.key(Qt::Key_Space); // and then plays forwards
    QTRY_VERIFY(viewer.window.player().shownNumber() > paused);
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
    QTest::newRow("text") << QByteArray("This is no video at all.") << "If it is a video of another kind";
    QTest::newRow("H.265") << QByteArray("\0\0\0\1\x40\x01\x0c\x01\xff\xff", 10)
                           << "is not damaged, but H.265";
    QTest::newRow("H.265, short start code") << QByteArray("\0\0\1\x40\x01\x0c\x01\xff\xff", 9) << "H.265";
    auto const foreign = [](char const* name) {
        QFile file(QStringLiteral(TEST_DATA "/foreign/") + QLatin1String(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    QTest::newRow("MPEG-2") << foreign("mpeg2.m2v") << "is not damaged, but MPEG-2 video.";
    QTest::newRow("B pictures") << foreign("x264-b-pictures.264")
                                << "is not damaged, but H.264 video of another encoder";
    QTest::newRow("without parameters") << QByteArray("\0\0\0\1\x61\x9a\x00\x11\x22\x33\x44\x55", 12)
                                        << "The beginning of “bad.h264” is missing";
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

void tst_PlayControl::timesAreThoseOfTheNotedRate()
{
    QString const noted = m_fixture->path(QStringLiteral("noted.h264"));
    QVERIFY(fx_CopyWithSidecar(m_recording, noted));
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(noted));
    QVERIFY(viewer.bar->text().isEmpty());
    viewer.window.player().seek(5);
    QTRY_COMPARE(viewer.text("time"), QStringLiteral("0:00:00.200")); // at 25 pictures a second
}

void tst_PlayControl::sidecarOfAnotherRecordingIsToldOf()
{
    QString const noted = m_fixture->path(QStringLiteral("other.h264"));
    QVERIFY(fx_CopyWithSidecar(m_recording, noted));
    QVERIFY(fx_WriteFile(noted, fx_FileBytes(m_recording).repeated(2)));
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(noted));
    QVERIFY2(viewer.bar->text().contains(QStringLiteral("its speed is assumed")),
             qPrintable(viewer.bar->text()));
    viewer.window.player().seek(6);
    QTRY_COMPARE(viewer.text("time"), QStringLiteral("0:00:00.200")); // at 30 pictures a second
}

void tst_PlayControl::failedOpenKeepsWhatWasOpen()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_End);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 39);
    viewer.window.openNamed(m_fixture->path(QStringLiteral("missing.h264")));
    QTRY_VERIFY(viewer.bar->text().contains(QStringLiteral("does not exist")));
    QVERIFY(viewer.view->isVisible());
    QCOMPARE(viewer.view->picture().number, 39);
    QCOMPARE(viewer.window.windowTitle(), QStringLiteral("clip.h264 – minihost"));
    viewer.key(Qt::Key_Left);
    QTRY_COMPARE(viewer.view->picture().number, 38);
    QCOMPARE(viewer.view->picture().image, CxViewerFixture::decoded(m_recording, 38));
}

void tst_PlayControl::damagedPictureIsNamedAndNotShown()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_damaged));
    int const broken = fx_GoToFirstBroken(viewer);
    QVERIFY(broken > 0);
    QVERIFY2(viewer.bar->text().contains(QStringLiteral("Picture %1 cannot be shown").arg(broken)),
             qPrintable(viewer.bar->text()));
    QVERIFY2(
        viewer.bar->text().endsWith(QStringLiteral("key frame on, picture %1.").arg((broken / 5 + 1) * 5)),
        qPrintable(viewer.bar->text()));
    QVERIFY2(
        viewer.bar->details().contains(QStringLiteral("(decoder code ")), // as the command line explains it
        qPrintable(viewer.bar->details()));
    QVERIFY(viewer.view->picture().image.isNull()); // no picture under a number that is not its own
    QCOMPARE(viewer.text("number"), QStringLiteral("Picture %1 of 0–39").arg(broken));
    viewer.key(Qt::Key_Left);
    QTRY_COMPARE(viewer.window.player().shownNumber(), broken - 1);
    QVERIFY(!viewer.view->picture().image.isNull());
    QVERIFY(!viewer.bar->isVisible()); // gone with its picture
    viewer.key(Qt::Key_End);           // beyond the damage
    QTRY_COMPARE(viewer.window.player().shownNumber(), 39);
}

void tst_PlayControl::playsPastDamagedPictures()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_damaged));
    QSignalSpy shown(&viewer.window.player(), &CxPlayer::shown),
        failed(&viewer.window.player(), &CxPlayer::pictureFailed);
    QVERIFY(viewer.text("broken").isEmpty());
    viewer.key(Qt::Key_Space);
    QTRY_VERIFY(!viewer.window.player().isPlaying());
    QCOMPARE(viewer.window.player().shownNumber(), 39); // the end, with or without broken ones
    QVERIFY(!failed.isEmpty());
    QCOMPARE(shown.size() + failed.size(), 39);
    QVERIFY2(viewer.text("broken").startsWith(QStringLiteral("%1 broken").arg(failed.size())),
             qPrintable(viewer.text("broken")));
    int const first = failed.first().first().toInt();
    QVERIFY2(viewer.bar->text().startsWith(QStringLiteral("Picture %1 cannot be shown").arg(first)),
             qPrintable(viewer.bar->text())); // the first is explained, to be read until the end
    QImage const line = viewer.timeline->grab().toImage();
    for (int number = 0; number < 39; ++number) { // the handle lies on the last
        bool const isBroken = std::any_of(failed.begin(), failed.end(), [number](QList<QVariant> const& f) {
            return f.first().toInt() == number;
        });
        QColor const colour = line.pixelColor(viewer.placeOf(number));
        QVERIFY2((colour.red() > 2 * colour.blue()) == isBroken, qPrintable(QString::number(number)));
    }
    viewer.key(Qt::Key_Home);
    QTRY_VERIFY(!viewer.bar->isVisible());

    QVERIFY(viewer.open(m_recording)); // nothing is left of it
    QVERIFY(viewer.text("broken").isEmpty());
    QCOMPARE(viewer.timeline->grab().toImage().pixelColor(viewer.placeOf(first)).red() >
                 2 * viewer.timeline->grab().toImage().pixelColor(viewer.placeOf(first)).blue(),
             false);
}

void tst_PlayControl::messageOfAnotherKindStays()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_damaged));
    QVERIFY(fx_GoToFirstBroken(viewer) > 0);
    viewer.bar->showMessage(CxMessageBar::Kind::Information, QStringLiteral("something else"));
    viewer.key(Qt::Key_Home);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 0);
    QCOMPARE(viewer.bar->text(), QStringLiteral("something else"));
}

QTEST_MAIN(tst_PlayControl)
#include "tst_PlayControl.moc"

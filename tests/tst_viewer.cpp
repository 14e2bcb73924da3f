#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTableWidget>
#include <QTest>
#include <QToolButton>

#include "Actions.h"
#include "MainWindow.h"
#include "MessageBar.h"
#include "PictureView.h"
#include "TestCamera.h"
#include "Timeline.h"
#include "support/Mouse.h"
#include "support/ViewerFixture.h"

/// The window as a user has it, and the few things a test looks at.
class CxViewer
{
public:
    explicit CxViewer(CxViewerFixture const& fixture)
        : window(fixture.plugins)
        , view(window.findChild<CxPictureView*>())
        , timeline(window.findChild<CxTimeline*>())
        , bar(window.findChild<CxMessageBar*>())
    {
        window.resize(800, 600);
        window.show();
        QApplication::setActiveWindow(&window);
        isShown = QTest::qWaitForWindowActive(&window);
    }
    bool open(QString const& recording)
    {
        window.openRecording(recording);
        return QTest::qWaitFor([this] { return window.player().shownNumber() == 0; });
    }
    template<class Widget>
    Widget* child(char const* name) const
    {
        return window.findChild<Widget*>(QLatin1String(name));
    }
    QString text(char const* label) const { return child<QLabel>(label)->text(); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&window, key, modifiers); }
    QPoint placeOf(int number) const
    {
        return {8 + (timeline->width() - 16) * number / timeline->maximum(), 8};
    }

    CxMainWindow window;
    CxPictureView* view;
    CxTimeline* timeline;
    CxMessageBar* bar;
    bool isShown = false;
};

class tst_viewer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void startsWithChoices();
    void opensRecording();
    void opensByDrop();
    void opensRecentOnes();
    void timelineMarksKeyFrames();
    void seeksByClick();
    void followsDrag();
    void playingResumesAfterDrag();
    void keysMove_data();
    void keysMove();
    void playsToTheEnd();
    void spacePressesFocusedButton();
    void clickLeavesKeysToPicture();
    void speeds();
    void loopKey();
    void fullScreen();
    void pixelUnderMouse();
    void pixelOfGreyWords();
    void savesPicture();
    void cannotSavePicture();
    void copiesPicture();
    void badFiles_data();
    void badFiles();
    void damagedPicture();
    void liveSource();
    void liveFreezes();
    void liveSourceEnds();
    void liveSourceFails();
    void helpListsEveryKey();
    void aboutShowsLicence();
    void everyControlHasAName();
    void keysAreUnique();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_viewer::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
}

void tst_viewer::startsWithChoices()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.isShown);
    auto* const start = viewer.child<QWidget>("startPage");
    QVERIFY(start->isVisible());
    QVERIFY(!viewer.view->isVisible());
    QVERIFY(!viewer.timeline->isVisible());
    QVERIFY(start->findChildren<QToolButton*>().size() >= 3);
    for (char const* const name : {"play", "nextPicture", "record", "savePicture", "copy", "fit", "goTo"})
        QVERIFY2(!viewer.child<QAction>(name)->isEnabled(), name);
    for (char const* const name : {"open", "openCamera", "openSource", "keys", "quit"})
        QVERIFY2(viewer.child<QAction>(name)->isEnabled(), name);
}

void tst_viewer::opensRecording()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QVERIFY(viewer.view->isVisible());
    QCOMPARE(viewer.view->picture().image, CxViewerFixture::decoded(m_recording, 0));
    QCOMPARE(viewer.text("number"), QStringLiteral("Picture 0 of 0–39"));
    QCOMPARE(viewer.text("time"), QStringLiteral("0:00:00.000"));
    QCOMPARE(viewer.text("format"), QStringLiteral("320 × 180, 8-bit colour"));
    QVERIFY(viewer.window.windowTitle().startsWith(QStringLiteral("clip.h264")));
    QVERIFY(viewer.bar->text().isEmpty());
}

void tst_viewer::opensByDrop()
{
    CxViewer viewer(*m_fixture);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(m_recording)});
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&viewer.window, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&viewer.window, &drop);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 0);
}

void tst_viewer::opensRecentOnes()
{
    QString const other = m_fixture->record(QStringLiteral("other.h264"), 3);
    {
        CxViewer viewer(*m_fixture);
        QVERIFY(viewer.open(m_recording));
        QVERIFY(viewer.open(other));
        QVERIFY(viewer.open(m_recording));
    }
    CxViewer viewer(*m_fixture);
    QList<QAction*> const recent = viewer.window.findChild<CxActions*>()->recentMenu->actions();
    QCOMPARE(recent.size(), 2);
    QCOMPARE(recent[0]->text(), QStringLiteral("clip.h264"));
    QCOMPARE(recent[1]->text(), QStringLiteral("other.h264"));
    QVERIFY(viewer.child<QWidget>("startPage")->isVisible());
    for (auto* const button : viewer.child<QWidget>("startPage")->findChildren<QToolButton*>()) {
        if (button->text() == QLatin1String("other.h264"))
            QTest::mouseClick(button, Qt::LeftButton);
    }
    QTRY_COMPARE(viewer.window.player().info().count, 3);
}

void tst_viewer::timelineMarksKeyFrames()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QCOMPARE(viewer.timeline->maximum(), 39);
    QImage const image = viewer.timeline->grab().toImage();
    QRgb const background = image.pixel(0, image.height() - 3);
    int const row = image.height() - 4;
    auto const isMarked = [&](int number) {
        double const x = (8.0 + (viewer.timeline->width() - 16.0) * number / 39.0);
        for (int dx = -1; dx <= 1; ++dx) {
            if (image.pixel(static_cast<int>(x) + dx, row) != background)
                return true;
        }
        return false;
    };
    for (int number = 0; number < 40; ++number)
        QVERIFY2(isMarked(number) == (number % 5 == 0), qPrintable(QString::number(number)));
}

void tst_viewer::seeksByClick()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QTest::mouseClick(viewer.timeline, Qt::LeftButton, {}, viewer.placeOf(27));
    QTRY_COMPARE(viewer.text("number"), QStringLiteral("Picture 27 of 0–39"));
    QCOMPARE(viewer.view->picture().image, CxViewerFixture::decoded(m_recording, 27));
    QCOMPARE(viewer.text("time"), QStringLiteral("0:00:00.900"));
    QCOMPARE(viewer.timeline->value(), 27);
}

void tst_viewer::followsDrag()
{
    CxViewer viewer(*m_fixture);
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

void tst_viewer::playingResumesAfterDrag()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_Space);
    QVERIFY(viewer.window.player().isPlaying());
    QTest::mousePress(viewer.timeline, Qt::LeftButton, {}, viewer.placeOf(20));
    QVERIFY(!viewer.window.player().isPlaying());
    QTest::mouseRelease(viewer.timeline, Qt::LeftButton, {}, viewer.placeOf(20));
    QVERIFY(viewer.window.player().isPlaying());
    QTRY_VERIFY(viewer.window.player().shownNumber() > 20);
}

void tst_viewer::keysMove_data()
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

void tst_viewer::keysMove()
{
    QFETCH(int, from);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(int, to);
    for (bool const isTimelineFocused : {false, true}) {
        CxViewer viewer(*m_fixture);
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

void tst_viewer::playsToTheEnd()
{
    CxViewer viewer(*m_fixture);
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

void tst_viewer::spacePressesFocusedButton()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    auto* const last = viewer.child<QToolButton>("lastButton");
    last->setFocus(Qt::TabFocusReason);
    QTest::keyClick(last, Qt::Key_Space);
    QVERIFY(!viewer.window.player().isPlaying());
    QTRY_COMPARE(viewer.window.player().shownNumber(), 39);
}

void tst_viewer::clickLeavesKeysToPicture()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QCOMPARE(QApplication::focusWidget(), viewer.view);
    QTest::mouseClick(viewer.child<QToolButton>("nextPictureButton"), Qt::LeftButton);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 1);
    QCOMPARE(QApplication::focusWidget(), viewer.view);
}

void tst_viewer::speeds()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    auto* const box = viewer.child<QComboBox>("speed");
    QCOMPARE(box->count(), 5);
    QCOMPARE(box->currentIndex(), 2);
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Down);
    QCOMPARE(box->currentIndex(), 3);
    auto* const group = viewer.window.findChild<CxActions*>()->speeds;
    QCOMPARE(group->checkedAction()->data().toDouble(), 2.0);
    group->actions().first()->trigger();
    QCOMPARE(box->currentIndex(), 0);
    QCOMPARE(group->checkedAction()->data().toDouble(), 0.25);
}

void tst_viewer::loopKey()
{
    CxViewer viewer(*m_fixture);
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

void tst_viewer::fullScreen()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_F);
    QVERIFY(viewer.window.isFullScreen());
    QVERIFY(!viewer.timeline->isVisible());
    viewer.key(Qt::Key_Right); // keys work all the same
    QTRY_COMPARE(viewer.window.player().shownNumber(), 1);
    viewer.key(Qt::Key_Escape);
    QVERIFY(!viewer.window.isFullScreen());
    QVERIFY(viewer.timeline->isVisible());
    QVERIFY(!viewer.child<QAction>("fullScreen")->isChecked());
    viewer.key(Qt::Key_Escape); // does nothing more
    QVERIFY(viewer.window.isVisible());
}

void tst_viewer::pixelUnderMouse()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QPoint const place(viewer.view->width() / 2, viewer.view->height() / 2);
    fx_MoveMouse(viewer.view, place);
    auto const expected = [&] {
        QPoint const pixel = viewer.view->pixelAt(place);
        QColor const colour(viewer.view->picture().image.pixel(pixel));
        return QStringLiteral("(%1, %2): red %3, green %4, blue %5")
            .arg(pixel.x())
            .arg(pixel.y())
            .arg(colour.red())
            .arg(colour.green())
            .arg(colour.blue());
    };
    QTRY_COMPARE(viewer.text("pixel"), expected());
    // The value is that of the picture shown, also when the mouse rests.
    for (int const number : {20, 39}) {
        viewer.window.player().seek(number);
        QTRY_COMPARE(viewer.window.player().shownNumber(), number);
        QCOMPARE(viewer.text("pixel"), expected());
    }
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(viewer.view, &leave);
    QVERIFY(viewer.text("pixel").isEmpty());
}

static SourceFactory fx_Camera(int frames, char const* format)
{
    return [frames, format](std::atomic<bool> const*) {
        SxTestCameraOptions options;
        options.width = 64;
        options.height = 48;
        options.frames = frames;
        options.format = *fx_TestCameraFormat(QString::fromLatin1(format));
        return std::make_unique<CxTestCamera>(options);
    };
}

void tst_viewer::pixelOfGreyWords()
{
    CxViewer viewer(*m_fixture);
    viewer.window.openLive(QStringLiteral("camera"), fx_Camera(1, "mono12"));
    QTRY_VERIFY(!viewer.view->picture().image.isNull());
    QCOMPARE(viewer.text("format"), QStringLiteral("64 × 48, 12-bit grey"));
    QPoint const place(viewer.view->width() / 2, viewer.view->height() / 2);
    fx_MoveMouse(viewer.view, place);
    QPoint const pixel = viewer.view->pixelAt(place);
    SxPicBuf const& samples = *viewer.view->picture().data->picBuf();
    auto const* const row =
        reinterpret_cast<quint16 const*>(samples.data + static_cast<quint32>(pixel.y()) * samples.pitch);
    quint16 const sample = row[pixel.x()];
    QVERIFY(sample > 255); // not what an 8-bit picture could show
    QTRY_COMPARE(viewer.text("pixel"),
                 QStringLiteral("(%1, %2): grey %3").arg(pixel.x()).arg(pixel.y()).arg(sample));
    QCOMPARE(qGray(viewer.view->picture().image.pixel(pixel)), sample >> 4);
}

void tst_viewer::savesPicture()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.window.player().seek(12);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 12);
    QString const file = m_fixture->path(QStringLiteral("picture.png"));
    QVERIFY(viewer.window.savePictureAs(file));
    QCOMPARE(QImage(file).convertToFormat(QImage::Format_RGB32), CxViewerFixture::decoded(m_recording, 12));
}

void tst_viewer::cannotSavePicture()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QVERIFY(!viewer.window.savePictureAs(m_fixture->path(QStringLiteral("no/such/folder.png"))));
    QVERIFY(viewer.bar->text().contains(QStringLiteral("could not be saved")));
}

void tst_viewer::copiesPicture()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32),
             CxViewerFixture::decoded(m_recording, 0));
}

void tst_viewer::badFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("words");
    QTest::newRow("missing") << QByteArray() << "does not exist";
    QTest::newRow("empty") << QByteArray("") << "is empty";
    QTest::newRow("text") << QByteArray("This is no video at all.") << "is not an H.264 recording";
    QTest::newRow("without parameters")
        << QByteArray("\0\0\0\1\x61\x9a\x00\x11\x22\x33\x44\x55", 12) << "is not an H.264 recording";
}

void tst_viewer::badFiles()
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
    CxViewer viewer(*m_fixture);
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

void tst_viewer::damagedPicture()
{
    QFile source(m_recording);
    QVERIFY(source.open(QIODevice::ReadOnly));
    QByteArray bytes = source.readAll();
    // Where the slices of the second half stood is now nothing that a decoder knows.
    int const from = bytes.indexOf(QByteArray("\0\0\0\1\x67", 5), bytes.size() / 2) + 60;
    for (int i = from; i < from + 400; ++i)
        bytes[i] = '\x55';
    QString const fileName = m_fixture->path(QStringLiteral("damaged.h264"));
    QFile target(fileName);
    QVERIFY(target.open(QIODevice::WriteOnly));
    target.write(bytes);
    target.close();

    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(fileName));
    viewer.key(Qt::Key_Space);
    QTRY_VERIFY(!viewer.bar->text().isEmpty());
    QVERIFY(!viewer.window.player().isPlaying());
    QVERIFY2(viewer.bar->text().contains(QStringLiteral("cannot be shown")), qPrintable(viewer.bar->text()));
    QVERIFY(!viewer.bar->details().isEmpty());
    QVERIFY(viewer.view->picture().image.isNull()); // no picture under a number that is not its own
    int const broken = viewer.timeline->value();
    QCOMPARE(viewer.text("number"), QStringLiteral("Picture %1 of 0–39").arg(broken));
    viewer.key(Qt::Key_Left);
    QTRY_COMPARE(viewer.window.player().shownNumber(), broken - 1);
    QVERIFY(!viewer.view->picture().image.isNull());
    viewer.key(Qt::Key_End); // beyond the damage
    QTRY_COMPARE(viewer.window.player().shownNumber(), 39);
}

void tst_viewer::liveSource()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.window.openNamed(QStringLiteral("camera:"));
    QVERIFY(!viewer.window.player().isOpen());
    QTRY_VERIFY(viewer.view->picture().number >= 2);
    QVERIFY(viewer.text("number").startsWith(QStringLiteral("Live, picture ")));
    QCOMPARE(viewer.text("format"), QStringLiteral("1280 × 720, 8-bit colour"));
    QVERIFY(!viewer.timeline->isVisible());
    QVERIFY(viewer.child<QAction>("record")->isEnabled());
    QVERIFY(!viewer.child<QAction>("nextPicture")->isEnabled());
    QVERIFY(viewer.open(m_recording));
    QVERIFY(viewer.timeline->isVisible());
}

void tst_viewer::liveFreezes()
{
    CxViewer viewer(*m_fixture);
    viewer.window.openLive(QStringLiteral("camera"), fx_Camera(0, "bgr24"));
    QTRY_VERIFY(viewer.view->picture().number >= 1);
    viewer.key(Qt::Key_Space);
    int const frozen = viewer.view->picture().number;
    viewer.key(Qt::Key_Space);
    QTRY_VERIFY(viewer.view->picture().number > frozen);
}

void tst_viewer::liveSourceEnds()
{
    CxViewer viewer(*m_fixture);
    viewer.window.openLive(QStringLiteral("camera"), fx_Camera(3, "bgr24"));
    QTRY_VERIFY(viewer.bar->text().contains(QStringLiteral("has ended")));
    QVERIFY(!viewer.view->picture().image.isNull()); // the last picture stays
    QVERIFY(!viewer.child<QAction>("record")->isEnabled());
}

void tst_viewer::liveSourceFails()
{
    QString const fileName = m_fixture->path(QStringLiteral("novideo.mp4"));
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("nothing");
    file.close();
    CxViewer viewer(*m_fixture);
    viewer.window.openNamed(fileName);
    QTRY_VERIFY(viewer.bar->text().contains(QStringLiteral("cannot be read")));
    QVERIFY(viewer.bar->details().contains(QStringLiteral("novideo.mp4")));
}

void tst_viewer::helpListsEveryKey()
{
    CxViewer viewer(*m_fixture);
    viewer.key(Qt::Key_F1);
    auto* const help = viewer.child<QDialog>("helpWindow");
    QVERIFY(help && help->isVisible());
    auto* const table = help->findChild<QTableWidget*>();
    QMap<QString, QString> listed;
    for (int row = 0; row < table->rowCount(); ++row)
        listed.insert(table->item(row, 0)->text(), table->item(row, 1)->text());
    QCOMPARE(listed.value(QStringLiteral("Play")), QStringLiteral("Space"));
    QCOMPARE(listed.value(QStringLiteral("Next Picture")), QStringLiteral("Right or ."));
    QCOMPARE(listed.value(QStringLiteral("Leave full screen")), QStringLiteral("Esc"));
    for (QAction* const action : viewer.window.findChild<CxActions*>()->findChildren<QAction*>()) {
        if (!action->shortcut().isEmpty())
            QVERIFY2(listed.contains(QString(action->text()).remove('&')), qPrintable(action->text()));
    }
}

void tst_viewer::aboutShowsLicence()
{
    CxViewer viewer(*m_fixture);
    viewer.child<QAction>("about")->trigger();
    auto* const about = viewer.child<QDialog>("aboutWindow");
    QVERIFY(about && about->isVisible());
    QString const text =
        about->findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly)->property("plainText").toString();
    QVERIFY(text.contains(QStringLiteral("OpenH264 Codecs")));
    QVERIFY(text.contains(QStringLiteral("Cisco")));
}

void tst_viewer::everyControlHasAName()
{
    CxViewer viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.bar->showMessage(CxMessageBar::Kind::Warning, QStringLiteral("text"), {QStringLiteral("details")});
    viewer.bar->offer(QStringLiteral("action"));
    viewer.child<QAction>("record")->trigger();
    QVERIFY(viewer.child<QDialog>("recordDialog"));
    int seen = 0;
    for (QWidget* const widget : viewer.window.findChildren<QWidget*>()) {
        bool const isControl = qobject_cast<QAbstractButton*>(widget) ||
                               qobject_cast<QAbstractSlider*>(widget) || qobject_cast<QComboBox*>(widget) ||
                               qobject_cast<QAbstractSpinBox*>(widget) || qobject_cast<QLineEdit*>(widget) ||
                               widget == viewer.view;
        // Parts of larger controls, and Qt's own scroll bars, are spoken for by those.
        if (!isControl || widget->focusPolicy() == Qt::NoFocus || widget->inherits("QScrollBar") ||
            widget->objectName().startsWith(QLatin1String("qt_")))
            continue;
        // The panel in the save dialog labels its controls for the eye; the dialog names the slider.
        if (widget->objectName().startsWith(QLatin1String("cbH264")) ||
            widget->objectName().startsWith(QLatin1String("spinH264")))
            continue;
        QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(widget);
        QVERIFY(accessible);
        QVERIFY2(
            !accessible->text(QAccessible::Name).isEmpty(),
            qPrintable(QStringLiteral("%1 %2").arg(widget->metaObject()->className(), widget->objectName())));
        ++seen;
    }
    QVERIFY(seen > 20);
}

void tst_viewer::keysAreUnique()
{
    CxViewer viewer(*m_fixture);
    QMap<QKeySequence, QString> seen;
    for (QAction* const action : viewer.window.findChild<CxActions*>()->findChildren<QAction*>()) {
        for (QKeySequence const& key : action->shortcuts()) {
            QVERIFY2(!seen.contains(key), qPrintable(action->objectName() + seen.value(key)));
            seen.insert(key, action->objectName());
        }
    }
    QVERIFY(seen.size() > 20);
}

QTEST_MAIN(tst_viewer)
#include "tst_viewer.moc"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QTest>

#include "CodecOptions.h"
#include "MainWindow.h"
#include "MessageBar.h"
#include "PictureView.h"
#include "RecordBar.h"
#include "TestCamera.h"
#include "support/ViewerFixture.h"

/// The save dialog in a user's hands.
class CxDialogUser
{
public:
    explicit CxDialogUser(QWidget& window)
        : dialog(window.findChild<CxRecordDialog*>())
    {
        isShown = dialog && QTest::qWaitForWindowExposed(dialog);
    }
    template<class Widget>
    Widget* child(char const* name) const
    {
        return dialog->findChild<Widget*>(QLatin1String(name));
    }
    void setFile(QString const& fileName) const
    {
        auto* const edit = child<QLineEdit>("outputFile");
        edit->selectAll();
        QTest::keyClicks(edit, fileName);
    }
    void setNumber(char const* name, int number) const
    {
        auto* const box = child<QSpinBox>(name);
        box->selectAll();
        QTest::keyClicks(box, QString::number(number));
    }
    void click(char const* name) const
    {
        auto* const button = child<QAbstractButton>(name);
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
    }
    QString note() const { return child<QLabel>("note")->text(); }

    CxRecordDialog* dialog;
    bool isShown = false;
};

class tst_viewerRecording : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void dialogOffersSaversFormats();
    void changedOptionsReachTheStream();
    void optionsAreRemembered();
    void defaultsAfterChangedOptions();
    void savesPartOfRecording();
    void recordsUntilStopped();
    void savingIsCancelled();
    void oneRecordingAtATime();
    void refusesSourceAsTarget();
    void refusesMissingFolder();
    void refusesEmptyRange();
    void addsSuffix();
    void failureIsShown();
    void offersToOpen();
    void closingEndsRecording();

private:
    void openCamera()
    {
        m_window->openLive(QStringLiteral("camera"), [](std::atomic<bool> const*) {
            SxTestCameraOptions options;
            options.width = 160;
            options.height = 120;
            options.frames = 0;
            return std::make_unique<CxTestCamera>(options);
        });
    }
    bool openRecording()
    {
        m_window->openRecording(m_recording);
        return QTest::qWaitFor([&] { return m_window->player().shownNumber() == 0; });
    }
    CxDialogUser openDialog()
    {
        // The dialog before it may have been the active one until now.
        QApplication::setActiveWindow(m_window.get());
        if (!QTest::qWaitForWindowActive(m_window.get()))
            qWarning("The window does not become active.");
        QTest::keyClick(m_window.get(), Qt::Key_R, Qt::ControlModifier);
        return CxDialogUser(*m_window);
    }
    QString message() const { return m_window->findChild<CxMessageBar*>()->text(); }

    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
    std::unique_ptr<CxMainWindow> m_window;
};

void tst_viewerRecording::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
}

void tst_viewerRecording::init()
{
    m_window = std::make_unique<CxMainWindow>(m_fixture->plugins);
    m_window->show();
    QApplication::setActiveWindow(m_window.get());
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void tst_viewerRecording::cleanup()
{
    m_window.reset();
    QSettings().clear();
    fx_SetCodecOptions(kFourCCH264, {});
}

void tst_viewerRecording::dialogOffersSaversFormats()
{
    openCamera();
    CxDialogUser const user = openDialog();
    QVERIFY(user.isShown);
    auto* const format = user.child<QComboBox>("format");
    QCOMPARE(format->count(), 1);
    QCOMPARE(format->itemText(0), QStringLiteral("H.264 file (*.h264)"));
    QVERIFY(user.child<QLineEdit>("outputFile")->text().endsWith(QStringLiteral(".h264")));
    QVERIFY(user.child<QSlider>("slH264Quality")->isVisible());
    QVERIFY(!user.child<QComboBox>("cbH264LevelIdc")->isVisible());
    user.click("chkH264Advanced");
    QVERIFY(user.child<QComboBox>("cbH264LevelIdc")->isVisible());
    QCOMPARE(user.child<QSpinBox>("limit")->value(), 0);
    QVERIFY(!user.child<QSpinBox>("first"));
}

void tst_viewerRecording::changedOptionsReachTheStream()
{
    QString const fileName = m_fixture->path(QStringLiteral("changed.h264"));
    openCamera();
    CxDialogUser const user = openDialog();
    QVERIFY(user.isShown);
    user.setFile(fileName);
    user.setNumber("limit", 12);
    QTest::keyClick(user.child<QSlider>("slH264Quality"), Qt::Key_End);
    user.click("chkH264Advanced");
    user.setNumber("spinH264KeyFramerate", 4);
    auto* const level = user.child<QComboBox>("cbH264LevelIdc");
    level->setFocus();
    while (level->currentText() != QLatin1String("2"))
        QTest::keyClick(level, Qt::Key_Up);
    user.click("start");
    QTRY_VERIFY(message().contains(QStringLiteral("is complete")));
    QVERIFY2(message().contains(QStringLiteral("12 pictures saved")) ||
                 message().contains(QStringLiteral("12 picture(s) saved")),
             qPrintable(message()));
    QCOMPARE(CxViewerFixture::pictures(fileName), 12);
    QCOMPARE(CxViewerFixture::level(fileName), 20);
    QCOMPARE(CxViewerFixture::keyFrames(fileName), (QVector<int>{0, 4, 8}));
}

void tst_viewerRecording::optionsAreRemembered()
{
    QString const fileName = m_fixture->path(QStringLiteral("remembered.h264"));
    openCamera();
    {
        CxDialogUser const user = openDialog();
        QVERIFY(user.isShown);
        user.setFile(fileName);
        user.setNumber("limit", 2);
        QTest::keyClick(user.child<QSlider>("slH264Quality"), Qt::Key_Home);
        user.click("chkH264Advanced");
        user.setNumber("spinH264KeyFramerate", 33);
        user.click("start");
    }
    QTRY_VERIFY(message().contains(QStringLiteral("is complete")));
    for (bool const isRestarted : {false, true}) {
        if (isRestarted) { // as after starting the program anew
            fx_SetCodecOptions(kFourCCH264, {});
            init();
            openCamera();
        }
        CxDialogUser const user = openDialog();
        QVERIFY(user.isShown);
        QCOMPARE(user.child<QSlider>("slH264Quality")->value(), 1);
        QCOMPARE(user.child<QSpinBox>("spinH264KeyFramerate")->value(), 33);
        QVERIFY(user.child<QCheckBox>("chkH264Advanced")->isChecked());
        QVERIFY(user.child<QSpinBox>("spinH264KeyFramerate")->isVisible());
        QCOMPARE(QFileInfo(user.child<QLineEdit>("outputFile")->text()).absolutePath(),
                 QFileInfo(fileName).absolutePath());
        QTest::keyClick(user.dialog, Qt::Key_Escape);
        QTRY_VERIFY(!m_window->findChild<CxRecordDialog*>());
    }
}

void tst_viewerRecording::defaultsAfterChangedOptions()
{
    QSettings().setValue(QStringLiteral("record/h264"),
                         QVariantMap{{"h264_quality", 9}, {"h264_level_idc", 10}});
    QString const fileName = m_fixture->path(QStringLiteral("defaults.h264"));
    QVERIFY(openRecording());
    CxDialogUser const user = openDialog();
    QVERIFY(user.isShown);
    QCOMPARE(user.child<QSlider>("slH264Quality")->value(), 9);
    user.click("btnDefault");
    user.setFile(fileName);
    user.click("start");
    QTRY_VERIFY(message().contains(QStringLiteral("is complete")));
    QCOMPARE(CxViewerFixture::level(fileName), 52);
    QCOMPARE(CxViewerFixture::keyFrames(fileName).mid(0, 3), (QVector<int>{0, 5, 10}));
}

void tst_viewerRecording::savesPartOfRecording()
{
    QString const fileName = m_fixture->path(QStringLiteral("part.h264"));
    QVERIFY(openRecording());
    CxDialogUser const user = openDialog();
    QVERIFY(user.isShown);
    QCOMPARE(user.child<QSpinBox>("first")->value(), 0);
    QCOMPARE(user.child<QSpinBox>("last")->value(), 39);
    user.setNumber("first", 7);
    user.setNumber("last", 18);
    user.setFile(fileName);
    QTest::keyClick(user.child<QSlider>("slH264Quality"), Qt::Key_End);
    QTest::keyClick(user.child<QPushButton>("start"), Qt::Key_Space);
    QTRY_VERIFY(message().contains(QStringLiteral("is complete")));
    QCOMPARE(CxViewerFixture::pictures(fileName), 12);
    // The right ones: each looks more like its original than like that one's neighbour.
    auto const difference = [](QImage const& a, QImage const& b) {
        qint64 sum = 0;
        for (int y = 0; y < a.height(); ++y) {
            for (int x = 0; x < a.width(); ++x)
                sum += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y)));
        }
        return sum;
    };
    for (int const number : {0, 11}) {
        QImage const saved = CxViewerFixture::decoded(fileName, number);
        qint64 const same = difference(saved, CxViewerFixture::decoded(m_recording, number + 7));
        QVERIFY(same < difference(saved, CxViewerFixture::decoded(m_recording, number + 6)));
        QVERIFY(same < difference(saved, CxViewerFixture::decoded(m_recording, number + 8)));
    }
}

void tst_viewerRecording::recordsUntilStopped()
{
    QString const fileName = m_fixture->path(QStringLiteral("stopped.h264"));
    openCamera();
    SxRecordChoice choice;
    choice.request.outputFile = fileName;
    m_window->startRecording(choice);
    auto* const bar = m_window->findChild<CxRecordBar*>();
    auto* const text = bar->findChild<QLabel*>(QStringLiteral("recordText"));
    QVERIFY(bar->isVisible());
    QString const before = text->text();
    QTRY_VERIFY(text->text() != before);
    auto* const view = m_window->findChild<CxPictureView*>();
    int const shown = view->picture().number;
    QTRY_VERIFY(view->picture().number > shown); // the picture lives on
    QTest::mouseClick(bar->findChild<QPushButton*>(QStringLiteral("recordStop")), Qt::LeftButton);
    QTRY_VERIFY(message().contains(QStringLiteral("Stopped")));
    QVERIFY(!bar->isVisible());
    int const pictures = CxViewerFixture::pictures(fileName);
    QVERIFY(pictures > 0);
    QVERIFY2(message().contains(QStringLiteral("%1 picture").arg(pictures)), qPrintable(message()));
    int const last = view->picture().number;
    QTRY_VERIFY(view->picture().number > last); // and after the recording, too
}

void tst_viewerRecording::savingIsCancelled()
{
    // Long enough not to end by itself first.
    QString const source = m_fixture->record(QStringLiteral("long.h264"), 600);
    QVERIFY(!source.isEmpty());
    m_window->openRecording(source);
    QTRY_COMPARE(m_window->player().shownNumber(), 0);
    SxRecordChoice choice;
    choice.request.outputFile = m_fixture->path(QStringLiteral("cancelled.h264"));
    choice.first = 0;
    choice.last = 599;
    m_window->startRecording(choice);
    QTest::mouseClick(m_window->findChild<QPushButton*>(QStringLiteral("recordStop")), Qt::LeftButton);
    QTRY_VERIFY(message().contains(QStringLiteral("Stopped")));
    QVERIFY(QFileInfo(choice.request.outputFile).size() < QFileInfo(source).size());
    QVERIFY(m_window->findChild<QAction*>(QStringLiteral("record"))->isEnabled());
}

void tst_viewerRecording::oneRecordingAtATime()
{
    openCamera();
    SxRecordChoice choice;
    choice.request.outputFile = m_fixture->path(QStringLiteral("one.h264"));
    m_window->startRecording(choice);
    for (char const* const name : {"record", "open", "openCamera", "openSource"})
        QVERIFY2(!m_window->findChild<QAction*>(QLatin1String(name))->isEnabled(), name);
    m_window->openRecording(m_recording); // as by a drop
    QVERIFY(!m_window->player().isOpen());
    emit m_window->findChild<CxRecordBar*>()->stopRequested();
    QTRY_VERIFY(!message().isEmpty());
    QVERIFY(m_window->findChild<QAction*>(QStringLiteral("open"))->isEnabled());
}

void tst_viewerRecording::refusesSourceAsTarget()
{
    QVERIFY(openRecording());
    qint64 const size = QFileInfo(m_recording).size();
    CxDialogUser const user = openDialog();
    user.setFile(m_recording);
    user.click("start");
    QVERIFY(user.dialog->isVisible());
    QVERIFY2(user.note().contains(QStringLiteral("being read")), qPrintable(user.note()));
    QCOMPARE(QFileInfo(m_recording).size(), size);
}

void tst_viewerRecording::refusesMissingFolder()
{
    openCamera();
    CxDialogUser const user = openDialog();
    user.setFile(m_fixture->path(QStringLiteral("nowhere/file.h264")));
    user.click("start");
    QVERIFY(user.dialog->isVisible());
    QVERIFY2(user.note().contains(QStringLiteral("There is no folder")), qPrintable(user.note()));
}

void tst_viewerRecording::refusesEmptyRange()
{
    QVERIFY(openRecording());
    CxDialogUser const user = openDialog();
    auto* const start = user.child<QPushButton>("start");
    QVERIFY(start->isEnabled());
    user.setNumber("first", 20);
    user.setNumber("last", 19);
    QVERIFY(!start->isEnabled());
    user.setNumber("last", 20);
    QVERIFY(start->isEnabled());
    user.child<QLineEdit>("outputFile")->clear();
    QVERIFY(!start->isEnabled());
}

void tst_viewerRecording::addsSuffix()
{
    openCamera();
    CxDialogUser const user = openDialog();
    user.setFile(m_fixture->path(QStringLiteral("plain")));
    user.setNumber("limit", 1);
    user.click("start");
    QTRY_VERIFY(message().contains(QStringLiteral("is complete")));
    QCOMPARE(CxViewerFixture::pictures(m_fixture->path(QStringLiteral("plain.h264"))), 1);
}

void tst_viewerRecording::failureIsShown()
{
    openCamera();
    SxRecordChoice choice;
    choice.request.outputFile = m_fixture->path(QString()); // a folder
    m_window->startRecording(choice);
    QTRY_VERIFY(message().contains(QStringLiteral("failed")));
    auto* const bar = m_window->findChild<CxMessageBar*>();
    QVERIFY2(bar->details().contains(QStringLiteral("Cannot open")), qPrintable(bar->details()));
    QVERIFY(!m_window->findChild<CxRecordBar*>()->isVisible());
    QTRY_VERIFY(m_window->findChild<CxPictureView*>()->picture().number > 0); // live as before
}

void tst_viewerRecording::offersToOpen()
{
    openCamera();
    SxRecordChoice choice;
    choice.request.outputFile = m_fixture->path(QStringLiteral("offered.h264"));
    choice.request.maxPictures = 3;
    m_window->startRecording(choice);
    QTRY_VERIFY(message().contains(QStringLiteral("is complete")));
    auto* const action = m_window->findChild<QPushButton*>(QStringLiteral("messageAction"));
    QVERIFY(action->isVisible());
    QTest::mouseClick(action, Qt::LeftButton);
    QTRY_COMPARE(m_window->player().info().count, 3);
}

void tst_viewerRecording::closingEndsRecording()
{
    QString const fileName = m_fixture->path(QStringLiteral("closing.h264"));
    openCamera();
    SxRecordChoice choice;
    choice.request.outputFile = fileName;
    m_window->startRecording(choice);
    auto* const text = m_window->findChild<QLabel*>(QStringLiteral("recordText"));
    QString const before = text->text();
    QTRY_VERIFY(text->text() != before);
    m_window.reset();
    QVERIFY(CxViewerFixture::pictures(fileName) > 0);
}

QTEST_MAIN(tst_viewerRecording)
#include "tst_viewerRecording.moc"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <csignal>
#include <sys/resource.h>

#include "support/ViewerWindow.h"

/// Where the dialog of Save Picture takes the name; null when there is no dialog.
static QLineEdit* fx_PictureNameEdit(CxMainWindow const& window)
{
    auto* const dialog = window.findChild<QFileDialog*>(QStringLiteral("pictureDialog"));
    if (!dialog)
        return nullptr;
    // Without the focus, Qt 6's dialog keeps folders selected that were names on the way to the one typed.
    QApplication::setActiveWindow(dialog);
    auto* const edit = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    return QTest::qWaitFor([edit] { return edit->hasFocus(); }) ? edit : nullptr;
}

static void fx_Enter(QLineEdit* edit, QString const& text)
{
    edit->selectAll();
    QTest::keyClicks(edit, text);
    QTest::keyClick(edit, Qt::Key_Return);
}

/// While it lives no file grows beyond \p bytes, as on a full disk.
class CxFileSizeLimit
{
public:
    explicit CxFileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit const limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~CxFileSizeLimit() { setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    rlimit m_before{};
};

class tst_MainWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void startsWithChoices();
    void opensRecording();
    void opensWhatIsDropped();
    void fullScreenHidesAllButThePicture();
    void savesPictureOfTheKeyPress();
    void failedSavingKeepsOldPicture();
    void saysWhyPictureIsNotSaved_data();
    void saysWhyPictureIsNotSaved();
    void copiesPictureShown();
    void everyControlHasAName();
    void startPageShrinksToo();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_MainWindow::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
}

void tst_MainWindow::startsWithChoices()
{
    CxViewerWindow viewer(*m_fixture);
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

void tst_MainWindow::opensRecording()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QVERIFY(viewer.view->isVisible());
    QCOMPARE(viewer.view->picture().image, CxViewerFixture::decoded(m_recording, 0));
    QCOMPARE(viewer.text("number"), QStringLiteral("Picture 0 of 0–39"));
    QCOMPARE(viewer.text("time"), QStringLiteral("0:00:00.000"));
    QCOMPARE(viewer.text("format"), QStringLiteral("320 × 180, 8-bit colour"));
    QVERIFY(viewer.window.windowTitle().startsWith(QStringLiteral("clip.h264")));
    QVERIFY(viewer.bar->text().isEmpty());
}

void tst_MainWindow::opensWhatIsDropped()
{
    CxViewerWindow viewer(*m_fixture);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(m_recording)});
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&viewer.window, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&viewer.window, &drop);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 0);
}

void tst_MainWindow::fullScreenHidesAllButThePicture()
{
    CxViewerWindow viewer(*m_fixture);
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

void tst_MainWindow::savesPictureOfTheKeyPress()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_Space);
    QTRY_VERIFY(viewer.view->picture().number >= 3);
    int const number = viewer.view->picture().number;
    viewer.key(Qt::Key_S, Qt::ControlModifier);
    auto* const edit = fx_PictureNameEdit(viewer.window);
    QVERIFY(edit);
    QCOMPARE(edit->text(), QStringLiteral("clip_%1.png").arg(number, 5, 10, QLatin1Char('0')));
    QTRY_VERIFY(viewer.view->picture().number > number + 2); // it plays on behind the dialog
    QString const file = m_fixture->path(QStringLiteral("picture"));
    fx_Enter(edit, file);
    QCOMPARE(QImage(file + ".png").convertToFormat(QImage::Format_RGB32),
             CxViewerFixture::decoded(m_recording, number));
}

void tst_MainWindow::failedSavingKeepsOldPicture()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QString const fileName = m_fixture->path(QStringLiteral("old.png"));
    QFile old(fileName);
    QVERIFY(old.open(QIODevice::WriteOnly));
    QCOMPARE(old.write("old"), qint64{3});
    old.close();
    viewer.key(Qt::Key_S, Qt::ControlModifier);
    auto* const edit = fx_PictureNameEdit(viewer.window);
    QVERIFY(edit);
    QTimer::singleShot(0, &viewer.window, [] { // what asks whether to replace it runs a loop of its own
        auto* const question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        QVERIFY(question);
        QTest::mouseClick(question->button(QMessageBox::Yes), Qt::LeftButton);
    });
    {
        CxFileSizeLimit const limit(4096);
        fx_Enter(edit, fileName);
    }
    QTRY_VERIFY(!viewer.bar->text().isEmpty());
    QVERIFY2(viewer.bar->text().contains(QStringLiteral("File too large")), qPrintable(viewer.bar->text()));
    QVERIFY(old.open(QIODevice::ReadOnly));
    QCOMPARE(old.readAll(), QByteArray("old"));
}

void tst_MainWindow::saysWhyPictureIsNotSaved_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no folder") << "no/such/folder.png"
                               << "No such file or directory";
    QTest::newRow("no format") << "picture.xyz"
                               << "there is no picture format “xyz”; “png” always works";
}

void tst_MainWindow::saysWhyPictureIsNotSaved()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_S, Qt::ControlModifier);
    auto* const edit = fx_PictureNameEdit(viewer.window);
    QVERIFY(edit);
    QString const fileName = m_fixture->path(name);
    fx_Enter(edit, fileName);
    QCOMPARE(viewer.bar->text(),
             QStringLiteral("Picture 0 could not be saved to “%1”: %2.").arg(fileName, reason));
    QVERIFY(!QFile::exists(fileName));
}

void tst_MainWindow::copiesPictureShown()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32),
             CxViewerFixture::decoded(m_recording, 0));
}

void tst_MainWindow::everyControlHasAName()
{
    CxViewerWindow viewer(*m_fixture);
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

void tst_MainWindow::startPageShrinksToo()
{
    CxViewerWindow viewer(*m_fixture);
    viewer.window.resize(400, 300);
    QCOMPARE(viewer.window.size(), QSize(400, 300));
    QVERIFY(viewer.child<QWidget>("startPage")->isVisible());
    viewer.window.resize(300, 200);
    QCOMPARE(viewer.window.size(), QSize(400, 300));
}

QTEST_MAIN(tst_MainWindow)
#include "tst_MainWindow.moc"

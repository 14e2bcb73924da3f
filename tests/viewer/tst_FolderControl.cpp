#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QSettings>
#include <QStatusBar>
#include <QTest>

#include "support/FileBytes.h"
#include "support/ViewerWindow.h"

class tst_FolderControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void keysGoThroughTheFolder();
    void keysGoThroughWhatWasDropped();
    void reloadShowsWhatIsThereByNow();
    void ctrlWClosesTheRecordingAlone();

private:
    QString file(QString const& name) const { return m_fixture->path(QStringLiteral("folder/") + name); }

    std::unique_ptr<CxViewerFixture> m_fixture;
};

void tst_FolderControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    QVERIFY(QDir(m_fixture->path(QString())).mkpath(QStringLiteral("folder")));
    QVERIFY(!m_fixture->record(QStringLiteral("folder/gate 2.h264"), 6).isEmpty());
    for (char const* const name : {"gate 10.h264", "other.264", "notes.txt"})
        QVERIFY(QFile::copy(file("gate 2.h264"), file(QLatin1String(name))));
}

static bool fx_Shows(CxViewerWindow& viewer, QString const& fileName)
{
    return QTest::qWaitFor([&] {
        return QFileInfo(viewer.window.player().info().fileName) == QFileInfo(fileName) &&
               viewer.window.player().shownNumber() == 0;
    });
}

void tst_FolderControl::keysGoThroughTheFolder()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(!viewer.child<QAction>("nextFile")->isEnabled());
    QVERIFY(viewer.open(file("gate 2.h264")));
    viewer.key(Qt::Key_PageUp, Qt::ControlModifier);
    QCOMPARE(viewer.window.statusBar()->currentMessage(), QStringLiteral("This is the first recording."));
    viewer.key(Qt::Key_PageDown, Qt::ControlModifier);
    QVERIFY(fx_Shows(viewer, file("gate 10.h264")));
    viewer.key(Qt::Key_PageDown, Qt::ControlModifier);
    QVERIFY(fx_Shows(viewer, file("other.264"))); // not the text
    viewer.key(Qt::Key_PageDown, Qt::ControlModifier);
    QCOMPARE(viewer.window.statusBar()->currentMessage(), QStringLiteral("This is the last recording."));
    viewer.key(Qt::Key_PageUp, Qt::ControlModifier);
    QVERIFY(fx_Shows(viewer, file("gate 10.h264")));
}

void tst_FolderControl::keysGoThroughWhatWasDropped()
{
    CxViewerWindow viewer(*m_fixture);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file("other.264")), QUrl::fromLocalFile(file("gate 2.h264"))});
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&viewer.window, &enter);
    QDropEvent drop(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&viewer.window, &drop);
    QVERIFY(fx_Shows(viewer, file("other.264")));
    viewer.key(Qt::Key_PageDown, Qt::ControlModifier);
    QVERIFY(fx_Shows(viewer, file("gate 2.h264"))); // in the order of the hand
    viewer.key(Qt::Key_PageDown, Qt::ControlModifier);
    QCOMPARE(viewer.window.statusBar()->currentMessage(), QStringLiteral("This is the last recording."));
}

void tst_FolderControl::reloadShowsWhatIsThereByNow()
{
    QString const growing = m_fixture->path(QStringLiteral("growing.h264"));
    QVERIFY(QFile::copy(file("gate 2.h264"), growing));
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(growing));
    viewer.window.player().seek(3);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 3);
    QVERIFY(fx_WriteFile(growing, fx_FileBytes(growing).repeated(2)));
    viewer.key(Qt::Key_F5);
    QTRY_COMPARE(viewer.window.player().info().count, 12);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 3); // and stays where it was
}

void tst_FolderControl::ctrlWClosesTheRecordingAlone()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(!viewer.child<QAction>("closeFile")->isEnabled());
    QVERIFY(viewer.open(file("gate 2.h264")));
    viewer.key(Qt::Key_W, Qt::ControlModifier);
    QVERIFY(viewer.child<QWidget>("startPage")->isVisible());
    QVERIFY(viewer.window.isVisible());
    QCOMPARE(viewer.window.windowTitle(), QStringLiteral("minihost"));
    for (char const* const name : {"closeFile", "play", "record", "nextFile", "reload", "savePicture"})
        QVERIFY2(!viewer.child<QAction>(name)->isEnabled(), name);
    QVERIFY(viewer.open(file("gate 10.h264")));
    viewer.openCamera();
    QTRY_VERIFY(!viewer.window.player().isOpen());
    viewer.key(Qt::Key_W, Qt::ControlModifier);
    QVERIFY(viewer.child<QWidget>("startPage")->isVisible());
}

QTEST_MAIN(tst_FolderControl)
#include "tst_FolderControl.moc"

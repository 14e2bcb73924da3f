#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QSettings>
#include <QStatusBar>
#include <QTest>

#include "SnapshotFile.h"
#include "support/FileBytes.h"
#include "support/ViewerWindow.h"

class tst_PictureControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup() { QSettings().clear(); }

    void snapshotKeyWritesNumberedPictures();
    void snapshotReplacesNothing();
    void snapshotOfCameraHasItsNumber();
    void folderIsSetOnce();
    void saysWhySnapshotFails();
    void copyIsConfirmed();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_PictureControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 10);
    QVERIFY(!m_recording.isEmpty());
}

void tst_PictureControl::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    CxSnapshotFile::setFolder(m_folder->path());
}

static QStringList fx_Files(QTemporaryDir const& folder)
{
    return QDir(folder.path()).entryList(QDir::Files, QDir::Name);
}

void tst_PictureControl::snapshotKeyWritesNumberedPictures()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(!viewer.child<QAction>("snapshot")->isEnabled());
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_S);
    QString const name = m_folder->filePath(QStringLiteral("clip_00000.png"));
    QCOMPARE(viewer.window.statusBar()->currentMessage(),
             QStringLiteral("Picture 0 is saved as “%1”.").arg(name));
    QCOMPARE(QImage(name).convertToFormat(QImage::Format_RGB32), CxViewerFixture::decoded(m_recording, 0));
    viewer.key(Qt::Key_End);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 9);
    viewer.key(Qt::Key_S, Qt::ShiftModifier);
    QCOMPARE(fx_Files(*m_folder), (QStringList{"clip_00000.png", "clip_00009.png"}));
}

void tst_PictureControl::snapshotReplacesNothing()
{
    QVERIFY(fx_WriteFile(m_folder->filePath(QStringLiteral("clip_00000.png")), QByteArray("old")));
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_S);
    viewer.key(Qt::Key_S);
    QCOMPARE(fx_Files(*m_folder), (QStringList{"clip_00000.png", "clip_00000_2.png", "clip_00000_3.png"}));
    QCOMPARE(fx_FileBytes(m_folder->filePath(QStringLiteral("clip_00000.png"))), QByteArray("old"));
    QVERIFY(!QImage(m_folder->filePath(QStringLiteral("clip_00000_3.png"))).isNull());
}

void tst_PictureControl::snapshotOfCameraHasItsNumber()
{
    CxViewerWindow viewer(*m_fixture);
    viewer.openCamera();
    QTRY_VERIFY(!viewer.view->picture().image.isNull());
    viewer.key(Qt::Key_Space); // stands still
    int const number = viewer.view->picture().number;
    viewer.key(Qt::Key_S);
    QCOMPARE(fx_Files(*m_folder),
             QStringList(QStringLiteral("live_%1.png").arg(number, 5, 10, QLatin1Char('0'))));
}

void tst_PictureControl::folderIsSetOnce()
{
    QTemporaryDir const other;
    {
        CxViewerWindow viewer(*m_fixture);
        viewer.child<QAction>("snapshotFolder")->trigger();
        auto* const dialog = viewer.child<QFileDialog>("snapshotDialog");
        QVERIFY(dialog);
        emit dialog->fileSelected(other.path());
        QVERIFY(viewer.window.statusBar()->currentMessage().contains(other.path()));
    }
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_S);
    QCOMPARE(fx_Files(other), QStringList("clip_00000.png"));
}

void tst_PictureControl::saysWhySnapshotFails()
{
    QString const noFolder = m_folder->filePath(QStringLiteral("file"));
    QVERIFY(fx_WriteFile(noFolder, QByteArray("x")));
    CxSnapshotFile::setFolder(noFolder);
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_S);
    QVERIFY2(viewer.bar->text().contains(QStringLiteral("Not a directory")), qPrintable(viewer.bar->text()));
    QVERIFY(viewer.window.statusBar()->currentMessage().isEmpty());
}

void tst_PictureControl::copyIsConfirmed()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(viewer.window.statusBar()->currentMessage(), QStringLiteral("Picture 0 is in the clipboard."));
}

QTEST_MAIN(tst_PictureControl)
#include "tst_PictureControl.moc"

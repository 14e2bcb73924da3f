#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <functional>

#include "FileDialogs.h"
#include "support/FileBytes.h"

/// The questions for a file or source to open, answered in the loop that they run.
class tst_FileDialogs : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void sourceIsAskedForAndRemembered();
    void noSourceWhenTheUserChangedHisMind();
    void recordingIsAskedForInTheFolderOfTheLast();
    void noRecordingWhenTheUserChangedHisMind();

private:
    QTemporaryDir m_folder;
};

void tst_FileDialogs::initTestCase()
{
    QVERIFY(m_folder.isValid());
    QCoreApplication::setOrganizationName(QStringLiteral("minihost tests"));
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_folder.path());
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
}

/// Answers the dialog that comes next, as soon as it is there; fails the test when it is of another class.
template<class Dialog>
static void fx_AnswerNext(std::function<void(Dialog&)> const& answer)
{
    auto* const timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, answer] {
        if (!QApplication::activeModalWidget())
            return;
        timer->stop();
        timer->deleteLater();
        auto* const dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        answer(*dialog);
    });
    timer->start(0);
}

void tst_FileDialogs::sourceIsAskedForAndRemembered()
{
    fx_AnswerNext<QInputDialog>([](QInputDialog& dialog) {
        QCOMPARE(dialog.textValue(), QString());
        dialog.setTextValue(QStringLiteral("  rtsp://camera/stream "));
        dialog.accept();
    });
    QCOMPARE(CxFileDialogs::sourceToOpen(nullptr), QStringLiteral("rtsp://camera/stream"));
    fx_AnswerNext<QInputDialog>([](QInputDialog& dialog) {
        QCOMPARE(dialog.textValue(), QStringLiteral("rtsp://camera/stream"));
        dialog.accept();
    });
    QCOMPARE(CxFileDialogs::sourceToOpen(nullptr), QStringLiteral("rtsp://camera/stream"));
}

void tst_FileDialogs::noSourceWhenTheUserChangedHisMind()
{
    fx_AnswerNext<QInputDialog>([](QInputDialog& dialog) {
        dialog.setTextValue(QStringLiteral("rtsp://camera/stream"));
        dialog.reject();
    });
    QCOMPARE(CxFileDialogs::sourceToOpen(nullptr), QString());
    fx_AnswerNext<QInputDialog>([](QInputDialog& dialog) {
        QCOMPARE(dialog.textValue(), QString()); // what was not chosen is not remembered
        dialog.setTextValue(QStringLiteral("   "));
        dialog.accept();
    });
    QCOMPARE(CxFileDialogs::sourceToOpen(nullptr), QString());
}

void tst_FileDialogs::recordingIsAskedForInTheFolderOfTheLast()
{
    QString const fileName = m_folder.filePath(QStringLiteral("clip.h264"));
    QVERIFY(fx_WriteFile(fileName, "any bytes"));
    fx_AnswerNext<QFileDialog>([&](QFileDialog& dialog) {
        dialog.setDirectory(m_folder.path());
        dialog.selectFile(fileName);
        QMetaObject::invokeMethod(&dialog, "accept"); // which is protected
    });
    QCOMPARE(CxFileDialogs::recordingToOpen(nullptr), fileName);
    fx_AnswerNext<QFileDialog>([&](QFileDialog& dialog) {
        QCOMPARE(dialog.directory().absolutePath(), m_folder.path());
        dialog.reject();
    });
    QCOMPARE(CxFileDialogs::recordingToOpen(nullptr), QString());
}

void tst_FileDialogs::noRecordingWhenTheUserChangedHisMind()
{
    fx_AnswerNext<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
    QCOMPARE(CxFileDialogs::recordingToOpen(nullptr), QString());
    QVERIFY(!QSettings().contains(QStringLiteral("open/folder")));
}

QTEST_MAIN(tst_FileDialogs)
#include "tst_FileDialogs.moc"

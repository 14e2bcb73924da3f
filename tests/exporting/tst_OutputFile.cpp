#include <QTemporaryDir>
#include <QtTest>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "OutputFile.h"
#include "support/FileBytes.h"

/// Files that are there only when whole, and pipes that take bytes as they come.
class tst_OutputFile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { std::signal(SIGPIPE, SIG_IGN); } // as in the program
    void init();

    void obstacleIsNamedBeforeAnythingIsWritten_data();
    void obstacleIsNamedBeforeAnythingIsWritten();
    void fileIsThereOnlyOnceItIsWhole();
    void unfinishedFileLeavesTheOldOne();
    void pipeTakesBytesAsTheyCome();
    void readerThatLeavesIsNamed();
    void whatCannotBeWrittenIsNamedWithTheCause_data();
    void whatCannotBeWrittenIsNamedWithTheCause();

private:
    QString path(QString const& name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_error;
};

void tst_OutputFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_error.clear();
}

void tst_OutputFile::obstacleIsNamedBeforeAnythingIsWritten_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("overwrite");
    QTest::addColumn<QString>("obstacle");
    QTest::newRow("nothing there") << "new.png" << false << "";
    QTest::newRow("folder") << "folder" << true << ": this is a folder.";
    QTest::newRow("recording") << "link.h264" << true << ": what is written would replace the recording.";
    QTest::newRow("file") << "old.png" << false << ": the file exists; --overwrite replaces it.";
    QTest::newRow("file to be replaced") << "old.png" << true << "";
    QTest::newRow("no folder") << "none/new.png" << false << ": there is no folder ";
}

void tst_OutputFile::obstacleIsNamedBeforeAnythingIsWritten()
{
    QFETCH(QString, name);
    QFETCH(bool, overwrite);
    QFETCH(QString, obstacle);
    SxExportRequest request;
    request.recording = path("in.h264");
    request.overwrite = overwrite;
    QVERIFY(fx_WriteFile(request.recording, "recording"));
    QVERIFY(QFile::link(request.recording, path("link.h264")));
    QVERIFY(fx_WriteFile(path("old.png"), "old"));
    QVERIFY(QDir(m_folder->path()).mkdir("folder"));

    QString const told = fx_Obstacle(path(name), request);
    QCOMPARE(told.isEmpty(), obstacle.isEmpty());
    QVERIFY2(obstacle.isEmpty() || told.startsWith(path(name) + obstacle), qPrintable(told));
}

void tst_OutputFile::fileIsThereOnlyOnceItIsWhole()
{
    CxOutputFile file(path("new.y4m"));
    QVERIFY(file.write("one", m_error));
    QVERIFY(file.write("two", m_error));
    QVERIFY(!QFile::exists(path("new.y4m")));
    QVERIFY(file.finish(m_error));
    QCOMPARE(fx_FileBytes(path("new.y4m")), QByteArray("onetwo"));
}

void tst_OutputFile::unfinishedFileLeavesTheOldOne()
{
    QVERIFY(fx_WriteFile(path("old.y4m"), "old"));
    {
        CxOutputFile file(path("old.y4m"));
        QVERIFY(file.write("new", m_error));
    }
    QCOMPARE(fx_FileBytes(path("old.y4m")), QByteArray("old"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{"old.y4m"});
}

void tst_OutputFile::pipeTakesBytesAsTheyCome()
{
    QCOMPARE(mkfifo(path("pipe").toLocal8Bit().constData(), 0600), 0);
    int const reader = open(path("pipe").toLocal8Bit().constData(), O_RDONLY | O_NONBLOCK);
    QVERIFY(reader >= 0);
    CxOutputFile file(path("pipe"));
    QVERIFY(file.write("one", m_error));
    char bytes[8] = {};
    QCOMPARE(read(reader, bytes, sizeof bytes), ssize_t{3}); // before finish()
    QCOMPARE(QByteArray(bytes), QByteArray("one"));
    close(reader);
    QVERIFY(!file.write("two", m_error));
    QCOMPARE(m_error, path("pipe") + ": Broken pipe.");
    QVERIFY(file.finish(m_error));
}

void tst_OutputFile::readerThatLeavesIsNamed()
{
    QByteArray const pipe = path("pipe").toLocal8Bit();
    QCOMPARE(mkfifo(pipe.constData(), 0600), 0);
    std::thread reader([&pipe] {
        int const end = open(pipe.constData(), O_RDONLY);
        char byte = 0;
        static_cast<void>(!read(end, &byte, 1));
        close(end);
    });
    // More than a pipe holds: the reader is gone before it is through.
    bool const isWritten = fx_WriteFile(path("pipe"), QByteArray(4 << 20, 'x'), m_error);
    reader.join();
    QVERIFY(!isWritten);
    QCOMPARE(m_error, path("pipe") + ": Broken pipe.");
}

void tst_OutputFile::whatCannotBeWrittenIsNamedWithTheCause_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("cause");
    QTest::newRow("full disk") << "/dev/full"
                               << "No space left on device";
    QTest::newRow("name too long") << QString("/tmp/" + QString(300, QLatin1Char('x')))
                                   << "File name too long";
}

void tst_OutputFile::whatCannotBeWrittenIsNamedWithTheCause()
{
    QFETCH(QString, fileName);
    QFETCH(QString, cause);
    QVERIFY(!fx_WriteFile(fileName, "picture", m_error));
    QCOMPARE(m_error, QStringLiteral("%1: %2.").arg(fileName, cause));
}

QTEST_GUILESS_MAIN(tst_OutputFile)
#include "tst_OutputFile.moc"

#include <QTemporaryDir>
#include <QtTest>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "RecordingOutput.h"
#include "support/FileBytes.h"

/// Where a recording goes, without a recording: files, pipes and what is in the way of them.
class tst_RecordingOutput : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void newFileGoesAgainWhileNothingIsInIt();
    void linkToNothingStays();
    void fileIsHeldAgainstAnother();
    void whatStandsInTheWayIsNamed();
    void endOfAFileCanBeTakenBack();
    void pipeWaitsForItsReaderUntilTheStop();
    void pipeGivesItsReaderEveryByte();
    void readerThatLeftIsTold();
    void outputThatWasNeverOpenedHasNothingToSay();

private:
    QString path(QString const& name) const { return m_folder->filePath(name); }
    void makePipe(QString const& name) const
    {
        QCOMPARE(mkfifo(path(name).toLocal8Bit().constData(), 0600), 0);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_RecordingOutput::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    std::signal(SIGPIPE, SIG_IGN); // as in the program
}

void tst_RecordingOutput::newFileGoesAgainWhileNothingIsInIt()
{
    QVERIFY(fx_WriteFile(path("old"), QByteArray()));
    for (char const* name : {"new", "old", "used"}) {
        CxRecordingOutput output;
        QString error;
        QVERIFY2(output.open(path(name), nullptr, error), qPrintable(error));
        QVERIFY(!output.isRelayed());
        QCOMPARE(output.saverFile(), path(name));
        QVERIFY(QFile::exists(path(name)));
        if (qstrcmp(name, "used") == 0)
            QVERIFY(fx_WriteFile(output.saverFile(), "bytes"));
    }
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), (QStringList{"old", "used"}));
}

void tst_RecordingOutput::linkToNothingStays()
{
    QVERIFY(QFile::link(path("no folder/file"), path("link"))); // as to a disk that is not mounted
    {
        CxRecordingOutput output;
        QString error;
        QVERIFY(!output.open(path("link"), nullptr, error));
        QVERIFY(!error.isEmpty());
    }
    QVERIFY(QFileInfo(path("link")).isSymLink());
}

void tst_RecordingOutput::fileIsHeldAgainstAnother()
{
    QString error;
    {
        CxRecordingOutput first;
        QVERIFY2(first.open(path("out"), nullptr, error), qPrintable(error));
        CxRecordingOutput second;
        QVERIFY(!second.open(path("out"), nullptr, error));
        QCOMPARE(error, path("out") + ": another recording is being written to it.");
    }
    CxRecordingOutput later;
    QVERIFY2(later.open(path("out"), nullptr, error), qPrintable(error));
}

void tst_RecordingOutput::whatStandsInTheWayIsNamed()
{
    QString error;
    CxRecordingOutput nowhere;
    QVERIFY(!nowhere.open(path("none/out"), nullptr, error));
    QCOMPARE(error, path("none/out") + ": No such file or directory.");
    CxRecordingOutput folder;
    QVERIFY(!folder.open(m_folder->path(), nullptr, error));
    QCOMPARE(error, m_folder->path() + ": Is a directory.");
}

void tst_RecordingOutput::endOfAFileCanBeTakenBack()
{
    CxRecordingOutput output;
    QString error;
    QVERIFY2(output.open(path("out"), nullptr, error), qPrintable(error));
    QVERIFY(fx_WriteFile(output.saverFile(), QByteArray(300, 'a') + "b"));
    QCOMPARE(output.size(), qint64{301});
    QCOMPARE(output.head(), QByteArray(256, 'a'));
    output.cutOff(2);
    QCOMPARE(fx_FileBytes(path("out")), QByteArray("aa"));
    QCOMPARE(output.why(), QString()); // nothing keeps more from being written
    QCOMPARE(output.size(), qint64{2});
}

void tst_RecordingOutput::pipeWaitsForItsReaderUntilTheStop()
{
    makePipe("pipe");
    std::atomic<bool> const stop{true};
    CxRecordingOutput output;
    QString error;
    QVERIFY(!output.open(path("pipe"), &stop, error));
    QCOMPARE(error, QString());
}

void tst_RecordingOutput::pipeGivesItsReaderEveryByte()
{
    makePipe("pipe");
    QByteArray const bytes(200000, 'x'); // more than a pipe holds
    QByteArray got;
    std::thread reader([this, &got] { got = fx_FileBytes(path("pipe")); });
    QString error;
    {
        CxRecordingOutput output;
        bool const isOpen = output.open(path("pipe"), nullptr, error);
        if (!isOpen || !output.isRelayed() || !fx_WriteFile(output.saverFile(), bytes) || !output.passOn())
            error += output.why();
        output.cutOff(1); // too late: what has passed has passed
        if (output.size() != bytes.size() || output.head() != bytes.left(256))
            error += "counted wrongly";
    }
    reader.join();
    QCOMPARE(error, QString());
    QVERIFY(got == bytes);
}

void tst_RecordingOutput::readerThatLeftIsTold()
{
    makePipe("pipe");
    int const reader = ::open(path("pipe").toLocal8Bit().constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    QVERIFY(reader >= 0);
    CxRecordingOutput output;
    QString error;
    QVERIFY2(output.open(path("pipe"), nullptr, error), qPrintable(error));
    QVERIFY(fx_WriteFile(output.saverFile(), "first"));
    QVERIFY(output.passOn());
    ::close(reader);
    QVERIFY(fx_WriteFile(output.saverFile(), "first and more"));
    QVERIFY(!output.passOn());
    QCOMPARE(output.why(), QString("Broken pipe"));
    QVERIFY(!output.passOn()); // whoever comes to read now would miss some
    QCOMPARE(output.size(), qint64{5});
}

void tst_RecordingOutput::outputThatWasNeverOpenedHasNothingToSay()
{
    CxRecordingOutput output;
    QCOMPARE(output.why(), QString());
    QCOMPARE(output.size(), qint64{0});
    output.cutOff(0);
}

QTEST_GUILESS_MAIN(tst_RecordingOutput)
#include "tst_RecordingOutput.moc"

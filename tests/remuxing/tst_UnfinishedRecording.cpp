#include <QTemporaryDir>
#include <QtTest>
#include <sys/file.h>

#include "UnfinishedRecording.h"

class tst_UnfinishedRecording : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void rawFileStandsForItsContainer_data();
    void rawFileStandsForItsContainer();
    void commandNamesBothFiles();
    void whatWasLeftBehindIsTold();
    void handedOnRecordingGoesOnlyWithItsOutputThere();

private:
    QString path(QString const& name) const { return m_folder->filePath(name); }
    void write(QString const& name) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_UnfinishedRecording::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_UnfinishedRecording::write(QString const& name) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write("bytes"), qint64{5});
}

void tst_UnfinishedRecording::rawFileStandsForItsContainer_data()
{
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("container");
    QTest::newRow("MP4") << "a/b.mp4.h264"
                         << "a/b.mp4";
    QTest::newRow("MOV") << "b.MOV.h264"
                         << "b.MOV";
    QTest::newRow("Matroska") << "b.c.mkv.h264"
                              << "b.c.mkv";
    QTest::newRow("a recording") << "b.h264"
                                 << "";
    QTest::newRow("a container") << "b.mp4"
                                 << "";
    QTest::newRow("nothing") << ""
                             << "";
}

void tst_UnfinishedRecording::rawFileStandsForItsContainer()
{
    QFETCH(QString, raw);
    QFETCH(QString, container);
    QCOMPARE(fx_ContainerOf(raw), container);
    if (!container.isEmpty())
        QCOMPARE(fx_RawFileOf(container), raw);
}

void tst_UnfinishedRecording::commandNamesBothFiles()
{
    QCOMPARE(fx_CommandToFinish("no/b.mp4.h264"),
             QString("minihost remux --remove-input no/b.mp4.h264 no/b.mp4"));
    QCOMPARE(fx_CommandToFinish("no/it's here.mkv.h264"),
             QString("minihost remux --remove-input 'no/it'\\''s here.mkv.h264' 'no/it'\\''s here.mkv'"));
    QCOMPARE(fx_CommandToFinish("-b.mp4.h264"),
             QString("minihost remux --remove-input ./-b.mp4.h264 ./-b.mp4"));
    write("b.mp4");
    QVERIFY(fx_CommandToFinish(path("b.mp4.h264")).contains(" --overwrite "));
}

void tst_UnfinishedRecording::whatWasLeftBehindIsTold()
{
    QString const container = path("b.mp4");
    QCOMPARE(fx_UnfinishedText(container), QString()); // there is nothing
    write("b.mp4.h264");
    QVERIFY(fx_UnfinishedText(container).contains(fx_CommandToFinish(path("b.mp4.h264"))));
    write("c.avi.h264");
    QCOMPARE(fx_UnfinishedText(path("c.avi")), QString()); // no container that is recorded to
    {
        QFile recorder(path("b.mp4.h264"));
        QVERIFY(recorder.open(QIODevice::ReadWrite));
        QCOMPARE(flock(recorder.handle(), LOCK_EX), 0);
        QVERIFY(fx_IsBeingRecorded(recorder.fileName()));
        QCOMPARE(fx_UnfinishedText(container), QString()); // it is still being written
    }
    QVERIFY(!fx_IsBeingRecorded(path("b.mp4.h264")));
    QVERIFY(!fx_UnfinishedText(container).isEmpty());
    QVERIFY(QFile::resize(path("b.mp4.h264"), 0));
    QCOMPARE(fx_UnfinishedText(container), QString()); // nothing is lost with an empty one
}

void tst_UnfinishedRecording::handedOnRecordingGoesOnlyWithItsOutputThere()
{
    write("b.h264");
    QString error;
    QVERIFY(!fx_RemoveHandedOn(path("b.h264"), path("b.mp4"), error));
    QCOMPARE(error,
             QStringLiteral("%1: it stays, since %2 may not be on the disk: No such file or directory.")
                 .arg(path("b.h264"), path("b.mp4")));
    QVERIFY(QFile::exists(path("b.h264")));
    write("b.mp4");
    {
        QFile recorder(path("b.h264"));
        QVERIFY(recorder.open(QIODevice::ReadWrite));
        QCOMPARE(flock(recorder.handle(), LOCK_EX), 0);
        QVERIFY(!fx_RemoveHandedOn(path("b.h264"), path("b.mp4"), error));
        QVERIFY(QFile::exists(path("b.h264")));
    }
    QVERIFY(fx_RemoveHandedOn(path("b.h264"), path("b.mp4"), error));
    QVERIFY(!QFile::exists(path("b.h264")));
    QVERIFY(!fx_RemoveHandedOn(path("b.h264"), path("b.mp4"), error));
    QVERIFY2(error.contains("it cannot be removed"), qPrintable(error));
}

QTEST_GUILESS_MAIN(tst_UnfinishedRecording)
#include "tst_UnfinishedRecording.moc"

#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

#include "Sidecar.h"
#include "support/FileBytes.h"

/// What lies beside a recording, be it ours or not.
class tst_Sidecar : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void comesBackAsItWasWritten();
    void unknownRateStaysUnknown();
    void withoutAFileThereIsNothingToSay();
    void belongsToNoOtherRecording_data();
    void belongsToNoOtherRecording();
    void whatCannotBeUsedIsIgnoredWithItsCause_data();
    void whatCannotBeUsedIsIgnoredWithItsCause();
    void whatIsNoFileIsIgnored();
    void namesCannotSteerATerminal();
    void ownFileIsReplacedAndRemoved();
    void filesOfOthersStay_data();
    void filesOfOthersStay();
    void tooManySkippedPicturesAreOnlyCounted();
    void failureToWriteLeavesNothing();
    void fullDiskLeavesNothing();
    void emptyFileOfAFullDiskIsReplaced();
    void unfinishedRecordingIsKnownByItsFile();
    void laterFileWithTheSameNumberIsAnother();

private:
    static SxSidecar example();
    void write(SxSidecar const& sidecar);
    void edit(QString const& key, QJsonValue const& value);
    QString sidecarName() const { return fx_SidecarName(m_recording); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_recording;
};

void tst_Sidecar::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_recording = m_folder->filePath("clip.h264");
    QVERIFY(fx_WriteFile(m_recording, QByteArray(100000, 'x')));
}

SxSidecar tst_Sidecar::example()
{
    SxSidecar sidecar;
    sidecar.rate = {30000, 1001};
    sidecar.rotation = 90;
    sidecar.source = QStringLiteral("clip.mp4");
    sidecar.options = {{"quality", 7}};
    sidecar.pictures = 20;
    sidecar.skippedCount = 4;
    sidecar.skipped = {{3, 5}, {7, 7}};
    sidecar.program = QStringLiteral("minihost 1");
    return sidecar;
}

void tst_Sidecar::write(SxSidecar const& sidecar)
{
    QString error;
    QVERIFY2(fx_WriteSidecar(m_recording, sidecar, error), qPrintable(error));
}

void tst_Sidecar::edit(QString const& key, QJsonValue const& value)
{
    QJsonObject json = QJsonDocument::fromJson(fx_FileBytes(sidecarName())).object();
    json[key] = value;
    QVERIFY(fx_WriteFile(sidecarName(), QJsonDocument(json).toJson()));
}

void tst_Sidecar::comesBackAsItWasWritten()
{
    write(example());
    QCOMPARE(sidecarName(), m_folder->filePath("clip.h264.json"));
    SxFoundSidecar const found = fx_FindSidecar(m_recording);
    QVERIFY2(found.warning.isEmpty(), qPrintable(found.warning));
    QVERIFY(found.sidecar);
    QCOMPARE(found.sidecar->rate.exact(), QString("30000/1001"));
    QVERIFY(!found.sidecar->rate.isAverage);
    QCOMPARE(found.sidecar->rotation, 90);
    QCOMPARE(found.sidecar->source, QString("clip.mp4"));
    QCOMPARE(found.sidecar->options, example().options);
    QCOMPARE(found.sidecar->pictures, 20);
    QCOMPARE(found.sidecar->skippedCount, 4);
    QCOMPARE(fx_RangesText(found.sidecar->skipped, 0), QString("3-5, 7"));
    QCOMPARE(found.sidecar->program, QString("minihost 1"));
}

void tst_Sidecar::unknownRateStaysUnknown()
{
    SxSidecar sidecar = example();
    sidecar.rate = {};
    write(sidecar);
    QVERIFY(fx_FindSidecar(m_recording).sidecar);
    QVERIFY(!fx_FindSidecar(m_recording).sidecar->rate.isKnown());
    sidecar.rate = {25, 1, true};
    write(sidecar);
    QVERIFY(fx_FindSidecar(m_recording).sidecar->rate.isAverage);
}

void tst_Sidecar::withoutAFileThereIsNothingToSay()
{
    SxFoundSidecar const found = fx_FindSidecar(m_recording);
    QVERIFY(!found.sidecar);
    QCOMPARE(found.warning, QString());
}

void tst_Sidecar::belongsToNoOtherRecording_data()
{
    QTest::addColumn<QByteArray>("other");
    QTest::newRow("longer") << QByteArray(100001, 'x');
    QTest::newRow("shorter") << QByteArray(99999, 'x');
    QTest::newRow("other first byte") << QByteArray("y") + QByteArray(99999, 'x');
    QTest::newRow("other byte 65535") << QByteArray(65535, 'x') + 'y' + QByteArray(34464, 'x');
    QTest::newRow("none") << QByteArray();
}

void tst_Sidecar::belongsToNoOtherRecording()
{
    QFETCH(QByteArray, other);
    write(example());
    QVERIFY(fx_WriteFile(m_recording, other));
    if (other.isEmpty())
        QVERIFY(QFile::remove(m_recording));
    SxFoundSidecar const found = fx_FindSidecar(m_recording);
    QVERIFY(!found.sidecar);
    QCOMPARE(found.warning, sidecarName() + QString(" is ignored: it describes another recording."));
}

void tst_Sidecar::whatCannotBeUsedIsIgnoredWithItsCause_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<QString>("cause");
    QTest::newRow("version") << "format" << QJsonValue("minihost-sidecar-2") << "it is another version's";
    QTest::newRow("not ours") << "format" << QJsonValue() << "it is not minihost's";
    QTest::newRow("recording") << "recording" << QJsonValue("x") << "it describes another recording";
    QTest::newRow("rate") << "rate" << QJsonValue("1e9") << "'1e9' is no rate";
    QTest::newRow("no rate") << "rate" << QJsonValue("0") << "'0' is no rate";
    QTest::newRow("rate that is a number") << "rate" << QJsonValue(25) << "its rate is no text";
    QTest::newRow("rotation that is a text") << "rotation" << QJsonValue("90") << "its rotation is no number";
    QTest::newRow("skipped that is a list")
        << "skipped" << QJsonValue(QJsonArray()) << "its skipped is no text";
    QTest::newRow("rotation") << "rotation" << QJsonValue(45) << "45 degrees are no rotation";
    QTest::newRow("beyond any number") << "rotation" << QJsonValue(1e300) << "-1 degrees are no rotation";
    QTest::newRow("full turn") << "rotation" << QJsonValue(360) << "360 degrees are no rotation";
    QString const pictures("the pictures in it do not add up");
    QTest::newRow("pictures") << "pictures" << QJsonValue(-1) << pictures;
    QTest::newRow("too few pictures") << "pictures" << QJsonValue(7) << pictures;
    QTest::newRow("too many pictures") << "pictures" << QJsonValue(2000000000) << pictures;
    QTest::newRow("count") << "skippedCount" << QJsonValue(5) << pictures;
    QTest::newRow("skipped") << "skipped" << QJsonValue("5-3") << pictures;
    QTest::newRow("endless") << "skipped" << QJsonValue("0-2000000000") << pictures;
}

void tst_Sidecar::whatCannotBeUsedIsIgnoredWithItsCause()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, value);
    QFETCH(QString, cause);
    write(example());
    edit(key, value);
    SxFoundSidecar const found = fx_FindSidecar(m_recording);
    QVERIFY(!found.sidecar);
    QCOMPARE(found.warning, QString("%1 is ignored: %2.").arg(sidecarName(), cause));
}

void tst_Sidecar::whatIsNoFileIsIgnored()
{
    QCOMPARE(mkfifo(sidecarName().toLocal8Bit().constData(), 0600), 0);
    QCOMPARE(fx_FindSidecar(m_recording).warning,
             sidecarName() + QString(" is ignored: it is no regular file."));
    QVERIFY(QFile::remove(sidecarName()));
    QVERIFY(QDir().mkdir(sidecarName()));
    QCOMPARE(fx_FindSidecar(m_recording).warning,
             sidecarName() + QString(" is ignored: it is no regular file."));
}

void tst_Sidecar::namesCannotSteerATerminal()
{
    SxSidecar sidecar = example();
    sidecar.source = QString("a\x1b[2Jb\nc") + QString::fromUtf8("\xf0\x9f\x8e\xa5");
    write(sidecar);
    QCOMPARE(fx_FindSidecar(m_recording).sidecar->source,
             QString("a?[2Jb?c") + QString::fromUtf8("\xf0\x9f\x8e\xa5"));
}

void tst_Sidecar::ownFileIsReplacedAndRemoved()
{
    write(example());
    QVERIFY(fx_WriteFile(m_recording, "another"));
    SxSidecar other = example();
    other.rotation = 180;
    write(other);
    QCOMPARE(fx_FindSidecar(m_recording).sidecar->rotation, 180);
    fx_RemoveSidecar(m_recording);
    QVERIFY(!QFile::exists(sidecarName()));
    fx_RemoveSidecar(m_recording); // twice is once
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{"clip.h264"});
}

void tst_Sidecar::filesOfOthersStay_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("words") << QByteArray("my notes");
    QTest::newRow("object") << QByteArray("{\"rate\": \"25\"}");
    QTest::newRow("array") << QByteArray("[1]");
    QTest::newRow("cut off") << QByteArray("{\"format\": \"minihost-sidecar-1\"");
    QTest::newRow("huge") << QByteArray("{\"format\": \"minihost-sidecar-1\"}") +
                                 QByteArray(4 * 1024 * 1024, ' ');
}

void tst_Sidecar::filesOfOthersStay()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(fx_WriteFile(sidecarName(), bytes));
    QString error;
    QVERIFY(!fx_WriteSidecar(m_recording, example(), error));
    QVERIFY2(error.startsWith(sidecarName() + " is not minihost's and stays as it is"), qPrintable(error));
    fx_RemoveSidecar(m_recording);
    QVERIFY(fx_FileBytes(sidecarName()) == bytes);
    SxFoundSidecar const found = fx_FindSidecar(m_recording);
    QVERIFY(!found.sidecar);
    QVERIFY2(found.warning.startsWith(sidecarName() + " is ignored: it is "), qPrintable(found.warning));
}

void tst_Sidecar::tooManySkippedPicturesAreOnlyCounted()
{
    SxSidecar sidecar = example();
    int const count = 450000;
    sidecar.pictures = 2 * count;
    sidecar.skippedCount = count;
    sidecar.skipped.clear();
    for (int i = 0; i < count; ++i)
        sidecar.skipped.append({2 * i, 2 * i});
    write(sidecar);
    QVERIFY(QFileInfo(sidecarName()).size() < 10000);
    SxFoundSidecar const found = fx_FindSidecar(m_recording);
    QVERIFY2(found.sidecar, qPrintable(found.warning));
    QCOMPARE(found.sidecar->skippedCount, count);
    QVERIFY(found.sidecar->skipped.isEmpty());
}

void tst_Sidecar::failureToWriteLeavesNothing()
{
    QString const elsewhere = m_folder->filePath("none/clip.h264");
    QString error;
    QVERIFY(!fx_WriteSidecar(elsewhere, example(), error));
    QVERIFY2(error.startsWith(fx_SidecarName(elsewhere) + ": "), qPrintable(error));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{"clip.h264"});
}

void tst_Sidecar::fullDiskLeavesNothing()
{
    std::signal(SIGXFSZ, SIG_IGN); // as in the program
    rlimit before = {};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
    rlimit const small = {100, before.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    QString error;
    bool const isWritten = fx_WriteSidecar(m_recording, example(), error);
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &before), 0);
    QVERIFY(!isWritten);
    QVERIFY2(error.startsWith(sidecarName() + ": "), qPrintable(error));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{"clip.h264"});
}

void tst_Sidecar::emptyFileOfAFullDiskIsReplaced()
{
    QVERIFY(fx_WriteFile(sidecarName(), QByteArray()));
    write(example());
    QVERIFY(fx_FindSidecar(m_recording).sidecar);
}

void tst_Sidecar::unfinishedRecordingIsKnownByItsFile()
{
    QString error;
    QVERIFY2(fx_WriteSidecar(m_recording, example(), error, false), qPrintable(error));
    QFile growing(m_recording);
    QVERIFY(growing.open(QIODevice::Append) && growing.write("more") == 4 && growing.flush());
    SxFoundSidecar const found = fx_FindSidecar(m_recording);
    QVERIFY2(found.sidecar, qPrintable(found.warning));
    QCOMPARE(found.sidecar->rotation, 90);

    QString const other = m_folder->filePath("other.h264");
    QVERIFY(QFile::copy(m_recording, other) && QFile::copy(sidecarName(), fx_SidecarName(other)));
    QVERIFY(!fx_FindSidecar(other).sidecar);
}

void tst_Sidecar::laterFileWithTheSameNumberIsAnother()
{
    if (!QFileInfo(m_recording).birthTime().isValid())
        return; // this file system cannot tell them apart
    QString error;
    QVERIFY2(fx_WriteSidecar(m_recording, example(), error, false), qPrintable(error));
    // What a file that was removed in the last second left beside the next one, which got its inode.
    QJsonObject json = QJsonDocument::fromJson(fx_FileBytes(sidecarName())).object();
    QJsonObject identity = json["recording"].toObject();
    QVERIFY(identity.contains("unfinishedSince"));
    identity["unfinishedSince"] = "2001-01-01T00:00:00.000Z";
    edit("recording", identity);
    SxFoundSidecar const found = fx_FindSidecar(m_recording);
    QVERIFY(!found.sidecar);
    QVERIFY2(found.warning.contains("describes another recording"), qPrintable(found.warning));
}

QTEST_GUILESS_MAIN(tst_Sidecar)
#include "tst_Sidecar.moc"

#include <QJsonArray>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "Sidecar.h"
#include "support/Minihost.h"
#include "support/PictureFiles.h"

/// record of a live stream that comes by a socket, with the built program.
class tst_LiveRecording : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void picturesThatComeTooFastAreCountedAsLost();
    void stoppedRecordingIsASuccess();
    void bufferThatMakesNoSenseIsWrongUsage_data();
    void bufferThatMakesNoSenseIsWrongUsage();

private:
    QString path(QString const& name) const { return m_folder->filePath(name); }
    void start(QByteArray const& stream, QStringList const& options);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QProcess> m_record;
    int m_server = -1; ///< a socket
    int m_stream = -1; ///< one connection to it
};

void tst_LiveRecording::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    QByteArray const name = QFile::encodeName(path("live"));
    QVERIFY(name.size() < static_cast<int>(sizeof address.sun_path));
    qstrcpy(address.sun_path, name.constData());
    m_server = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    QCOMPARE(::bind(m_server, reinterpret_cast<sockaddr const*>(&address), sizeof address), 0);
    QCOMPARE(::listen(m_server, 1), 0);
}

void tst_LiveRecording::cleanup()
{
    m_record.reset();
    ::close(m_server);
}

/// Records what comes to out.h264, and sends \p stream, which then stays open.
void tst_LiveRecording::start(QByteArray const& stream, QStringList const& options)
{
    m_record = std::make_unique<QProcess>();
    m_record->start(fx_MinihostProgram(),
                    QStringList{"record", "unix://" + path("live"), path("out.h264"), "--json"} + options);
    QVERIFY(m_record->waitForStarted());
    m_stream = ::accept4(m_server, nullptr, nullptr, SOCK_CLOEXEC);
    for (int sent = 0; sent < stream.size();) {
        auto const bytes = ::send(m_stream, stream.constData() + sent,
                                  static_cast<size_t>(stream.size() - sent), MSG_NOSIGNAL);
        QVERIFY(bytes > 0);
        sent += static_cast<int>(bytes);
    }
}

void tst_LiveRecording::picturesThatComeTooFastAreCountedAsLost()
{
    // A thousand pictures a second is more than any encoder does.
    QByteArray const stream = fx_NoiseY4mFile(640, 480, 60).replace(" F30:1 ", " F1000:1 ");
    start(stream, {"--buffer", "5ms,100MB", "--strict"});
    ::close(m_stream);
    QVERIFY(m_record->waitForFinished(60000));
    QByteArray const err = m_record->readAllStandardError();
    QVERIFY2(m_record->exitCode() == 3, err);
    QJsonObject const json = QJsonDocument::fromJson(m_record->readAllStandardOutput()).object();
    int const lost = json.value("lostBeforeEncoder").toInt();
    QVERIFY2(lost > 0, err);
    QCOMPARE(json.value("given").toInt(), 60);
    QCOMPARE(json.value("lostPictures").toArray().size(), lost);
    QCOMPARE(json.value("coded").toInt() + json.value("skipped").toInt() + lost, 60);
    QCOMPARE(json.value("lost").toInt(-1), 0); // on the disk
    QVERIFY2(err.contains("warning: pictures are lost before the encoder, from picture "), err);
    QVERIFY2(err.contains("  " + QByteArray::number(lost) + " lost before the encoder ("), err);

    SxFoundSidecar const found = fx_FindSidecar(path("out.h264"));
    QVERIFY2(found.sidecar, qPrintable(found.warning));
    QCOMPARE(found.sidecar->lostCount, lost);
    QCOMPARE(fx_CountOf(found.sidecar->lost), qint64{lost});
    SxMinihostRun const info = fx_RunMinihost({"info", path("out.h264")});
    QVERIFY2(info.out.contains(QByteArray::number(lost) + " lost before the encoder: "), info.out);
}

void tst_LiveRecording::stoppedRecordingIsASuccess()
{
    QByteArray const picture = QByteArray(64 * 48, char(90)) + QByteArray(64 * 48 / 2, char(128));
    start(fx_Y4mFile(64, 48, "420jpeg", picture, 40), {});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(path("out.h264")), 60000);
    QCOMPARE(::kill(static_cast<pid_t>(m_record->processId()), SIGINT), 0);
    QVERIFY(m_record->waitForFinished(60000)); // while the stream goes on
    QByteArray const err = m_record->readAllStandardError();
    QVERIFY2(m_record->exitCode() == 0, err);
    QJsonObject const json = QJsonDocument::fromJson(m_record->readAllStandardOutput()).object();
    ::close(m_stream);
    QCOMPARE(json.value("stopped").toBool(), true);
    QCOMPARE(json.value("lostBeforeEncoder").toInt(-1), 0);
    QCOMPARE(json.value("lostByCamera").toInt(-1), 0);
}

void tst_LiveRecording::bufferThatMakesNoSenseIsWrongUsage_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("buffer");
    QTest::addColumn<QByteArray>("sentence");
    QByteArray const takes = "--buffer takes a time such as 5s, a size such as 2GB, or both as 5s,2GB, not '";
    for (char const* text : {"", "5", "5s,", "100f", "2gb", "0s"})
        QTest::newRow(qPrintable(QString("'%1'").arg(text)))
            << "v4l2:/dev/video0" << text << takes + text + "'.";
    QTest::newRow("camera") << "camera:"
                            << "2s"
                            << QByteArray("--buffer is not for camera:, which waits for the encoder.");
}

void tst_LiveRecording::bufferThatMakesNoSenseIsWrongUsage()
{
    QFETCH(QString, source);
    QFETCH(QString, buffer);
    QFETCH(QByteArray, sentence);
    SxMinihostRun const run = fx_RunMinihost({"record", source, path("out.h264"), "--buffer", buffer});
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.err.contains(sentence), run.err);
}

QTEST_GUILESS_MAIN(tst_LiveRecording)
#include "tst_LiveRecording.moc"

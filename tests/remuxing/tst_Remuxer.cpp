#include <QTemporaryDir>
#include <QtTest>
#include <cstring>
#include <memory>

#include "PluginHost.h"
#include "PluginMessages.h"
#include "RecordingReader.h"
#include "Remuxer.h"
#include "support/FakeLoader.h"

/// The recording of tests/data handed on within this process, where it can be stopped at a given picture.
class tst_Remuxer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void stoppedWorkLeavesNoFile_data();
    void stoppedWorkLeavesNoFile();
    void progressCountsPicturesAndBytes();
    void folderWithoutRightsIsNamed();
    void frameThatCannotBeReadIsNamed_data();
    void frameThatCannotBeReadIsNamed();

private:
    QString path(QString const& name) const { return m_folder->filePath(name); }
    SxRemuxRequest request(QString const& name) const;

    CxPluginMessages m_messages{false};
    CxPluginHost m_host;
    std::unique_ptr<CxRecordingReader> m_recording;
    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_Remuxer::initTestCase()
{
    QString error;
    QVERIFY2(m_host.load(PLUGIN_FILE, error), qPrintable(error));
}

void tst_Remuxer::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    QString error;
    m_recording = std::make_unique<CxRecordingReader>();
    QVERIFY2(m_recording->open(TEST_DATA "/camera.h264", error), qPrintable(error));
}

SxRemuxRequest tst_Remuxer::request(QString const& name) const
{
    SxRemuxRequest request;
    request.output = path(name);
    request.last = m_recording->frameCount() - 1;
    return request;
}

void tst_Remuxer::stoppedWorkLeavesNoFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("picture");
    for (char const* name : {"o.mp4", "o.mov", "o.mkv", "o.h264"})
        QTest::addRow("%s, after the third picture", name) << name << 3;
    // With the pictures written, but not the index.
    QTest::newRow("o.mp4, after the last picture") << "o.mp4" << 0;
    QTest::newRow("o.mkv, after the last picture") << "o.mkv" << 0;
}

void tst_Remuxer::stoppedWorkLeavesNoFile()
{
    QFETCH(QString, name);
    QFETCH(int, picture);
    picture = picture > 0 ? picture : m_recording->frameCount();
    std::atomic<bool> stop{false};
    SxRemuxRequest stopped = request(name);
    stopped.stop = &stop;
    SxRemuxSummary const summary = fx_Remux(
        *m_recording, stopped, [&](SxRemuxSummary const& soFar) { stop = soFar.pictures == picture; });
    QCOMPARE(summary.failure, RemuxFailure::Interrupted);
    QCOMPARE(summary.error, QStringLiteral("%1: interrupted after %2 of %3 pictures; nothing was written.")
                                .arg(path(name))
                                .arg(picture)
                                .arg(m_recording->frameCount()));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

void tst_Remuxer::progressCountsPicturesAndBytes()
{
    QVector<int> pictures;
    qint64 bytes = 0;
    SxRemuxSummary const summary = fx_Remux(*m_recording, request("o.mp4"), [&](SxRemuxSummary const& soFar) {
        QVERIFY(soFar.bytes > bytes);
        bytes = soFar.bytes;
        pictures += soFar.pictures;
    });
    QCOMPARE(summary.error, QString());
    QCOMPARE(int(pictures.size()), m_recording->frameCount());
    QCOMPARE(pictures.last(), summary.pictures);
    QCOMPARE(summary.keyFrames, int(m_recording->keyFrames().size()));
    QCOMPARE(summary.bytes, QFileInfo(path("o.mp4")).size());
    QVERIFY(!summary.isInputDamaged());
}

void tst_Remuxer::folderWithoutRightsIsNamed()
{
    SxRemuxRequest const unwritable = request("none/o.mp4");
    SxRemuxSummary const summary = fx_Remux(*m_recording, unwritable);
    QCOMPARE(summary.failure, RemuxFailure::Output);
    QCOMPARE(summary.error, unwritable.output + ": No such file or directory.");
}

/// Key frames are those of the recording; others cannot be read, nor the key frames from one on.
class CxUnreadableLoader : public CxFakeLoader
{
public:
    CxUnreadableLoader(SxLoaderLog& log, QByteArray key, int firstGone)
        : CxFakeLoader(log)
        , m_key(std::move(key))
        , m_firstGone(firstGone)
    {}
    unsigned long frameDataSize(int) override { return static_cast<unsigned long>(m_key.size()); }
    bool frameData(int frame, void* buffer, unsigned long& size) override
    {
        if (frame % 10 != 0 || frame >= m_firstGone)
            return false;
        size = static_cast<unsigned long>(m_key.size());
        std::memcpy(buffer, m_key.constData(), size);
        return true;
    }

private:
    QByteArray m_key;
    int m_firstGone;
};

void tst_Remuxer::frameThatCannotBeReadIsNamed_data()
{
    QTest::addColumn<int>("firstGone"); // of the key frames
    QTest::addColumn<int>("frame");
    QTest::addColumn<int>("written");
    QTest::newRow("key frame") << 20 << 20 << 0;
    QTest::newRow("behind a key frame") << 40 << 1 << 1;
}

void tst_Remuxer::frameThatCannotBeReadIsNamed()
{
    QFETCH(int, firstGone);
    QFETCH(int, frame);
    QFETCH(int, written);
    SxLoaderLog log;
    CxRecordingReader recording(
        std::make_unique<CxUnreadableLoader>(log, m_recording->codedFrame(0), firstGone));
    QString error;
    QVERIFY2(recording.open(TEST_DATA "/camera.h264", error), qPrintable(error));
    SxRemuxRequest whole = request("o.mp4");
    whole.last = recording.frameCount() - 1;
    SxRemuxSummary const summary = fx_Remux(recording, whole);
    QCOMPARE(summary.failure, RemuxFailure::Input);
    QCOMPARE(summary.error, QStringLiteral(TEST_DATA "/camera.h264: frame %1 cannot be read.").arg(frame));
    QCOMPARE(summary.pictures, written);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

QTEST_GUILESS_MAIN(tst_Remuxer)
#include "tst_Remuxer.moc"

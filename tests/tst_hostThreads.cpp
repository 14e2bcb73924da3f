#include <QtTest>

#include "PicturesAhead.h"
#include "PluginHost.h"
#include "PluginMessages.h"
#include "Recorder.h"
#include "SourceAhead.h"
#include "TestCamera.h"

/// The stand-in's own threads, with the plug-in between them: pictures fetched ahead of a recording, those of
/// a live source, and pictures decoded ahead of an export. Under the tsan preset a data race fails these
/// tests.
class tst_hostThreads : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void recordingAheadWritesWhatOneThreadWrites();
    void liveRecordingLosesOrKeepsEachPicture();
    void recordingThatEndsEarlyLeavesNoThreadBehind();
    void exportAheadGivesWhatOneReaderGives();

private:
    QString path(char const* name) const { return m_folder.filePath(QLatin1String(name)); }
    SxRecordSummary record(IxPictureSource& source, char const* name, int pictures = 0);

    QTemporaryDir m_folder;
    CxPluginMessages m_messages;
    CxPluginHost m_plugins;
};

static constexpr int kPictures = 30;

/// The test camera, running by itself if that is wanted.
class CxCamera : public CxTestCamera
{
public:
    explicit CxCamera(bool isLive)
        : CxTestCamera(options())
        , m_isLive(isLive)
    {}
    bool isLive() const override { return m_isLive; }

private:
    static SxTestCameraOptions options()
    {
        SxTestCameraOptions options;
        options.width = 64;
        options.height = 48;
        options.frames = kPictures;
        return options;
    }

    bool m_isLive;
};

/// It is read in one thread, and taken from there by another.
static std::unique_ptr<CxSourceAhead> fx_TwiceAhead(std::optional<SxLiveBuffer> const& live = std::nullopt)
{
    auto const read = [&live](std::atomic<bool> const*) {
        return std::make_unique<CxCamera>(live.has_value());
    };
    auto const change = [&](std::atomic<bool> const* stop) {
        return std::make_unique<CxSourceAhead>(read, stop, live);
    };
    return std::make_unique<CxSourceAhead>(change, nullptr);
}

SxRecordSummary tst_hostThreads::record(IxPictureSource& source, char const* name, int pictures)
{
    SxRecordRequest request;
    request.outputFile = path(name);
    request.maxPictures = pictures;
    return fx_Record(source, request);
}

static QByteArray fx_Bytes(QString const& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_hostThreads::initTestCase()
{
    QVERIFY(m_folder.isValid());
    QString error;
    QVERIFY2(m_plugins.loadFile(QStringLiteral(PLUGIN_FILE), error), qPrintable(error));
    CxCamera camera(false);
    QCOMPARE(record(camera, "one.h264").error, QString());
}

void tst_hostThreads::recordingAheadWritesWhatOneThreadWrites()
{
    auto const source = fx_TwiceAhead();
    SxRecordSummary const summary = record(*source, "ahead.h264");
    QCOMPARE(summary.error, QString());
    QCOMPARE(summary.given, kPictures);
    QCOMPARE(fx_Bytes(path("ahead.h264")), fx_Bytes(path("one.h264")));
}

void tst_hostThreads::liveRecordingLosesOrKeepsEachPicture()
{
    auto const source = fx_TwiceAhead(SxLiveBuffer{200000, 1 << 20});
    SxRecordSummary const summary = record(*source, "live.h264");
    QCOMPARE(summary.error, QString());
    QCOMPARE(summary.given, kPictures);
    QCOMPARE(summary.coded + static_cast<int>(summary.skipped.size() + summary.lost.size()), kPictures);
}

void tst_hostThreads::recordingThatEndsEarlyLeavesNoThreadBehind()
{
    for (int pictures = 1; pictures < 6; ++pictures) {
        auto const source = fx_TwiceAhead();
        QCOMPARE(record(*source, "part.h264", pictures).given, pictures);
    }
}

void tst_hostThreads::exportAheadGivesWhatOneReaderGives()
{
    CxRecordingReader recording;
    QString error;
    QVERIFY2(recording.open(path("one.h264"), error), qPrintable(error));
    QVector<int> frames;
    for (int frame = 0; frame < recording.frameCount(); ++frame)
        frames.append(frame);
    auto const newKeeper = [] {
        return [](SxPicBuf const&) {
            SxMadePicture made;
            made.needsPicture = true;
            return made;
        };
    };
    CxPicturesAhead ahead(recording, frames, 3, newKeeper);
    std::atomic<bool> const stop{false};
    for (int const frame : frames) {
        CxPicturesAhead::SxNext const next = ahead.next(stop);
        QVERIFY(next.isThere && next.picture);
        std::unique_ptr<CxImageData> const alone = recording.picture(frame, error);
        SxPicBuf const& expected = *alone->picBuf();
        SxPicBuf const& actual = *next.picture->picBuf();
        QCOMPARE(actual.pitch, expected.pitch);
        QVERIFY(memcmp(actual.data, expected.data, size_t{actual.pitch} * actual.height) == 0);
    }
}

QTEST_GUILESS_MAIN(tst_hostThreads)
#include "tst_hostThreads.moc"

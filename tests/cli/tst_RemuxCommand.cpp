#include <QDir>
#include <QJsonArray>
#include <QtTest>
#include <csignal>
#include <numeric>
#include <sys/file.h>
#include <sys/stat.h>

#include "PictureFormat.h"
#include "Sidecar.h"
#include "TestCamera.h"
#include "support/FFmpegDecoder.h"
#include "support/FFprobe.h"
#include "support/NotedCopy.h"
#include "support/RecordedCamera.h"

/// What ffprobe says of the rate: that of the pictures, or since FFmpeg 6.1, for a raw stream, that of its
/// fields.
static QStringList fx_RatesOf(QJsonObject const& stream)
{
    QStringList const told = stream.value("r_frame_rate").toString().split('/');
    int numerator = told.value(0).toInt();
    int denominator = told.value(1).toInt() * 2;
    int const divisor = std::gcd(numerator, denominator);
    if (divisor > 0) {
        numerator /= divisor;
        denominator /= divisor;
    }
    return {told.join('/'), QStringLiteral("%1/%2").arg(numerator).arg(denominator)};
}

/// The remux command as its user meets it, with FFmpeg's programs as those that read what it wrote.
class tst_RemuxCommand : public QObject, private CxRecordedCamera
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { makeFolder(); }

    void picturesStayAndAreDescribed_data();
    void picturesStayAndAreDescribed();
    void containerSaysItWithoutTheStream();
    void indexIsAtTheFront();
    void parameterSetsStandOnceBeforeThePictures();
    void defaultReadingHasTheRightColours_data();
    void defaultReadingHasTheRightColours();
    void rawStreamOpensAsBefore();
    void rateIsTheOneGiven_data();
    void rateIsTheOneGiven();
    void sidecarSaysRateAndRotation();
    void rawStreamIsNotedBeside();
    void removedInputIsWholeInTheOutput();
    void whatTheOutputCannotSayIsKept();
    void rateThatNobodyToldIsAssumed();
    void damagedInputIsNotRemoved();
    void inputThatIsBeingRecordedIsNotRemoved();
    void partBeginsAtAKeyFrame_data();
    void partBeginsAtAKeyFrame();
    void exactPartBeginsWhereAsked_data();
    void exactPartBeginsWhereAsked();
    void exactPartOfAnotherLevelKeepsItsSetsInTheStream();
    void exactPartNeedsPicturesThatDecode();
    void exactPartBeforeADamagedKeyFrameIsWritten();
    void onePictureIsEnough();
    void jsonTellsWhatWasWritten();

    void missingFrontIsLeftOut();
    void cutOffEndIsLeftOut();
    void partBeforeTheFirstKeyFrameIsRefused();
    void recordingWithoutAWholePairOfSetsIsRefused_data();
    void recordingWithoutAWholePairOfSetsIsRefused();
    void setsWithoutAPictureKeepItsTime();
    void damagedFramesAreNamed_data();
    void damagedFramesAreNamed();
    void whatIsNoRecordingIsRefused_data();
    void whatIsNoRecordingIsRefused();

    void outputThatIsInTheWayIsNamed();
    void recordingIsNeverReplaced();
    void fullDiskLeavesTheOldFileAsItWas_data();
    void fullDiskLeavesTheOldFileAsItWas();
    void interruptionLeavesTheOldFileAsItWas_data();
    void interruptionLeavesTheOldFileAsItWas();
    void wrongUsageIsExplained_data();
    void wrongUsageIsExplained();

private:
    void write(QString const& name, QByteArray const& bytes) const;
    QByteArray codedFrames(int first, int count) const;
    int offset(int frame) const;
};

void tst_RemuxCommand::initTestCase() { makeRecording(); }

void tst_RemuxCommand::write(QString const& name, QByteArray const& bytes) const
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

/// Where frame \p frame begins in m_bytes: at the start code of its sequence parameter set or its slice.
int tst_RemuxCommand::offset(int frame) const
{
    int at = 0;
    for (int i = 0; i < frame; ++i) {
        auto const next = [this](char header, int from) {
            auto const found = m_bytes.indexOf(QByteArray("\0\0\0\1", 4) + header, from);
            return found < 0 ? INT_MAX : static_cast<int>(found);
        };
        at = std::min(next('\x67', at + 4), next('\x61', at + 4));
    }
    return std::min(at, static_cast<int>(m_bytes.size()));
}

QByteArray tst_RemuxCommand::codedFrames(int first, int count) const
{
    int const begin = offset(first);
    return m_bytes.mid(begin,
                       (first + count == kFrames ? int(m_bytes.size()) : offset(first + count)) - begin);
}

void tst_RemuxCommand::picturesStayAndAreDescribed_data()
{
    QTest::addColumn<QString>("name");
    for (char const* name : {"o.mp4", "o.mov", "o.mkv", "o.h264", "o.264", "O.MP4"})
        QTest::newRow(name) << name;
}

void tst_RemuxCommand::picturesStayAndAreDescribed()
{
    QFETCH(QString, name);
    SxMinihostRun const remuxed = run({"remux", m_recording, name});
    QVERIFY2(remuxed.exitCode == 0, remuxed.err);
    QVERIFY2(remuxed.err.contains(": 30 pictures of 320 x 240, "), remuxed.err);

    QList<QByteArray> const hashes = fx_DecodedHashes(m_recording);
    QCOMPARE(hashes.size(), int{kFrames});
    QCOMPARE(fx_DecodedHashes(path(name)), hashes);

    QJsonObject const stream = fx_ProbedStream(path(name));
    QVERIFY2(fx_RatesOf(stream).contains("30/1"), qPrintable(fx_RatesOf(stream).join(' ')));
    QCOMPARE(stream.value("color_range").toString(), QString("pc"));
    QCOMPARE(stream.value("color_space").toString(), QString("smpte170m"));
    QCOMPARE(stream.value("color_primaries").toString(), QString("bt709"));
    QCOMPARE(stream.value("color_transfer").toString(), QString("iec61966-2-1"));
    QCOMPARE(stream.value("has_b_frames").toInt(-1), 0);
    QCOMPARE(stream.value("width").toInt(), kWidth);
    if (name.endsWith("264"))
        return; // a raw stream has no time stamps

    QStringList packets;
    for (int frame = 0; frame < kFrames; ++frame)
        packets += QStringLiteral("%1 %2").arg(frame).arg(frame % 5 == 0 ? "K" : "_");
    QCOMPARE(fx_ProbedPackets(path(name), 30), packets);
}

/// Bytes of the first box or element with this name, from the name on.
static QByteArray fx_Box(QByteArray const& file, char const* name)
{
    auto const at = file.indexOf(name);
    return at < 0 ? QByteArray() : file.mid(at, 32);
}

void tst_RemuxCommand::containerSaysItWithoutTheStream()
{
    for (char const* name : {"o.mp4", "o.mov", "o.mkv"})
        QCOMPARE(run({"remux", m_recording, name}).exitCode, 0);
    // Primaries, transfer and matrix in words, as in the stream; MP4 alone has the range, its highest bit.
    QByteArray const colours = QByteArray::fromHex("0001000d0006");
    QCOMPARE(fx_Box(fx_FileBytes(path("o.mp4")), "colrnclx").mid(8, 7), colours + '\x80');
    QCOMPARE(fx_Box(fx_FileBytes(path("o.mov")), "colrnclc").mid(8, 6), colours);
    // Matroska: elements of one byte each; range 2 is full.
    QByteArray const mkv = fx_FileBytes(path("o.mkv"));
    for (char const* element : {"55b18106", "55b98102", "55ba810d", "55bb8101"})
        QVERIFY2(mkv.contains(QByteArray::fromHex(element)), element);
}

void tst_RemuxCommand::indexIsAtTheFront()
{
    QCOMPARE(run({"remux", m_recording, "o.mp4"}).exitCode, 0);
    QByteArray const mp4 = fx_FileBytes(path("o.mp4"));
    QVERIFY(mp4.indexOf("moov") > 0);
    QVERIFY(mp4.indexOf("moov") < mp4.indexOf("mdat"));
    QCOMPARE(run({"remux", m_recording, "o.mkv"}).exitCode, 0);
    QVERIFY(fx_FileBytes(path("o.mkv")).contains(QByteArray::fromHex("1c53bb6b"))); // Cues
}

void tst_RemuxCommand::parameterSetsStandOnceBeforeThePictures()
{
    // More groups than a container has room for sequence sets, and pictures' sets beyond the ids that there
    // are.
    QByteArray const size("64x48");
    QCOMPARE(run({"record", "camera:", "l.h264", "--size", size, "--frames", "60", "--keyframe-rate", "1"})
                 .exitCode,
             0);
    QCOMPARE(run({"remux", "l.h264", "l.mp4"}).exitCode, 0);
    QList<QByteArray> const hashes = fx_DecodedHashes(path("l.h264"));
    QCOMPARE(hashes.size(), 60);
    QCOMPARE(fx_DecodedHashes(path("l.mp4")), hashes);
    QCOMPARE(fx_ProbedStream(path("l.mp4")).value("codec_tag_string").toString(), QString("avc1"));
    QByteArray const box = fx_Box(fx_FileBytes(path("l.mp4")), "avcC");
    QCOMPARE(int(box[4 + 5]), int('\xE1')); // one sequence set
    // No set is left among the pictures: each sample is one slice, its length before it.
    QByteArray const mp4 = fx_FileBytes(path("l.mp4"));
    int slices = 0;
    for (int at = int(mp4.indexOf("mdat")) + 4; at + 4 < mp4.size(); ++slices) {
        QCOMPARE(mp4[at + 4] & 0x1F, 5);
        at += 4 + QByteArray(mp4.mid(at, 4)).toHex().toInt(nullptr, 16);
    }
    QCOMPARE(slices, 60);
}

void tst_RemuxCommand::defaultReadingHasTheRightColours_data()
{
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("name");
    for (char const* name : {"o.mp4", "o.mov", "o.mkv", "o.h264"})
        QTest::addRow("320x240 %s", name) << "320x240" << name;
    QTest::newRow("1280x720 o.mp4") << "1280x720"
                                    << "o.mp4"; // where others would guess BT.709
}

static std::vector<std::uint8_t> fx_Vector(QByteArray const& bytes)
{
    return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
}

/// The pictures that the camera delivered, as red, green, blue.
static QByteArray fx_CameraRgb(int width, int height, int count)
{
    SxTestCameraOptions options;
    options.width = static_cast<quint32>(width);
    options.height = static_cast<quint32>(height);
    CxTestCamera camera(options);
    CxOwnedPicture picture;
    QByteArray rgb;
    while (count-- > 0 && camera.next(picture.get()) == IxPictureSource::Result::Picture) {
        for (int y = 0; y < height; ++y) {
            uchar const* const row = picture.get().data + static_cast<size_t>(y) * picture.get().pitch;
            for (int x = 0; x < width; ++x) {
                for (int c = 2; c >= 0; --c)
                    rgb += static_cast<char>(row[3 * x + c]);
            }
        }
    }
    return rgb;
}

void tst_RemuxCommand::defaultReadingHasTheRightColours()
{
    QFETCH(QString, size);
    QFETCH(QString, name);
    QStringList const sides = size.split('x');
    QCOMPARE(
        run({"record", "camera:", "c.h264", "--size", size, "--frames", "1", "--quality", "10"}).exitCode, 0);
    QCOMPARE(run({"remux", "c.h264", name}).exitCode, 0);
    SxMinihostRun const exported =
        run({"export", "c.h264", "--frames", "all", "-o", "-", "--stream", "rgb24"});
    std::vector<std::uint8_t> const camera = fx_Vector(fx_CameraRgb(sides[0].toInt(), sides[1].toInt(), 1));
    double const correct = fx_Psnr(camera, fx_Vector(exported.out));
    double const others = fx_Psnr(camera, fx_Vector(fx_DefaultRgb(path(name))));
    QVERIFY2(correct > 25 && others > correct - 0.5,
             qPrintable(QStringLiteral("%1 dB, others %2 dB").arg(correct).arg(others)));
}

void tst_RemuxCommand::rawStreamOpensAsBefore()
{
    QCOMPARE(run({"remux", m_recording, "o.h264"}).exitCode, 0);
    QStringList const hashes{"--frames", "all", "--hash", "md5"};
    SxMinihostRun const before = run(QStringList{"export", m_recording} + hashes);
    SxMinihostRun const after = run(QStringList{"export", "o.h264"} + hashes);
    QCOMPARE(before.out.count('\n'), int{kFrames});
    QCOMPARE(after.out, before.out);
    QJsonObject const info = run({"info", "--json", "o.h264"}).json();
    QCOMPARE(info.value("width").toInt(), kWidth);
    QCOMPARE(info.value("height").toInt(), kHeight);
    QCOMPARE(info.value("keyFrames").toInt(), kFrames / 5);
    QCOMPARE(run({"verify", "o.h264"}).exitCode, 0);
    // And once more: what is described already keeps its description.
    QCOMPARE(run({"remux", "--fps", "25", m_recording, "slow.h264"}).exitCode, 0);
    QVERIFY(QFile::remove(path("slow.h264.json")));
    QCOMPARE(run({"remux", "slow.h264", "slow.mp4"}).exitCode, 0);
    QCOMPARE(fx_ProbedStream(path("slow.mp4")).value("r_frame_rate").toString(), QString("25/1"));
    QCOMPARE(run({"remux", "o.h264", "again.h264"}).exitCode, 0);
    QCOMPARE(fx_FileBytes(path("again.h264")), fx_FileBytes(path("o.h264")));
}

void tst_RemuxCommand::rateIsTheOneGiven_data()
{
    QTest::addColumn<QString>("fps");
    QTest::addColumn<QString>("rate");
    QTest::newRow("whole") << "25"
                           << "25/1";
    QTest::newRow("half") << "12.5"
                          << "25/2";
    QTest::newRow("fraction") << "30000/1001"
                              << "30000/1001";
    QTest::newRow("slow") << "0.5"
                          << "1/2";
}

void tst_RemuxCommand::rateIsTheOneGiven()
{
    QFETCH(QString, fps);
    QFETCH(QString, rate);
    for (char const* name : {"o.mp4", "o.h264"}) {
        QCOMPARE(run({"remux", "--fps", fps, m_recording, name}).exitCode, 0);
        QStringList const rates = fx_RatesOf(fx_ProbedStream(path(name)));
        QVERIFY2(rates.contains(rate), qPrintable(rates.join(' ')));
    }
    QJsonObject const stream = fx_ProbedStream(path("o.mp4"));
    QCOMPARE(stream.value("avg_frame_rate").toString(), rate);
    QStringList const parts = rate.split('/');
    double const seconds = kFrames * parts[1].toDouble() / parts[0].toDouble();
    QVERIFY(qAbs(stream.value("duration").toString().toDouble() - seconds) < 1e-3);
}

void tst_RemuxCommand::sidecarSaysRateAndRotation()
{
    write("in.h264", m_bytes);
    SxSidecar sidecar;
    sidecar.rate = {25, 1};
    sidecar.rotation = 90;
    QString error;
    QVERIFY2(fx_WriteSidecar(path("in.h264"), sidecar, error), qPrintable(error));
    for (char const* name : {"o.mp4", "o.mov"}) {
        SxMinihostRun const remuxed = run({"remux", "in.h264", name});
        QVERIFY2(remuxed.exitCode == 0 && !remuxed.err.contains("warning"), remuxed.err);
        QJsonObject const stream = fx_ProbedStream(path(name));
        QCOMPARE(stream.value("r_frame_rate").toString(), QString("25/1"));
        QJsonObject const matrix = stream.value("side_data_list").toArray()[0].toObject();
        QCOMPARE(matrix.value("rotation").toInt(), -90); // ffprobe counts against the clock
    }
    // The container holds the rotation, or the user is told.
    SxMinihostRun const matroska = run({"remux", "in.h264", "o.mkv"});
    QCOMPARE(matroska.exitCode, 0);
    bool const isKept = !fx_ProbedStream(path("o.mkv")).value("side_data_list").toArray().isEmpty();
    QVERIFY2(isKept !=
                 matroska.err.contains("are to be turned by 90 degrees clockwise, which it does not say."),
             matroska.err);
    QCOMPARE(run({"remux", "--fps", "50", "in.h264", "f.mp4"}).exitCode, 0);
    QCOMPARE(fx_ProbedStream(path("f.mp4")).value("r_frame_rate").toString(), QString("50/1"));
}

void tst_RemuxCommand::rawStreamIsNotedBeside()
{
    write("in.h264", m_bytes);
    QCOMPARE(run({"remux", "in.h264", "plain.h264"}).exitCode, 0);
    QVERIFY(!QFile::exists(path("plain.h264.json")));
    SxSidecar sidecar;
    sidecar.rotation = 270;
    sidecar.pictures = 33;
    sidecar.skippedCount = 3;
    sidecar.skipped = {{7, 9}};
    QString error;
    QVERIFY2(fx_WriteSidecar(path("in.h264"), sidecar, error), qPrintable(error));
    SxMinihostRun const remuxed = run({"remux", "--fps", "25", "in.h264", "whole.h264"});
    QVERIFY2(remuxed.exitCode == 0 && !remuxed.err.contains("warning"), remuxed.err);
    QCOMPARE(run({"remux", "--frames", "0-9", "in.h264", "part.h264"}).exitCode, 0);
    std::optional<SxSidecar> const whole = fx_FindSidecar(path("whole.h264")).sidecar;
    std::optional<SxSidecar> const part = fx_FindSidecar(path("part.h264")).sidecar;
    QVERIFY(whole && part);
    QCOMPARE(whole->rate.exact(), QString("25"));
    QCOMPARE(whole->rotation, 270);
    QCOMPARE(whole->skippedCount, 3);
    QVERIFY(!part->rate.isKnown());
    QCOMPARE(part->rotation, 270);
    QCOMPARE(part->pictures, 10);
    QCOMPARE(part->skippedCount, 0);
}

void tst_RemuxCommand::removedInputIsWholeInTheOutput()
{
    write("in.h264", m_bytes);
    SxMinihostRun const moved = run({"remux", "--remove-input", "in.h264", "o.mp4"});
    QVERIFY2(moved.exitCode == 0, moved.err);
    QVERIFY(!QFile::exists(path("in.h264")));
    QCOMPARE(fx_DecodedHashes(path("o.mp4")), fx_DecodedHashes(m_recording));

    write("in.h264", m_bytes);
    SxMinihostRun const described = run({"remux", "--remove-input", "in.h264", "o.h264"});
    QVERIFY2(described.exitCode == 0 && !described.err.contains("stays"), described.err);
    QVERIFY(!QFile::exists(path("in.h264")));
    QVERIFY(fx_CopyWithSidecar(m_recording, path("in.h264")));
    SxMinihostRun const turned = run({"remux", "--remove-input", "--overwrite", "in.h264", "o.h264"});
    QVERIFY2(turned.exitCode == 0 && !turned.err.contains("stays"), turned.err);
    QVERIFY(!QFile::exists(path("in.h264")));
    QCOMPARE(fx_FindSidecar(path("o.h264")).sidecar->rotation, 90);

    // What is cut off is no picture: it is not kept for that.
    write("cut.h264", m_bytes.left(offset(13) + 300));
    QCOMPARE(run({"remux", "--remove-input", "cut.h264", "cut.mp4"}).exitCode, 4);
    QVERIFY(!QFile::exists(path("cut.h264")));
    QCOMPARE(fx_DecodedHashes(path("cut.mp4")).size(), 13);
}

void tst_RemuxCommand::whatTheOutputCannotSayIsKept()
{
    QVERIFY(fx_CopyWithSidecar(m_recording, path("in.h264")));
    SxMinihostRun const toMp4 = run({"remux", "in.h264", "o.mp4"});
    QVERIFY2(toMp4.exitCode == 0, toMp4.err);
    QVERIFY2(toMp4.err.contains("at 25 pictures a second\n"), toMp4.err);
    QVERIFY(fx_FileBytes(path("o.mp4")).contains("4 of 34 pictures were skipped by the encoder: 3-5, 7"));

    // FFmpeg writes no rotation into Matroska: only the sidecar knows it, and belongs to the recording.
    SxMinihostRun const toMkv = run({"remux", "--remove-input", "in.h264", "o.mkv"});
    if (toMkv.err.contains("which it does not say")) {
        QVERIFY2(toMkv.err.contains("in.h264: it stays, since o.mkv does not say"), toMkv.err);
        QVERIFY(QFile::exists(path("in.h264")) && QFile::exists(path("in.h264.json")));
    } else {
        QVERIFY(!QFile::exists(path("in.h264")));
    }
}

void tst_RemuxCommand::rateThatNobodyToldIsAssumed()
{
    write("in.h264", m_bytes);
    SxMinihostRun const remuxed = run({"remux", "in.h264", "o.mp4", "--json"});
    QVERIFY2(remuxed.err.contains("at 30 pictures a second (assumed)\n"), remuxed.err);
    QVERIFY(remuxed.json().value("fpsIsAssumed").toBool());
    SxMinihostRun const told = run({"remux", "in.h264", "p.mp4", "--fps", "30"});
    QVERIFY2(told.err.contains("at 30 pictures a second\n"), told.err);
}

void tst_RemuxCommand::damagedInputIsNotRemoved()
{
    write("late.h264", codedFrames(2, 10));
    SxMinihostRun const remuxed = run({"remux", "--remove-input", "late.h264", "late.mp4"});
    QCOMPARE(remuxed.exitCode, 4);
    QVERIFY2(remuxed.err.contains("late.h264: it stays, since it is damaged."), remuxed.err);
    QVERIFY(QFile::exists(path("late.h264")) && QFile::exists(path("late.mp4")));
}

void tst_RemuxCommand::inputThatIsBeingRecordedIsNotRemoved()
{
    write("in.h264", m_bytes);
    QFile recorder(path("in.h264"));
    QVERIFY(recorder.open(QIODevice::ReadWrite));
    QCOMPARE(flock(recorder.handle(), LOCK_EX), 0);
    SxMinihostRun const refused = run({"remux", "--remove-input", "in.h264", "o.mp4"});
    QCOMPARE(refused.exitCode, 5);
    QVERIFY2(refused.err.contains("in.h264: a recording is being written to it"), refused.err);
    QCOMPARE(fx_FileBytes(path("in.h264")), m_bytes);
    QCOMPARE(run({"remux", "in.h264", "o.mp4"}).exitCode, 0); // what is there so far
}

void tst_RemuxCommand::partBeginsAtAKeyFrame_data()
{
    QTest::addColumn<QString>("frames");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<QString>("told");
    for (char const* name : {"o.mp4", "o.h264"}) {
        QTest::addRow("within a group, %s", name)
            << "7-12" << name << 5 << 12 << "begins at frame 5, the key frame before 7";
        QTest::addRow("at a key frame, %s", name)
            << "10-14" << name << 10 << 14 << "frames 10-14 of the recording";
    }
    QTest::newRow("to the end") << "27-"
                                << "o.mp4" << 25 << 29 << "begins at frame 25, the key frame before 27";
    QTest::newRow("one") << "5"
                         << "o.mp4" << 5 << 5 << "1 picture of 320 x 240, frame 5 of the recording";
    QTest::newRow("all") << "all"
                         << "o.mp4" << 0 << 29 << "30 pictures";
}

void tst_RemuxCommand::partBeginsAtAKeyFrame()
{
    QFETCH(QString, frames);
    QFETCH(QString, name);
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(QString, told);
    SxMinihostRun const remuxed = run({"remux", "--frames", frames, m_recording, name});
    QVERIFY2(remuxed.exitCode == 0, remuxed.err);
    QVERIFY2(remuxed.err.contains(told.toUtf8()), remuxed.err);
    QCOMPARE(fx_DecodedHashes(path(name)), fx_DecodedHashes(m_recording).mid(first, last - first + 1));
}

void tst_RemuxCommand::exactPartBeginsWhereAsked_data()
{
    QTest::addColumn<QString>("frames");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("anew");
    QTest::addColumn<QByteArray>("told");
    for (char const* name : {"o.mp4", "o.mkv", "o.h264"})
        QTest::addRow("within a group, %s", name)
            << "7-22" << name << 3 << QByteArray("frames 7-22 of the recording, the first 3 coded anew");
    QTest::newRow("in the last group")
        << "28-"
        << "o.mp4" << 2 << QByteArray("frames 28-29 of the recording, coded anew");
    QTest::newRow("within one group")
        << "6-7"
        << "o.mp4" << 2 << QByteArray("frames 6-7 of the recording, coded anew");
    QTest::newRow("one frame") << "6"
                               << "o.h264" << 1 << QByteArray("frame 6 of the recording, coded anew");
    QTest::newRow("at a key frame") << "5-9"
                                    << "o.mp4" << 0 << QByteArray("coded as they were");
}

/// Mean distance of two recordings' frames, over all of them, in dB.
static double fx_Likeness(QByteArray const& a, QByteArray const& b)
{
    return fx_Psnr(fx_Vector(a), fx_Vector(b));
}

void tst_RemuxCommand::exactPartBeginsWhereAsked()
{
    QFETCH(QString, frames);
    QFETCH(QString, name);
    QFETCH(int, anew);
    QFETCH(QByteArray, told);
    SxMinihostRun const cut = run({"remux", "--exact", "--frames", frames, m_recording, name});
    QVERIFY2(cut.exitCode == 0, cut.err);
    QVERIFY2(cut.err.contains(told), cut.err);

    int const first = frames.section('-', 0, 0).toInt();
    QString const end = frames.section('-', -1);
    int const last = end.isEmpty() ? kFrames - 1 : end.toInt();
    QList<QByteArray> const whole = fx_DecodedHashes(m_recording);
    QList<QByteArray> const part = fx_DecodedHashes(path(name));
    QCOMPARE(part.size(), last - first + 1);
    QCOMPARE(part.mid(anew), whole.mid(first + anew, last - first + 1 - anew));
    // What was coded anew shows the same pictures.
    QByteArray const rgb = fx_DefaultRgb(path(name));
    QByteArray const original =
        run({"export", m_recording, "--frames", frames, "-o", "-", "--stream", "rgb24"}).out;
    QCOMPARE(rgb.size(), original.size());
    double const likeness = fx_Likeness(rgb, original);
    QVERIFY2(likeness > 35, qPrintable(QString::number(likeness)));
    if (!name.endsWith("264"))
        return;
    // Its key frames are counted as if none had been cut off.
    SxMinihostRun const verified = run({"verify", name});
    QVERIFY2(verified.exitCode == 0 && !verified.err.contains("vanished"), verified.err);
}

void tst_RemuxCommand::exactPartOfAnotherLevelKeepsItsSetsInTheStream()
{
    // A recording that says level 1, at whose bit rate the encoder would leave pictures out.
    QCOMPARE(run({"record", "camera:", "in.h264", "--size", "176x144", "--frames", "36", "--keyframe-rate",
                  "30", "--quality", "10"})
                 .exitCode,
             0);
    write("in.h264", fx_FileBytes(path("in.h264"))
                         .replace(QByteArray::fromHex("6742c034"), QByteArray::fromHex("6742c00a")));
    QList<QByteArray> const whole = fx_DecodedHashes(path("in.h264"));
    QCOMPARE(whole.size(), 36);
    for (char const* name : {"o.mp4", "o.mov", "o.mkv", "o.h264"}) {
        SxMinihostRun const cut = run({"remux", "--exact", "--frames", "3-", "in.h264", name});
        QVERIFY2(cut.exitCode == 0 && cut.err.contains("the first 27 coded anew"), cut.err);
        QList<QByteArray> const part = fx_DecodedHashes(path(name));
        QCOMPARE(part.size(), 33);
        QCOMPARE(part.mid(27), whole.mid(30));
    }
    for (char const* name : {"o.mp4", "o.mov"})
        QCOMPARE(fx_ProbedStream(path(name)).value("codec_tag_string").toString(), QString("avc3"));
}

void tst_RemuxCommand::exactPartNeedsPicturesThatDecode()
{
    QByteArray bytes = m_bytes;
    std::fill_n(bytes.begin() + offset(5) + 200, 200, '\x55'); // in the key frame
    write("hurt.h264", bytes);
    SxMinihostRun const cut = run({"remux", "--exact", "--frames", "6-12", "hurt.h264", "o.mp4"});
    QCOMPARE(cut.exitCode, 4);
    QVERIFY2(cut.err.contains("hurt.h264 cannot be decoded"), cut.err);
    QVERIFY(!QFile::exists(path("o.mp4")));
    write("late.h264", codedFrames(2, 10));
    SxMinihostRun const late = run({"remux", "--exact", "--frames", "1-6", "late.h264", "o.mp4"});
    QCOMPARE(late.exitCode, 4);
    QVERIFY2(late.err.contains("late.h264: frame 1 belongs to no key frame."), late.err);
}

/// Nothing says then up to which number its own key frames are to count.
void tst_RemuxCommand::exactPartBeforeADamagedKeyFrameIsWritten()
{
    QByteArray bytes = m_bytes;
    auto const slice = bytes.indexOf(QByteArray::fromHex("0000000165"), offset(10));
    bytes[slice + 4] = '\x66'; // a message
    write("hurt.h264", bytes);
    SxMinihostRun const cut = run({"remux", "--exact", "--frames", "7-22", "hurt.h264", "o.h264"});
    QCOMPARE(cut.exitCode, 4);
    QVERIFY2(cut.err.contains("hurt.h264: damaged at frames 10"), cut.err);
    QVERIFY2(cut.err.contains("frames 7-22 of the recording, the first 3 coded anew"), cut.err);
    QVERIFY(QFile::exists(path("o.h264")));
}

void tst_RemuxCommand::onePictureIsEnough()
{
    write("one.h264", codedFrames(0, 1));
    SxMinihostRun const remuxed = run({"remux", "one.h264", "one.mp4"});
    QVERIFY2(remuxed.exitCode == 0, remuxed.err);
    QCOMPARE(fx_DecodedHashes(path("one.mp4")), fx_DecodedHashes(m_recording).mid(0, 1));
}

void tst_RemuxCommand::jsonTellsWhatWasWritten()
{
    SxMinihostRun const remuxed =
        run({"remux", "--json", "-q", "--frames", "7-12", "--fps", "12.5", m_recording, "o.mp4"});
    QCOMPARE(remuxed.exitCode, 0);
    QCOMPARE(remuxed.err, QByteArray());
    QJsonObject const json = remuxed.json();
    QCOMPARE(json.value("output").toString(), QString("o.mp4"));
    QCOMPARE(json.value("pictures").toInt(), 8);
    QCOMPARE(json.value("keyFrames").toInt(), 2);
    QCOMPARE(json.value("firstFrame").toInt(), 5);
    QCOMPARE(json.value("lastFrame").toInt(), 12);
    QCOMPARE(json.value("rate").toString(), QString("25/2"));
    QCOMPARE(json.value("bytes").toInt(), int(QFileInfo(path("o.mp4")).size()));
    QVERIFY(json.contains("error") && json.value("error").isNull());
}

void tst_RemuxCommand::missingFrontIsLeftOut()
{
    write("late.h264", codedFrames(2, 10));
    SxMinihostRun const remuxed = run({"remux", "late.h264", "late.mp4"});
    QCOMPARE(remuxed.exitCode, 4);
    QVERIFY2(remuxed.err.contains(
                 "late.h264: 3 frames before the first key frame cannot be decoded and were left out."),
             remuxed.err);
    QCOMPARE(fx_DecodedHashes(path("late.mp4")), fx_DecodedHashes(m_recording).mid(5, 7));
}

void tst_RemuxCommand::cutOffEndIsLeftOut()
{
    write("cut.h264", codedFrames(0, 12) + codedFrames(12, 1).left(300));
    SxMinihostRun const remuxed = run({"remux", "cut.h264", "cut.mkv"});
    QCOMPARE(remuxed.exitCode, 4);
    QVERIFY2(remuxed.err.contains("cut.h264: its last picture is cut off and was left out."), remuxed.err);
    QCOMPARE(fx_DecodedHashes(path("cut.mkv")), fx_DecodedHashes(m_recording).mid(0, 12));

    write("start.h264", codedFrames(0, 1).left(300));
    SxMinihostRun const nothing = run({"remux", "start.h264", "start.mp4"});
    QCOMPARE(nothing.exitCode, 4);
    QCOMPARE(nothing.err, QByteArray("error: start.h264: its only picture is cut off.\n"));
    QVERIFY(!QFile::exists(path("start.mp4")));
}

void tst_RemuxCommand::partBeforeTheFirstKeyFrameIsRefused()
{
    write("late.h264", codedFrames(2, 10));
    SxMinihostRun const refused = run({"remux", "--frames", "0-2", "late.h264", "o.mp4"});
    QCOMPARE(refused.exitCode, 4);
    QCOMPARE(refused.err, QByteArray("error: late.h264: there is no key frame to begin with; 'minihost "
                                     "verify' says more.\n"));
    QVERIFY(!QFile::exists(path("o.mp4")));
}

void tst_RemuxCommand::recordingWithoutAWholePairOfSetsIsRefused_data()
{
    QTest::addColumn<QString>("name");
    for (char const* name : {"o.mp4", "o.mkv", "o.h264"})
        QTest::newRow(name) << name;
}

/// Without a picture set no reader of the output could begin.
void tst_RemuxCommand::recordingWithoutAWholePairOfSetsIsRefused()
{
    QFETCH(QString, name);
    write("hurt.h264",
          QByteArray(m_bytes).replace(QByteArray::fromHex("0000000168"), QByteArray::fromHex("0000000166")));
    SxMinihostRun const refused = run({"remux", "hurt.h264", name});
    QCOMPARE(refused.exitCode, 4);
    QCOMPARE(refused.err,
             QByteArray("error: hurt.h264: its parameter sets are damaged; 'minihost verify' says more.\n"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{"hurt.h264"});
}

void tst_RemuxCommand::setsWithoutAPictureKeepItsTime()
{
    QByteArray bytes = m_bytes;
    auto const slice = bytes.indexOf(QByteArray::fromHex("0000000165"), offset(10));
    write("hurt.h264", bytes.insert(offset(10), bytes.mid(offset(10), int(slice) - offset(10))));
    SxMinihostRun const remuxed = run({"remux", "hurt.h264", "hurt.mp4"});
    QCOMPARE(remuxed.exitCode, 4);
    QVERIFY2(remuxed.err.contains("hurt.h264: damaged at frames 10,"), remuxed.err);
    QCOMPARE(fx_DecodedHashes(path("hurt.mp4")), fx_DecodedHashes(m_recording));
    QStringList const packets = fx_ProbedPackets(path("hurt.mp4"), 30);
    QCOMPARE(packets.value(9), QString("9 _"));
    QCOMPARE(packets.value(10), QString("11 K"));
}

void tst_RemuxCommand::damagedFramesAreNamed_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("frames");
    QByteArray bytes = m_bytes;
    bytes[offset(7) + 4] = '\x41'; // its slice now belongs to frame 6
    QTest::newRow("header of a frame") << bytes << QByteArray("6");
    bytes = m_bytes;
    bytes[offset(7) + 5] = '\x01';
    QTest::newRow("header of a slice") << bytes << QByteArray("7"); // and perhaps 8, by what it says now
    bytes = m_bytes;
    QTest::newRow("frame that is gone") << bytes.remove(offset(7), offset(8) - offset(7)) << QByteArray("7");
    bytes = m_bytes;
    std::fill_n(bytes.begin() + offset(10) + 5, 8, '\0'); // profile, level and the rest
    QTest::newRow("parameter set") << bytes << QByteArray("10");
}

void tst_RemuxCommand::damagedFramesAreNamed()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, frames);
    write("hurt.h264", bytes);
    SxMinihostRun const remuxed = run({"remux", "hurt.h264", "hurt.mp4"});
    QCOMPARE(remuxed.exitCode, 4);
    QVERIFY2(remuxed.err.contains("hurt.h264: damaged at frames " + frames), remuxed.err);
    QVERIFY2(remuxed.err.contains(", handed on as they are; 'minihost verify' says more."), remuxed.err);
    QVERIFY(QFile::exists(path("hurt.mp4")));
}

void tst_RemuxCommand::whatIsNoRecordingIsRefused_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("said");
    QTest::newRow("nothing there") << "none.h264" << QByteArray("there is no such file");
    QTest::newRow("empty") << "empty.h264" << QByteArray("the file is empty");
    QTest::newRow("text") << "text.h264" << QByteArray("does not begin with a start code");
    QTest::newRow("no key frame") << "tail.h264" << QByteArray("holds no sequence parameter set");
    QTest::newRow("another encoder's") << QStringLiteral(TEST_DATA "/foreign/x264-b-pictures.264")
                                       << QByteArray("' makes a recording of it.");
}

void tst_RemuxCommand::whatIsNoRecordingIsRefused()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, said);
    write("empty.h264", QByteArray());
    write("text.h264", "no stream at all");
    write("tail.h264", codedFrames(1, 3));
    QStringList const before = QDir(m_folder->path()).entryList(QDir::Files);
    SxMinihostRun const refused = run({"remux", file, "o.mp4"});
    QCOMPARE(refused.exitCode, 4);
    QVERIFY2(refused.err.startsWith("error: " + file.toUtf8()) && refused.err.contains(said), refused.err);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), before);
}

void tst_RemuxCommand::outputThatIsInTheWayIsNamed()
{
    write("old.mp4", "precious");
    QVERIFY(QDir(m_folder->path()).mkdir("folder.mp4"));
    QCOMPARE(mkfifo(path("pipe.mkv").toLocal8Bit().constData(), 0600), 0);
    struct SxCase
    {
        char const* output;
        char const* said;
    };
    for (SxCase const& one :
         {SxCase{"old.mp4", "the file exists; --overwrite replaces it."},
          SxCase{"folder.mp4", "this is a folder."}, SxCase{"pipe.mkv", "this is no regular file"},
          SxCase{"none/o.mp4", "there is no folder"}}) {
        SxMinihostRun const refused = run({"remux", m_recording, one.output});
        QCOMPARE(refused.exitCode, 5);
        QVERIFY2(refused.err.contains(one.said), refused.err);
    }
    QCOMPARE(fx_FileBytes(path("old.mp4")), QByteArray("precious"));
    QCOMPARE(run({"remux", "--overwrite", m_recording, "old.mp4"}).exitCode, 0);
    QCOMPARE(fx_DecodedHashes(path("old.mp4")).size(), int{kFrames});
}

void tst_RemuxCommand::recordingIsNeverReplaced()
{
    write("in.h264", m_bytes);
    QVERIFY(QFile::link(path("in.h264"), path("link.h264")));
    for (char const* output : {"in.h264", "./in.h264", "link.h264"}) {
        SxMinihostRun const refused = run({"remux", "--overwrite", "in.h264", output});
        QCOMPARE(refused.exitCode, 5);
        QVERIFY2(refused.err.contains("would replace the recording"), refused.err);
    }
    QCOMPARE(fx_FileBytes(path("in.h264")), m_bytes);
}

void tst_RemuxCommand::fullDiskLeavesTheOldFileAsItWas_data()
{
    QTest::addColumn<QString>("name");
    for (char const* name : {"o.mp4", "o.mov", "o.mkv", "o.h264"})
        QTest::newRow(name) << name;
}

void tst_RemuxCommand::fullDiskLeavesTheOldFileAsItWas()
{
    QFETCH(QString, name);
    write(name, "precious");
    // A limit of a few kilobytes stands for a disk that fills up on the way.
    SxMinihostRun const failed =
        fx_RunMinihostInShell("trap '' XFSZ; ulimit -f 40; exec \"$@\"",
                              {"remux", "--overwrite", m_recording, name}, m_folder->path());
    QCOMPARE(failed.exitCode, 5);
    QCOMPARE(failed.err, "error: " + name.toUtf8() + ": File too large.\n");
    QCOMPARE(fx_FileBytes(path(name)), QByteArray("precious"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList{name});
}

void tst_RemuxCommand::interruptionLeavesTheOldFileAsItWas_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("INT") << SIGINT;
    QTest::newRow("TERM") << SIGTERM;
}

void tst_RemuxCommand::interruptionLeavesTheOldFileAsItWas()
{
    QFETCH(int, signal);
    write("o.mp4", "precious");
    write("in.h264", "frames 10 raise " + QByteArray::number(signal) + " but not the bytes of a recording");
    SxMinihostRun const stopped =
        run({"remux", "--plugin-path", DYING_PLUGIN, "--overwrite", "in.h264", "o.mp4"});
    QCOMPARE(stopped.exitCode, 128 + signal);
    QCOMPARE(stopped.err,
             QByteArray("error: o.mp4: interrupted after 0 of 10 pictures; nothing was written.\n"));
    QCOMPARE(fx_FileBytes(path("o.mp4")), QByteArray("precious"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), (QStringList{"in.h264", "o.mp4"}));
}

void tst_RemuxCommand::wrongUsageIsExplained_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("nothing") << QStringList{} << "No recording is given.";
    QTest::newRow("no output") << QStringList{"in.h264"}
                               << "'in.h264' alone is not enough: a recording and an output are needed.";
    QTest::newRow("two outputs") << QStringList{"in.h264", "a.mp4", "b.mp4"} << "'b.mp4' is one too many.";
    QTest::newRow("unknown container")
        << QStringList{"in.h264", "o.avi"} << "its name must end in .mp4, .mov, .mkv or .h264.";
    QTest::newRow("rate that is none")
        << QStringList{"in.h264", "o.mp4", "--fps", "fast"}
        << "--fps takes pictures a second up to 100000, as 25, 12.5 (at most three decimals) or 30000/1001, "
           "not 'fast'.";
    QTest::newRow("rate above Matroska's clock")
        << QStringList{"in.h264", "o.mkv", "--fps", "2000"}
        << "Matroska counts time in milliseconds: --fps 2000 is too many for it.";
    QTest::newRow("no rate at all") << QStringList{"in.h264", "o.mp4", "--fps", "0"} << "--fps takes";
    QTest::newRow("name of a rate") << QStringList{"in.h264", "o.mp4", "--fps", "ntsc"} << "--fps takes";
    QTest::newRow("too fast") << QStringList{"in.h264", "o.mp4", "--fps", "100001"} << "--fps takes";
    QTest::newRow("frames that are none") << QStringList{"in.h264", "o.mp4", "--frames", "some"}
                                          << "--frames takes one range here, as 100-250 or 100-, not 'some'.";
    QTest::newRow("output without a name") << QStringList{"in.h264", ""} << "A file has no name.";
    QTest::newRow("part of what is removed")
        << QStringList{"in.h264", "o.mp4", "--frames", "0-9", "--remove-input"}
        << "--remove-input is for whole recordings, so --frames has no place.";
    QTest::newRow("exact, but what") << QStringList{"in.h264", "o.mp4", "--exact"}
                                     << "--exact says where --frames begin, and there are none.";
    QTest::newRow("several ranges") << QStringList{"in.h264", "o.mp4", "--frames", "0-3,7"}
                                    << "--frames takes one range here, as 100-250 or 100-.";
    QTest::newRow("backwards") << QStringList{"in.h264", "o.mp4", "--frames", "7-5"}
                               << "--frames takes one range here";
}

void tst_RemuxCommand::wrongUsageIsExplained()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, sentence);
    checkRefused(QStringList{"remux"} + arguments, sentence);
}

QTEST_GUILESS_MAIN(tst_RemuxCommand)
#include "tst_RemuxCommand.moc"

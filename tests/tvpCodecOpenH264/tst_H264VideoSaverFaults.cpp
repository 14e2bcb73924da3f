#include <QtTest>

#include <memory>

#include "CodecOptions.h"
#include "CxImageData.h"
#include "H264VideoSaver.h"
#include "support/FileBytes.h"
#include "support/LoadedPictures.h"
#include "support/MessageRecorder.h"
#include "support/OpenH264EncoderDouble.h"
#include "support/SavedSequence.h"

static bool s_isResizeFailing = false;
static quint32 s_resizedPitch = 0; ///< of the picture that the last scaling was to fill

// NOLINTBEGIN(bugprone-reserved-identifier): the names are those that the linker's --wrap makes.
extern "C" bool __real__ZN11CxPicBufAPI6ResizeERK8SxPicBufRS0_(SxPicBuf const& source, SxPicBuf& target);
extern "C" bool __wrap__ZN11CxPicBufAPI6ResizeERK8SxPicBufRS0_(SxPicBuf const& source, SxPicBuf& target)
{
    s_resizedPitch = target.pitch;
    return !s_isResizeFailing && __real__ZN11CxPicBufAPI6ResizeERK8SxPicBufRS0_(source, target);
}
// NOLINTEND(bugprone-reserved-identifier)

static constexpr int kPictures = 60;
/// The saver where the host's scaling or OpenH264 fails: the message that says so, and a file that plays.
class tst_H264VideoSaverFaults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void pictureThatCannotBeScaledIsLeftOut();
    void scaledPictureHasRoomForItsSamples_data();
    void scaledPictureHasRoomForItsSamples();
    void libraryThatGivesNoEncoderIsAskedAgain();
    void libraryThatRefusesTheParametersIsAskedAgain();
    void pictureThatTheLibraryFailsAtIsLeftOut_data();
    void pictureThatTheLibraryFailsAtIsLeftOut();

private:
    QString path(char const* name = "out.h264") const { return m_folder->filePath(QLatin1String(name)); }

    CxSavedSequence m_sequence{kPictures};
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<CxMessageRecorder> m_messages;
};

void tst_H264VideoSaverFaults::initTestCase()
{
    fx_OpenH264Double() = SxOpenH264Double();
    fx_OpenH264Double().forwards = true;
    QTemporaryDir folder;
    QVERIFY(m_sequence.makeReference(folder.filePath(QStringLiteral("whole.h264"))));
}

void tst_H264VideoSaverFaults::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_messages = std::make_unique<CxMessageRecorder>();
    fx_OpenH264Double() = SxOpenH264Double();
    fx_OpenH264Double().forwards = true;
    s_isResizeFailing = false;
}

void tst_H264VideoSaverFaults::cleanup()
{
    QStringList const unexpected = m_messages->takeRaw();
    m_messages.reset();
    QCOMPARE(unexpected, QStringList());
    QCOMPARE(fx_OpenH264Double().created, fx_OpenH264Double().destroyed);
}

void tst_H264VideoSaverFaults::pictureThatCannotBeScaledIsLeftOut()
{
    QMap<QString, QVariant> const options = fx_CodecOptions(0x34363248);
    fx_SetCodecOptions(0x34363248, {{"h264_level_idc", 10}, {"h264_keyframerate", 5}}); // at most 176 wide
    int coded = 0; // the level's bit rate is low: some pictures are skipped
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        auto const* const file = saver.findChild<QFile*>();
        for (int number = 0; number < 12; ++number) {
            s_isResizeFailing = number == 0 || number == 6;
            qint64 const before = file->pos();
            QCOMPARE(m_sequence.save(saver, number), !s_isResizeFailing);
            QVERIFY(!s_isResizeFailing || file->pos() == before);
            coded += file->pos() > before ? 1 : 0;
        }
    }
    fx_SetCodecOptions(0x34363248, options);
    QList<QByteArray> const played = fx_LoadedPictures(path());
    QVERIFY(coded > 1);
    QCOMPARE(played.size(), coded);
    QVERIFY(!played.contains(QByteArray()));
    QVERIFY(played.first().size() < 320 * 240 * 4);
}

void tst_H264VideoSaverFaults::scaledPictureHasRoomForItsSamples_data()
{
    QTest::addColumn<quint32>("sampleType");
    QTest::addColumn<quint32>("pitch");
    for (quint32 const sampleType : {1u, 2u, 12u})
        QTest::addRow("%u", sampleType) << sampleType << 768u;
    for (quint32 const sampleType : {3u, 4u, 11u})
        QTest::addRow("%u", sampleType) << sampleType << 1536u;
    for (quint32 const sampleType : {5u, 6u, 9u})
        QTest::addRow("%u", sampleType) << sampleType << 2816u;
    for (quint32 const sampleType : {7u, 8u, 10u})
        QTest::addRow("%u", sampleType) << sampleType << 5632u;
}

/// 176 pixels of four components, rounded up to 256 bytes, also in formats that only the host's scaling
/// knows.
void tst_H264VideoSaverFaults::scaledPictureHasRoomForItsSamples()
{
    QFETCH(quint32, sampleType);
    QMap<QString, QVariant> const options = fx_CodecOptions(0x34363248);
    fx_SetCodecOptions(0x34363248, {{"h264_level_idc", 10}}); // at most 176 wide
    CxTestPicture picture(320, 240);
    picture.buf.sampleType = sampleType;
    CxImageData image;
    image.setPicBuf(picture.buf);
    s_isResizeFailing = true;
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    QVERIFY(!saver.save(&image, 0));
    QTEST(s_resizedPitch, "pitch");
    fx_SetCodecOptions(0x34363248, options);
}

void tst_H264VideoSaverFaults::libraryThatGivesNoEncoderIsAskedAgain()
{
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        fx_OpenH264Double().givesHandle = false;
        fx_OpenH264Double().createError = 1;
        for (int i = 0; i < 2; ++i) {
            QVERIFY(!m_sequence.save(saver, 0));
            QCOMPARE(m_messages->takeTexts(),
                     (QStringList{"CxOpenH264Encoder::createEncoder(): Cannot create the OpenH264 encoder.",
                                  "CxH264VideoSaver::save(): Error when encoding the frame 0."}));
        }
        QCOMPARE(QFileInfo(path()).size(), 0);
        fx_OpenH264Double() = SxOpenH264Double();
        fx_OpenH264Double().forwards = true;
        for (int number = 0; number < kPictures; ++number)
            QVERIFY(m_sequence.save(saver, number));
    }
    QCOMPARE(m_sequence.wholeFrames(path()), kPictures);
}

void tst_H264VideoSaverFaults::libraryThatRefusesTheParametersIsAskedAgain()
{
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        fx_OpenH264Double().forwards = false;
        fx_OpenH264Double().initError = cmInitParaError;
        QVERIFY(!m_sequence.save(saver, 0));
        QStringList const texts = m_messages->takeTexts();
        QCOMPARE(texts.size(), 3);
        QCOMPARE(texts.at(0), QStringLiteral("CxOpenH264Encoder::createEncoder(): InitializeExt failed with "
                                             "error 1"));
        QVERIFY2(texts.at(1).contains(QStringLiteral("Size=320x240")), qPrintable(texts.at(1)));
        QCOMPARE(texts.at(2), QStringLiteral("CxH264VideoSaver::save(): Error when encoding the frame 0."));
        QCOMPARE(fx_OpenH264Double().created, fx_OpenH264Double().destroyed);

        fx_OpenH264Double() = SxOpenH264Double();
        fx_OpenH264Double().forwards = true;
        for (int number = 0; number < kPictures; ++number)
            QVERIFY(m_sequence.save(saver, number));
    }
    QCOMPARE(m_sequence.wholeFrames(path()), kPictures);
}

void tst_H264VideoSaverFaults::pictureThatTheLibraryFailsAtIsLeftOut_data()
{
    QTest::addColumn<int>("failing");
    QTest::newRow("the first") << 0;
    QTest::newRow("in the middle") << 17;
    QTest::newRow("a key frame") << 20;
    QTest::newRow("the last") << kPictures - 1;
}

void tst_H264VideoSaverFaults::pictureThatTheLibraryFailsAtIsLeftOut()
{
    QFETCH(int, failing);
    SxEncodeAnswer usual, failure;
    failure.error = cmMallocMemeError;
    fx_OpenH264Double().answers.assign(static_cast<size_t>(failing), usual);
    fx_OpenH264Double().answers.push_back(failure);
    QByteArray before;
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        for (int number = 0; number < kPictures; ++number) {
            QCOMPARE(m_sequence.save(saver, number), number != failing);
            if (number < failing)
                before += m_sequence.frame(number);
            if (number == failing)
                QCOMPARE(m_messages->takeTexts(),
                         (QStringList{QStringLiteral("CxOpenH264Encoder::encode(): EncodeFrame failed with "
                                                     "error %1")
                                          .arg(failure.error),
                                      QStringLiteral("CxH264VideoSaver::save(): Error when encoding the "
                                                     "frame %1.")
                                          .arg(failing)}));
        }
    }
    // The encoder did not see the picture, so the others are coded without it, and all of them play.
    QVERIFY(fx_FileBytes(path()).startsWith(before));
    QList<QByteArray> const played = fx_LoadedPictures(path());
    QCOMPARE(played.size(), kPictures - 1);
    QVERIFY(!played.contains(QByteArray()));
    QVERIFY(played.mid(0, failing) == m_sequence.pictures().mid(0, failing));
}

QTEST_GUILESS_MAIN(tst_H264VideoSaverFaults)
#include "tst_H264VideoSaverFaults.moc"

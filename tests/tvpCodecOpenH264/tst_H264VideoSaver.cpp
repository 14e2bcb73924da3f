#include <QtTest>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>
#include <sys/resource.h>
#include <vector>

#include "ClassRegistry.h"
#include "CodecOptions.h"
#include "CxImageData.h"
#include "CxRTTI.h"
#include "H264VideoSaver.h"
#include "support/AllocationFailure.h"
#include "support/ConversionOracle.h"
#include "support/FFmpegDecoder.h"
#include "support/MessageRecorder.h"
#include "support/TestPicture.h"

using Options = QMap<QString, QVariant>;

namespace {

/// What the saver gave to one encode().
struct SxEncodeCall
{
    SxPicBuf picture;
    QByteArray firstRow; ///< bytes of the picture's first row, if it has pixels
    void* out;
    unsigned long capacity;
    bool keyFrame;
    bool isOutZero;
};

/// What the next encoders do, and what they were asked. By default pictures keep their format, need
/// 1000 bytes and are coded as "frame0", "frame1" and so on.
struct SxEncoderScript
{
    int created = 0;
    int alive = 0;
    std::vector<SxEncodeCall> calls;
    std::vector<SxPicBufInfo> sizeQueries;
    std::function<void(SxPicBufInfo&)> changeFormat;
    unsigned long maxEncodedSize = 1000;
    std::function<bool(QByteArray&)> encode; ///< replaces the coded bytes; false fails
};

SxEncoderScript s_script;

/// The saver expects the plug-in's own encoder, so the scripted one is derived from it.
class CxScriptedEncoder : public CxOpenH264Encoder
{
    Q_OBJECT

public:
    Q_INVOKABLE CxScriptedEncoder()
    {
        ++s_script.created;
        ++s_script.alive;
    }
    ~CxScriptedEncoder() override { --s_script.alive; }

    bool encode(SxPicBuf const& picture, void* out, unsigned long& size, bool* keyFrame) override;
    unsigned long maxEncodedSize(SxPicBufInfo const& format) override
    {
        s_script.sizeQueries.push_back(format);
        return s_script.maxEncodedSize;
    }
    void queryOuputFormat(SxPicBufInfo const& input, SxPicBufInfo& output) override
    {
        output = input;
        if (s_script.changeFormat)
            s_script.changeFormat(output);
    }
};

bool CxScriptedEncoder::encode(SxPicBuf const& picture, void* out, unsigned long& size, bool* keyFrame)
{
    auto* const bytes = static_cast<char*>(out);
    SxEncodeCall call{picture, {}, out, size, *keyFrame, true};
    if (picture.data)
        call.firstRow =
            QByteArray(reinterpret_cast<char const*>(picture.data), static_cast<int>(picture.pitch));
    for (unsigned long i = 0; i < size; ++i)
        call.isOutZero = call.isOutZero && bytes[i] == 0;
    s_script.calls.push_back(call);

    QByteArray coded = "frame" + QByteArray::number(static_cast<int>(s_script.calls.size()) - 1);
    if (s_script.encode && !s_script.encode(coded))
        return false;
    std::memset(out, 0xEE, size); // whatever was there before shows up in the next call
    std::memcpy(out, coded.constData(), static_cast<size_t>(coded.size()));
    size = static_cast<unsigned long>(coded.size());
    *keyFrame = !*keyFrame; // whatever comes back must not matter
    return true;
}

/// Chain data around a picture that stays the test's.
class CxPictureData : public CxImageData
{
    Q_OBJECT

public:
    explicit CxPictureData(SxPicBuf const& picture) { setPicBuf(picture); }
};

} // namespace

/// The saver, with a scripted encoder, and whole recordings with the plug-in's own.
class tst_H264VideoSaver : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void isASaver();
    void isCreatedThroughItsMetaObject();
    void offersOneFileFormat();
    void savedFormatIsThatOfTheEncoder();
    void withoutEncoderNoFormatIsSaved();
    void sequenceSizeHasNoEffect();

    void nullDataIsRefusedSilently();
    void otherChainDataIsRefused();
    void missingFileNameIsReported();
    void fileThatCannotBeOpenedIsReported();
    void missingEncoderIsReported();
    void fileThatCannotBeOpenedIsReportedWithoutEncoder();
    void pictureOfNoEncodedSizeIsPassedOver();
    void pictureWithoutSizeIsPassedOver();
    void nullPictureIsRefused();
    void pictureWithoutPixelsTakesNoNumber_data();
    void pictureWithoutPixelsTakesNoNumber();
    void firstPictureWithoutPixelsSetsNoSize();
    void failedEncodingIsReported();
    void failedWriteIsReported();
    void halfWrittenFrameIsReported();
    void lostLastBytesAreReported();
    void missingOutputBufferIsRefusedSilently();
    void missingResizeBufferIsRefusedSilently();
    void failedScalingIsRefusedSilently();
    void messageNamesItsPlace();

    void writesWhatTheEncoderGives();
    void replacesAnExistingFile();
    void laterFileNameHasNoEffect();
    void indexAndSequenceSizeHaveNoEffect();
    void skippedPictureTakesANumber();
    void keyFlagIsPresetForEveryTenthPicture();
    void outputFileIsAChild();
    void oneEncoderForTheRecording();
    void closeEndsTheEncoderAndTheCountGoesOn();
    void closeWithoutOpenDoesNothing();

    void sameSizeIsPassedOn();
    void scaledPictureKeepsItsFormat_data();
    void scaledPictureKeepsItsFormat();
    void resizeBufferIsSetUpOnce();
    void encodedSizeIsThatOfTheScaledPicture();
    void bufferIsClearedAndReused();
    void bufferIsAllocatedCleared();
    void failedAllocationGivesNullAndForgetsTheBlock();

    void recordingEqualsTheLibrarys_data();
    void recordingEqualsTheLibrarys();
    void recordingDecodes_data();
    void recordingDecodes();

private:
    QString path(char const* name = "out.h264") const { return m_folder->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<CxMessageRecorder> m_messages;
};

static void fx_Register(QMetaObject const& encoder)
{
    CxRTTI::instance()->registerClass(nullptr, encoder, QStringLiteral("IxVideoEncoder"));
}

static QByteArray fx_Read(QString const& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

static QStringList fx_SaveText(char const* text)
{
    return {QStringLiteral("CxH264VideoSaver::save(): ") + QString::fromUtf8(text)};
}

void tst_H264VideoSaver::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_messages = std::make_unique<CxMessageRecorder>();
    s_script = SxEncoderScript();
    fx_UnregisterClasses(nullptr);
    fx_Register(CxScriptedEncoder::staticMetaObject);
    fx_SetCodecOptions(0x34363248, {});
}

void tst_H264VideoSaver::cleanup()
{
    QStringList const unexpected = m_messages->takeRaw();
    m_messages.reset();
    QCOMPARE(unexpected, QStringList());
    QCOMPARE(s_script.alive, 0);
}

void tst_H264VideoSaver::isASaver()
{
    CxH264VideoSaver saver;
    QMetaObject const* const meta = saver.metaObject();
    QCOMPARE(meta->classInfoCount() - meta->classInfoOffset(), 1);
    QCOMPARE(meta->classInfo(meta->indexOfClassInfo("CustomName")).value(), "H.264 Video Saver (*.264)");
    QCOMPARE(saver.qt_metacast("IxImageDataSaver"),
             static_cast<void*>(static_cast<IxImageDataSaver*>(&saver)));
    QCOMPARE(saver.qt_metacast("IxImageDataLoader"), nullptr);
}

void tst_H264VideoSaver::isCreatedThroughItsMetaObject()
{
    std::unique_ptr<QObject> const object(CxH264VideoSaver::staticMetaObject.newInstance());
    QVERIFY(qobject_cast<CxH264VideoSaver*>(object.get()));
    QVERIFY(!object->parent());
    QCOMPARE(s_script.created, 0);
}

void tst_H264VideoSaver::offersOneFileFormat()
{
    CxH264VideoSaver saver;
    QList<CxImageFormat> const formats = saver.supportedImageFormats();
    QCOMPARE(formats.size(), 1);
    QCOMPARE(formats[0].description, QStringLiteral("H.264 file (*.h264)"));
    QCOMPARE(formats[0].kind, 2);
}

void tst_H264VideoSaver::savedFormatIsThatOfTheEncoder()
{
    fx_UnregisterClasses(nullptr);
    fx_Register(CxOpenH264Encoder::staticMetaObject);
    fx_SetCodecOptions(0x34363248,
                       {{"h264_level_idc", 40}}); // the encoder that answers carries the user's choice
    SxPicBufInfo input;
    input.width = 4096;
    input.height = 2160;
    input.components = 1;
    input.sampleType = 4;
    SxPicBufInfo output;
    CxH264VideoSaver saver;
    QVERIFY(saver.querySavedImageFormat(input, output));
    QCOMPARE(output.width, 1920u);
    QCOMPARE(output.height, 1012u);
    QCOMPARE(output.components, 4u);
    QCOMPARE(output.sampleType, 2u);

    // It asks an encoder of its own each time and leaves none behind for the recording.
    fx_UnregisterClasses(nullptr);
    fx_Register(CxScriptedEncoder::staticMetaObject);
    QVERIFY(saver.querySavedImageFormat(input, output));
    QVERIFY(saver.querySavedImageFormat(input, output));
    QCOMPARE(s_script.created, 2);
    QCOMPARE(s_script.alive, 0);
}

void tst_H264VideoSaver::withoutEncoderNoFormatIsSaved()
{
    fx_UnregisterClasses(nullptr);
    SxPicBufInfo input;
    input.width = 640;
    input.height = 480;
    SxPicBufInfo output;
    output.width = 11;
    output.auxField = 22;
    CxH264VideoSaver saver;
    QVERIFY(!saver.querySavedImageFormat(input, output));
    QCOMPARE(output.width, 11u);
    QCOMPARE(output.height, 0u);
    QCOMPARE(output.auxField, 22u);
    QCOMPARE(output.formatFlag, false);
}

void tst_H264VideoSaver::sequenceSizeHasNoEffect()
{
    // It is for the saver's record only; no value changes what is written.
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    {
        CxH264VideoSaver saver;
        saver.setSequenceSize(-5);
        saver.setOutputFile(path());
        QVERIFY(saver.save(&data, 0));
        saver.setSequenceSize(0);
        QVERIFY(saver.save(&data, 1));
        saver.setSequenceSize(1);
        QVERIFY(saver.save(&data, 2));
        saver.setSequenceSize(std::numeric_limits<int>::min());
        QVERIFY(saver.save(&data, 3));
    }
    QCOMPARE(fx_Read(path()), QByteArray("frame0frame1frame2frame3"));
}

void tst_H264VideoSaver::nullDataIsRefusedSilently()
{
    CxH264VideoSaver saver;
    QVERIFY(!saver.save(nullptr, 0)); // not even the missing file name is reported
    saver.setOutputFile(path());
    QVERIFY(!saver.save(nullptr, 0));
    QVERIFY(!QFile::exists(path()));
}

void tst_H264VideoSaver::otherChainDataIsRefused()
{
    IxChainData const data;
    CxH264VideoSaver saver;
    QVERIFY(!saver.save(&data, 0));
    QCOMPARE(m_messages->takeTexts(), fx_SaveText("Invalid chain data type."));
    saver.setOutputFile(path());
    QVERIFY(!saver.save(&data, 0));
    QCOMPARE(m_messages->takeTexts(), fx_SaveText("Invalid chain data type."));
    QVERIFY(!QFile::exists(path()));
}

void tst_H264VideoSaver::missingFileNameIsReported()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    QVERIFY(!saver.save(&data, 0));
    QCOMPARE(m_messages->takeTexts(), fx_SaveText("Filename is empty."));
    QCOMPARE(s_script.created, 0);

    saver.setOutputFile(path());
    QVERIFY(saver.save(&data, 0));
    saver.setOutputFile(QString()); // the open file needs no name
    QVERIFY(saver.save(&data, 1));
    QCOMPARE(s_script.created, 1);
}

void tst_H264VideoSaver::fileThatCannotBeOpenedIsReported()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    QString const missing = path("no such folder/50%1.h264");
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(missing);
        for (int i = 0; i < 2; ++i) {
            QVERIFY(!saver.save(&data, i));
            QCOMPARE(m_messages->takeTexts(),
                     QStringList("CxH264VideoSaver::save(): Cannot open the '" + missing + "'."));
        }
        QCOMPARE(s_script.created, 1); // the encoder is kept
        QCOMPARE(s_script.alive, 1);

        saver.setOutputFile(path());
        QVERIFY(saver.save(&data, 2));
        QCOMPARE(s_script.created, 1);
    }
    QCOMPARE(fx_Read(path()), QByteArray("frame0"));
}

void tst_H264VideoSaver::missingEncoderIsReported()
{
    fx_UnregisterClasses(nullptr);
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    QString const text = "CxH264VideoSaver::save(): Cannot open the '" + path() + "'.";
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        QVERIFY(!saver.save(&data, 0));
        QCOMPARE(m_messages->takeTexts(), QStringList(text));
        QVERIFY(saver.findChild<QFile*>()->isOpen());

        // The open file is not opened again, so no encoder comes any more.
        fx_Register(CxScriptedEncoder::staticMetaObject);
        for (int i = 0; i < 2; ++i) {
            QVERIFY(!saver.save(&data, 1));
            QCOMPARE(m_messages->takeTexts(), QStringList(text));
        }
        QCOMPARE(s_script.created, 0);
    }
    QCOMPARE(fx_Read(path()), QByteArray());
}

void tst_H264VideoSaver::fileThatCannotBeOpenedIsReportedWithoutEncoder()
{
    fx_UnregisterClasses(nullptr);
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    saver.setOutputFile(m_folder->path()); // a folder
    QVERIFY(!saver.save(&data, 0));
    QCOMPARE(m_messages->takeTexts(),
             QStringList("CxH264VideoSaver::save(): Cannot open the '" + m_folder->path() + "'."));

    fx_Register(CxScriptedEncoder::staticMetaObject);
    saver.setOutputFile(path());
    QVERIFY(saver.save(&data, 0));
}

void tst_H264VideoSaver::pictureOfNoEncodedSizeIsPassedOver()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        s_script.maxEncodedSize = 0;
        QVERIFY(saver.save(&data, 0));
        QCOMPARE(m_messages->takeTexts(), fx_SaveText("Cannot alloc buffer of size 0."));
        QVERIFY(s_script.calls.empty());

        // It took no number.
        s_script.maxEncodedSize = 1000;
        s_script.encode = [](QByteArray&) { return false; };
        QVERIFY(!saver.save(&data, 1));
        QCOMPARE(m_messages->takeTexts(), fx_SaveText("Error when encoding the frame 0."));
    }
    QCOMPARE(fx_Read(path()), QByteArray());
}

void tst_H264VideoSaver::pictureWithoutSizeIsPassedOver()
{
    fx_UnregisterClasses(nullptr);
    fx_Register(CxOpenH264Encoder::staticMetaObject);
    CxImageData const data; // never given a picture
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    QVERIFY(saver.save(&data, 0));
    QCOMPARE(m_messages->takeTexts(), fx_SaveText("Cannot alloc buffer of size 0."));
}

namespace {

/// Chain data that has no picture, as a host's own class may.
class CxNoPictureData : public CxImageData
{
    Q_OBJECT

public:
    SxPicBuf const* picBuf() const override { return nullptr; }
};

} // namespace

void tst_H264VideoSaver::nullPictureIsRefused()
{
    CxNoPictureData const nothing;
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    {
        CxH264VideoSaver saver;
        QVERIFY(!saver.save(&nothing, 0));
        QCOMPARE(m_messages->takeTexts(), fx_SaveText("Filename is empty."));
        saver.setOutputFile(path());
        QVERIFY(!saver.save(&nothing, 0));
        QVERIFY(!QFile::exists(path())); // nothing to open a file for

        QVERIFY(saver.save(&data, 1));
        QVERIFY(!saver.save(&nothing, 2));
        s_script.encode = [](QByteArray&) { return false; };
        QVERIFY(!saver.save(&data, 3));
        QCOMPARE(m_messages->takeTexts(), fx_SaveText("Error when encoding the frame 1."));
    }
    QCOMPARE(fx_Read(path()), QByteArray("frame0"));
}

void tst_H264VideoSaver::pictureWithoutPixelsTakesNoNumber_data()
{
    QTest::addColumn<bool>("isScaled");
    QTest::addColumn<unsigned long>("maxEncodedSize");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("at the encoder's size") << false << 1000ul << false << QStringList();
    QTest::newRow("to be scaled") << true << 1000ul << false << QStringList();
    QTest::newRow("without an encoded size")
        << false << 0ul << true << fx_SaveText("Cannot alloc buffer of size 0.");
    QTest::newRow("to be scaled, without an encoded size") << true << 0ul << false << QStringList();
}

void tst_H264VideoSaver::pictureWithoutPixelsTakesNoNumber()
{
    QFETCH(bool, isScaled);
    QFETCH(unsigned long, maxEncodedSize);
    CxTestPicture const picture(64, 48);
    CxPictureData const data(picture.buf);
    SxPicBuf empty = picture.buf;
    empty.data = nullptr;
    CxPictureData const emptyData(empty);
    auto const half = [](SxPicBufInfo& format) { format.width /= 2; };
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        QVERIFY(saver.save(&data, 0));

        if (isScaled)
            s_script.changeFormat = half;
        s_script.maxEncodedSize = maxEncodedSize;
        QTEST(saver.save(&emptyData, 1), "result");
        QTEST(m_messages->takeTexts(), "messages");
        QCOMPARE(s_script.calls.size(), size_t(1)); // encode() did not see it

        // The saver goes on, and with its next number.
        s_script.maxEncodedSize = 1000;
        s_script.encode = [](QByteArray&) { return false; };
        QVERIFY(!saver.save(&data, 2));
        QCOMPARE(m_messages->takeTexts(), fx_SaveText("Error when encoding the frame 1."));
        s_script.encode = nullptr;
        QVERIFY(saver.save(&data, 3));
    }
    QCOMPARE(fx_Read(path()), QByteArray("frame0frame2"));
}

/// The recording gets the size of the first picture that has pixels.
void tst_H264VideoSaver::firstPictureWithoutPixelsSetsNoSize()
{
    fx_UnregisterClasses(nullptr);
    fx_Register(CxOpenH264Encoder::staticMetaObject);
    CxTestPicture picture(320, 240);
    picture.fillSmooth(0);
    CxPictureData const data(picture.buf);
    SxPicBuf empty = picture.buf;
    empty.data = nullptr;
    empty.width = 160;
    CxPictureData const emptyData(empty);
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        QVERIFY(!saver.save(&emptyData, 0));
        QVERIFY(saver.save(&data, 1));
    }
    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path(), error);
    QCOMPARE(error, QString());
    QCOMPARE(decoded.size(), size_t(1));
    QCOMPARE(QSize(decoded[0].width, decoded[0].height), QSize(320, 240));
}

void tst_H264VideoSaver::failedEncodingIsReported()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        bool isFailing = false;
        s_script.encode = [&isFailing](QByteArray&) { return !isFailing; };
        for (int i = 0; i < 12; ++i)
            QVERIFY(saver.save(&data, i));
        isFailing = true;
        for (int i = 0; i < 2; ++i) {
            QVERIFY(!saver.save(&data, 12));
            QCOMPARE(m_messages->takeTexts(), fx_SaveText("Error when encoding the frame 12."));
        }
        isFailing = false;
        QVERIFY(saver.save(&data, 12)); // the same encoder and file go on
        QCOMPARE(s_script.created, 1);
    }
    QVERIFY(fx_Read(path()).endsWith("frame10frame11frame14"));
}

void tst_H264VideoSaver::failedWriteIsReported()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    saver.setOutputFile(QStringLiteral("/dev/full"));
    s_script.maxEncodedSize = 1000000;
    s_script.encode = [](QByteArray& coded) {
        coded = QByteArray(1000000, 'x'); // more than a file keeps in its buffer
        return true;
    };
    for (int i = 0; i < 2; ++i) {
        QVERIFY(!saver.save(&data, i));
        QCOMPARE(m_messages->takeTexts(), fx_SaveText("Error when writing encoded frame to file."));
    }

    // No number was used up: the next picture is still number 0.
    s_script.encode = [](QByteArray&) { return false; };
    QVERIFY(!saver.save(&data, 2));
    QCOMPARE(m_messages->takeTexts(), fx_SaveText("Error when encoding the frame 0."));
    QCOMPARE(s_script.calls.back().keyFrame, true);
}

/// Of a frame larger than the file's buffer a part is written before there is no more room.
void tst_H264VideoSaver::halfWrittenFrameIsReported()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    s_script.maxEncodedSize = 1000000;
    s_script.encode = [](QByteArray& coded) {
        coded = QByteArray(1000000, 'x');
        return true;
    };
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    signal(SIGXFSZ, SIG_IGN); // the write fails instead
    rlimit before{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
    rlimit const half{500000, before.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &half), 0);
    bool const isSaved = saver.save(&data, 0);
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &before), 0);
    QVERIFY(!isSaved);
    QCOMPARE(m_messages->takeTexts(), fx_SaveText("Error when writing encoded frame to file."));
    QCOMPARE(QFileInfo(path()).size(), 500000);
}

void tst_H264VideoSaver::lostLastBytesAreReported()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(QStringLiteral("/dev/full"));
        QVERIFY(saver.save(&data, 0)); // these few bytes wait in the file's buffer
    }
    QCOMPARE(m_messages->takeTexts(), fx_SaveText("Error when writing encoded frame to file."));
}

void tst_H264VideoSaver::missingOutputBufferIsRefusedSilently()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    s_script.maxEncodedSize = 2000000;
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        bool isSaved = true;
        {
            CxAllocationFailure const failure(2000000);
            isSaved = saver.save(&data, 0);
        }
        QVERIFY(!isSaved);
        QCOMPARE(m_messages->takeRaw(), QStringList());
        QVERIFY(s_script.calls.empty());
        QVERIFY(saver.save(&data, 0));
    }
    QCOMPARE(fx_Read(path()), QByteArray("frame0"));
}

void tst_H264VideoSaver::missingResizeBufferIsRefusedSilently()
{
    CxTestPicture const picture(32, 32);
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    s_script.changeFormat = [](SxPicBufInfo& format) { format.width = format.height = 1000000; };
    QVERIFY(!saver.save(&data, 0));
    QCOMPARE(m_messages->takeRaw(), QStringList());
    QVERIFY(s_script.calls.empty());

    s_script.changeFormat = [](SxPicBufInfo& format) { format.width = format.height = 16; };
    QVERIFY(saver.save(&data, 0)); // it was not set up, so it can be now
    QCOMPARE(s_script.calls.back().picture.width, 16u);
}

void tst_H264VideoSaver::failedScalingIsRefusedSilently()
{
    CxTestPicture picture(32, 32, 4, 4);
    picture.buf.sampleType = 3; // two bytes a sample, in a format that the host does not scale
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    s_script.changeFormat = [](SxPicBufInfo& format) { format.width = 16; };
    QVERIFY(!saver.save(&data, 0));
    QCOMPARE(m_messages->takeRaw(), QStringList());
    QVERIFY(s_script.calls.empty());

    s_script.encode = [](QByteArray&) { return false; };
    s_script.changeFormat = nullptr;
    QVERIFY(!saver.save(&data, 1));
    QCOMPARE(m_messages->takeTexts(), fx_SaveText("Error when encoding the frame 0."));
}

void tst_H264VideoSaver::messageNamesItsPlace()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    QVERIFY(!saver.save(&data, 0));
    QStringList const messages = m_messages->takeRaw();
    QCOMPARE(messages.size(), 1);
    QString thread;
    QDebug(&thread) << QThread::currentThreadId();
    QRegularExpression const form(
        QStringLiteral("^%1 \\S*plugins/tvpCodecOpenH264/H264VideoSaver\\.cpp L [1-9]\\d* :  "
                       "\"CxH264VideoSaver::save\\(\\): Filename is empty\\.\"$")
            .arg(thread.trimmed()));
    QVERIFY2(form.match(messages[0]).hasMatch(), qPrintable(messages[0]));
}

void tst_H264VideoSaver::writesWhatTheEncoderGives()
{
    CxTestPicture picture(16, 16);
    picture.fillNoise(1);
    QByteArray const before(reinterpret_cast<char const*>(picture.buf.data), 16 * 16 * 4);
    CxPictureData const data(picture.buf);
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        QCOMPARE(QFile::exists(path()), false); // not before the first picture
        for (int i = 0; i < 3; ++i)
            QVERIFY(saver.save(&data, i));
    }
    QCOMPARE(fx_Read(path()), QByteArray("frame0frame1frame2"));
    QCOMPARE(QByteArray(reinterpret_cast<char const*>(picture.buf.data), before.size()), before);
}

void tst_H264VideoSaver::replacesAnExistingFile()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(10000, 'o'));
    file.close();
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        QVERIFY(saver.save(&data, 0));
    }
    QCOMPARE(fx_Read(path()), QByteArray("frame0"));
}

void tst_H264VideoSaver::laterFileNameHasNoEffect()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path("first"));
        saver.setOutputFile(path()); // the last one before the first picture counts
        QVERIFY(saver.save(&data, 0));
        saver.setOutputFile(path("other.h264"));
        QVERIFY(saver.save(&data, 1));
    }
    QCOMPARE(fx_Read(path()), QByteArray("frame0frame1"));
    QVERIFY(!QFile::exists(path("first")));
    QVERIFY(!QFile::exists(path("other.h264")));
}

void tst_H264VideoSaver::indexAndSequenceSizeHaveNoEffect()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        saver.setSequenceSize(2);
        for (int const index : {7, -1, 7, 0, std::numeric_limits<int>::max()})
            QVERIFY(saver.save(&data, index));
    }
    QCOMPARE(fx_Read(path()), QByteArray("frame0frame1frame2frame3frame4"));
}

void tst_H264VideoSaver::skippedPictureTakesANumber()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    s_script.encode = [](QByteArray& coded) {
        coded.clear();
        return true;
    };
    QVERIFY(saver.save(&data, 0));
    s_script.encode = [](QByteArray&) { return false; };
    QVERIFY(!saver.save(&data, 1));
    QCOMPARE(m_messages->takeTexts(), fx_SaveText("Error when encoding the frame 1."));
    QCOMPARE(saver.findChild<QFile*>()->pos(), 0);
}

void tst_H264VideoSaver::keyFlagIsPresetForEveryTenthPicture()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    for (int i = 0; i < 25; ++i) {
        QVERIFY(saver.save(&data, i));
        QCOMPARE(s_script.calls.back().keyFrame, i % 10 == 0);
    }
}

void tst_H264VideoSaver::outputFileIsAChild()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    s_script.encode = [](QByteArray& coded) {
        coded = QByteArray(100 + 10 * static_cast<int>(s_script.calls.size()), 'x');
        return true;
    };
    auto const* const file = saver.findChild<QFile*>();
    QVERIFY(file);
    QVERIFY(!file->isOpen());
    qint64 bytes = 0;
    for (int i = 1; i <= 5; ++i) {
        QVERIFY(saver.save(&data, 0));
        bytes += 100 + 10 * i;
        QCOMPARE(file->pos(), bytes);
    }
}

void tst_H264VideoSaver::oneEncoderForTheRecording()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    CxH264VideoSaver first;
    first.setOutputFile(path());
    for (int i = 0; i < 3; ++i)
        QVERIFY(first.save(&data, i));
    QCOMPARE(s_script.created, 1);

    CxH264VideoSaver second;
    second.setOutputFile(path("second.h264"));
    QVERIFY(second.save(&data, 0));
    QCOMPARE(s_script.created, 2);
    QCOMPARE(s_script.alive, 2);
}

void tst_H264VideoSaver::closeEndsTheEncoderAndTheCountGoesOn()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    QVERIFY(saver.open());
    QCOMPARE(s_script.alive, 1);
    QVERIFY(saver.save(&data, 0));
    saver.close();
    QCOMPARE(s_script.alive, 0);
    QCOMPARE(fx_Read(path()), QByteArray("frame0"));

    // The count goes on behind a close.
    saver.setOutputFile(path("next.h264"));
    QVERIFY(saver.save(&data, 1));
    QCOMPARE(s_script.created, 2);
    s_script.encode = [](QByteArray&) { return false; };
    QVERIFY(!saver.save(&data, 2));
    QCOMPARE(m_messages->takeTexts(), fx_SaveText("Error when encoding the frame 2."));
    QCOMPARE(fx_Read(path()), QByteArray("frame0"));
}

void tst_H264VideoSaver::closeWithoutOpenDoesNothing()
{
    CxH264VideoSaver saver;
    saver.close();
    saver.close();
    QCOMPARE(s_script.created, 0);
}

void tst_H264VideoSaver::sameSizeIsPassedOn()
{
    CxTestPicture picture(1920, 1080);
    picture.buf.timestamp = 123456;
    picture.buf.auxField = 99;
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    // Only the sizes decide: the encoder converts every format by itself.
    s_script.changeFormat = [](SxPicBufInfo& format) {
        format.components = 1;
        format.sampleType = 4;
        format.pitch = 1;
    };
    QVERIFY(saver.save(&data, 0));
    SxPicBuf const& seen = s_script.calls[0].picture;
    QCOMPARE(seen.data, picture.buf.data);
    QCOMPARE(seen.timestamp, quint64(123456));
    QCOMPARE(seen.auxField, 99u);
    QCOMPARE(seen.components, 4u);
}

void tst_H264VideoSaver::scaledPictureKeepsItsFormat_data()
{
    QTest::addColumn<quint32>("components");
    QTest::addColumn<quint32>("sampleType");
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<quint32>("pitch");
    QTest::newRow("RGB32") << 4u << 2u << 1280u << 720u << 5120u;
    QTest::newRow("grey") << 1u << 2u << 1280u << 720u << 1280u;
    QTest::newRow("grey words") << 1u << 4u << 1280u << 720u << 2560u;
    QTest::newRow("RGB32, odd") << 4u << 2u << 1001u << 720u << 4096u;
    QTest::newRow("RGB48, odd") << 3u << 4u << 1001u << 720u << 6144u;
    QTest::newRow("RGB64") << 4u << 4u << 1280u << 720u << 10240u;
    QTest::newRow("only the width differs") << 3u << 2u << 1280u << 1080u << 3840u;
    QTest::newRow("only the height differs") << 3u << 2u << 1920u << 1078u << 5888u;
    QTest::newRow("larger") << 4u << 2u << 2048u << 1100u << 8192u;
}

void tst_H264VideoSaver::scaledPictureKeepsItsFormat()
{
    QFETCH(quint32, components);
    QFETCH(quint32, sampleType);
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QFETCH(quint32, pitch);
    CxTestPicture picture(1920, 1080, components, sampleType);
    std::memset(picture.buf.data, 0x77, size_t(picture.buf.pitch) * 1080);
    picture.buf.auxField = 99;
    picture.buf.formatVariant = 3;
    picture.buf.timestamp = 777;
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    s_script.changeFormat = [&](SxPicBufInfo& format) {
        format.width = width;
        format.height = height;
        format.components = 2; // of no concern: the picture keeps its own format
    };
    QVERIFY(saver.save(&data, 0));
    SxEncodeCall const& call = s_script.calls[0];
    QVERIFY(call.picture.data != picture.buf.data);
    QCOMPARE(call.picture.width, width);
    QCOMPARE(call.picture.height, height);
    QCOMPARE(call.picture.pitch, pitch);
    QCOMPARE(call.picture.components, components);
    QCOMPARE(call.picture.sampleType, sampleType);
    QCOMPARE(call.picture.bitsPerSample, picture.buf.bitsPerSample);
    QCOMPARE(call.picture.auxField, 99u);
    QCOMPARE(call.picture.formatVariant, 3u);
    int const rowBytes = static_cast<int>(width * components * (sampleType == 4 ? 2 : 1));
    QCOMPARE(call.firstRow.left(rowBytes), QByteArray(rowBytes, 0x77));
}

void tst_H264VideoSaver::resizeBufferIsSetUpOnce()
{
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    CxTestPicture const large(320, 240);
    CxPictureData const largeData(large.buf);
    s_script.changeFormat = [](SxPicBufInfo& format) {
        format.width = 160;
        format.height = 120;
    };
    QVERIFY(saver.save(&largeData, 0));
    SxPicBuf const first = s_script.calls[0].picture;

    // Another size and depth, and an encoder that asks for another size: the recording keeps its own.
    CxTestPicture grey(640, 400, 1, 4);
    std::memset(grey.buf.data, 0xFF, size_t(grey.buf.pitch) * 400);
    CxPictureData const greyData(grey.buf);
    s_script.changeFormat = [](SxPicBufInfo& format) {
        format.width = 300;
        format.height = 200;
    };
    QVERIFY(saver.save(&greyData, 1));
    SxEncodeCall const& second = s_script.calls[1];
    QCOMPARE(second.picture.data, first.data);
    QCOMPARE(second.picture.width, 160u);
    QCOMPARE(second.picture.height, 120u);
    QCOMPARE(second.picture.components, 4u);
    QCOMPARE(second.picture.sampleType, 2u);
    QCOMPARE(second.firstRow.left(160 * 4), QByteArray(160 * 4, '\xFF'));

    // One that needs no scaling still goes to the encoder itself.
    s_script.changeFormat = nullptr;
    QVERIFY(saver.save(&greyData, 2));
    QCOMPARE(s_script.calls[2].picture.data, grey.buf.data);
}

void tst_H264VideoSaver::encodedSizeIsThatOfTheScaledPicture()
{
    CxTestPicture const picture(320, 240);
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    s_script.changeFormat = [](SxPicBufInfo& format) { format.width = 160; };
    QVERIFY(saver.save(&data, 0));
    QCOMPARE(s_script.sizeQueries.size(), size_t(1));
    QCOMPARE(s_script.sizeQueries[0].width, 160u);
    QCOMPARE(s_script.sizeQueries[0].pitch, 768u);
    QCOMPARE(s_script.calls[0].capacity, 1000ul);
}

void tst_H264VideoSaver::bufferIsClearedAndReused()
{
    CxTestPicture const picture(16, 16);
    CxPictureData const data(picture.buf);
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    for (unsigned long const size : {1000ul, 1000ul, 500ul, 1000ul, 3000ul, 3000ul}) {
        s_script.maxEncodedSize = size;
        QVERIFY(saver.save(&data, 0));
        QCOMPARE(s_script.calls.back().capacity, size);
        QVERIFY(s_script.calls.back().isOutZero);
    }
    for (size_t i = 1; i < 4; ++i)
        QCOMPARE(s_script.calls[i].out, s_script.calls[0].out);
    QCOMPARE(s_script.calls[5].out, s_script.calls[4].out);
}

void tst_H264VideoSaver::bufferIsAllocatedCleared()
{
    CxH264VideoSaver saver;
    uchar* const first = saver.allocBuffer(100);
    QVERIFY(first);
    QVERIFY(std::all_of(first, first + 100, [](uchar byte) { return byte == 0; }));

    // Smaller: the same block, and only what was asked for is cleared.
    std::memset(first, 0xEE, 100);
    QCOMPARE(saver.allocBuffer(40), first);
    QVERIFY(std::all_of(first, first + 40, [](uchar byte) { return byte == 0; }));
    QVERIFY(std::all_of(first + 40, first + 100, [](uchar byte) { return byte == 0xEE; }));

    // It never shrinks, so the old size is no reason for a new block.
    QCOMPARE(saver.allocBuffer(100), first);
    QVERIFY(std::all_of(first, first + 100, [](uchar byte) { return byte == 0; }));
    QCOMPARE(saver.allocBuffer(0), first);
    uchar* again = nullptr;
    {
        CxAllocationFailure const failure(100);
        again = saver.allocBuffer(100);
    }
    QCOMPARE(again, first); // which took no memory: a new block might have come to lie in the same place

    uchar* const larger = saver.allocBuffer(100000);
    QVERIFY(larger);
    QVERIFY(std::all_of(larger, larger + 100000, [](uchar byte) { return byte == 0; }));
}

void tst_H264VideoSaver::failedAllocationGivesNullAndForgetsTheBlock()
{
    CxH264VideoSaver saver;
    QVERIFY(saver.allocBuffer(100));
    uchar* failed = nullptr;
    uchar* again = nullptr;
    {
        CxAllocationFailure const failure(1000000);
        failed = saver.allocBuffer(1000000);
        again = saver.allocBuffer(1000000);
    }
    QVERIFY(!failed);
    QVERIFY(!again);
    uchar* const small = saver.allocBuffer(50); // the old block is gone: a new one, all of it zero
    QVERIFY(small);
    QVERIFY(std::all_of(small, small + 50, [](uchar byte) { return byte == 0; }));
    QVERIFY(saver.allocBuffer(1000000));
}

namespace {

struct SxLibraryDeleter
{
    void operator()(ISVCEncoder* encoder) const
    {
        encoder->Uninitialize();
        WelsDestroySVCEncoder(encoder);
    }
};

/// What a recording should have been coded with, as the user chose it.
struct SxCoding
{
    quint32 width;
    quint32 height;
    int bitrate;
    int maxBitrate;
    int keyFrameInterval;
    ECOMPLEXITY_MODE complexity;
    EProfileIdc profile;
    ELevelIdc level;
};

} // namespace

static SEncParamExt fx_LibraryParams(ISVCEncoder& encoder, SxCoding const& coding)
{
    SEncParamExt params;
    encoder.GetDefaultParams(&params);
    params.iUsageType = SCREEN_CONTENT_REAL_TIME;
    params.iPicWidth = int(coding.width);
    params.iPicHeight = int(coding.height);
    params.fMaxFrameRate = 30;
    params.iTargetBitrate = coding.bitrate;
    params.iMaxBitrate = coding.maxBitrate;
    params.iRCMode = RC_BITRATE_MODE;
    params.iComplexityMode = coding.complexity;
    params.bEnableFrameSkip = true;
    SSpatialLayerConfig& layer = params.sSpatialLayers[0];
    layer.iVideoWidth = int(coding.width);
    layer.iVideoHeight = int(coding.height);
    layer.fFrameRate = 30;
    layer.iSpatialBitrate = coding.bitrate;
    layer.iMaxSpatialBitrate = coding.maxBitrate;
    layer.uiProfileIdc = coding.profile;
    layer.uiLevelIdc = coding.level;
    layer.sSliceArgument.uiSliceMode = SM_SINGLE_SLICE;
    return params;
}

/// Codes pictures directly with the library. \return the stream; empty when the library fails.
static QByteArray fx_LibraryStream(std::vector<std::unique_ptr<CxTestPicture>> const& pictures,
                                   SxCoding const& coding)
{
    ISVCEncoder* created = nullptr;
    if (WelsCreateSVCEncoder(&created) != 0)
        return QByteArray();
    std::unique_ptr<ISVCEncoder, SxLibraryDeleter> const encoder(created);
    SEncParamExt const params = fx_LibraryParams(*encoder, coding);
    if (encoder->InitializeExt(&params) != 0)
        return QByteArray();

    QByteArray stream;
    SFrameBSInfo info{};
    int coded = 0;
    int lastKey = -1;
    for (auto const& picture : pictures) {
        SxPlanes planes = fx_ExpectedPlanes(picture->buf);
        SSourcePicture source{};
        source.iColorFormat = videoFormatI420;
        source.iStride[0] = int(coding.width);
        source.iStride[1] = source.iStride[2] = int(coding.width) / 2;
        source.pData[0] = planes.y.data();
        source.pData[1] = planes.u.data();
        source.pData[2] = planes.v.data();
        source.iPicWidth = int(coding.width);
        source.iPicHeight = int(coding.height);
        source.uiTimeStamp = qint64(picture->buf.timestamp / 1000);
        if (coded == 0 || coded - lastKey >= coding.keyFrameInterval)
            encoder->ForceIntraFrame(true, -1);
        if (encoder->EncodeFrame(&source, &info) != 0)
            return QByteArray();
        if (info.eFrameType == videoFrameTypeSkip)
            continue;
        for (int i = 0; i < info.iLayerNum; ++i) {
            SLayerBSInfo const& layer = info.sLayerInfo[i];
            int const bytes =
                std::accumulate(layer.pNalLengthInByte, layer.pNalLengthInByte + layer.iNalCount, 0);
            stream.append(reinterpret_cast<char const*>(layer.pBsBuf), bytes);
        }
        if (info.eFrameType == videoFrameTypeIDR)
            lastKey = coded;
        ++coded;
    }
    return stream;
}

void tst_H264VideoSaver::recordingEqualsTheLibrarys_data()
{
    QTest::addColumn<Options>("options");
    QTest::addColumn<quint32>("components");
    QTest::addColumn<bool>("isNoise");
    QTest::addColumn<SxCoding*>("coding");
    // Bit rates: S = 115200 bytes a picture; a quarter of it, and ninths up to 30 pictures or the level's
    // cap.
    static SxCoding usual{320, 240, 1552000, 288000000, 5, MEDIUM_COMPLEXITY, PRO_BASELINE, LEVEL_5_2};
    static SxCoding chosen{320, 240, 921600 - 1, 921600, 3, LOW_COMPLEXITY, PRO_HIGH, LEVEL_1_3};
    QTest::newRow("defaults") << Options() << 4u << false << &usual;
    QTest::newRow("grey") << Options() << 1u << false << &usual;
    QTest::newRow("noise that the rate control skips") << Options() << 4u << true << &usual;
    QTest::newRow("all chosen") << Options{{"h264_quality", 10},
                                           {"h264_keyframerate", 3},
                                           {"h264_complexity", 0},
                                           {"h264_profile_idc", 100},
                                           {"h264_level_idc", 13}}
                                << 4u << false << &chosen;
}
Q_DECLARE_METATYPE(SxCoding*)

void tst_H264VideoSaver::recordingEqualsTheLibrarys()
{
    QFETCH(Options, options);
    QFETCH(quint32, components);
    QFETCH(bool, isNoise);
    QFETCH(SxCoding*, coding);
    std::vector<std::unique_ptr<CxTestPicture>> pictures;
    for (unsigned i = 0; i < 25; ++i) {
        pictures.push_back(std::make_unique<CxTestPicture>(coding->width, coding->height, components));
        if (isNoise)
            pictures.back()->fillNoise(i);
        else
            pictures.back()->fillSmooth(i);
        pictures.back()->buf.timestamp = quint64(i) * 1000000 / 30;
    }

    fx_UnregisterClasses(nullptr);
    fx_Register(CxOpenH264Encoder::staticMetaObject);
    fx_SetCodecOptions(0x34363248, options);
    int skipped = 0;
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        for (auto const& picture : pictures) {
            CxPictureData const data(picture->buf);
            qint64 const before = saver.findChild<QFile*>()->pos();
            QVERIFY(saver.save(&data, 0));
            skipped += saver.findChild<QFile*>()->pos() == before ? 1 : 0;
        }
    }
    QCOMPARE(skipped > 0, isNoise); // both kinds of recording occur here
    QByteArray const expected = fx_LibraryStream(pictures, *coding);
    QVERIFY(!expected.isEmpty());
    QVERIFY(fx_Read(path()) == expected);
}

void tst_H264VideoSaver::recordingDecodes_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<quint32>("components");
    QTest::addColumn<quint32>("sampleType");
    QTest::addColumn<int>("level");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("RGB32") << QSize(320, 240) << 4u << 2u << 52 << QSize(320, 240);
    QTest::newRow("grey words") << QSize(320, 240) << 1u << 4u << 52 << QSize(320, 240);
    QTest::newRow("RGB48, odd") << QSize(321, 241) << 3u << 4u << 52 << QSize(320, 240);
    QTest::newRow("scaled to the level") << QSize(640, 480) << 3u << 2u << 10 << QSize(176, 132);
    QTest::newRow("not a multiple of 16") << QSize(330, 250) << 4u << 2u << 52 << QSize(330, 250);
}

void tst_H264VideoSaver::recordingDecodes()
{
    QFETCH(QSize, size);
    QFETCH(quint32, components);
    QFETCH(quint32, sampleType);
    QFETCH(int, level);
    QFETCH(QSize, expected);
    fx_UnregisterClasses(nullptr);
    fx_Register(CxOpenH264Encoder::staticMetaObject);
    fx_SetCodecOptions(0x34363248, {{"h264_level_idc", level}, {"h264_quality", 10}});
    int written = 0;
    {
        CxTestPicture picture(quint32(size.width()), quint32(size.height()), components, sampleType);
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        for (unsigned i = 0; i < 20; ++i) {
            picture.fillSmooth(i);
            CxPictureData const data(picture.buf);
            qint64 const before = saver.findChild<QFile*>()->pos();
            QVERIFY(saver.save(&data, 0));
            written += saver.findChild<QFile*>()->pos() > before ? 1 : 0;
        }
    }
    QVERIFY(written >= 10);

    QString error;
    std::vector<SxDecodedPicture> const decoded = fx_DecodeH264File(path(), error);
    QCOMPARE(error, QString());
    QCOMPARE(int(decoded.size()), written);
    for (SxDecodedPicture const& picture : decoded)
        QCOMPARE(QSize(picture.width, picture.height), expected);
    for (size_t i = 0; i < decoded.size(); ++i)
        QCOMPARE(decoded[i].isKeyFrame, i % 5 == 0);
}

QTEST_GUILESS_MAIN(tst_H264VideoSaver)
#include "tst_H264VideoSaver.moc"

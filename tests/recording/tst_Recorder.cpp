#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "ClassRegistry.h"
#include "CxPlugin.h"
#include "CxRTTI.h"
#include "EncoderTrial.h"
#include "IxImageDataSaver.h"
#include "IxVideoEncoder.h"
#include "PictureFormat.h"
#include "PluginMessages.h"
#include "Recorder.h"
#include "TestCamera.h"

/// What the doubles below were asked for, and how they are to answer.
struct SxScript
{
    bool encodes = true;
    bool writes = true;
    bool opens = true;      ///< the saver its file
    bool showsFile = true;  ///< to the host
    bool knowsCodec = true; ///< the saver an encoder
    int saves = -1;         ///< pictures before the saver refuses one; -1: all
    quint32 height = 0;     ///< of the pictures that the encoder asks for; 0: as they come
    QList<QSize> tried;     ///< sizes of the pictures given to encoders that are not the saver's
    qint64 sizeAtOpen = -1; ///< of the file that the saver replaced
};
static SxScript s_script;

/// An encoder that takes or refuses pictures as told.
class CxScriptedEncoder : public QObject, public IxVideoEncoder
{
    Q_OBJECT

public:
    Q_INVOKABLE CxScriptedEncoder() {}
    QString name() override { return QStringLiteral("scripted"); }
    unsigned int fourCC() override { return kFourCCH264; }
    bool encode(SxPicBuf const& picture, void* buffer, unsigned long& size, bool*) override
    {
        s_script.tried.append(QSize(static_cast<int>(picture.width), static_cast<int>(picture.height)));
        if (!s_script.encodes)
            qCritical() << "0x7f"
                        << "Encoder.cpp"
                        << "L" << 1 << ":"
                        << "" << QString("CxE::encode(): Full.");
        memset(buffer, 0, size); // as large as promised
        return s_script.encodes;
    }
    unsigned long maxEncodedSize(SxPicBufInfo const& format) override { return format.width; }
    void queryOuputFormat(SxPicBufInfo const& input, SxPicBufInfo& output) override
    {
        output = input;
        if (s_script.height != 0)
            output.height = s_script.height;
    }
    void setEncoderOptions(QMap<QString, QVariant> const&) override {}
    QWidget* widgetForSaveDlg(QWidget*) override { return nullptr; }
    QMap<QString, QVariant> optionsFromWidgetInSaveDlg(QWidget*) override { return {}; }
};

/// A saver that, like the plug-in's, empties its file before it looks at the first picture.
class CxScriptedSaver : public QObject, public IxImageDataSaver
{
    Q_OBJECT

public:
    Q_INVOKABLE CxScriptedSaver()
        : m_file(new QFile(s_script.showsFile ? this : nullptr))
    {}
    ~CxScriptedSaver() override
    {
        if (!m_file->parent())
            delete m_file;
    }
    void setSequenceSize(int) override {}
    bool save(IxChainData const*, int) override
    {
        if (!m_file->isOpen()) {
            s_script.sizeAtOpen = m_file->size();
            if (!s_script.opens || !m_file->open(QIODevice::WriteOnly))
                return false;
        }
        if (s_script.saves-- == 0)
            return false;
        return !s_script.writes || m_file->write("picture") == 7;
    }
    QList<CxImageFormat> supportedImageFormats() override { return {}; }
    void setOutputFile(QString const& fileName) override { m_file->setFileName(fileName); }
    bool querySavedImageFormat(SxPicBufInfo const& input, SxPicBufInfo& output) override
    {
        CxScriptedEncoder().queryOuputFormat(input, output);
        return s_script.knowsCodec;
    }
    void setSaverOptions(QMap<QString, QVariant> const&) override {}
    QWidget* widgetForSaveDlg(QWidget*) override { return nullptr; }
    QMap<QString, QVariant> optionsFromWidgetInSaveDlg(QWidget*) override { return {}; }
    QMap<QString, QVariant> codecOptionsFromWigetInSaveDlg(QWidget*, unsigned int&) override { return {}; }

private:
    QFile* m_file;
};

/// What a recording does to its file, and to one that is there already.
class tst_Recorder : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void refusedFirstPictureKeepsTheOldFile();
    void trialHasTheSizeThatIsSaved();
    void encoderThatIsNotThereTakesNoPicture();
    void newFileNeedsNoTrial();
    void secondRecordingToTheSameFileIsRefused();
    void fileThatTheSaverCannotOpenKeepsItsContent();
    void refusedPictureIsTheEncodersFault();
    void recordingOfNoPictureIsAFailure();
    void sourceWithoutAPictureIsToldAndWritesNothing();
    void sourceThatFailsIsToldInItsOwnWords();
    void pictureOfAnotherSizeEndsTheRecording();
    void lostPicturesHaveNumbersOfTheSource();
    void stoppedLiveSourceIsRecordedToItsEnd();
    void pluginThatCannotRecordIsTold_data();
    void pluginThatCannotRecordIsTold();

private:
    static SxTestCameraOptions cameraOptions();
    SxRecordSummary record();
    QString path() const { return m_folder->filePath(QStringLiteral("out.h264")); }
    void writeOldFile();

    CxPlugin m_plugin;
    QScopedPointer<QTemporaryDir> m_folder;
};

void tst_Recorder::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
    s_script = SxScript();
    QVERIFY(
        CxRTTI::instance()->registerClass(&m_plugin, CxScriptedEncoder::staticMetaObject, "IxVideoEncoder"));
    QVERIFY(
        CxRTTI::instance()->registerClass(&m_plugin, CxScriptedSaver::staticMetaObject, "IxImageDataSaver"));
}

void tst_Recorder::cleanup() { fx_UnregisterClasses(&m_plugin); }

SxTestCameraOptions tst_Recorder::cameraOptions()
{
    SxTestCameraOptions options;
    options.width = 64;
    options.height = 48;
    options.frames = 3;
    return options;
}

SxRecordSummary tst_Recorder::record()
{
    CxTestCamera camera(cameraOptions());
    SxRecordRequest request;
    request.outputFile = path();
    CxPluginMessages const messages;
    return fx_Record(camera, request);
}

void tst_Recorder::writeOldFile()
{
    QFile file(path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write("yesterday"), qint64{9});
}

void tst_Recorder::refusedFirstPictureKeepsTheOldFile()
{
    writeOldFile();
    s_script.encodes = false;
    SxRecordSummary const summary = record();
    QCOMPARE(summary.error, path() + ": Full. The file that was there is untouched.");
    QCOMPARE(summary.given, 0);
    QCOMPARE(QFile(path()).size(), qint64{9});
    QCOMPARE(s_script.sizeAtOpen, qint64{-1});
}

void tst_Recorder::trialHasTheSizeThatIsSaved()
{
    writeOldFile();
    s_script.height = 32;
    SxRecordSummary const summary = record();
    QCOMPARE(summary.error, QString());
    QCOMPARE(summary.coded, 3);
    QCOMPARE(s_script.tried, QList<QSize>{QSize(64, 32)});
    QCOMPARE(s_script.sizeAtOpen, qint64{9});
    QCOMPARE(QFile(path()).size(), qint64{21});
}

void tst_Recorder::encoderThatIsNotThereTakesNoPicture()
{
    CxTestCamera camera(cameraOptions());
    CxOwnedPicture picture;
    QVERIFY(camera.next(picture.get()) == IxPictureSource::Result::Picture);
    QVERIFY(fx_EncoderTakes(picture.get()));
    fx_UnregisterClasses(&m_plugin);
    QVERIFY(!fx_EncoderTakes(picture.get()));
}

void tst_Recorder::newFileNeedsNoTrial()
{
    QCOMPARE(record().coded, 3);
    QVERIFY(s_script.tried.isEmpty());
}

/// Records the test camera to \p fileName before it delivers its second picture.
class CxSourceThatRecords : public CxTestCamera
{
public:
    CxSourceThatRecords(SxTestCameraOptions const& options, QString fileName)
        : CxTestCamera(options)
        , m_options(options)
        , m_fileName(fileName)
    {}
    Result next(SxPicBuf& picture) override
    {
        if (m_delivered++ == 1) {
            CxTestCamera camera(m_options);
            SxRecordRequest request;
            request.outputFile = m_fileName;
            second = fx_Record(camera, request);
        }
        return CxTestCamera::next(picture);
    }
    SxRecordSummary second;

private:
    SxTestCameraOptions m_options;
    QString m_fileName;
    int m_delivered = 0;
};

void tst_Recorder::secondRecordingToTheSameFileIsRefused()
{
    CxSourceThatRecords source(cameraOptions(), path());
    SxRecordRequest request;
    request.outputFile = path();
    CxPluginMessages const messages;
    SxRecordSummary const first = fx_Record(source, request);
    QCOMPARE(source.second.error, path() + ": another recording is being written to it.");
    QVERIFY(source.second.failure == RecordFailure::Output);
    QCOMPARE(first.error, QString());
    QCOMPARE(QFile(path()).size(), qint64{21});
}

void tst_Recorder::fileThatTheSaverCannotOpenKeepsItsContent()
{
    writeOldFile();
    s_script.opens = false;
    SxRecordSummary const summary = record();
    QVERIFY(!summary.error.isEmpty());
    QCOMPARE(QFile(path()).size(), qint64{9});
}

void tst_Recorder::refusedPictureIsTheEncodersFault()
{
    s_script.saves = 2;
    SxRecordSummary const summary = record();
    QCOMPARE(summary.error, path() + ": The picture was refused without a reason.");
    QVERIFY(summary.failure == RecordFailure::Other);
    QCOMPARE(summary.given, 3);
    QCOMPARE(summary.coded, 2);
    QCOMPARE(QFile(path()).size(), qint64{14});
}

void tst_Recorder::recordingOfNoPictureIsAFailure()
{
    s_script.writes = false; // as when the encoder skips
    SxRecordSummary const summary = record();
    QCOMPARE(summary.given, 3);
    QCOMPARE(static_cast<int>(summary.skipped.size()), 3);
    QVERIFY2(summary.error.startsWith("Nothing was recorded"), qPrintable(summary.error));
    QVERIFY(summary.failure == RecordFailure::Other);
    QVERIFY(!QFile::exists(path()));
}

/// Pictures of the given widths, then an error or the end.
class CxWidthsSource : public IxPictureSource
{
public:
    CxWidthsSource(QVector<int> widths, QString error)
        : m_widths(widths)
        , m_error(error)
    {}
    Result next(SxPicBuf& picture) override
    {
        if (m_widths.isEmpty())
            return m_error.isEmpty() ? Result::End : Result::Error;
        auto const width = static_cast<quint32>(m_widths.takeFirst());
        return fx_PreparePicture(picture, fx_PackedFormat(width, 48, 1, 8)) ? Result::Picture : Result::Error;
    }
    QString errorText() const override { return m_error; }
    int expectedPictures() const override { return -1; }
    bool knowsSignificantBits() const override { return true; }
    QStringList takeWarnings() override { return {}; }
    bool isDamaged() const override { return false; }

private:
    QVector<int> m_widths;
    QString m_error;
};

static SxRecordSummary fx_RecordWidths(QString const& fileName, QVector<int> const& widths,
                                       QString const& error = QString())
{
    CxWidthsSource source(widths, error);
    SxRecordRequest request;
    request.outputFile = fileName;
    CxPluginMessages const messages;
    return fx_Record(source, request);
}

void tst_Recorder::sourceWithoutAPictureIsToldAndWritesNothing()
{
    SxRecordSummary const summary = fx_RecordWidths(path(), {});
    QCOMPARE(summary.error, QString("There is no picture to record."));
    QVERIFY(summary.failure == RecordFailure::Source);
    QVERIFY(!QFile::exists(path()));
}

void tst_Recorder::sourceThatFailsIsToldInItsOwnWords()
{
    SxRecordSummary const summary = fx_RecordWidths(path(), {64, 64}, "The cable is loose.");
    QCOMPARE(summary.error, QString("The cable is loose."));
    QVERIFY(summary.failure == RecordFailure::Source);
    QCOMPARE(summary.coded, 2); // what came before it stays
    QCOMPARE(QFile(path()).size(), qint64{14});
}

void tst_Recorder::pictureOfAnotherSizeEndsTheRecording()
{
    SxRecordSummary const summary = fx_RecordWidths(path(), {64, 64, 32, 64});
    QCOMPARE(summary.error,
             QString("Picture 2 has 32 x 48 pixels, those before it 64 x 48: a recording has one size."));
    QVERIFY(summary.failure == RecordFailure::Source);
    QCOMPARE(summary.coded, 2);
    QCOMPARE(QFile(path()).size(), qint64{14});
}

/// Six pictures of a camera: the third and fourth were lost, as was one behind the last; and it left out two.
class CxLossySource : public CxWidthsSource
{
public:
    CxLossySource()
        : CxWidthsSource({64, 64, 64}, QString())
    {}
    Result next(SxPicBuf& picture) override
    {
        ++m_asked;
        return CxWidthsSource::next(picture);
    }
    bool isLive() const override { return true; }
    SxMissingPictures missing() const override
    {
        return m_asked == 3   ? SxMissingPictures{2, 2}
               : m_asked == 4 ? SxMissingPictures{1, 0}
                              : SxMissingPictures();
    }

private:
    int m_asked = 0;
};

void tst_Recorder::lostPicturesHaveNumbersOfTheSource()
{
    CxLossySource source;
    SxRecordRequest request;
    request.outputFile = path();
    CxPluginMessages const messages;
    SxRecordSummary const summary = fx_Record(source, request);
    QCOMPARE(summary.error, QString());
    QCOMPARE(summary.given, 6);
    QCOMPARE(summary.coded, 3);
    QCOMPARE(summary.lost, (QVector<int>{2, 3, 5}));
    QCOMPARE(summary.missedByCamera, 2);
    QVERIFY(summary.skipped.isEmpty());
    QCOMPARE(QFile(path()).size(), qint64{21});
}

void tst_Recorder::stoppedLiveSourceIsRecordedToItsEnd()
{
    CxLossySource source;
    std::atomic<bool> stop{true}; // the source gives what came before that
    SxRecordRequest request;
    request.outputFile = path();
    request.stop = &stop;
    CxPluginMessages const messages;
    SxRecordSummary const summary = fx_Record(source, request);
    QCOMPARE(summary.coded, 3);
    QVERIFY(summary.wasStopped);
}

void tst_Recorder::pluginThatCannotRecordIsTold_data()
{
    QTest::addColumn<bool>("hasSaver");
    QTest::addColumn<bool>("showsFile");
    QTest::addColumn<bool>("knowsCodec");
    QTest::addColumn<QString>("error");
    QTest::newRow("no saver") << false << true << true << "No loaded plug-in provides an IxImageDataSaver.";
    QTest::newRow("no file") << true << false << true << "The loaded plug-in's saver does not show its file.";
    QTest::newRow("no encoder") << true << true << false << "No loaded plug-in provides an H.264 encoder.";
}

void tst_Recorder::pluginThatCannotRecordIsTold()
{
    QFETCH(bool, hasSaver);
    QFETCH(bool, showsFile);
    QFETCH(bool, knowsCodec);
    QFETCH(QString, error);
    s_script.showsFile = showsFile;
    s_script.knowsCodec = knowsCodec;
    if (!hasSaver)
        fx_UnregisterClasses(&m_plugin);
    writeOldFile();
    SxRecordSummary const summary = record();
    QCOMPARE(summary.error, error);
    QVERIFY(summary.failure == RecordFailure::Other);
    QCOMPARE(QFile(path()).size(), qint64{9}); // what was there is untouched
}

QTEST_GUILESS_MAIN(tst_Recorder)
#include "tst_Recorder.moc"

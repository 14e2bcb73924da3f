#include "Recorder.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <new>

#include "CodecOptions.h"
#include "EncoderTrial.h"
#include "IxImageDataSaver.h"
#include "IxPictureSource.h"
#include "LentPicture.h"
#include "PictureFormat.h"
#include "PluginHost.h"
#include "PluginMessages.h"
#include "ProfileAndLevel.h"
#include "RecordingOutput.h"
#include "SameFile.h"
#include "ShortMemory.h"
#include "SkippedPictures.h"

namespace {

// Bytes with which reading and encoding never fail for want of them: OpenH264 keeps some dozen pictures.
constexpr quint64 kMemoryToRead = 64 * 1024 * 1024;
constexpr quint64 kPicturesInEncoder = 32;

/// One recording from the first picture to the closed file.
class CxRecording
{
public:
    CxRecording(IxPictureSource& source, SxRecordRequest const& request, SxRecordSummary& summary)
        : m_source(source)
        , m_request(request)
        , m_summary(summary)
    {}

    void run(RecordProgress const& progress);

private:
    void recordAll(RecordProgress const& progress, QElapsedTimer const& timer);
    bool start();
    bool openOutput();
    bool tryEncoder();
    bool nextPicture();
    bool isMemoryToBlame();
    bool saveOne();
    bool passOn();
    void finish();
    void keepCompletePictures();
    void fail(QString const& sentence, RecordFailure failure = RecordFailure::Other);
    void failWithoutMemory();
    bool mayContinue() const;
    int expectedPictures() const;
    void noteEnd();
    QString outputError(QStringList const& messages, QString const& cause = QString()) const;

    IxPictureSource& m_source;
    SxRecordRequest const& m_request;
    SxRecordSummary& m_summary;
    CxRecordingOutput m_output;
    bool m_replacesFile = false; ///< a recording, or whatever else has bytes to lose
    CxOwnedPicture m_picture;
    SxCreated<IxImageDataSaver> m_saver;
    QFile* m_file = nullptr;  ///< the saver's, and gone with it
    bool m_isWriting = false; ///< it is open, so what was in it is gone
    bool m_isRefused = false; ///< the saver did not save a picture
    QStringList m_messages;   ///< what it said then
    CxSkippedPictures m_pictures;
};

/// The first failure is told; what follows from it is not.
void CxRecording::fail(QString const& sentence, RecordFailure failure)
{
    if (!m_summary.error.isEmpty())
        return;
    m_summary.error = sentence;
    m_summary.failure = failure;
}

/// Only if it is memory that the encoder lacks, which it does not say.
void CxRecording::failWithoutMemory()
{
    SxPicBufInfo const& picture = m_picture.get();
    if (fx_IsMemoryShort(kMemoryToRead + kPicturesInEncoder * picture.width * picture.height * 3 / 2))
        fail(QStringLiteral("There is not enough memory to encode pictures of %1 x %2.")
                 .arg(picture.width)
                 .arg(picture.height));
}

bool CxRecording::mayContinue() const
{
    return m_request.maxPictures == 0 || m_summary.given < m_request.maxPictures;
}

int CxRecording::expectedPictures() const
{
    int const expected = m_source.expectedPictures();
    int const limit = m_request.maxPictures;
    return limit > 0 && (expected < 0 || limit < expected) ? limit : expected;
}

/// What the end of the source says, when a stop flag may have been what ended it.
void CxRecording::noteEnd()
{
    m_summary.wasStopped = m_request.stop && m_request.stop->load();
    bool const isLimited = m_source.hasEnd() || m_request.maxPictures > 0;
    bool const hasAll = m_summary.expected > 0 && m_summary.given >= m_summary.expected;
    m_summary.isCutShort = m_summary.wasStopped && isLimited && !hasAll;
}

/// The plug-in's messages as one sentence about the output: what it said last, for the reason that the system
/// gave or it gave first.
QString CxRecording::outputError(QStringList const& messages, QString const& cause) const
{
    QString what =
        messages.isEmpty() ? QStringLiteral("The picture was refused without a reason.") : messages.last();
    QString why = cause.isEmpty() && messages.size() > 1 ? messages.first() : cause;
    if (!why.isEmpty()) {
        if (what.endsWith(QLatin1Char('.')))
            what.chop(1);
        if (why.endsWith(QLatin1Char('.')))
            why.chop(1);
        what += QStringLiteral(" (%1).").arg(why);
    }
    return QStringLiteral("%1: %2").arg(m_request.outputFile, what);
}

/// Decoders take missing memory for damage in what they read.
bool CxRecording::isMemoryToBlame()
{
    if (!m_source.isDamaged() || !fx_IsMemoryShort(kMemoryToRead))
        return false;
    m_source.takeWarnings(); // they blame the source
    fail(QStringLiteral("There is not enough memory to read pictures."));
    return true;
}

/// Fetches the next picture; false at the end, when stopped and on errors.
bool CxRecording::nextPicture()
{
    if (m_request.stop && m_request.stop->load()) {
        noteEnd();
        return false;
    }
    IxPictureSource::Result const result = m_source.next(m_picture.get());
    if (isMemoryToBlame())
        return false;
    switch (result) {
    case IxPictureSource::Result::Picture:
        break;
    case IxPictureSource::Result::End:
        noteEnd();
        return false;
    case IxPictureSource::Result::Error:
        if (fx_IsMemoryShort(kMemoryToRead))
            fail(QStringLiteral("There is not enough memory to read pictures."));
        fail(m_source.errorText(), RecordFailure::Source);
        return false;
    }

    m_summary.expected = expectedPictures();
    SxPicBuf const& picture = m_picture.get();
    if (m_summary.given > 0 &&
        (picture.width != m_summary.input.width || picture.height != m_summary.input.height)) {
        fail(QStringLiteral(
                 "Picture %1 has %2 x %3 pixels, those before it %4 x %5: a recording has one size.")
                 .arg(m_summary.given)
                 .arg(picture.width)
                 .arg(picture.height)
                 .arg(m_summary.input.width)
                 .arg(m_summary.input.height),
             RecordFailure::Source);
        return false;
    }
    if (fx_IsWordFormat(picture) && !m_source.knowsSignificantBits())
        m_summary.highestSample =
            std::max(m_summary.highestSample, static_cast<quint32>(fx_HighestSample(picture)));
    return true;
}

/// The saver empties its file before it asks its encoder for anything: only what encodes may cost an old
/// recording.
bool CxRecording::tryEncoder()
{
    CxPluginMessages::take();
    if (fx_EncoderTakes(m_picture.get()))
        return true;
    failWithoutMemory();
    fail(outputError(CxPluginMessages::take()) + QStringLiteral(" The file that was there is untouched."));
    return false;
}

bool CxRecording::openOutput()
{
    QFileInfo const there(m_request.outputFile);
    m_replacesFile = there.isFile() && there.size() > 0;
    if (fx_IsReadHere(m_request.outputFile)) {
        fail(QStringLiteral("%1: the recording would replace its own source.").arg(m_request.outputFile),
             RecordFailure::Output);
        return false;
    }
    QString error;
    if (m_output.open(m_request.outputFile, m_request.stop, error))
        return true;
    if (error.isEmpty())
        noteEnd(); // stopped while nobody was there to read
    else
        fail(error, RecordFailure::Output);
    return false;
}

/// With the first picture at hand: makes the saver and tells it about the recording.
bool CxRecording::start()
{
    if (!openOutput())
        return false;
    QString error;
    m_saver = fx_Create<IxImageDataSaver>("IxImageDataSaver", error);
    if (!m_saver.as) {
        fail(error);
        return false;
    }
    fx_SetCodecOptions(kFourCCH264, m_request.encoder.toMap());
    m_saver.as->setSaverOptions(m_request.saverOptions);
    m_saver.as->setOutputFile(m_output.saverFile());
    m_saver.as->setSequenceSize(m_source.expectedPictures());
    m_file = m_saver.object->findChild<QFile*>();
    if (!m_file) {
        fail(QStringLiteral("The loaded plug-in's saver does not show its file."));
        return false;
    }

    m_summary.input = m_picture.get();
    SxPicBufInfo saved;
    if (!m_saver.as->querySavedImageFormat(m_picture.get(), saved)) {
        fail(QStringLiteral("No loaded plug-in provides an H.264 encoder."));
        return false;
    }
    m_summary.savedWidth = saved.width;
    m_summary.savedHeight = saved.height;
    QString const obstacle = fx_ObstacleToEncoding(m_summary.input, saved);
    if (!obstacle.isEmpty()) {
        fail(obstacle);
        return false;
    }
    return !m_replacesFile || tryEncoder();
}

/// Has the saver write the picture at hand and finds out what it did with it.
bool CxRecording::saveOne()
{
    CxLentPicture const lent(m_picture.get());
    CxPluginMessages::take(); // what follows belongs to this picture
    QElapsedTimer timer;
    timer.start();
    bool const saved = m_saver.as->save(&lent, m_summary.given);
    m_summary.savingNs += timer.nsecsElapsed();

    int const number = m_summary.given++;
    m_isWriting = m_file->isOpen();
    if (!saved) {
        m_isRefused = true;
        m_messages = CxPluginMessages::take();
        return false;
    }
    if (m_pictures.isSkipped(m_file->pos())) // where buffered bytes count
        m_summary.skipped.append(number);
    else
        ++m_summary.coded;
    m_summary.bytes = m_pictures.bytes();
    return passOn();
}

/// What is not a file gets each picture at once: then it is known to have taken it.
bool CxRecording::passOn()
{
    if (!m_output.isRelayed() || (m_file->flush() && m_output.passOn()))
        return true;
    fail(QStringLiteral("%1: %2.").arg(m_request.outputFile, m_output.why()), RecordFailure::Output);
    return false;
}

/// Closes the file by deleting the saver, and sees what went wrong with it.
void CxRecording::finish()
{
    CxPluginMessages::take();
    m_file = nullptr;
    m_saver.object.reset();
    QStringList const last = CxPluginMessages::take(); // the last bytes did not reach the disk
    m_messages += last;
    if (m_isRefused || !last.isEmpty()) {
        QString const cause = m_output.why();
        bool const isEncoderAtFault = cause.isEmpty() && last.isEmpty();
        if (isEncoderAtFault)
            failWithoutMemory();
        fail(outputError(m_messages, cause), isEncoderAtFault ? RecordFailure::Other : RecordFailure::Output);
    }
    keepCompletePictures();
}

/// Cuts off half a picture that a full disk left at the end: all that is in the file then plays.
void CxRecording::keepCompletePictures()
{
    if (!m_isWriting)
        return;
    m_summary.level = fx_ProfileAndLevel(m_output.head()).level;
    m_summary.bytes = m_output.size();
    if (m_summary.bytes < m_pictures.bytes())
        fail(m_request.outputFile + QStringLiteral(": only %1 of %2 bytes reached the disk.")
                                        .arg(m_summary.bytes)
                                        .arg(m_pictures.bytes()),
             RecordFailure::Output);
    m_summary.coded = m_pictures.codedWithin(m_summary.bytes);
    qint64 const end = m_pictures.endWithin(m_summary.bytes);
    if (m_summary.bytes > end) {
        m_output.cutOff(end);
        m_summary.bytes = m_output.size();
    }
}

/// From the first picture at hand to the last.
void CxRecording::recordAll(RecordProgress const& progress, QElapsedTimer const& timer)
{
    try {
        bool goesOn = start();
        bool const isStarted = goesOn;
        while (goesOn) {
            goesOn = saveOne();
            m_summary.elapsedNs = timer.nsecsElapsed();
            if (goesOn && progress)
                progress(m_summary);
            goesOn = goesOn && mayContinue() && nextPicture();
        }
        if (isStarted && m_summary.coded == 0 && !m_isRefused)
            fail(QStringLiteral("Nothing was recorded: the encoder left out every picture."));
    } catch (std::bad_alloc const&) {
        fail(QStringLiteral("There is not enough memory for pictures of %1 x %2.")
                 .arg(m_picture.get().width)
                 .arg(m_picture.get().height));
    }
}

void CxRecording::run(RecordProgress const& progress)
{
    QElapsedTimer timer;
    timer.start();
    if (!nextPicture()) {
        if (m_summary.error.isEmpty() && !m_summary.wasStopped)
            fail(QStringLiteral("There is no picture to record."), RecordFailure::Source);
        return;
    }
    recordAll(progress, timer);
    finish();
    m_summary.elapsedNs = timer.nsecsElapsed();
}

} // namespace

SxRecordSummary fx_Record(IxPictureSource& source, SxRecordRequest const& request,
                          RecordProgress const& progress)
{
    SxRecordSummary summary;
    CxRecording(source, request, summary).run(progress);
    summary.isSourceDamaged = source.isDamaged();
    return summary;
}

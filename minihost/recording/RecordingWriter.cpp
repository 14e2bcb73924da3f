#include "RecordingWriter.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include "CodecOptions.h"
#include "EncoderTrial.h"
#include "LentPicture.h"
#include "PluginMessages.h"
#include "ProfileAndLevel.h"
#include "SameFile.h"
#include "ShortMemory.h"

// Bytes with which encoding never fails for want of them: OpenH264 keeps some dozen pictures.
static constexpr quint64 kMemoryToBegin = 64 * 1024 * 1024;
static constexpr quint64 kPicturesInEncoder = 32;

void fx_Fail(SxRecordSummary& summary, QString const& sentence, RecordFailure failure)
{
    if (!summary.error.isEmpty())
        return;
    summary.error = sentence;
    summary.failure = failure;
}

CxRecordingWriter::CxRecordingWriter(SxRecordRequest const& request, SxRecordSummary& summary)
    : m_request(request)
    , m_summary(summary)
{}

/// Only if it is memory that the encoder lacks, which it does not say.
void CxRecordingWriter::failWithoutMemory()
{
    SxPicBufInfo const& picture = m_summary.input;
    if (fx_IsMemoryShort(kMemoryToBegin + kPicturesInEncoder * picture.width * picture.height * 3 / 2))
        fx_Fail(m_summary, QStringLiteral("There is not enough memory to encode pictures of %1 x %2.")
                               .arg(picture.width)
                               .arg(picture.height));
}

/// The plug-in's messages as one sentence about the output: what it said last, for the reason that the system
/// gave or it gave first.
QString CxRecordingWriter::outputError(QStringList const& messages, QString const& cause) const
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

/// The saver empties its file before it asks its encoder for anything: only what encodes may cost an old
/// recording.
bool CxRecordingWriter::tryEncoder(SxPicBuf const& first)
{
    CxPluginMessages::take();
    if (fx_EncoderTakes(first))
        return true;
    failWithoutMemory();
    fx_Fail(m_summary,
            outputError(CxPluginMessages::take()) + QStringLiteral(" The file that was there is untouched."));
    return false;
}

bool CxRecordingWriter::openOutput()
{
    QFileInfo const there(m_request.outputFile);
    m_replacesFile = there.isFile() && there.size() > 0;
    if (fx_IsReadHere(m_request.outputFile)) {
        fx_Fail(m_summary,
                QStringLiteral("%1: the recording would replace its own source.").arg(m_request.outputFile),
                RecordFailure::Output);
        return false;
    }
    QString error;
    if (m_output.open(m_request.outputFile, m_request.stop, error))
        return true;
    if (!error.isEmpty()) // else stopped while nobody was there to read
        fx_Fail(m_summary, error, RecordFailure::Output);
    return false;
}

bool CxRecordingWriter::begin(SxPicBuf const& first, int expected)
{
    m_summary.input = first;
    if (!openOutput())
        return false;
    QString error;
    m_saver = fx_Create<IxImageDataSaver>("IxImageDataSaver", error);
    if (!m_saver.as) {
        fx_Fail(m_summary, error);
        return false;
    }
    fx_SetCodecOptions(kFourCCH264, m_request.encoder.toMap());
    m_saver.as->setSaverOptions(m_request.saverOptions);
    m_saver.as->setOutputFile(m_output.saverFile());
    m_saver.as->setSequenceSize(expected);
    m_file = m_saver.object->findChild<QFile*>();
    if (!m_file) {
        fx_Fail(m_summary, QStringLiteral("The loaded plug-in's saver does not show its file."));
        return false;
    }

    SxPicBufInfo saved;
    if (!m_saver.as->querySavedImageFormat(first, saved)) {
        fx_Fail(m_summary, QStringLiteral("No loaded plug-in provides an H.264 encoder."));
        return false;
    }
    m_summary.savedWidth = saved.width;
    m_summary.savedHeight = saved.height;
    QString const obstacle = fx_ObstacleToEncoding(m_summary.input, saved);
    if (!obstacle.isEmpty()) {
        fx_Fail(m_summary, obstacle);
        return false;
    }
    return !m_replacesFile || tryEncoder(first);
}

bool CxRecordingWriter::save(SxPicBuf const& picture)
{
    CxLentPicture const lent(picture);
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
bool CxRecordingWriter::passOn()
{
    if (!m_output.isRelayed() || (m_file->flush() && m_output.passOn()))
        return true;
    fx_Fail(m_summary, QStringLiteral("%1: %2.").arg(m_request.outputFile, m_output.why()),
            RecordFailure::Output);
    return false;
}

void CxRecordingWriter::finish()
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
        fx_Fail(m_summary, outputError(m_messages, cause),
                isEncoderAtFault ? RecordFailure::Other : RecordFailure::Output);
    }
    keepCompletePictures();
}

/// Cuts off half a picture that a full disk left at the end: all that is in the file then plays.
void CxRecordingWriter::keepCompletePictures()
{
    if (!m_isWriting)
        return;
    m_summary.level = fx_ProfileAndLevel(m_output.head()).level;
    m_summary.bytes = m_output.size();
    if (m_summary.bytes < m_pictures.bytes())
        fx_Fail(m_summary,
                m_request.outputFile + QStringLiteral(": only %1 of %2 bytes reached the disk.")
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

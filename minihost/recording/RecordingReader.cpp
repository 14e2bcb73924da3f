#include "RecordingReader.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <climits>

#include "PluginMessages.h"
#include "Refusal.h"
#include "StreamKind.h"

/// What stands in the way before anything is opened; empty when nothing does. Only a regular file has
/// frames to go back to, and opening a pipe would wait for its other end.
static QString fx_ObstacleToOpening(QString const& fileName)
{
    QFileInfo const info(fileName);
    if (!info.exists())
        return QStringLiteral("there is no such file.");
    if (info.isDir())
        return QStringLiteral("this is a folder.");
    if (!info.isFile())
        return QStringLiteral("this is no regular file, so its frames cannot be reached in any order.");
    if (!info.isReadable())
        return QStringLiteral("no permission to read it.");
    if (info.size() == 0)
        return QStringLiteral("the file is empty.");
    return QString();
}

/// OpenH264's DECODING_STATE bits (codec_app_def.h) in words.
static QString fx_DecoderStateText(int state)
{
    struct SxStateText
    {
        int bit;
        char const* text;
    };
    static SxStateText const kTexts[] = {
        {0x0001, "the frame is incomplete"},
        {0x0002, "a picture that it refers to is missing"},
        {0x0004, "its data are damaged or cut off"},
        {0x0008, "a layer that it depends on is missing"},
        {0x0010, "its parameter sets are missing"},
        {0x0020, "a damaged part was replaced by an older picture"},
        {0x0040, "its list of reference pictures is damaged"},
        {0x1000, "the decoder was called wrongly"},
        {0x2000, "the decoder was not initialised"},
        {0x4000, "memory is short"},
    };
    QStringList words;
    for (SxStateText const& entry : kTexts) {
        if ((state & entry.bit) != 0)
            words += QString::fromLatin1(entry.text);
    }
    return words.join(QStringLiteral(", "));
}

/// Half a sentence on why there is no picture, from what the plug-in logged.
static QString fx_CauseOfNoPicture(QStringList const& messages)
{
    static QRegularExpression const kCode(QStringLiteral("failed with code: (\\d+)$"));
    if (messages.isEmpty())
        return QStringLiteral("no picture of the recording's size comes out of its data");
    QRegularExpressionMatch const match = kCode.match(messages.last());
    QString const words = fx_DecoderStateText(match.captured(1).toInt());
    if (!words.isEmpty())
        return QStringLiteral("%1 (decoder code %2)").arg(words, match.captured(1));
    QString cause = messages.last();
    if (cause.endsWith(QLatin1Char('.')))
        cause.chop(1);
    return cause;
}

CxRecordingReader::CxRecordingReader()
    : m_loader(fx_Create<IxImageDataLoader>("IxImageDataLoader", m_whyNoLoader))
{}

CxRecordingReader::CxRecordingReader(std::unique_ptr<QObject> loader)
{
    m_loader.as = static_cast<IxImageDataLoader*>(loader->qt_metacast("IxImageDataLoader"));
    m_loader.object = std::move(loader);
}

void CxRecordingReader::moveToThread(QThread* thread)
{
    if (m_loader.object)
        m_loader.object->moveToThread(thread);
}

bool CxRecordingReader::open(QString const& fileName, QString& error)
{
    m_fileName = fileName;
    QString cause = fx_ObstacleToOpening(fileName);
    if (!cause.isEmpty()) {
        error = QStringLiteral("%1: %2").arg(fileName, cause);
        return false;
    }
    SxStreamKind const kind = fx_StreamKindOf(fileName);
    if (kind.isForeign) {
        error = fileName +
                QStringLiteral(": this is no recording but %1, %2 pictures; '%3' makes a recording of it.")
                    .arg(fx_ForeignStreamText(kind))
                    .arg(fx_CountPictures(fileName, kind.codec))
                    .arg(fx_CommandToRecord(fileName));
        return false;
    }
    if (!m_loader.as) {
        error = m_whyNoLoader;
        return false;
    }
    m_accessor = static_cast<IxVideoAccessor*>(m_loader.object->qt_metacast("IxVideoAccessor"));
    if (!m_accessor) {
        error = QStringLiteral("The loaded plug-in gives no access to coded frames.");
        return false;
    }
    m_loader.as->setInputFile(fileName);
    if (!m_loader.as->load()) {
        CxPluginMessages::take(); // the cause below says it with the reason
        error = QStringLiteral("%1: %2").arg(fileName, fx_CauseOfRefusal(fileName));
        return false;
    }

    m_fileBytes = QFileInfo(fileName).size();
    m_sidecar = fx_FindSidecar(fileName);
    bool const isNoted = m_sidecar.sidecar && m_sidecar.sidecar->rate.isKnown();
    m_rate = isNoted ? m_sidecar.sidecar->rate : kind.rate;
    m_fps = m_loader.as->loadedFps();
    m_accessor->keyFrames(m_keyFrames);
    int const count = m_loader.as->sequenceSize();
    m_frames.reserve(static_cast<size_t>(count));
    qint64 offset = 0;
    for (int frame = 0; frame < count; ++frame) {
        quint64 const size = m_accessor->frameDataSize(frame);
        m_frames.push_back({offset, size, false});
        offset += static_cast<qint64>(size);
    }
    for (int const key : m_keyFrames) {
        if (key >= 0 && key < count)
            m_frames[static_cast<size_t>(key)].isKey = true;
    }
    return true;
}

std::unique_ptr<CxImageData> CxRecordingReader::picture(int frame, QString& error)
{
    bool const isKey = frame >= 0 && frame < frameCount() && m_frames[static_cast<size_t>(frame)].isKey;
    if (isKey || frame != m_lastFailed + 1)
        m_failedInARow = 0;
    std::unique_ptr<CxImageData> image;
    if (m_failedInARow < 2)
        image = decode(frame, m_lastCause);
    if (image) {
        m_failedInARow = 0;
        return image;
    }
    m_lastFailed = frame;
    ++m_failedInARow;
    error = m_lastCause;
    return nullptr;
}

std::unique_ptr<CxImageData> CxRecordingReader::decode(int frame, QString& error)
{
    // Decoding nothing counts as success and leaves a picture that nobody filled.
    if (m_accessor->frameDataSize(frame) == 0) {
        error = QStringLiteral("it has no data");
        return nullptr;
    }
    CxPluginMessages::take();
    IxChainData* const data = m_loader.as->loadedData(frame);
    std::unique_ptr<CxImageData> image(qobject_cast<CxImageData*>(data));
    if (!image)
        delete data;
    if (!image || !image->picBuf()->data) {
        error = fx_CauseOfNoPicture(CxPluginMessages::take());
        return nullptr;
    }
    return image;
}

QByteArray CxRecordingReader::codedFrame(int frame)
{
    unsigned long const wanted = m_accessor->frameDataSize(frame);
    QByteArray bytes(static_cast<int>(qMin<unsigned long>(wanted, INT_MAX / 2)), '\0');
    unsigned long size = static_cast<unsigned long>(bytes.size());
    if (size != wanted || !m_accessor->frameData(frame, bytes.data(), size) || size != wanted)
        return QByteArray();
    return bytes;
}

#include "PictureReader.h"

#include <QMutexLocker>
#include <algorithm>

#include "StreamKind.h"

CxPictureReader::CxPictureReader(qint64 memoryLimit, QObject* parent)
    : QThread(parent)
    , m_memoryLimit(memoryLimit)
{
    qRegisterMetaType<SxShownPicture>();
    qRegisterMetaType<SxOpenedRecording>();
    start();
}

CxPictureReader::~CxPictureReader()
{
    {
        QMutexLocker const lock(&m_mutex);
        m_quit = true;
        m_wake.wakeOne();
    }
    wait();
}

void CxPictureReader::open(std::unique_ptr<CxRecordingReader> recording, QString const& fileName)
{
    recording->moveToThread(this);
    QMutexLocker const lock(&m_mutex);
    // One that has opened nothing yet belongs to no thread's work and may go right here.
    m_newRecording = std::move(recording);
    m_newFileName = fileName;
    m_hasNewFile = true;
    m_order.reset();
    m_wake.wakeOne();
}

void CxPictureReader::closeRecording()
{
    QMutexLocker const lock(&m_mutex);
    m_newRecording.reset();
    m_hasNewFile = true;
    m_order.reset();
    m_wake.wakeOne();
}

int CxPictureReader::request(int number, bool isBackwards)
{
    QMutexLocker const lock(&m_mutex);
    m_order = SxOrder{++m_lastTicket, number, isBackwards};
    m_wake.wakeOne();
    return m_lastTicket;
}

void CxPictureReader::run()
{
    for (;;) {
        std::unique_ptr<CxRecordingReader> recording;
        QString fileName;
        bool hasNewFile = false;
        std::optional<SxOrder> order;
        {
            QMutexLocker const lock(&m_mutex);
            while (!m_quit && !m_hasNewFile && !m_order)
                m_wake.wait(&m_mutex);
            if (m_quit)
                break;
            hasNewFile = m_hasNewFile;
            m_hasNewFile = false;
            recording = std::move(m_newRecording);
            fileName = m_newFileName;
            order.swap(m_order);
        }
        if (hasNewFile)
            openFile(std::move(recording), fileName);
        if (order && m_recording)
            fulfil(*order);
    }
    m_kept.clear();
    m_recording.reset(); // in the thread that used it
}

static QString fx_CodecText(QString const& fileName)
{
    SxStreamKind const kind = fx_StreamKindOf(fileName);
    QString text = kind.codecName();
    if (!kind.profile.isEmpty())
        text += QStringLiteral(" %1, level %2").arg(kind.profile, kind.level);
    return text;
}

void CxPictureReader::openFile(std::unique_ptr<CxRecordingReader> recording, QString const& fileName)
{
    QString error;
    if (recording && !recording->open(fileName, error)) {
        recording.reset();
        emit openFailed(fileName, error);
        return;
    }
    m_kept.clear();
    m_keptBytes = 0;
    m_recording = std::move(recording);
    if (!m_recording)
        return;
    QVector<quint32> bytes;
    bytes.reserve(m_recording->frameCount());
    for (SxCodedFrame const& frame : m_recording->frames())
        bytes.append(static_cast<quint32>(frame.size));
    m_info = {fileName,
              m_recording->frameCount(),
              m_recording->fps(),
              m_recording->keyFrames(),
              m_recording->sidecar(),
              bytes,
              fx_CodecText(fileName),
              m_recording->rate()};
    emit opened(m_info);
}

void CxPictureReader::fulfil(SxOrder const& order)
{
    SxShownPicture picture;
    QString cause;
    bool const done = order.isBackwards ? readGroupUpTo(order.number, picture, cause)
                                        : read(order.number, false, picture, cause);
    if (done)
        emit pictureRead(order.ticket, picture);
    else if (!order.isBackwards || !isSuperseded())
        emit pictureFailed(
            order.ticket, order.number,
            m_info.fileName +
                QStringLiteral(": frame %1 cannot be decoded: %2.").arg(order.number).arg(cause));
}

bool CxPictureReader::isSuperseded()
{
    QMutexLocker const lock(&m_mutex);
    return m_quit || m_hasNewFile || m_order;
}

bool CxPictureReader::read(int number, bool isBackwards, SxShownPicture& picture, QString& cause)
{
    auto const kept = m_kept.find(number);
    if (kept != m_kept.end()) {
        picture = kept->second;
        return true;
    }
    std::unique_ptr<CxImageData> data = m_recording->picture(number, cause);
    ++m_decoded;
    if (!data)
        return false;
    picture = fx_ShownPicture(number, std::move(data));
    if (m_info.sidecar.sidecar)
        picture.rotation = m_info.sidecar.sidecar->rotation;
    keep(picture, isBackwards);
    return true;
}

/// First picture of the group that \p number belongs to.
int CxPictureReader::groupStart(int number) const
{
    auto const next = std::upper_bound(m_info.keyFrames.begin(), m_info.keyFrames.end(), number);
    return next == m_info.keyFrames.begin() ? 0 : *(next - 1);
}

/// Decodes the group of pictures once, on the way keeping those just before \p number, as many as the
/// memory limit allows.
bool CxPictureReader::readGroupUpTo(int number, SxShownPicture& picture, QString& cause)
{
    if (m_kept.count(number) != 0)
        return read(number, true, picture, cause);
    int first = groupStart(number);
    if (!m_kept.empty()) {
        qint64 const each = std::max<qint64>(m_keptBytes / static_cast<qint64>(m_kept.size()), 1);
        qint64 const room = std::max<qint64>(m_memoryLimit / each, 1);
        first = static_cast<int>(std::max<qint64>(first, number - room + 1));
    }
    for (int i = first; i < number; ++i) {
        if (isSuperseded())
            return false;
        SxShownPicture passed;
        read(i, true, passed, cause); // one that fails on the way does not matter here
    }
    return read(number, true, picture, cause);
}

/// Keeps a picture and gives up others once they are too many: those farthest from it, but on the way back
/// first those that lie behind.
void CxPictureReader::keep(SxShownPicture const& picture, bool isBackwards)
{
    m_kept[picture.number] = picture;
    m_keptBytes += picture.image.sizeInBytes();
    while (m_keptBytes > m_memoryLimit && m_kept.size() > 1) {
        auto const first = m_kept.begin();
        auto const last = std::prev(m_kept.end());
        bool const isLastBehind = isBackwards && last->first > picture.number;
        bool const isFirstFarther = picture.number - first->first > last->first - picture.number;
        auto const victim = isFirstFarther && !isLastBehind ? first : last;
        m_keptBytes -= victim->second.image.sizeInBytes();
        m_kept.erase(victim);
    }
}

#include "PictureReader.h"

#include <QMutexLocker>
#include <algorithm>

#include "IxVideoAccessor.h"
#include "PluginMessages.h"

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

void CxPictureReader::open(std::unique_ptr<QObject> loader, QString const& fileName)
{
    loader->moveToThread(this);
    QMutexLocker const lock(&m_mutex);
    // A loader that nobody opened yet belongs to no thread's work and may go right here.
    m_newLoader = std::move(loader);
    m_newFileName = fileName;
    m_hasNewFile = true;
    m_order.reset();
    m_wake.wakeOne();
}

void CxPictureReader::closeRecording()
{
    QMutexLocker const lock(&m_mutex);
    m_newLoader.reset();
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
        std::unique_ptr<QObject> loader;
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
            loader = std::move(m_newLoader);
            fileName = m_newFileName;
            order.swap(m_order);
        }
        if (hasNewFile)
            openLoader(std::move(loader), fileName);
        if (order && m_loader)
            fulfil(*order);
    }
    m_kept.clear();
    m_loaderObject.reset(); // in the thread that used it
}

void CxPictureReader::openLoader(std::unique_ptr<QObject> loader, QString const& fileName)
{
    m_kept.clear();
    m_keptBytes = 0;
    m_loader = nullptr;
    m_loaderObject = std::move(loader);
    if (!m_loaderObject)
        return;

    auto* const opening = static_cast<IxImageDataLoader*>(m_loaderObject->qt_metacast("IxImageDataLoader"));
    CxPluginMessages::take(); // what follows belongs to this file
    opening->setInputFile(fileName);
    int const count = opening->load() ? opening->sequenceSize() : 0;
    if (count == 0) {
        m_loaderObject.reset();
        emit openFailed(fileName, CxPluginMessages::take());
        return;
    }
    m_loader = opening;
    m_info = {fileName, count, opening->loadedFps(), {}};
    if (auto* const video = static_cast<IxVideoAccessor*>(m_loaderObject->qt_metacast("IxVideoAccessor")))
        video->keyFrames(m_info.keyFrames);
    emit opened(m_info);
}

void CxPictureReader::fulfil(SxOrder const& order)
{
    CxPluginMessages::take();
    SxShownPicture picture;
    bool const done =
        order.isBackwards ? readGroupUpTo(order.number, picture) : read(order.number, false, picture);
    if (done)
        emit pictureRead(order.ticket, picture);
    else if (!order.isBackwards || !isSuperseded())
        emit pictureFailed(order.ticket, order.number, CxPluginMessages::take());
}

bool CxPictureReader::isSuperseded()
{
    QMutexLocker const lock(&m_mutex);
    return m_quit || m_hasNewFile || m_order;
}

bool CxPictureReader::read(int number, bool isBackwards, SxShownPicture& picture)
{
    auto const kept = m_kept.find(number);
    if (kept != m_kept.end()) {
        picture = kept->second;
        return true;
    }
    std::unique_ptr<IxChainData> loaded(m_loader->loadedData(number));
    ++m_decoded;
    auto* const data = qobject_cast<CxImageData*>(loaded.get());
    if (!data)
        return false;
    static_cast<void>(loaded.release()); // data owns it now
    picture = fx_ShownPicture(number, std::unique_ptr<CxImageData>(data));
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
bool CxPictureReader::readGroupUpTo(int number, SxShownPicture& picture)
{
    if (m_kept.count(number) != 0)
        return read(number, true, picture);
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
        read(i, true, passed); // one that fails on the way does not matter here
    }
    return read(number, true, picture);
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

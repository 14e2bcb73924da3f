#include "H264VideoLoader.h"

#include <cstdlib>
#include <cstring>

#include "CriticalMessage.h"
#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "RGB32Format.h"
#include "SPS.h"
#include "openH264Decoder.h"

// A raw stream says nothing reliable about its rate; ours are planned for this one.
static constexpr double kFps = 30.0;

bool CxH264VideoLoader::load() { return m_file.isOpen() || open(); }

int CxH264VideoLoader::sequenceSize()
{
    load();
    return static_cast<int>(m_index.size());
}

QString CxH264VideoLoader::inputFile() { return m_inputFile; }

void CxH264VideoLoader::setInputFile(QString const& fileName) { m_inputFile = fileName; }

double CxH264VideoLoader::loadedFps()
{
    load();
    return m_fps;
}

QList<CxImageFormat> CxH264VideoLoader::supportedImageFormats()
{
    CxImageFormat format;
    format.description = tr("H.264 file") + QStringLiteral(" (*.h264)");
    format.kind = 2;
    return {format};
}

int CxH264VideoLoader::framesCount() { return sequenceSize(); }

unsigned long CxH264VideoLoader::frameDataSize(int frame)
{
    return frame >= 0 && frame < m_index.size() ? m_index.at(frame).size : 0;
}

int CxH264VideoLoader::lastProcessedFrame() { return m_lastProcessedFrame; }

void CxH264VideoLoader::keyFrames(QList<int>& frames) { frames = m_keyFrames; }

void* CxH264VideoLoader::allocBuffer(unsigned long size) { return std::malloc(size); }

void CxH264VideoLoader::freeBuffer(void* buffer) { std::free(buffer); }

bool CxH264VideoLoader::frameData(int frame, void* buffer, unsigned long& size)
{
    bool const result = buffer != nullptr;
    if (!load())
        return result;
    unsigned long const frameSize = frameDataSize(frame);
    if (!buffer || frameSize == 0 || frameSize > size)
        return result;

    // Read rather than copied from the mapping, which a file that shrank no longer backs.
    qint64 const wanted = static_cast<qint64>(frameSize);
    if (m_file.seek(m_index.at(frame).offset) && m_file.read(static_cast<char*>(buffer), wanted) == wanted)
        size = frameSize;
    else
        std::memset(buffer, 0, frameSize); // half a frame must not pass for one
    return result;
}

/// Row length of RGB32 pictures in bytes, as the host's allocator rounds it.
static quint32 fx_Pitch(quint32 width) { return (width * 4 + 255) & ~255u; }

/// Indexes the \p size bytes that are mapped and takes the picture size from their first sequence
/// parameter set.
bool CxH264VideoLoader::index(size_t size)
{
    if (!fx_BeginsWithStartCode(m_data, size))
        return false;

    QList<SxIndexEntry> entries;
    QList<int> keys;
    CxFrameScanner scanner(m_data, size);
    for (SxFrameRange frame; scanner.next(frame);) {
        if (frame.key)
            keys.append(static_cast<int>(m_index.size() + entries.size()));
        entries.append(frame);
    }
    if (entries.isEmpty() || !scanner.spsPayload())
        return false;

    int width = 0, height = 0;
    CxSPS().parse(scanner.spsPayload(), scanner.spsLength(), width, height);
    m_index += entries;
    m_keyFrames += keys;
    m_format.width = static_cast<quint32>(width);
    m_format.height = static_cast<quint32>(height);
    m_format.pitch = fx_Pitch(m_format.width);
    fx_SetRGB32(m_format);
    return true;
}

bool CxH264VideoLoader::open()
{
    close();
    m_file.setFileName(m_inputFile);
    if (!m_file.open(QIODevice::ReadOnly)) {
        TVP_CRITICAL("CxH264VideoLoader::open(): %1",
                     QStringLiteral("Cannot open the '%1'").arg(m_inputFile));
        return false;
    }
    qint64 const size = m_file.size(); // asked once: a file being recorded grows behind its mapping
    m_data = m_file.map(0, size);
    if (!m_data || !index(static_cast<size_t>(size))) {
        close();
        return false;
    }
    m_decoder = new CxOpenH264Decoder;
    m_decoder->setParent(this);
    m_lastProcessedFrame = -1; // the new decoder holds no pictures
    m_fps = kFps;
    return true;
}

void CxH264VideoLoader::close()
{
    if (m_file.isOpen()) {
        if (m_data)
            m_file.unmap(m_data);
        m_data = nullptr;
        m_file.close();
    }
    delete m_decoder;
    m_decoder = nullptr;
}

IxChainData* CxH264VideoLoader::loadedData(int frame)
{
    if (!load() || frame < 0 || frame >= m_index.size())
        return nullptr;
    SxPicBuf picture;
    if (!CxPicBufAPI::AllocPicBufFromHeap(picture, m_format, false, 0))
        return nullptr;
    if (!m_decoder->decode(frame, this, picture)) {
        CxPicBufAPI::FreePicBuf(picture, true);
        return nullptr;
    }
    if (m_fps > 0.0)
        picture.timestamp = static_cast<quint64>(frame * (1000000 / m_fps));

    CxImageData* const image = new CxImageData;
    image->setPicBuf(picture);
    m_lastProcessedFrame = frame;
    return image;
}

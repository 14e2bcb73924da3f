#include "H264VideoSaver.h"

#include <QGridLayout>
#include <QWidget>
#include <cstring>

#include "CriticalMessage.h"
#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "CxVideoCodecManager.h"
#include "FourCC.h"

CxH264VideoSaver::~CxH264VideoSaver()
{
    close();
    CxPicBufAPI::FreePicBuf(m_resized, true);
}

void CxH264VideoSaver::setSequenceSize(int count) { m_sequenceSize = count < 0 ? 0 : count; }

QList<CxImageFormat> CxH264VideoSaver::supportedImageFormats()
{
    CxImageFormat format;
    format.description = tr("H.264 file") + QStringLiteral(" (*.h264)");
    format.kind = 2;
    return {format};
}

void CxH264VideoSaver::setOutputFile(QString const& fileName) { m_outputFileName = fileName; }

static std::unique_ptr<IxVideoEncoder> fx_NewEncoder()
{
    return std::unique_ptr<IxVideoEncoder>(CxVideoCodecManager::instance()->encoderForFourCC(kFourCCH264));
}

bool CxH264VideoSaver::querySavedImageFormat(SxPicBufInfo const& input, SxPicBufInfo& output)
{
    std::unique_ptr<IxVideoEncoder> const encoder = fx_NewEncoder();
    if (!encoder)
        return false;
    encoder->queryOuputFormat(input, output);
    return true;
}

void CxH264VideoSaver::setSaverOptions(QMap<QString, QVariant> const& options) { m_saverOptions = options; }

QWidget* CxH264VideoSaver::widgetForSaveDlg(QWidget* parent)
{
    std::unique_ptr<IxVideoEncoder> encoder = fx_NewEncoder();
    if (!encoder)
        return nullptr;
    std::unique_ptr<QWidget> container(new QWidget(parent));
    QWidget* const panel = encoder->widgetForSaveDlg(container.get());
    if (!panel) {
        static_cast<void>(encoder.release()); // Deliberate: an encoder without a panel is not deleted.
        return nullptr;
    }
    QGridLayout* const grid = new QGridLayout(container.get());
    grid->setContentsMargins(0, 0, 0, 0);
    grid->addWidget(panel, 0, 0);
    return container.release();
}

QMap<QString, QVariant> CxH264VideoSaver::optionsFromWidgetInSaveDlg(QWidget*)
{
    return {{QStringLiteral("codec"), kFourCCH264}};
}

QMap<QString, QVariant> CxH264VideoSaver::codecOptionsFromWigetInSaveDlg(QWidget* widget,
                                                                         unsigned int& fourCC)
{
    fourCC = kFourCCH264;
    std::unique_ptr<IxVideoEncoder> const encoder = fx_NewEncoder();
    return encoder ? encoder->optionsFromWidgetInSaveDlg(widget) : QMap<QString, QVariant>();
}

bool CxH264VideoSaver::open()
{
    m_file.setFileName(m_outputFileName);
    bool const isOpen = m_file.open(QIODevice::WriteOnly);
    if (!m_encoder) {
        // The codec manager hands out this plug-in's own encoder for this code.
        m_encoder.reset(static_cast<CxOpenH264Encoder*>(fx_NewEncoder().release()));
        if (!m_encoder)
            return false;
    }
    return isOpen;
}

void CxH264VideoSaver::close()
{
    if (m_file.isOpen()) {
        // The last frames may still be in the file's buffer: a disk that is full shows only now.
        bool const isWritten = m_file.flush();
        m_file.close();
        if (!isWritten)
            TVP_CRITICAL("CxH264VideoSaver::save(): %1", "Error when writing encoded frame to file.");
    }
    m_encoder.reset();
}

uchar* CxH264VideoSaver::allocBuffer(unsigned long size)
{
    if (m_capacity >= size && m_buffer) {
        std::memset(m_buffer.get(), 0, size);
        return m_buffer.get();
    }
    m_buffer.reset(); // before the new block, so that there are never two
    m_buffer.reset(static_cast<uchar*>(std::calloc(size, 1)));
    m_capacity = size;
    return m_buffer.get();
}

static quint32 fx_BytesPerSample(quint32 sampleType)
{
    switch (sampleType) {
    case 3:
    case 4:
    case 11:
        return 2;
    case 5:
    case 6:
    case 9:
        return 4;
    case 7:
    case 8:
    case 10:
        return 8;
    default:
        return 1;
    }
}

/// Fills m_resized with the picture at the size of m_outputFormat.
bool CxH264VideoSaver::scale(SxPicBuf const& picture)
{
    // Deliberate: set up once. A recording has one size, which its first picture decides.
    if (!m_resized.data) {
        m_resized.setPicFormat(picture);
        m_resized.width = m_outputFormat.width;
        m_resized.height = m_outputFormat.height;
        quint32 const row = m_resized.width * m_resized.components * fx_BytesPerSample(m_resized.sampleType);
        m_resized.pitch = (row + 255) & ~255u;
        if (!CxPicBufAPI::AllocPicBufFromHeap(m_resized, m_resized, false, 0))
            return false;
    }
    return CxPicBufAPI::Resize(picture, m_resized);
}

/// Codes a picture, which takes up to \p size bytes, and writes it; reports what fails.
bool CxH264VideoSaver::write(SxPicBuf const& picture, unsigned long size)
{
    uchar* const buffer = allocBuffer(size);
    if (!buffer)
        return false;

    // The encoder decides; it never reads the flag, and sets it with each picture that it codes.
    bool isKeyFrame = m_frameCounter % 10 == 0;
    if (!m_encoder->encode(picture, buffer, size, &isKeyFrame)) {
        TVP_CRITICAL("CxH264VideoSaver::save(): %1",
                     QStringLiteral("Error when encoding the frame %1.").arg(m_frameCounter));
        return false;
    }
    qint64 const bytes = static_cast<qint64>(size);
    if (m_file.write(reinterpret_cast<char const*>(buffer), bytes) != bytes) {
        TVP_CRITICAL("CxH264VideoSaver::save(): %1", "Error when writing encoded frame to file.");
        return false;
    }
    ++m_frameCounter;
    return true;
}

bool CxH264VideoSaver::save(IxChainData const* data, int)
{
    if (!data)
        return false;
    CxImageData const* const image = qobject_cast<CxImageData const*>(data);
    if (!image) {
        TVP_CRITICAL("CxH264VideoSaver::save(): %1", "Invalid chain data type.");
        return false;
    }
    if (!m_file.isOpen() && m_outputFileName.isEmpty()) {
        TVP_CRITICAL("CxH264VideoSaver::save(): %1", "Filename is empty.");
        return false;
    }
    SxPicBuf const* picture = image->picBuf();
    if (!picture)
        return false;
    // An open file without an encoder is what a failed open() left behind: it cannot go on.
    if ((!m_file.isOpen() && !open()) || !m_encoder) {
        TVP_CRITICAL("CxH264VideoSaver::save(): %1",
                     QStringLiteral("Cannot open the '%1'.").arg(m_outputFileName));
        return false;
    }

    m_encoder->queryOuputFormat(*picture, m_outputFormat);
    if (picture->width != m_outputFormat.width || picture->height != m_outputFormat.height) {
        if (!picture->data || !scale(*picture))
            return false;
        picture = &m_resized;
    }

    unsigned long const size = m_encoder->maxEncodedSize(*picture);
    if (size == 0) {
        TVP_CRITICAL("CxH264VideoSaver::save(): %1",
                     QStringLiteral("Cannot alloc buffer of size %1.").arg(size));
        return true; // Deliberate: a picture without any size is nothing to write.
    }
    // The first picture that reaches the encoder decides the recording's size: not one without pixels.
    return picture->data && write(*picture, size);
}

#include "RecordingSource.h"

#include <algorithm>
#include <cstring>

#include "CxImageData.h"
#include "PictureFormat.h"

CxRecordingSource::CxRecordingSource(std::unique_ptr<QObject> loader, QString const& fileName, int first,
                                     int last)
    : m_loaderObject(std::move(loader))
    , m_loader(static_cast<IxImageDataLoader*>(m_loaderObject->qt_metacast("IxImageDataLoader")))
    , m_first(first)
    , m_last(last)
    , m_next(first)
{
    m_loader->setInputFile(fileName);
}

CxRecordingSource::~CxRecordingSource() = default;

IxPictureSource::Result CxRecordingSource::next(SxPicBuf& picture)
{
    if (m_next > m_last)
        return Result::End;
    std::unique_ptr<IxChainData> const loaded(m_loader->loadedData(m_next));
    auto const* const data = qobject_cast<CxImageData const*>(loaded.get());
    if (!data) {
        m_error =
            QStringLiteral("Picture %1 of %2 cannot be decoded.").arg(m_next).arg(m_loader->inputFile());
        return Result::Error;
    }
    SxPicBuf const& source = *data->picBuf();
    if (!fx_PreparePicture(picture, source)) {
        m_error = QStringLiteral("There is not enough memory for a picture of %1 x %2.")
                      .arg(source.width)
                      .arg(source.height);
        return Result::Error;
    }
    for (size_t y = 0; y < source.height; ++y)
        std::memcpy(picture.data + y * picture.pitch, source.data + y * source.pitch,
                    std::min(picture.pitch, source.pitch));
    double const fps = m_loader->loadedFps();
    picture.timestamp = static_cast<quint64>((m_next - m_first) * (fps > 0.0 ? 1e6 / fps : 0.0));
    ++m_next;
    return Result::Picture;
}

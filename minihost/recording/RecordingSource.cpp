#include "RecordingSource.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "PictureFormat.h"

CxRecordingSource::CxRecordingSource(std::unique_ptr<CxRecordingReader> recording, QString fileName,
                                     int first, int last)
    : m_recording(std::move(recording))
    , m_fileName(std::move(fileName))
    , m_first(first)
    , m_last(last)
    , m_next(first)
{}

int CxRecordingSource::rotation() const
{
    auto const& sidecar = m_recording->sidecar().sidecar;
    return sidecar ? sidecar->rotation : 0;
}

IxPictureSource::Result CxRecordingSource::next(SxPicBuf& picture)
{
    if (!m_isOpen && !m_recording->open(m_fileName, m_error))
        return Result::Error;
    m_isOpen = true;
    std::unique_ptr<CxImageData> data;
    while (!data) {
        if (m_next > m_last)
            return Result::End;
        QString cause;
        data = m_recording->picture(m_next, cause);
        if (!data) {
            m_broken.append(m_next);
            if (!m_leavesOutBroken) {
                m_error = QStringLiteral("Picture %1 of %2 cannot be decoded: %3.")
                              .arg(m_next)
                              .arg(m_fileName, cause);
                return Result::Error;
            }
            ++m_next;
        }
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
    double const fps = m_recording->fps();
    picture.timestamp = static_cast<quint64>((m_next - m_first) * (fps > 0.0 ? 1e6 / fps : 0.0));
    ++m_next;
    return Result::Picture;
}

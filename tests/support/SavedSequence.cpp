#include "support/SavedSequence.h"

#include <QFile>
#include <random>

#include "CodecOptions.h"
#include "CxImageData.h"
#include "CxRTTI.h"
#include "H264VideoSaver.h"
#include "support/CodedStream.h"
#include "support/FileBytes.h"
#include "support/LoadedPictures.h"

CxSavedSequence::CxSavedSequence(int count)
    : m_count(count)
    , m_picture(320, 240)
{}

bool CxSavedSequence::makeReference(QString const& fileName)
{
    CxRTTI::instance()->registerClass(nullptr, CxOpenH264Encoder::staticMetaObject,
                                      QStringLiteral("IxVideoEncoder"));
    fx_SetCodecOptions(0x34363248, {{"h264_keyframerate", 5}, {"h264_quality", 10}});
    QList<qint64> ends;
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(fileName);
        for (int number = 0; number < m_count; ++number) {
            if (!save(saver, number))
                return false;
            ends.append(saver.findChild<QFile*>()->pos());
        }
    }
    QByteArray const stream = fx_FileBytes(fileName);
    qint64 start = 0;
    for (qint64 const end : ends) {
        m_frames.append(stream.mid(static_cast<int>(start), static_cast<int>(end - start)));
        start = end;
    }
    m_pictures = fx_LoadedPictures(fileName);
    return m_pictures.size() == m_count && !m_frames.contains(QByteArray());
}

std::unique_ptr<CxImageData> CxSavedSequence::image(int number)
{
    fx_DrawFrame(m_picture, number);
    // A band that is new in every picture, so that each takes some kilobytes.
    quint32 const bandBytes = m_picture.buf.pitch * 8;
    std::mt19937 random(static_cast<unsigned>(number));
    for (quint32 i = 0; i < bandBytes; ++i)
        m_picture.buf.data[i] = static_cast<uchar>(random() & 255);
    auto image = std::make_unique<CxImageData>();
    image->setPicBuf(m_picture.buf);
    return image;
}

bool CxSavedSequence::save(CxH264VideoSaver& saver, int number)
{
    return saver.save(image(number).get(), number);
}

QByteArray CxSavedSequence::bytes() const
{
    QByteArray all;
    for (QByteArray const& frame : m_frames)
        all += frame;
    return all;
}

int CxSavedSequence::wholeFrames(QString const& fileName) const
{
    QByteArray const written = fx_FileBytes(fileName);
    if (!bytes().startsWith(written))
        return -1;
    int whole = 0;
    for (int end = 0; whole < m_count && end + m_frames.at(whole).size() <= written.size(); ++whole)
        end += static_cast<int>(m_frames.at(whole).size());
    QList<QByteArray> const played = fx_LoadedPictures(fileName);
    return played.mid(0, whole) == m_pictures.mid(0, whole) ? whole : -1;
}

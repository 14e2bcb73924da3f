#include "PictureCount.h"

#include <QTime>
#include <algorithm>

static constexpr double kLeastGap = 0.5; // seconds; what durations are rounded to differs less

static bool fx_IsFormat(AVFormatContext const& format, char const* name)
{
    return QByteArray(format.iformat->name).split(',').contains(name);
}

void CxPictureCount::readIndex(AVFormatContext const& format)
{
    *this = CxPictureCount();
    for (unsigned i = 0; i < format.nb_streams; ++i)
        m_indexed += fx_IndexEntries(*format.streams[i]);
}

void CxPictureCount::begin(AVFormatContext const& format, int stream)
{
    AVStream const& pictures = *format.streams[stream];
    m_unit = av_q2d(pictures.time_base);
    int const indexed = m_indexed.value(stream);
    if (fx_IsFormat(format, "mov") || (fx_IsFormat(format, "avi") && indexed > 0))
        m_expected = indexed;
    else if (fx_IsFormat(format, "gif"))
        m_expected = static_cast<int>(pictures.nb_frames);
    else if (fx_IsFormat(format, "avi"))
        m_places = pictures.nb_frames; // the index, which would come last, is missing or cannot be reached
    else if (fx_IsFormat(format, "matroska") || fx_IsFormat(format, "flv") || fx_IsFormat(format, "asf"))
        expectDuration(format, pictures);
    else if (fx_IsFormat(format, "yuv4mpegpipe"))
        m_wholePictures = format.pb;
}

/// How long the pictures last, where the file says it of them and not of a sound beside them.
void CxPictureCount::expectDuration(AVFormatContext const& format, AVStream const& stream)
{
    AVDictionaryEntry const* const own = av_dict_get(stream.metadata, "DURATION", nullptr, 0);
    if (own)
        m_duration = QTime(0, 0).msecsTo(QTime::fromString(QString::fromLatin1(own->value).left(12),
                                                           QStringLiteral("HH:mm:ss.zzz"))) /
                     1000.0;
    else if (format.nb_streams == 1 && format.duration_estimation_method == AVFMT_DURATION_FROM_STREAM)
        m_duration = static_cast<double>(format.duration) / AV_TIME_BASE;
}

void CxPictureCount::add(AVPacket const& packet)
{
    ++m_packets;
    m_bytesEnd = packet.pos + packet.size;
    qint64 const time = packet.dts;
    if (time == AV_NOPTS_VALUE)
        return;
    if (m_firstTime == AV_NOPTS_VALUE)
        m_firstTime = time;
    if (m_lastTime != AV_NOPTS_VALUE)
        m_largestStep = std::max(m_largestStep, time - m_lastTime);
    m_lastTime = time;
    m_end = std::max(m_end, time + packet.duration);
}

/// True when longer is missing than any picture so far was shown.
bool CxPictureCount::isTimeShort() const
{
    if (m_duration <= 0 || m_firstTime == AV_NOPTS_VALUE)
        return false;
    double const covered = static_cast<double>(m_end - std::min<qint64>(m_firstTime, 0)) * m_unit;
    return m_duration - covered > kLeastGap + 2 * static_cast<double>(m_largestStep) * m_unit;
}

QString CxPictureCount::missing() const
{
    if (m_packets < m_expected)
        return QStringLiteral("only %1 of its %2 pictures are there").arg(m_packets).arg(m_expected);
    if (m_end < m_places)
        return QStringLiteral("only %1 of its %2 pictures are there").arg(m_end).arg(m_places);
    if (isTimeShort())
        return QStringLiteral("its pictures end after %1 of %2 s")
            .arg(static_cast<double>(m_end) * m_unit, 0, 'f', 1)
            .arg(m_duration, 0, 'f', 1);
    if (m_wholePictures && avio_tell(m_wholePictures) > m_bytesEnd && m_packets > 0)
        return QStringLiteral("it ends in the middle of a picture");
    return QString();
}

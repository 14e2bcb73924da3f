#include "ContainerWriter.h"

#include <QFileInfo>
#include <cstring>

#include "Extradata.h"
#include "StreamFacts.h"

extern "C" {
#include <libavutil/display.h>
}

namespace {

constexpr int kMatrixBytes = 9 * 4; // display matrix

char const* fx_MuxerName(ContainerKind kind)
{
    switch (kind) {
    case ContainerKind::Mp4:
        return "mp4";
    case ContainerKind::Mov:
        return "mov";
    case ContainerKind::Matroska:
        break;
    }
    return "matroska";
}

int fx_IsStopped(void* stop)
{
    auto const* const flag = static_cast<std::atomic<bool> const*>(stop);
    return flag && flag->load() ? 1 : 0;
}

/// Room for the stream's display matrix; null without memory.
uint8_t* fx_NewDisplayMatrix(AVStream& stream)
{
#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(60, 31, 102) // FFmpeg 6.1
    AVCodecParameters& parameters = *stream.codecpar;
    AVPacketSideData* const data =
        av_packet_side_data_new(&parameters.coded_side_data, &parameters.nb_coded_side_data,
                                AV_PKT_DATA_DISPLAYMATRIX, kMatrixBytes, 0);
    return data ? data->data : nullptr;
#else
    return av_stream_new_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, kMatrixBytes);
#endif
}

bool fx_SetRotation(AVStream& stream, int rotation)
{
    if (rotation == 0)
        return true;
    uint8_t* const data = fx_NewDisplayMatrix(stream);
    if (!data)
        return false;
    int32_t matrix[9];
    av_display_rotation_set(matrix, rotation); // clockwise; av_display_rotation_get() is not
    std::memcpy(data, matrix, kMatrixBytes);
    return true;
}

} // namespace

std::optional<ContainerKind> fx_ContainerKindOf(QString const& fileName)
{
    QString const suffix = QFileInfo(fileName).suffix().toLower();
    if (suffix == QLatin1String("mp4"))
        return ContainerKind::Mp4;
    if (suffix == QLatin1String("mov"))
        return ContainerKind::Mov;
    if (suffix == QLatin1String("mkv"))
        return ContainerKind::Matroska;
    return std::nullopt;
}

QString fx_ObstacleToIndex(QString const& fileName)
{
    QFileInfo const info(fileName);
    if (!info.exists() || info.isFile())
        return QString();
    return QStringLiteral("%1: this is no regular file, and an index can be put into no other.")
        .arg(fileName);
}

CxContainerWriter::CxContainerWriter(QString const& fileName, std::atomic<bool> const* stop)
    : m_fileName(fileName)
    , m_stop(stop)
    , m_file(fileName)
{}

CxContainerWriter::~CxContainerWriter()
{
    if (m_format)
        avio_closep(&m_format->pb);
    avformat_free_context(m_format);
}

bool CxContainerWriter::isWritten(int result, QString& error) const
{
    int const failure = result < 0 ? result : m_format && m_format->pb ? m_format->pb->error : 0;
    if (failure >= 0)
        return true;
    if (!fx_IsStopped(const_cast<std::atomic<bool>*>(m_stop)))
        error = QStringLiteral("%1: %2.").arg(m_fileName, fx_FFmpegErrorText(failure));
    return false;
}

bool CxContainerWriter::makeStream(SxTrack const& track)
{
    AVStream* const stream = avformat_new_stream(m_format, nullptr);
    if (!stream)
        return false;
    m_pictureTime = av_inv_q(track.description.rate);
    stream->time_base = m_pictureTime;
    stream->avg_frame_rate = track.description.rate;
    stream->r_frame_rate = track.description.rate;
    AVCodecParameters& parameters = *stream->codecpar;
    parameters.codec_type = AVMEDIA_TYPE_VIDEO;
    parameters.codec_id = AV_CODEC_ID_H264;
    // A reader of "avc1" may take the sets from before the stream alone (ISO/IEC 14496-15, 5.4.2.1).
    if (track.hasSetsInStream && track.kind != ContainerKind::Matroska)
        parameters.codec_tag = MKTAG('a', 'v', 'c', '3');
    parameters.format = AV_PIX_FMT_YUV420P;
    parameters.width = track.size.width();
    parameters.height = track.size.height();
    parameters.sample_aspect_ratio = {1, 1};
    parameters.field_order = AV_FIELD_PROGRESSIVE;
    parameters.color_range = SxStreamDescription::kRange;
    parameters.color_space = SxStreamDescription::kMatrix;
    parameters.color_primaries = SxStreamDescription::kPrimaries;
    parameters.color_trc = SxStreamDescription::kTransfer;
    return fx_SetExtradata(parameters, track.parameterSets) &&
           fx_SetRotation(*stream, track.description.rotation);
}

bool CxContainerWriter::begin(SxTrack const& track, QString& error)
{
    m_name = m_file.nameForWriters(error).toUtf8();
    if (m_name.isEmpty())
        return false;
    m_rotation = track.description.rotation;
    int result =
        avformat_alloc_output_context2(&m_format, nullptr, fx_MuxerName(track.kind), m_name.constData());
    if (result < 0)
        return isWritten(result, error);
    m_format->flags |= AVFMT_FLAG_BITEXACT; // one recording gives one file
    AVIOInterruptCB const interrupt = {fx_IsStopped, const_cast<std::atomic<bool>*>(m_stop)};
    m_format->interrupt_callback = interrupt;
    result = avio_open2(&m_format->pb, m_name.constData(), AVIO_FLAG_WRITE, &interrupt, nullptr);
    if (result >= 0 && !makeStream(track))
        result = AVERROR(ENOMEM);
    if (result < 0)
        return isWritten(result, error);
    if (!track.description.comment.isEmpty())
        av_dict_set(&m_format->metadata, "comment", track.description.comment.constData(), 0);
    AVDictionary* options = nullptr;
    if (track.kind != ContainerKind::Matroska)
        av_dict_set(&options, "movflags", "+faststart", 0);
    result = avformat_write_header(m_format, &options);
    av_dict_free(&options);
    return isWritten(result, error);
}

bool CxContainerWriter::add(QByteArray const& picture, bool isKey, QString& error)
{
    if (picture.isEmpty()) { // what is left of a damaged one: those behind it keep their time
        ++m_pictures;
        return true;
    }
    QByteArray const padded = picture + QByteArray(AV_INPUT_BUFFER_PADDING_SIZE, '\0');
    PacketPtr const packet(av_packet_alloc());
    if (!packet)
        return isWritten(AVERROR(ENOMEM), error);
    AVStream const& stream = *m_format->streams[0];
    packet->data = reinterpret_cast<uint8_t*>(const_cast<char*>(padded.constData()));
    packet->size = static_cast<int>(picture.size());
    packet->flags = isKey ? AV_PKT_FLAG_KEY : 0;
    packet->dts = av_rescale_q(m_pictures, m_pictureTime, stream.time_base);
    packet->pts = packet->dts;
    packet->duration = av_rescale_q(m_pictures + 1, m_pictureTime, stream.time_base) - packet->dts;
    ++m_pictures;
    return isWritten(av_write_frame(m_format, packet.get()), error);
}

/// Matroska's writer keeps none before FFmpeg 7, and says nothing.
int CxContainerWriter::writtenRotation() const
{
    AVFormatContext* input = nullptr;
    if (avformat_open_input(&input, m_name.constData(), nullptr, nullptr) < 0)
        return 0;
    FormatContextPtr const opened(input);
    return input->nb_streams == 0 ? 0 : fx_StreamFacts(*input->streams[0], RateOrigin::Stream).rotation;
}

bool CxContainerWriter::finish(QString& error)
{
    if (!isWritten(av_write_trailer(m_format), error))
        return false;
    int const result = avio_closep(&m_format->pb);
    if (!isWritten(result, error))
        return false;
    m_hasRotation = m_rotation == 0 || writtenRotation() == m_rotation;
    return m_file.finish(error);
}

#include "PictureWriter.h"

#include <algorithm>
#include <cstring>

extern "C" {
#include <libavutil/imgutils.h>
}

#include "PictureRate.h"

namespace {

struct SxPictureFileKind
{
    char const* suffix;
    AVCodecID codec;
};

SxPictureFileKind const kFileKinds[] = {{"png", AV_CODEC_ID_PNG},
                                        {"jpg", AV_CODEC_ID_MJPEG},
                                        {"jpeg", AV_CODEC_ID_MJPEG},
                                        {"ppm", AV_CODEC_ID_PPM},
                                        {"pnm", AV_CODEC_ID_PPM}};

struct SxStreamName
{
    char const* name;
    CxPictureStream::Format format;
};

SxStreamName const kStreams[] = {{"y4m", CxPictureStream::Format::Y4m},
                                 {"bgra", CxPictureStream::Format::Bgra},
                                 {"rgb24", CxPictureStream::Format::Rgb24}};

constexpr int kJpegQuality = 2; // FFmpeg's scale, on which 1 is best and 31 worst

} // namespace

/// What a scaler needs to turn RGB32 pictures into \p target at the same size; null without memory.
/// YUV comes out as ITU-R BT.601, in full or video range.
static SwsContext* fx_ScalerFromRGB32(SwsContext* cached, SxPicBuf const& picture, AVPixelFormat target,
                                      bool isFullRange)
{
    int const width = static_cast<int>(picture.width);
    int const height = static_cast<int>(picture.height);
    SwsContext* const scaler =
        sws_getCachedContext(cached, width, height, AV_PIX_FMT_BGR0, width, height, target,
                             SWS_BILINEAR | SWS_ACCURATE_RND | SWS_BITEXACT, nullptr, nullptr, nullptr);
    if (scaler) {
        int const* const matrix = sws_getCoefficients(SWS_CS_ITU601);
        sws_setColorspaceDetails(scaler, matrix, 1, matrix, isFullRange ? 1 : 0, 0, 1 << 16, 1 << 16);
    }
    return scaler;
}

static void fx_Scale(SwsContext* scaler, SxPicBuf const& picture, uint8_t* const* planes, int const* pitches)
{
    uint8_t const* const source[4] = {picture.data, nullptr, nullptr, nullptr};
    int const pitch[4] = {static_cast<int>(picture.pitch), 0, 0, 0};
    sws_scale(scaler, source, pitch, 0, static_cast<int>(picture.height), planes, pitches);
}

QStringList CxPictureEncoder::suffixes()
{
    QStringList suffixes;
    for (SxPictureFileKind const& kind : kFileKinds)
        suffixes += QString::fromLatin1(kind.suffix);
    return suffixes;
}

CxPictureEncoder::CxPictureEncoder(QString const& suffix)
    : m_codecId(AV_CODEC_ID_NONE)
{
    for (SxPictureFileKind const& kind : kFileKinds) {
        if (suffix.compare(QLatin1String(kind.suffix), Qt::CaseInsensitive) == 0)
            m_codecId = kind.codec;
    }
}

/// Makes what encodes pictures of this size; 0 or FFmpeg's error.
int CxPictureEncoder::prepare(SxPicBuf const& picture)
{
    int const width = static_cast<int>(picture.width);
    int const height = static_cast<int>(picture.height);
    if (m_codec && m_codec->width == width && m_codec->height == height)
        return 0;
    AVCodec const* const encoder = avcodec_find_encoder(m_codecId);
    if (!encoder)
        return AVERROR_ENCODER_NOT_FOUND;
    bool const isJpeg = m_codecId == AV_CODEC_ID_MJPEG;
    CodecContextPtr codec(avcodec_alloc_context3(encoder));
    FramePtr frame(av_frame_alloc());
    PacketPtr packet(av_packet_alloc());
    if (!codec || !frame || !packet)
        return AVERROR(ENOMEM);

    codec->width = width;
    codec->height = height;
    codec->time_base = {1, kPicturesASecond};
    codec->pix_fmt = isJpeg ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_RGB24;
    codec->color_range = AVCOL_RANGE_JPEG;
    if (isJpeg) {
        codec->flags |= AV_CODEC_FLAG_QSCALE;
        codec->global_quality = FF_QP2LAMBDA * kJpegQuality;
    }
    int error = avcodec_open2(codec.get(), encoder, nullptr);
    if (error < 0)
        return error;
    frame->width = width;
    frame->height = height;
    frame->format = codec->pix_fmt;
    frame->quality = codec->global_quality;
    frame->color_range = codec->color_range;
    error = av_frame_get_buffer(frame.get(), 0);
    if (error < 0)
        return error;
    m_codec = std::move(codec);
    m_frame = std::move(frame);
    m_packet = std::move(packet);
    return 0;
}

/// Encodes one picture; 0 or FFmpeg's error.
int CxPictureEncoder::run(SxPicBuf const& picture, QByteArray& bytes)
{
    int error = prepare(picture);
    if (error < 0)
        return error;
    error = av_frame_make_writable(m_frame.get());
    if (error < 0)
        return error;
    m_scaler.reset(fx_ScalerFromRGB32(m_scaler.release(), picture, m_codec->pix_fmt, true));
    if (!m_scaler)
        return AVERROR(ENOMEM);
    fx_Scale(m_scaler.get(), picture, m_frame->data, m_frame->linesize);
    m_frame->pts = m_frame->pts == AV_NOPTS_VALUE ? 0 : m_frame->pts + 1;
    error = avcodec_send_frame(m_codec.get(), m_frame.get());
    if (error == 0)
        error = avcodec_receive_packet(m_codec.get(), m_packet.get());
    if (error < 0)
        return error;
    bytes = QByteArray(reinterpret_cast<char const*>(m_packet->data), m_packet->size);
    av_packet_unref(m_packet.get());
    return 0;
}

std::optional<QByteArray> CxPictureEncoder::encode(SxPicBuf const& picture, QString& error)
{
    QByteArray bytes;
    int const code = run(picture, bytes);
    if (code < 0) {
        error = fx_FFmpegErrorText(code);
        return std::nullopt;
    }
    return bytes;
}

QStringList CxPictureStream::formatNames()
{
    QStringList names;
    for (SxStreamName const& stream : kStreams)
        names += QString::fromLatin1(stream.name);
    return names;
}

std::optional<CxPictureStream::Format> CxPictureStream::formatFromName(QString const& name)
{
    for (SxStreamName const& stream : kStreams) {
        if (name.compare(QLatin1String(stream.name), Qt::CaseInsensitive) == 0)
            return stream.format;
    }
    return std::nullopt;
}

QByteArray CxPictureStream::header(QSize size, SxPictureRate const& rate) const
{
    if (m_format != Format::Y4m)
        return QByteArray();
    SxPictureRate const told = rate.isKnown() ? rate : SxPictureRate{kPicturesASecond};
    return QStringLiteral("YUV4MPEG2 W%1 H%2 F%3:%4 Ip A1:1 C420jpeg XCOLORRANGE=LIMITED\n")
        .arg(size.width())
        .arg(size.height())
        .arg(told.numerator)
        .arg(told.denominator)
        .toLatin1();
}

std::optional<QByteArray> CxPictureStream::next(SxPicBuf const& picture)
{
    if (m_format == Format::Bgra)
        return fx_PackedRows(picture);

    QByteArray const header = m_format == Format::Y4m ? QByteArrayLiteral("FRAME\n") : QByteArray();
    AVPixelFormat const target = m_format == Format::Y4m ? AV_PIX_FMT_YUV420P : AV_PIX_FMT_RGB24;
    m_scaler.reset(fx_ScalerFromRGB32(m_scaler.release(), picture, target, false));
    int const width = static_cast<int>(picture.width);
    int const height = static_cast<int>(picture.height);
    int const size = av_image_get_buffer_size(target, width, height, 1);
    if (!m_scaler || size < 0)
        return std::nullopt;
    if (m_bytes.size() != header.size() + size || !m_bytes.isDetached())
        m_bytes = QByteArray(header.size() + size, Qt::Uninitialized);
    std::copy(header.begin(), header.end(), m_bytes.begin());
    uint8_t* planes[4];
    int pitches[4];
    av_image_fill_arrays(planes, pitches, reinterpret_cast<uint8_t*>(m_bytes.data()) + header.size(), target,
                         width, height, 1);
    fx_Scale(m_scaler.get(), picture, planes, pitches);
    return m_bytes;
}

QByteArray fx_PackedRows(SxPicBuf const& picture)
{
    size_t const rowBytes = static_cast<size_t>(picture.width) * picture.components;
    int const allBytes = static_cast<int>(rowBytes * picture.height);
    if (picture.pitch == rowBytes)
        return QByteArray::fromRawData(reinterpret_cast<char const*>(picture.data), allBytes);
    QByteArray rows(allBytes, Qt::Uninitialized);
    char* row = rows.data();
    for (quint32 y = 0; y < picture.height; ++y, row += rowBytes)
        std::memcpy(row, picture.data + static_cast<size_t>(y) * picture.pitch, rowBytes);
    return rows;
}

#include "PictureFilter.h"

#include <algorithm>
#include <cstring>

#include "PictureFormat.h"

extern "C" {
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/pixdesc.h>
}

static AVPixelFormat fx_PixelFormat(SxPicBufInfo const& format)
{
    bool const isWords = fx_IsWordFormat(format);
    switch (format.components) {
    case 1:
        return isWords ? AV_PIX_FMT_GRAY16 : AV_PIX_FMT_GRAY8;
    case 3:
        return isWords ? AV_PIX_FMT_BGR48 : AV_PIX_FMT_BGR24;
    default:
        return isWords ? AV_PIX_FMT_BGRA64 : AV_PIX_FMT_BGR0;
    }
}

static size_t fx_RowBytes(SxPicBufInfo const& format, int width)
{
    return static_cast<size_t>(width) * format.components * (fx_IsWordFormat(format) ? 2 : 1);
}

/// Colours are scaled by way of others, which rounds: no sample of \p picture may come out above what went
/// in, since what lies above its significant bits would wrap around.
static void fx_Limit(SxPicBuf& picture, quint16 highest)
{
    for (quint32 y = 0; y < picture.height; ++y) {
        auto* const row = reinterpret_cast<quint16*>(picture.data + size_t{y} * picture.pitch);
        for (size_t i = 0; i < size_t{picture.width} * picture.components; ++i)
            row[i] = std::min(row[i], highest);
    }
}

/// Makes the graph for pictures of \p format.
bool CxPictureFilter::build(SxPicBufInfo const& format, QByteArray const& filters)
{
    m_graph.reset(avfilter_graph_alloc());
    m_in.reset(av_frame_alloc());
    m_out.reset(av_frame_alloc());
    if (!m_graph || !m_in || !m_out)
        return false;
    m_in->format = fx_PixelFormat(format);
    m_in->width = static_cast<int>(format.width);
    m_in->height = static_cast<int>(format.height);
    if (av_frame_get_buffer(m_in.get(), 0) < 0)
        return false;

    QByteArray const name = av_get_pix_fmt_name(fx_PixelFormat(format));
    QByteArray const entry = "video_size=" + QByteArray::number(format.width) + 'x' +
                             QByteArray::number(format.height) + ":pix_fmt=" + name + ":time_base=1/1000000";
    AVFilterInOut* outputs = avfilter_inout_alloc();
    AVFilterInOut* inputs = avfilter_inout_alloc();
    bool isBuilt = outputs && inputs &&
                   avfilter_graph_create_filter(&m_entry, avfilter_get_by_name("buffer"), "in",
                                                entry.constData(), nullptr, m_graph.get()) >= 0 &&
                   avfilter_graph_create_filter(&m_exit, avfilter_get_by_name("buffersink"), "out", nullptr,
                                                nullptr, m_graph.get()) >= 0;
    if (isBuilt) {
        *outputs = {av_strdup("in"), m_entry, 0, nullptr};
        *inputs = {av_strdup("out"), m_exit, 0, nullptr};
        QByteArray const all = filters + ",format=pix_fmts=" + name;
        isBuilt = avfilter_graph_parse_ptr(m_graph.get(), all.constData(), &inputs, &outputs, nullptr) >= 0 &&
                  avfilter_graph_config(m_graph.get(), nullptr) >= 0;
    }
    avfilter_inout_free(&inputs);
    avfilter_inout_free(&outputs);
    m_format = format;
    m_filters = filters;
    return isBuilt;
}

bool CxPictureFilter::apply(SxPicBuf const& source, QByteArray const& filters, SxPicBuf& target)
{
    bool const fits = m_graph && m_filters == filters && m_format.width == source.width &&
                      m_format.height == source.height && fx_PixelFormat(m_format) == fx_PixelFormat(source);
    if (!fits && !build(source, filters)) {
        m_graph.reset();
        return false;
    }
    if (av_frame_make_writable(m_in.get()) < 0)
        return false;
    for (int y = 0; y < m_in->height; ++y)
        std::memcpy(m_in->data[0] + static_cast<ptrdiff_t>(y) * m_in->linesize[0],
                    source.data + static_cast<size_t>(y) * source.pitch, fx_RowBytes(source, m_in->width));
    if (av_buffersrc_add_frame_flags(m_entry, m_in.get(), AV_BUFFERSRC_FLAG_KEEP_REF) < 0 ||
        av_buffersink_get_frame(m_exit, m_out.get()) < 0)
        return false;

    SxPicBufInfo format = source;
    format.width = static_cast<quint32>(m_out->width);
    format.height = static_cast<quint32>(m_out->height);
    format.pitch = 0;
    bool const isPrepared = fx_PreparePicture(target, format);
    for (int y = 0; isPrepared && y < m_out->height; ++y)
        std::memcpy(target.data + static_cast<size_t>(y) * target.pitch,
                    m_out->data[0] + static_cast<ptrdiff_t>(y) * m_out->linesize[0],
                    fx_RowBytes(source, m_out->width));
    av_frame_unref(m_out.get());
    if (isPrepared && fx_IsWordFormat(source) && filters.contains("scale="))
        fx_Limit(target, fx_HighestSample(source));
    target.timestamp = source.timestamp;
    return isPrepared;
}

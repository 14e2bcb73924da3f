#include "FFmpegConverter.h"

#include <QtEndian>
#include <cstring>

#include "PictureFormat.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

static bool fx_Has(AVPixFmtDescriptor const& format, unsigned flag) { return (format.flags & flag) != 0; }

static bool fx_IsGrey(AVPixFmtDescriptor const& format)
{
    return format.nb_components <= 2 && !fx_Has(format, AV_PIX_FMT_FLAG_RGB) &&
           !fx_Has(format, AV_PIX_FMT_FLAG_PAL);
}

/// Grey or RGB in integers of 9 to 16 bits: what is copied sample by sample.
static bool fx_IsCopiedAsWords(AVPixFmtDescriptor const& format)
{
    unsigned const others = AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM | AV_PIX_FMT_FLAG_HWACCEL |
                            AV_PIX_FMT_FLAG_BAYER | AV_PIX_FMT_FLAG_FLOAT;
    return (fx_IsGrey(format) || fx_Has(format, AV_PIX_FMT_FLAG_RGB)) && !fx_Has(format, others) &&
           format.comp[0].depth > 8 && format.comp[0].depth <= 16;
}

static quint32 fx_Components(AVPixFmtDescriptor const& format)
{
    if (fx_IsGrey(format))
        return 1;
    return fx_Has(format, AV_PIX_FMT_FLAG_ALPHA) ? 4 : 3;
}

static unsigned char* fx_Row(SxPicBuf const& picture, int y)
{
    return picture.data + static_cast<size_t>(y) * picture.pitch;
}

/// One component of a row, \p width samples: 16-bit words of the format's byte order that lie \p step
/// bytes apart at any address, each sample at a shift within its word.
template<bool isBigEndian>
static void fx_CopyComponent(uint8_t const* source, size_t step, unsigned shift, unsigned mask, quint16* row,
                             size_t components, size_t width)
{
    for (size_t x = 0; x < width; ++x) {
        auto const word = isBigEndian ? qFromBigEndian<quint16>(source + x * step)
                                      : qFromLittleEndian<quint16>(source + x * step);
        row[x * components] = static_cast<quint16>(word >> shift & mask);
    }
}

/// Copies samples of 9 to 16 bits; no format of FFmpeg's spreads one over more than a word.
static void fx_CopyWords(AVFrame const& frame, AVPixFmtDescriptor const& format, SxPicBuf& picture)
{
    // FFmpeg lists red, green, blue, alpha; the host's pictures hold blue, green, red, fourth.
    static int const kOrder[4] = {2, 1, 0, 3};
    auto* const copy = fx_Has(format, AV_PIX_FMT_FLAG_BE) ? fx_CopyComponent<true> : fx_CopyComponent<false>;
    for (int y = 0; y < frame.height; ++y) {
        auto* const row = reinterpret_cast<quint16*>(fx_Row(picture, y));
        for (quint32 c = 0; c < picture.components; ++c) {
            AVComponentDescriptor const& component = format.comp[picture.components == 1 ? 0 : kOrder[c]];
            uint8_t const* const source = frame.data[component.plane] + component.offset +
                                          static_cast<ptrdiff_t>(y) * frame.linesize[component.plane];
            copy(source, static_cast<size_t>(component.step), static_cast<unsigned>(component.shift),
                 (1U << component.depth) - 1, row + c, picture.components, picture.width);
        }
    }
}

static void fx_CopyBytes(AVFrame const& frame, SxPicBuf& picture)
{
    size_t const bytes = static_cast<size_t>(picture.width) * picture.components;
    for (int y = 0; y < frame.height; ++y)
        std::memcpy(fx_Row(picture, y), frame.data[0] + static_cast<ptrdiff_t>(y) * frame.linesize[0], bytes);
}

/// The matrix of a stream that does not name its own: BT.709 from high definition on, as players do.
static int fx_Matrix(AVFrame const& frame)
{
    if (frame.colorspace != AVCOL_SPC_UNSPECIFIED && frame.colorspace != AVCOL_SPC_RGB)
        return frame.colorspace;
    return frame.width >= 1280 || frame.height > 576 ? SWS_CS_ITU709 : SWS_CS_ITU601;
}

bool CxFFmpegConverter::scaleInto(AVFrame const& frame, AVPixelFormat target, SxPicBuf& picture)
{
    auto const source = static_cast<AVPixelFormat>(frame.format);
    AVPixFmtDescriptor const& format = *av_pix_fmt_desc_get(source);
    // Each chroma sample stands for its pixels as it is, never mixed with its neighbours: the encoder's
    // conversion picks it again. 8 bits have a plain path that does so, deeper ones need the exact one.
    int const flags =
        format.comp[0].depth > 8 ? SWS_POINT | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT : SWS_BILINEAR;
    m_scaler.reset(sws_getCachedContext(m_scaler.release(), frame.width, frame.height, source, frame.width,
                                        frame.height, target, flags, nullptr, nullptr, nullptr));
    if (!m_scaler)
        return false;
    bool const isYuv = !fx_IsGrey(format) && !fx_Has(format, AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL);
    if (isYuv) {
        int const* const matrix = sws_getCoefficients(fx_Matrix(frame));
        int const fullRange = frame.color_range == AVCOL_RANGE_JPEG ? 1 : 0;
        sws_setColorspaceDetails(m_scaler.get(), matrix, fullRange, matrix, 1, 0, 1 << 16, 1 << 16);
    }
    uint8_t* const planes[4] = {picture.data, nullptr, nullptr, nullptr};
    int const pitches[4] = {static_cast<int>(picture.pitch), 0, 0, 0};
    return sws_scale(m_scaler.get(), frame.data, frame.linesize, 0, frame.height, planes, pitches) ==
           frame.height;
}

bool CxFFmpegConverter::convert(AVFrame const& frame, SxPicBuf& picture)
{
    auto const source = static_cast<AVPixelFormat>(frame.format);
    AVPixFmtDescriptor const* const format = av_pix_fmt_desc_get(source);
    if (!format || frame.width <= 0 || frame.height <= 0)
        return false;
    auto const width = static_cast<quint32>(frame.width);
    auto const height = static_cast<quint32>(frame.height);
    m_sourceBits = 0;

    if (fx_IsCopiedAsWords(*format)) {
        auto const bits = static_cast<quint32>(format->comp[0].depth);
        m_knowsBits = bits < 16;
        if (!fx_PreparePicture(picture, fx_PackedFormat(width, height, fx_Components(*format), bits)))
            return false;
        fx_CopyWords(frame, *format, picture);
        return true;
    }

    m_knowsBits = true;
    if (source == AV_PIX_FMT_GRAY8 || source == AV_PIX_FMT_BGR24 || source == AV_PIX_FMT_BGRA ||
        source == AV_PIX_FMT_BGR0) {
        auto const components = static_cast<quint32>(format->comp[0].step);
        if (!fx_PreparePicture(picture, fx_PackedFormat(width, height, components, 8)))
            return false;
        fx_CopyBytes(frame, picture);
        return true;
    }

    bool const deep = format->comp[0].depth > 8;
    bool const three = fx_Has(*format, AV_PIX_FMT_FLAG_RGB) && !fx_Has(*format, AV_PIX_FMT_FLAG_ALPHA);
    AVPixelFormat target = three ? AV_PIX_FMT_BGR24 : AV_PIX_FMT_BGRA;
    quint32 components = three ? 3 : 4;
    if (fx_IsGrey(*format)) {
        target = deep ? AV_PIX_FMT_GRAY16 : AV_PIX_FMT_GRAY8;
        components = 1;
    } else if (deep) {
        target = AV_PIX_FMT_BGR48;
        components = 3;
    }
    if (deep && format->comp[0].depth < 16)
        m_sourceBits = format->comp[0].depth;
    return fx_PreparePicture(picture, fx_PackedFormat(width, height, components, deep ? 16 : 8)) &&
           scaleInto(frame, target, picture);
}

#pragma once

#include <QString>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavfilter/avfilter.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

/// FFmpeg's readers and decoders as its functions take and give them: before FFmpeg 5 without const, though
/// nobody changes them.
#if LIBAVFORMAT_VERSION_MAJOR < 59
using FFmpegReader = AVInputFormat;
using FFmpegCodec = AVCodec;
#else
using FFmpegReader = AVInputFormat const;
using FFmpegCodec = AVCodec const;
#endif

/// Owners for FFmpeg's objects: each is freed with its own function.
struct SxFFmpegDeleter
{
    void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVDictionary* dictionary) const { av_dict_free(&dictionary); }
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
    void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
};

using FormatContextPtr = std::unique_ptr<AVFormatContext, SxFFmpegDeleter>;
using CodecContextPtr = std::unique_ptr<AVCodecContext, SxFFmpegDeleter>;
using DictionaryPtr = std::unique_ptr<AVDictionary, SxFFmpegDeleter>;
using FramePtr = std::unique_ptr<AVFrame, SxFFmpegDeleter>;
using PacketPtr = std::unique_ptr<AVPacket, SxFFmpegDeleter>;
using FilterGraphPtr = std::unique_ptr<AVFilterGraph, SxFFmpegDeleter>;
using ScalerPtr = std::unique_ptr<SwsContext, SxFFmpegDeleter>;

/// Entries in the index of a stream's packets.
inline int fx_IndexEntries(AVStream const& stream)
{
#if LIBAVFORMAT_VERSION_MAJOR < 59
    return stream.nb_index_entries;
#else
    return avformat_index_get_entries_count(&stream);
#endif
}

/// FFmpeg's text for an error code.
inline QString fx_FFmpegErrorText(int error)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(error, text, sizeof text);
    return QString::fromUtf8(text);
}

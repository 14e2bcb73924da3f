#pragma once

#include "FFmpegHandles.h"

/// Decodes one stream and knows which of its pictures came out damaged.
class CxFFmpegDecoder
{
public:
    /// \param isPictureFile  each packet is a whole file of one picture.
    /// \return 0 or FFmpeg's error
    int open(AVStream const& stream, AVCodec const* decoder, bool isPictureFile);
    void close();

    int send(AVPacket const* packet); ///< as avcodec_send_packet(); null: no more follow
    int receive(AVFrame& frame);      ///< as avcodec_receive_frame()

    bool isDamaged() const { return m_isDamaged; } ///< the last picture received

private:
    int openContext(CodecContextPtr& codec, int recognition);
    int sendAgain();

    AVStream const* m_stream = nullptr;
    AVCodec const* m_decoder = nullptr;
    bool m_isPictureFile = false;
    bool m_isJpeg = false;
    CodecContextPtr m_codec;
    CodecContextPtr m_lenient; ///< JPEG: makes a picture of what m_codec refuses
    PacketPtr m_packet;        ///< JPEG: what was sent last, for m_lenient
    bool m_isSentAgain = false;
    bool m_isOwed = false; ///< m_lenient has been sent something and has given nothing yet
    bool m_isDamaged = false;
};

#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>
#include <QStringList>
#include <optional>

#include "FFmpegHandles.h"
#include "PictureRate.h"
#include "SxPicBuf.h"

/// Host pictures as the bytes of picture files. Takes RGB32 pictures (8 bits, blue, green, red and a
/// fourth byte that is left out). Use one for all pictures of a kind: it keeps what they share.
class CxPictureEncoder
{
public:
    static QStringList
    suffixes(); ///< "png", "jpg", ...: the files that this class makes, by their names' end

    /// \param suffix  one of suffixes(), in any case.
    explicit CxPictureEncoder(QString const& suffix);

    /// The file for \p picture: PNG and PNM hold its exact values, JPEG comes close.
    /// Nothing, with \p error half a sentence, when FFmpeg refuses.
    std::optional<QByteArray> encode(SxPicBuf const& picture, QString& error);

private:
    int prepare(SxPicBuf const& picture);
    int run(SxPicBuf const& picture, QByteArray& bytes);

    AVCodecID m_codecId;
    CodecContextPtr m_codec; ///< for pictures of the last size
    ScalerPtr m_scaler;
    FramePtr m_frame;
    PacketPtr m_packet;
};

/// Host pictures, RGB32 as above, as the parts of one stream of bytes for another program to read.
class CxPictureStream
{
public:
    enum class Format {
        Y4m,   ///< YUV4MPEG2, 8-bit 4:2:0, ITU-R BT.601 with video range
        Bgra,  ///< rows of blue, green, red, 255; nothing between rows or pictures
        Rgb24, ///< rows of red, green, blue; nothing between rows or pictures
    };

    static QStringList formatNames(); ///< "y4m", "bgra", "rgb24"
    static std::optional<Format> formatFromName(QString const& name);

    explicit CxPictureStream(Format format)
        : m_format(format)
    {}

    /// What comes before the first picture. \param rate  kPicturesASecond when unknown
    QByteArray header(QSize size, SxPictureRate const& rate) const;

    /// The bytes of a picture. All must have one size. Nothing when memory is short.
    std::optional<QByteArray> next(SxPicBuf const& picture);

    /// True when those may be the picture's own memory: use them before it changes.
    bool givesPicturesOwnBytes() const { return m_format == Format::Bgra; }

private:
    Format m_format;
    ScalerPtr m_scaler;
    QByteArray m_bytes; ///< of the last picture: fresh memory for each would cost more than filling it
};

/// The rows of a picture from top to bottom without what the pitch leaves between them; four bytes a
/// pixel for RGB32. Where it leaves nothing they are the picture's own memory, not a copy.
QByteArray fx_PackedRows(SxPicBuf const& picture);

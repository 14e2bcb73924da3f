#pragma once

#include <QMap>
#include <QStringList>
#include <atomic>

#include "FFmpegConverter.h"
#include "FFmpegDecoder.h"
#include "FFmpegHandles.h"
#include "InputDamage.h"
#include "IxPictureSource.h"
#include "PictureCount.h"
#include "RateMeter.h"
#include "StreamFacts.h"

struct SxFFmpegInput;

/// How FFmpeg is to read inputs that do not say it themselves, such as raw pictures and devices.
struct SxFFmpegOptions
{
    QString format;                 ///< name of the reader, "rawvideo"; empty: find out
    QMap<QString, QString> options; ///< the reader's own, such as video_size=1280x720
};

/// Pictures from whatever FFmpeg opens, one input after the other: picture files, videos, "-" for
/// standard input, URLs, and devices written "v4l2:/dev/video0" (any FFmpeg device before the colon).
///
/// Inputs are opened when their turn comes. A damaged picture is delivered as far as it can be, a damaged
/// input as far as it goes; one that nothing can be had from is left out when there are others.
class CxFFmpegSource : public IxPictureSource
{
public:
    /// \param bits  significant bits of word samples whose file does not say; 0: all 16.
    /// \param stop  once set, waiting for data ends and next() returns End; may be null.
    /// \param options  for every input.
    CxFFmpegSource(QStringList inputs, int bits, std::atomic<bool> const* stop,
                   SxFFmpegOptions const& options = {});

    Result next(SxPicBuf& picture) override;
    QString errorText() const override { return m_error; }
    int expectedPictures() const override { return m_expected; }
    bool hasEnd() const override { return m_hasEnd; }
    bool isLive() const override { return m_isLive; }
    SxPictureRate rate() const override { return m_rate.rate(); }
    int rotation() const override { return m_rotation; }
    SxPixelShape pixelShape() const override { return m_pixelShape; }
    bool knowsSignificantBits() const override;
    int sourceBits() const override { return m_picture.sourceBits(); }
    QStringList takeWarnings() override;
    bool isDamaged() const override { return m_damage.isAny(); }

    /// True when FFmpeg has a reader of that name.
    static bool hasFormat(QString const& name);

    /// Shows FFmpeg's own log on standard error, or hides it. For the whole process.
    static void setLogShown(bool shown);

private:
    bool openInput();
    bool openFormat(SxFFmpegInput const& input);
    void closeInput();
    bool decodeFrame();
    bool readPacket();
    void endInput(int error);
    bool fail(QString const& cause);
    bool leaveOut(QString const& cause);
    bool refuse(int error);
    bool isStopped() const { return m_stop && m_stop->load(); }
    void expect(AVStream const& stream);
    quint64 timestampOf(AVFrame const& frame);
    void applyBits(SxPicBuf& picture);
    QString inputName() const;

    QStringList m_inputs;
    int m_bits;
    std::atomic<bool> const* m_stop;
    SxFFmpegOptions m_options;

    int m_nextInput = 0;
    FormatContextPtr m_format; ///< null between inputs
    CxFFmpegDecoder m_decoder;
    CxPictureCount m_count; ///< of the open input
    CxInputDamage m_damage;
    FramePtr m_frame;
    PacketPtr m_packet;
    int m_stream = -1;
    bool m_isStill = false;      ///< the open input holds pictures, no video: it has no clock
    bool m_isOnePicture = false; ///< the open input is a picture file
    bool m_hasEnd = true;        ///< of the input opened last
    bool m_isLive = false;       ///< the same
    bool m_drained = false;      ///< the open input is read to its end
    int m_framesOfInput = 0;     ///< delivered from the open input
    bool m_hasGap = false;       ///< the open input's reader met data that are not whole
    int m_maxval = 0;            ///< of the last packet, when it was a picture file that says it; else 0
    CxFFmpegConverter m_picture;

    int m_delivered = 0;
    bool m_hasClock = false;  ///< some input so far had time stamps
    quint64 m_lastTime = 0;   ///< microseconds
    quint64 m_inputStart = 0; ///< microseconds at which the open input's pictures begin
    qint64 m_firstPts = AV_NOPTS_VALUE;
    int m_expected = -1;
    RateOrigin m_rateOrigin = RateOrigin::Stream; ///< of the open input
    CxRateMeter m_rate;
    SxStreamFacts m_facts;     ///< of the open input
    int m_rotation = 0;        ///< of the last picture
    SxPixelShape m_pixelShape; ///< the same
    QString m_error;
    QStringList m_warnings;
    bool m_saidBitsIgnored = false;
};

#pragma once

#include <QObject>
#include <cstdlib>
#include <memory>
#include <string>
#include <wels/codec_api.h>

#include "IxVideoEncoder.h"
#include "openH264Options.h"

/// Gives an OpenH264 encoder back to the library.
struct SxEncoderDeleter
{
    void operator()(ISVCEncoder* encoder) const { WelsDestroySVCEncoder(encoder); } // codec_api.h
};

/// Gives a block of malloc() or calloc() back.
struct SxFreeDeleter
{
    void operator()(void* block) const { std::free(block); }
};

/// H.264 encoder over OpenH264: one object a stream, pictures in display order, one thread.
///
/// The OpenH264 instance is made at the first encode(), from that picture's size and the options set
/// until then, and lives as long as the object; so does the buffer for the planar picture. Later
/// pictures are expected to have the first one's size. There is nothing to flush at the end.
class CxOpenH264Encoder : public QObject, public IxVideoEncoder
{
    Q_OBJECT
    Q_CLASSINFO("CustomName", "H.264 Video Encoder")

public:
    Q_INVOKABLE CxOpenH264Encoder() {} // the host creates us through the meta-object
    ~CxOpenH264Encoder() override;

    QString name() override;        ///< "OpenH264"
    unsigned int fourCC() override; ///< "H264"

    /// One picture in any format of ConvertPicBuftoIYUV() to one access unit, start codes included.
    ///
    /// \param size      in: bytes at \p out, at least maxEncodedSize(); out: bytes written, 0 for a
    ///                  picture that OpenH264's rate control skipped.
    /// \param keyFrame  may be null; set to whether the picture is IDR when one was coded.
    /// \return false, with \p size unchanged, on failure; the next picture may then be tried.
    ///
    /// The first picture is IDR, and each that comes `h264_keyframerate` coded pictures after one.
    bool encode(SxPicBuf const& picture, void* out, unsigned long& size, bool* keyFrame) override;

    /// The size of the uncompressed planes: what callers give encode().
    unsigned long maxEncodedSize(SxPicBufInfo const& format) override;

    /// Asks for RGB32 at the picture's size, made even, and scaled down with its aspect ratio where it
    /// is larger than the level allows.
    void queryOuputFormat(SxPicBufInfo const& input, SxPicBufInfo& output) override;

    /// Takes over the keys that the map has: "h264_quality" (1 to 10), "h264_keyframerate" (1 or
    /// more), "h264_complexity" (ECOMPLEXITY_MODE), "h264_profile_idc" (EProfileIdc),
    /// "h264_level_idc" (ELevelIdc), all int, and "h264_show_advanced" (bool, for the panel only).
    ///
    /// Values are taken as they are, converted by QVariant; checking is the host's. After the first
    /// encode() only the key-frame rate still has an effect on the stream.
    void setEncoderOptions(QMap<QString, QVariant> const& options) override;

    /// A new CxPanel that shows the options set so far; \p parent owns it. Never null. A complexity,
    /// profile or level that the panel does not offer becomes the default, in this object too.
    QWidget* widgetForSaveDlg(QWidget* parent) override;

    /// What a panel under \p widget shows, by the keys of setEncoderOptions(). Without those whose
    /// widgets are missing; empty for null.
    QMap<QString, QVariant> optionsFromWidgetInSaveDlg(QWidget* widget) override;

    /// Target bit rate in bits a second for pictures of \p format: from a quarter of the picture's
    /// bytes at quality 1, in nine steps, to the level's cap (or 30 uncompressed pictures) at 10.
    unsigned int bitrate(SxPicBufInfo const& format) const;

private:
    bool createEncoder(SxPicBufInfo const& format);
    bool convert(SxPicBuf const& picture);
    bool assemble(void* out, unsigned long capacity, unsigned long& size) const;

    std::unique_ptr<ISVCEncoder, SxEncoderDeleter> m_encoder; ///< null until the first encode
    SEncParamExt m_params{};                                  ///< filled when m_encoder is made
    SFrameBSInfo m_frameInfo{};                               ///< the same; one frame's output
    std::unique_ptr<uchar, SxFreeDeleter> m_planes; ///< null until the first encode; and a margin behind
    unsigned long m_planesSize = 0;                 ///< the first picture's planes, without the margin
    SxEncoderOptions m_options;
    int m_lastKeyFrame = -1; ///< number of the last IDR picture
    int m_frameCounter = 0;  ///< coded pictures; a skipped one takes no number
};

/// The parameters that decide how OpenH264 encodes, as text of one line each for the log.
std::string dumpEncParams(TagEncParamExt const& params);

/// Shaped as OpenH264's trace callback; does nothing, and is not set: the library's own trace goes to
/// standard error.
void encoderLog(void* context, int level, char const* message);

#pragma once

#include <QObject>
#include <memory>
#include <wels/codec_api.h>

#include "IxVideoDecoder.h"

/// Gives an OpenH264 decoder back to the library.
struct SxDecoderDeleter
{
    void operator()(ISVCDecoder* decoder) const { WelsDestroyDecoder(decoder); } // codec_api.h
};

/// Turns frame N of a coded H.264 stream into an RGB32 picture.
///
/// Coded frames come through IxVideoAccessor only. The OpenH264 instance is made at the first decode
/// and keeps its reference pictures between calls: one object per stream, one thread.
class CxOpenH264Decoder : public QObject, public IxVideoDecoder
{
    Q_OBJECT
    Q_CLASSINFO("CustomName", "H.264 Video Decoder")

public:
    Q_INVOKABLE CxOpenH264Decoder() {} // the host creates us through the meta-object
    ~CxOpenH264Decoder() override;

    QString name() override;        ///< "OpenH264"
    unsigned int fourCC() override; ///< "H264"

    /// Decodes frame \p frame, feeding what it needs: only itself behind the accessor's last
    /// processed frame; from there on within one group of pictures; otherwise all from the key frame
    /// before it, or from frame 0 where there is none.
    ///
    /// \param picture  without memory: gets RGB32 at the stream's size, which is the caller's to free
    ///                 whatever the result. With memory: must be RGB32 (layout 1, formatFlag true) of that
    ///                 size.
    /// \return false when the frame cannot be had. True with \p picture untouched for a frame without any
    ///         bytes. After a failure the next call starts at a key frame.
    bool decode(int frame, IxVideoAccessor* accessor, SxPicBuf& picture) override;

private:
    struct SxPlanes;

    bool createDecoder(); ///< makes the OpenH264 instance, or starts the one there is afresh
    bool feedFrame(int frame, IxVideoAccessor* accessor, SxPicBuf& picture, SxPlanes& latest);
    bool decodeFrames(int first, int last, IxVideoAccessor* accessor, SxPicBuf& picture);
    bool feed(uchar const* data, size_t size, SxPlanes& planes);
    bool feedUnit(uchar const* unit, int size, SxPlanes& planes);
    bool takeHeldPicture(SxPlanes& planes);
    bool deliver(SxPlanes const& planes, SxPicBuf& picture);

    std::unique_ptr<ISVCDecoder, SxDecoderDeleter> m_decoder; ///< null until the first decode
    bool m_isInStep = true; ///< the reference pictures are those of the accessor's last processed frame
    bool m_hasFed = false;  ///< the current call gave the library coded data
};

/// Shaped as OpenH264's trace callback; does nothing, and is not set: the library's own trace goes to
/// standard error.
void decoderLog(void* context, int level, char const* message);

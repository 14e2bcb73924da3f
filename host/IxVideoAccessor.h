#pragma once

#include <QList>

/// Gives a decoder the coded frames of a stream. Frames count from 0. Nobody deletes an accessor
/// through this interface, which therefore has no virtual destructor.
class IxVideoAccessor
{
public:
    virtual int framesCount() = 0;
    virtual unsigned long frameDataSize(int frame) = 0; ///< bytes of a coded frame; 0 for a bad number

    /// Copies coded frame \p frame to \p buffer. \p size: in, the bytes available there; out, the
    /// frame's bytes. A frame was copied when \p size was set to its frameDataSize().
    virtual bool frameData(int frame, void* buffer, unsigned long& size) = 0;

    /// The frame that was last decoded with success, or -1: what the decoder's reference pictures hold.
    virtual int lastProcessedFrame() = 0;

    /// Replaces \p frames by the numbers of the key frames, ascending.
    virtual void keyFrames(QList<int>& frames) = 0;

protected:
    ~IxVideoAccessor() = default;
};

#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

#include "PictureRate.h"
#include "PixelShape.h"
#include "SxPicBuf.h"

/// Pictures of a live source that do not come.
struct SxMissingPictures
{
    int lost = 0;     ///< it gave them, and nobody took them in time
    int byCamera = 0; ///< it left them out itself, by its time stamps
};

/// Where pictures to record or to show come from, one after the other. One thread at a time.
class IxPictureSource
{
public:
    enum class Result {
        Picture, ///< a picture was delivered
        End,     ///< there is none left, or the wait for it was interrupted
        Error    ///< reading failed; errorText() says why, and no picture follows
    };

    virtual ~IxPictureSource() = default;

    /// Fetches the next picture. \p picture is empty or one from an earlier call: memory of the right
    /// format is filled again, other memory is released and replaced through CxPicBufAPI. In either
    /// case it is the caller's to free. `timestamp` is in microseconds from the first picture; a
    /// source without a clock counts at the rate that it names, else kPicturesASecond. On End and Error
    /// \p picture is unspecified but still the caller's.
    virtual Result next(SxPicBuf& picture) = 0;

    /// One sentence naming the source and the cause, once next() has returned Error.
    virtual QString errorText() const = 0;

    /// Pictures from first to last as far as known before reading them, or -1.
    virtual int expectedPictures() const = 0;

    /// False for a camera or a live stream, which goes on until somebody stops it: stopped, it has lost
    /// nothing. Known once the first picture has come.
    virtual bool hasEnd() const { return true; }

    /// True for a source that gives its pictures by its own clock, whether somebody takes them or not, such
    /// as a webcam. Stopped, it first gives those that came before, and then ends. Known once the first
    /// picture has come.
    virtual bool isLive() const { return false; }

    /// Those missing between the picture before and the one that came last, or the end.
    virtual SxMissingPictures missing() const { return {}; }

    /// The rate of the pictures that came so far: what the source says, or the average where they come
    /// unsteadily; unknown for pictures without a clock.
    virtual SxPictureRate rate() const { return {}; }

    /// Degrees clockwise, 0, 90, 180 or 270, by which the picture that came last is still to be turned to
    /// stand upright. All of a video's are alike.
    virtual int rotation() const { return 0; }

    /// The shape of the pixels of the picture that came last.
    virtual SxPixelShape pixelShape() const { return {}; }

    /// Size of the picture that came last before an odd last column and row were left out of it; empty when
    /// nothing leaves them out.
    virtual QSize wholeSize() const { return {}; }

    /// True when the source itself says how many bits of a word sample count; false when 16 is only
    /// the size of the word.
    virtual bool knowsSignificantBits() const = 0;

    /// Bits that a sample of the picture that came last has in the source, where its words hold it shifted up
    /// to more; 0: those of the picture.
    virtual int sourceBits() const { return 0; }

    /// Sentences about what was left out or assumed since the last call.
    virtual QStringList takeWarnings() = 0;

    /// True once something that was read was damaged or broken off; takeWarnings() says what. The picture
    /// that it belongs to is delivered all the same when there is one.
    virtual bool isDamaged() const = 0;
};

#pragma once

#include "SxPicBuf.h"
#include "tarnCoreGlobal.h"

/// Memory and scaling of pictures. The only source of pixel memory that host and plug-ins share. For
/// several threads, as long as no two work on one picture.
class TARNCORE_EXPORT CxPicBufAPI
{
public:
    CxPicBufAPI() = delete;

    /// Gives \p picture the format and rows of `pitch` bytes, `height` of them, uninitialised; what
    /// it held before is not released. A pitch of 0 becomes the row's bytes rounded up to a
    /// multiple of 256, which the picture then shows. \p zeroFill and \p extraSize (bytes behind
    /// the last row) are this stand-in's reading of two arguments that plug-ins pass as false and 0.
    ///
    /// `data` is a multiple of 64. Blocks of a few freed pictures serve the next ones of their size, so
    /// that steady playback takes no fresh memory. When no picture is left one of them stays, until an
    /// application's event loop has seen a second without any.
    ///
    /// \return false, with \p picture untouched, when the format has no pixels, components outside 1
    ///         to 4, a pitch shorter than a row or more than 2 GiB in all, or memory is short.
    static bool AllocPicBufFromHeap(SxPicBuf& picture, SxPicBufInfo const& format, bool zeroFill,
                                    unsigned long extraSize);

    /// Releases the pixels of a picture from AllocPicBufFromHeap(); does nothing to one without. Afterwards
    /// `data` is null. \p resetFormat also returns the format to its default (this stand-in's reading).
    static void FreePicBuf(SxPicBuf& picture, bool resetFormat);

    /// Scales \p source into \p target, whose format and memory are set. Packed formats with samples
    /// of 8 or 16 bits and 1, 3 or 4 components; format and depth are converted where they differ, so
    /// that black and white stay such: colour to grey with the weights of ITU-R BT.601, grey to three
    /// equal components, a missing fourth component to white. Bits above `bitsPerSample` don't count.
    /// Reads and writes pixels only, never what fills a row up to the pitch. The time stamp goes along.
    ///
    /// \return false, with the pixels of \p target unspecified, when one of them is none of these, has
    ///         a side above 2097152 or less memory than its format needs, or when they share memory.
    static bool Resize(SxPicBuf const& source, SxPicBuf& target);
};

#pragma once

#include "SxPicBufInfo.h"
#include "tarnCoreGlobal.h"

/// A picture: its format, followed by where its pixels are.
///
/// The record does not own the pixels. Their memory is taken and given back by hand with
/// CxPicBufAPI; whoever called AllocPicBufFromHeap() on a picture owns it, and a copy of the record
/// is another name for the same pixels.
///
/// The fields after `data`, and their order, are this stand-in's choice; a plug-in touches none of
/// them but `timestamp`.
struct TARNCORE_EXPORT SxPicBuf : SxPicBufInfo
{
    SxPicBuf(); ///< empty: default format, no pixels

    /// Copies the ten format fields; `data` and `timestamp` stay.
    void setPicFormat(SxPicBufInfo const& format);

    unsigned char* data;   ///< first byte of the top row; null when the picture has no memory
    quint64 timestamp;     ///< time of the picture in microseconds
    quint64 allocatedSize; ///< bytes at `data` that AllocPicBufFromHeap() gave; 0 for foreign memory
};

#pragma once

#include "SxPicBuf.h"

/// Frees a picture's memory with the object: the one place where minihost pairs
/// CxPicBufAPI::AllocPicBufFromHeap() with FreePicBuf().
class CxOwnedPicture
{
public:
    CxOwnedPicture() = default;
    ~CxOwnedPicture();
    CxOwnedPicture(CxOwnedPicture const&) = delete;
    CxOwnedPicture& operator=(CxOwnedPicture const&) = delete;

    SxPicBuf& get() { return m_picture; }
    SxPicBuf const& get() const { return m_picture; }

private:
    SxPicBuf m_picture;
};

/// A packed format: \p components 1, 3 or 4, samples of \p bits significant bits in one byte (up to
/// 8) or a native word (9 to 16); pitch 0, which the allocator replaces.
SxPicBufInfo fx_PackedFormat(quint32 width, quint32 height, quint32 components, quint32 bits);

/// True for formats whose samples are 16-bit words.
bool fx_IsWordFormat(SxPicBufInfo const& format);

/// Makes \p picture one of \p format (pitch left to the allocator): keeps its memory when size,
/// components and sample type agree, otherwise replaces it. False when there is no memory.
bool fx_PreparePicture(SxPicBuf& picture, SxPicBufInfo const& format);

/// The highest sample of a word picture; a fourth component does not count.
quint16 fx_HighestSample(SxPicBuf const& picture);

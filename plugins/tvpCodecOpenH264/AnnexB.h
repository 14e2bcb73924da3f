#pragma once

#include <QtGlobal>
#include <cstddef>

/// Byte streams of ITU-T H.264, annex B: start codes, and the frames between them. Bytes in, values
/// out; nothing is read outside the bytes given.

/// The first position at or behind \p from where a start code begins, 00 00 01 or 00 00 00 01, that
/// lies within \p size bytes as a whole; \p size when there is none.
size_t fx_FindStartCode(uchar const* data, size_t size, size_t from);

/// Bytes of the start code at \p at, 3 or 4; 0 when there is none that lies within \p size bytes as a whole.
/// \param at  at most \p size
size_t fx_StartCodeLength(uchar const* data, size_t size, size_t at);

/// Whether the bytes begin with a start code and hold at least four bytes.
bool fx_BeginsWithStartCode(uchar const* data, size_t size);

/// One frame of a stream: from the start code of its first NAL unit up to that of the next frame's.
struct SxFrameRange
{
    qint64 offset = 0; ///< bytes from the start of the stream; 0 for the first frame
    quint64 size = 0;  ///< bytes, start codes included
    bool key = false;  ///< opened by a sequence parameter set
};

/// Cuts a stream into frames, from front to back in one pass.
///
/// A frame opens at a sequence parameter set (header byte 0x67) or a non-IDR slice (0x61), both as
/// OpenH264 writes them, with nal_ref_idc 3. Every other unit belongs to the frame before it. Units
/// with fewer than four bytes behind their start code are not looked at.
class CxFrameScanner
{
public:
    CxFrameScanner(uchar const* data, size_t size)
        : m_data(data)
        , m_size(size)
    {}

    /// The next frame; false when there is no more.
    bool next(SxFrameRange& frame);

    /// First byte behind the header of the first sequence parameter set that the scan has passed;
    /// null when there was none yet.
    uchar const* spsPayload() const { return m_spsHeader != 0 ? m_data + m_spsHeader + 1 : nullptr; }

    /// Bytes of that payload, up to the next start code that the scan has passed or else the end of
    /// the stream, at most 65535.
    quint16 spsLength() const;

private:
    uchar const* m_data;
    size_t m_size;
    size_t m_position = 0;
    size_t m_frameStart = 0;
    bool m_isKey = false;
    bool m_isAtEnd = false;
    size_t m_spsHeader = 0; ///< position of the first SPS's header byte; 0: none, since no unit begins there
    size_t m_spsEnd = 0;    ///< position of the start code behind it; 0: none yet
};

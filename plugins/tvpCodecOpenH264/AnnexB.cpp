#include "AnnexB.h"

#include <algorithm>

#include "StartCodeSearch.h"

size_t fx_StartCodeLength(uchar const* data, size_t size, size_t at)
{
    if (size - at < 3 || data[at] != 0 || data[at + 1] != 0)
        return 0;
    if (data[at + 2] == 1)
        return 3;
    return size - at >= 4 && data[at + 2] == 0 && data[at + 3] == 1 ? 4 : 0;
}

size_t fx_FindStartCode(uchar const* data, size_t size, size_t from)
{
    if (from >= size)
        return size;
    // Both kinds of start code end with 00 00 01; one more zero in front makes it the longer.
    size_t const prefix = fx_FindPrefix(data, size, from);
    return prefix < size && prefix > from && data[prefix - 1] == 0 ? prefix - 1 : prefix;
}

bool fx_BeginsWithStartCode(uchar const* data, size_t size)
{
    return size >= 4 && fx_StartCodeLength(data, size, 0) != 0;
}

static constexpr uchar kNonIdrSlice = 0x61; // nal_ref_idc 3, nal_unit_type 1
static constexpr uchar kSps = 0x67;         // nal_ref_idc 3, nal_unit_type 7
static constexpr size_t kLeastUnit = 4;     // bytes that must follow for the scan to look at a place

bool CxFrameScanner::next(SxFrameRange& frame)
{
    while (!m_isAtEnd) {
        size_t const code = fx_FindStartCode(m_data, m_size, m_position);
        // A start code in the last three bytes is part of the last frame.
        if (m_size - code < kLeastUnit) {
            m_isAtEnd = true;
            break;
        }
        if (m_spsHeader != 0 && m_spsEnd == 0)
            m_spsEnd = code;

        size_t const header = code + fx_StartCodeLength(m_data, m_size, code);
        if (m_size - header < kLeastUnit) {
            m_position = header;
            m_isAtEnd = true;
            break;
        }
        m_position = header + 1;
        uchar const unit = m_data[header];
        if (unit != kSps && unit != kNonIdrSlice)
            continue;

        if (m_spsHeader == 0 && unit == kSps)
            m_spsHeader = header;
        bool const closesFrame = header > 4; // the first unit of the stream only opens one
        if (closesFrame) {
            frame.offset = static_cast<qint64>(m_frameStart);
            frame.size = code - m_frameStart;
            frame.key = m_isKey;
            m_frameStart = code;
        }
        m_isKey = unit == kSps;
        if (closesFrame)
            return true;
    }

    // What is left is the last frame. A start code that fills the last bytes of the stream leaves
    // none: the position then stands at the very end.
    if (m_position >= m_size)
        return false;
    frame.offset = static_cast<qint64>(m_frameStart);
    frame.size = m_size - m_frameStart;
    frame.key = m_isKey;
    m_position = m_size;
    return true;
}

quint16 CxFrameScanner::spsLength() const
{
    if (m_spsHeader == 0)
        return 0;
    size_t const end = m_spsEnd != 0 ? m_spsEnd : m_size;
    return static_cast<quint16>(std::min<size_t>(end - m_spsHeader - 1, 0xFFFF));
}

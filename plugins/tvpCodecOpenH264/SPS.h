#pragma once

#include <QtGlobal>

/// Takes the picture size from a sequence parameter set (ITU-T H.264, 7.3.2.1.1).
///
/// Walks the syntax only as far as the cropping fields. Tuned to what our encoder writes, and stable:
/// recordings and hosts rely on the size that comes out, also where a full parser would differ.
/// Scaling lists are not parsed (the eight flags are skipped, whatever they say), profiles other
/// than 100, 110, 122 and 144 have no chroma fields, emulation prevention bytes are read as they stand.
class CxSPS
{
public:
    /// \param data    the unit behind its header byte: profile_idc first.
    /// \param length  bytes there; behind them every bit counts as zero.
    /// \param width, height  the cropped size in pixels. Never fails: broken bits give some size.
    void parse(unsigned char const* data, unsigned short length, int& width, int& height);

private:
    bool isAtEnd() const { return m_position >= m_end; }
    void skipBits(quint32 count);
    quint32 readBit();
    quint32 readBits(quint32 count);
    quint32 readUe();           ///< ue(v), modulo 2^32
    void skipUe() { readUe(); } ///< also se(v), whose code has the same length
    void skipPicOrderCnt();     ///< pic_order_cnt_type and its fields

    unsigned char const* m_data = nullptr;
    quint32 m_position = 0; ///< bits consumed; never more than m_end
    quint32 m_end = 0;      ///< bits there are
};

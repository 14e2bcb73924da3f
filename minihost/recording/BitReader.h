#pragma once

#include <QtGlobal>
#include <cstddef>

/// Reads the bits of a unit of H.264 or H.265, most significant first, without its emulation prevention bytes
/// (ITU-T H.264, 7.4.1). Behind the end come zeros, and isGood() tells. The plug-in has a reader of its own
/// for its parameter sets: the stand-in reaches it through the host's interfaces alone.
class CxBitReader
{
public:
    CxBitReader(uchar const* data, size_t size)
        : m_data(data)
        , m_size(size)
    {}

    quint32 bits(int count); ///< 0 to 32
    bool flag() { return bits(1) != 0; }
    quint32 ue(); ///< Exp-Golomb code (9.1)
    qint32 se();  ///< signed one (9.1.1)
    void skip(int count);

    bool isGood() const { return m_isGood; }

private:
    quint32 bit();

    uchar const* m_data;
    size_t m_size;
    size_t m_at = 0;
    int m_bit = 0; ///< read of the byte at m_at
    int m_zeros = 0;
    bool m_isGood = true;
};

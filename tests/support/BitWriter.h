#pragma once

#include <QtGlobal>
#include <vector>

/// Writes syntax elements of ITU-T H.264, most significant bit first.
class CxBitWriter
{
public:
    void bit(bool value)
    {
        if (m_bits % 8 == 0)
            m_bytes.push_back(0);
        if (value)
            m_bytes.back() = static_cast<uchar>(m_bytes.back() | 0x80u >> m_bits % 8);
        ++m_bits;
    }

    void bits(quint64 value, int count)
    {
        for (int i = count - 1; i >= 0; --i)
            bit((value >> i & 1) != 0);
    }

    /// ue(v) (9.1), up to 2^32 - 2, the largest value that the standard has.
    void ue(quint32 value)
    {
        quint64 const code = quint64(value) + 1;
        int zeros = 0;
        while (code >> (zeros + 1) != 0)
            ++zeros;
        bits(0, zeros);
        bits(code, zeros + 1);
    }

    /// se(v) (9.1.1).
    void se(qint32 value)
    {
        ue(value > 0 ? 2u * static_cast<quint32>(value) - 1u : 2u * (0u - static_cast<quint32>(value)));
    }

    /// rbsp_trailing_bits() (7.3.2.11).
    void trailingBits()
    {
        bit(true);
        while (m_bits % 8 != 0)
            bit(false);
    }

    size_t bitCount() const { return m_bits; }

    /// What was written, the last byte filled up with zeros.
    std::vector<uchar> const& bytes() const { return m_bytes; }

private:
    std::vector<uchar> m_bytes;
    size_t m_bits = 0;
};

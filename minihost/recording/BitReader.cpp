#include "BitReader.h"

quint32 CxBitReader::bit()
{
    if (m_bit == 0 && m_at < m_size && m_zeros >= 2 && m_data[m_at] == 3) { // emulation_prevention_three_byte
        ++m_at;
        m_zeros = 0;
    }
    if (m_at >= m_size) {
        m_isGood = false;
        return 0;
    }
    quint32 const value = (m_data[m_at] >> (7 - m_bit)) & 1U;
    if (++m_bit == 8) {
        m_zeros = m_data[m_at] == 0 ? m_zeros + 1 : 0;
        m_bit = 0;
        ++m_at;
    }
    return value;
}

quint32 CxBitReader::bits(int count)
{
    quint32 value = 0;
    for (int i = 0; i < count; ++i)
        value = value << 1 | bit();
    return value;
}

void CxBitReader::skip(int count)
{
    for (int i = 0; i < count; ++i)
        bit();
}

quint32 CxBitReader::ue()
{
    int zeros = 0;
    while (m_isGood && bit() == 0)
        ++zeros;
    if (zeros > 31) {
        m_isGood = false; // no syntax element is as large
        return 0;
    }
    return (1U << zeros) - 1 + bits(zeros);
}

qint32 CxBitReader::se()
{
    quint32 const code = ue();
    auto const half = static_cast<qint32>((code + 1) / 2);
    return code % 2 == 0 ? -half : half;
}

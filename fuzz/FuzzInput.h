#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

/// The bytes of an input, taken from the front; zeros behind their end, so that every choice has an answer.
class CxFuzzInput
{
public:
    CxFuzzInput(std::uint8_t const* data, std::size_t size)
        : m_data(data)
        , m_size(size)
    {}

    std::size_t left() const { return m_size; }
    std::uint8_t const* data() const { return m_data; }

    std::uint8_t byte()
    {
        std::uint8_t value = 0;
        take(&value, 1);
        return value;
    }
    std::uint32_t word()
    {
        std::uint8_t bytes[4] = {};
        take(bytes, sizeof bytes);
        std::uint32_t value = 0;
        for (std::uint8_t const byte : bytes)
            value = value << 8 | byte;
        return value;
    }
    bool flag() { return byte() & 1; }

    /// A number from 0 to \p limit - 1, at most 65535.
    std::uint32_t below(std::uint32_t limit)
    {
        std::uint32_t const low = byte();
        return limit <= 256 ? low % limit : (low | std::uint32_t(byte()) << 8) % limit;
    }

    /// The next bytes as an input of their own: a byte says how many. What is left follows them.
    CxFuzzInput split()
    {
        std::size_t const size = std::min<std::size_t>(byte(), m_size);
        CxFuzzInput const part(m_data, size);
        m_data += size;
        m_size -= size;
        return part;
    }

    /// Fills \p size bytes with what comes next, over and over again.
    void fill(std::uint8_t* bytes, std::size_t size)
    {
        std::uint8_t pattern[64] = {};
        take(pattern, sizeof pattern);
        for (std::size_t i = 0; i < size; ++i)
            bytes[i] = static_cast<std::uint8_t>(pattern[i % sizeof pattern] + i / 7);
    }

private:
    void take(std::uint8_t* bytes, std::size_t size)
    {
        std::size_t const there = std::min(size, m_size);
        std::copy_n(m_data, there, bytes);
        m_data += there;
        m_size -= there;
    }

    std::uint8_t const* m_data;
    std::size_t m_size;
};

#include "support/RowsCheck.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include "support/PackedFormats.h"

using std::size_t;
using std::uint8_t;

namespace {

constexpr size_t kGuard = 64;
constexpr uint8_t kUntouched = 0xA5;

// Of all results, in the order in which the checks make them.
constexpr std::uint64_t kColoursHash = 0xB56F460179E0C97B;
constexpr std::uint64_t kSamplesHash = 0x62D5AD49C37B8525;
constexpr std::uint64_t kShiftsHash = 0x01B270E9E29A7245;

/// FNV-1a, eight bytes a step.
class CxHash
{
public:
    void add(uint8_t const* bytes, size_t size)
    {
        for (size_t i = 0; i < size; i += 8) {
            std::uint64_t part = 0;
            for (size_t j = 0; j < 8 && i + j < size; ++j)
                part |= std::uint64_t(bytes[i + j]) << 8 * j;
            m_value = (m_value ^ part) * 0x100000001B3;
        }
    }
    std::uint64_t value() const { return m_value; }

private:
    std::uint64_t m_value = 0xCBF29CE484222325;
};

/// Of one kernel, what the scalar twin and the kernel under proof are given.
struct SxRun
{
    std::string table;
    std::string kernel;
    unsigned width;
    std::string input;

    std::string difference(std::string const& place, unsigned expected, unsigned found) const
    {
        return fx_Difference(table, kernel, width, place + ", " + input, expected, found);
    }
};

std::string fx_HashError(CxHash const& hash, std::uint64_t expected, std::string const& table,
                         std::string const& kernel)
{
    if (hash.value() == expected)
        return {};
    char text[80];
    std::snprintf(text, sizeof text, ": checksum 0x%016llX expected, 0x%016llX found",
                  static_cast<unsigned long long>(expected), static_cast<unsigned long long>(hash.value()));
    return table + ", " + kernel + text;
}

std::string fx_Byte(char const* where, std::ptrdiff_t index)
{
    return std::string(where) + " byte " + std::to_string(index);
}

/// The target of a kernel: bytes between guards.
class CxTarget
{
public:
    explicit CxTarget(size_t size)
        : m_bytes(size + 2 * kGuard, kUntouched)
    {}

    uint8_t* data() { return m_bytes.data() + kGuard; }
    size_t size() const { return m_bytes.size() - 2 * kGuard; }
    bool operator==(CxTarget const& other) const { return m_bytes == other.m_bytes; }

    /// Names the first byte that differs: beyond the row it is a guard.
    std::string difference(CxTarget const& expected, SxRun const& run, char const* where) const
    {
        auto const at = std::mismatch(m_bytes.begin(), m_bytes.end(), expected.m_bytes.begin());
        if (at.first == m_bytes.end())
            return {};
        return run.difference(fx_Byte(where, at.first - m_bytes.begin() - std::ptrdiff_t(kGuard)), *at.second,
                              *at.first);
    }

private:
    std::vector<uint8_t> m_bytes;
};

/// Luma and chroma of a row, with and without chroma.
struct SxPlanes
{
    explicit SxPlanes(unsigned width)
        : luma(width)
        , y(width)
        , u(width / 2)
        , v(width / 2)
    {}

    /// Grey has one kernel for words, and none for bytes, which are copied.
    void convert(SxIYUVKernels const& rows, SxPackedFormat const& format, uint8_t const* src, unsigned width,
                 unsigned shift)
    {
        if (format.colour) {
            (rows.*format.colour).luma(src, luma.data(), width, shift);
            if (width % 2 == 0) // pairs only
                (rows.*format.colour).lumaAndChroma(src, y.data(), u.data(), v.data(), width, shift);
        } else if (format.isWords()) {
            rows.mono16(src, y.data(), width, shift);
        }
    }
    bool operator==(SxPlanes const& other) const
    {
        return luma == other.luma && y == other.y && u == other.u && v == other.v;
    }
    std::string difference(SxPlanes const& expected, SxRun const& run) const
    {
        for (std::string const& error :
             {luma.difference(expected.luma, run, "luma alone"), y.difference(expected.y, run, "luma"),
              u.difference(expected.u, run, "U"), v.difference(expected.v, run, "V")})
            if (!error.empty())
                return error;
        return {};
    }

    CxTarget luma, y, u, v;
};

std::vector<uint8_t> fx_Noise(size_t size, unsigned seed)
{
    std::vector<uint8_t> bytes(size);
    std::minstd_rand random(seed);
    std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<uint8_t>(random() >> 8); });
    return bytes;
}

/// Sets one component of a row to value(x). Words keep their noise around bits 4 to 11.
template<class Value>
void fx_SetComponent(SxPackedFormat const& format, std::vector<uint8_t>& row, unsigned component, Value value)
{
    for (unsigned x = 0; x < row.size() / format.pixelBytes(); ++x) {
        uint8_t* const pixel = row.data() + size_t(x) * format.pixelBytes();
        if (!format.isWords()) {
            pixel[component] = static_cast<uint8_t>(value(x));
            continue;
        }
        std::uint16_t word;
        std::memcpy(&word, pixel + 2 * component, sizeof word);
        word = static_cast<std::uint16_t>((word & 0xF00F) | value(x) << 4);
        std::memcpy(pixel + 2 * component, &word, sizeof word);
    }
}

} // namespace

std::string fx_Difference(std::string const& table, std::string const& kernel, size_t size,
                          std::string const& place, size_t expected, size_t found)
{
    return table + ", " + kernel + ", size " + std::to_string(size) + ", " + place + ": " +
           std::to_string(expected) + " expected, " + std::to_string(found) + " found";
}

std::string fx_CheckColours(char const* table, SxIYUVKernels const& rows)
{
    constexpr unsigned kGreens = 8, kWidth = kGreens * 512;
    for (SxPackedFormat const& format : kPackedFormats) {
        if (!format.colour)
            continue;
        CxHash hash;
        std::vector<uint8_t> row = fx_Noise(size_t(kWidth) * format.pixelBytes(), 1);
        unsigned const shift = format.isWords() ? 4 : 0;
        SxPlanes expected(kWidth), actual(kWidth);
        // In pairs of pixels, so that each colour is a left one.
        fx_SetComponent(format, row, 2, [](unsigned x) { return x / 2 % 256; });
        for (unsigned blue = 0; blue < 256; ++blue) {
            fx_SetComponent(format, row, 0, [blue](unsigned) { return blue; });
            for (unsigned green = 0; green < 256; green += kGreens) {
                fx_SetComponent(format, row, 1, [green](unsigned x) { return green + x / 512; });
                expected.convert(fx_GetScalarIYUVKernels(), format, row.data(), kWidth, shift);
                actual.convert(rows, format, row.data(), kWidth, shift);
                if (!(actual == expected))
                    return actual.difference(
                        expected, {table, format.name, kWidth,
                                   "blue " + std::to_string(blue) + ", green from " + std::to_string(green)});
                hash.add(actual.y.data(), kWidth);
                hash.add(actual.u.data(), kWidth / 2);
                hash.add(actual.v.data(), kWidth / 2);
            }
        }
        // Every format holds the same colours.
        std::string const error = fx_HashError(hash, kColoursHash, table, format.name);
        if (!error.empty())
            return error;
    }
    return {};
}

std::string fx_CheckSamples(char const* table, SxIYUVKernels const& rows)
{
    constexpr unsigned kWidth = 2 * 256; // all V for one U
    CxHash hash;
    std::vector<uint8_t> top(kWidth), bottom(kWidth), u(kWidth / 2), v(kWidth / 2);
    for (unsigned i = 0; i < kWidth / 2; ++i)
        v[i] = static_cast<uint8_t>(i);
    std::vector<uint8_t> expected(2 * kWidth * 4), actual(expected.size());
    std::vector<uint8_t> memory(expected.size() + kNonTemporalAlignment);
    size_t const lead =
        kNonTemporalAlignment - reinterpret_cast<std::uintptr_t>(memory.data()) % kNonTemporalAlignment;
    uint8_t* const aligned = memory.data() + lead;
    SxPlaneRows const planes = {{top.data(), bottom.data()}, u.data(), v.data()};
    for (unsigned luma = 0; luma < 256; ++luma) {
        for (unsigned cb = 0; cb < 256; ++cb) {
            std::fill(top.begin(), top.end(), static_cast<uint8_t>(luma));
            std::fill(bottom.begin(), bottom.end(), static_cast<uint8_t>(255 - luma));
            std::fill(u.begin(), u.end(), static_cast<uint8_t>(cb));
            size_t const row = kWidth * 4;
            fx_GetScalarIYUVKernels().toRGB32(planes, expected.data(), expected.data() + row, kWidth);
            rows.toRGB32(planes, actual.data(), actual.data() + row, kWidth);
            rows.toRGB32NonTemporal(planes, aligned, aligned + row, kWidth);
            std::string const input = "luma " + std::to_string(luma) + ", U " + std::to_string(cb);
            for (uint8_t* const bytes : {actual.data(), aligned}) {
                auto const at = std::mismatch(expected.begin(), expected.end(), bytes);
                char const* const kernel = bytes == aligned ? "toRGB32NonTemporal" : "toRGB32";
                if (at.first != expected.end())
                    return SxRun{table, kernel, kWidth, input}.difference(
                        fx_Byte("pixel", at.first - expected.begin()), *at.first, *at.second);
            }
            hash.add(actual.data(), row);
        }
    }
    return fx_HashError(hash, kSamplesHash, table, "toRGB32");
}

std::string fx_CheckShifts(char const* table, SxIYUVKernels const& rows)
{
    CxHash hash;
    for (SxPackedFormat const& format : kPackedFormats) {
        if (!format.isWords())
            continue;
        unsigned const components = format.components;
        std::vector<std::uint16_t> words(65536 * components);
        for (size_t i = 0; i < words.size(); ++i)
            words[i] = static_cast<std::uint16_t>(i / components * (i % components * 4242 + 1));
        uint8_t const* const src = reinterpret_cast<uint8_t const*>(words.data());
        for (unsigned shift = 0; shift < 32; ++shift) {
            SxPlanes expected(65536), actual(65536);
            expected.convert(fx_GetScalarIYUVKernels(), format, src, 65536, shift);
            actual.convert(rows, format, src, 65536, shift);
            if (!(actual == expected))
                return actual.difference(expected,
                                         {table, format.name, 65536, "shift " + std::to_string(shift)});
            hash.add(actual.y.data(), actual.y.size());
            hash.add(actual.u.data(), actual.u.size());
            hash.add(actual.v.data(), actual.v.size());
        }
    }
    return fx_HashError(hash, kShiftsHash, table, "words");
}

static std::vector<unsigned> fx_Widths()
{
    std::vector<unsigned> widths;
    for (unsigned width = 0; width <= 3 * 64 + 2; ++width)
        widths.push_back(width);
    for (unsigned const usual : {640u, 1000u, 1920u, 4096u})
        for (unsigned width = usual - 3; width <= usual + 3; ++width)
            widths.push_back(width);
    return widths;
}

/// A copy whose end is the end of its memory, at an odd or even address.
static std::vector<uint8_t> fx_Source(size_t size, size_t misalignment)
{
    return fx_Noise(misalignment + size, static_cast<unsigned>(size + misalignment));
}

/// Rows of RGB32 between guards, each at an address that non-temporal stores accept, or \p misalignment
/// behind it.
class CxPixelRows
{
public:
    CxPixelRows(unsigned width, size_t misalignment)
        : m_bytes(2 * (size_t(width) * 4 + 3 * kNonTemporalAlignment), kUntouched)
        , m_row(kNonTemporalAlignment -
                reinterpret_cast<std::uintptr_t>(m_bytes.data()) % kNonTemporalAlignment + misalignment)
    {}

    uint8_t* top() { return m_bytes.data() + m_row; }
    uint8_t* bottom()
    {
        return top() +
               (m_bytes.size() / 2 - kNonTemporalAlignment) / kNonTemporalAlignment * kNonTemporalAlignment;
    }
    /// Compares what stands around the rows as well. Bytes are counted from the start of the top row.
    std::string difference(CxPixelRows& expected, SxRun const& run)
    {
        size_t const before = std::min(m_row, expected.m_row);
        size_t const after = m_bytes.size() - std::max(m_row, expected.m_row);
        auto const at = std::mismatch(top() - before, top() + after, expected.top() - before);
        if (at.first == top() + after)
            return {};
        return run.difference(fx_Byte("pixel", at.first - top()), *at.second, *at.first);
    }

private:
    std::vector<uint8_t> m_bytes;
    size_t m_row;
};

static std::string fx_DifferenceBack(char const* table, SxIYUVKernels const& rows, unsigned width,
                                     size_t misalignment, bool isLone)
{
    std::vector<uint8_t> const y0 = fx_Source(width, misalignment), y1 = fx_Source(width, 2 * misalignment);
    std::vector<uint8_t> const u = fx_Source(width / 2, misalignment),
                               v = fx_Source(width / 2, 3 * misalignment);
    uint8_t const* const top = y0.data() + misalignment;
    SxPlaneRows const planes = {{top, isLone ? top : y1.data() + 2 * misalignment},
                                u.data() + misalignment,
                                v.data() + 3 * misalignment};
    auto const convert = [&](FxRGB32Kernel kernel, CxPixelRows& target) {
        kernel(planes, target.top(), isLone ? target.top() : target.bottom(), width);
    };
    CxPixelRows expected(width, 0), actual(width, misalignment), nonTemporal(width, 0);
    convert(fx_GetScalarIYUVKernels().toRGB32, expected);
    convert(rows.toRGB32, actual);
    convert(rows.toRGB32NonTemporal, nonTemporal);
    std::string const input =
        "address + " + std::to_string(misalignment) + (isLone ? ", one row" : ", two rows");
    std::string const error = actual.difference(expected, {table, "toRGB32", width, input});
    return error.empty() ? nonTemporal.difference(expected, {table, "toRGB32NonTemporal", width, input})
                         : error;
}

std::string fx_CheckWidths(char const* table, SxIYUVKernels const& rows)
{
    for (unsigned const width : fx_Widths()) {
        for (size_t const misalignment : {0u, 1u}) {
            std::string const input = "address + " + std::to_string(misalignment);
            for (SxPackedFormat const& format : kPackedFormats) {
                std::vector<uint8_t> const source =
                    fx_Source(size_t(width) * format.pixelBytes(), misalignment);
                uint8_t const* const src = source.data() + misalignment;
                SxPlanes expected(width), actual(width);
                expected.convert(fx_GetScalarIYUVKernels(), format, src, width, 3);
                actual.convert(rows, format, src, width, 3);
                if (!(actual == expected))
                    return actual.difference(expected, {table, format.name, width, input});
            }

            if (width % 2 != 0)
                continue; // pairs only
            for (bool const isLone : {false, true}) {
                std::string const error = fx_DifferenceBack(table, rows, width, misalignment, isLone);
                if (!error.empty())
                    return error;
            }
        }
    }
    return {};
}

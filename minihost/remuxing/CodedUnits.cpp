#include "CodedUnits.h"

static constexpr int kPrefix = 3; // 00 00 01

/// Where the next 00 00 01 begins; the end of the bytes when there is none.
static int fx_NextPrefix(QByteArray const& bytes, int from)
{
    auto const found = bytes.indexOf(QByteArray::fromRawData("\0\0\1", kPrefix), from);
    return static_cast<int>(found < 0 ? bytes.size() : found);
}

QVector<SxCodedUnit> fx_UnitsOf(QByteArray const& frame)
{
    QVector<SxCodedUnit> units;
    int const size = static_cast<int>(frame.size());
    int prefix = fx_NextPrefix(frame, 0);
    while (prefix < size) {
        int const next = fx_NextPrefix(frame, prefix + kPrefix);
        auto const beginOf = [&frame](int at) { return at > 0 && frame[at - 1] == 0 ? at - 1 : at; };
        SxCodedUnit unit;
        unit.begin = beginOf(prefix);
        unit.end = next < size ? beginOf(next) : size;
        int last = next;
        while (last > prefix + kPrefix && frame[last - 1] == 0)
            --last;
        unit.bytes = frame.mid(prefix + kPrefix, last - prefix - kPrefix);
        units.append(unit);
        prefix = next;
    }
    return units;
}

static uchar const* fx_Bytes(SxCodedUnit const& unit)
{
    return reinterpret_cast<uchar const*>(unit.bytes.constData());
}

std::optional<SxH264Sps> fx_SpsOf(QByteArray const& frame)
{
    for (SxCodedUnit const& unit : fx_UnitsOf(frame)) {
        if (unit.type() == SxCodedUnit::kSps)
            return fx_ReadH264Sps(fx_Bytes(unit), static_cast<size_t>(unit.bytes.size()));
    }
    return std::nullopt;
}

std::optional<SxH264Slice> fx_SliceOf(SxCodedUnit const& unit, SxH264Sps const& sps)
{
    return unit.isSlice() ? fx_ReadH264Slice(fx_Bytes(unit), static_cast<size_t>(unit.bytes.size()), sps)
                          : std::nullopt;
}

QByteArray fx_WithStartCode(QByteArray const& unit) { return QByteArray("\0\0\0\1", 4) + unit; }

QByteArray fx_PayloadBits(QByteArray const& unit)
{
    QByteArray bits;
    int zeros = 0;
    for (int i = 1; i < unit.size(); ++i) {
        int const byte = static_cast<uchar>(unit[i]);
        if (zeros >= 2 && byte == 3) {
            zeros = 0;
            continue;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        for (int bit = 7; bit >= 0; --bit)
            bits.append(static_cast<char>(byte >> bit & 1));
    }
    bits.truncate(static_cast<int>(bits.lastIndexOf('\1')));
    return bits;
}

QByteArray fx_UnitOf(char header, QByteArray const& bits)
{
    QByteArray all = bits + '\1';
    while (all.size() % 8 != 0)
        all.append('\0');
    QByteArray unit(1, header);
    int zeros = 0;
    for (int i = 0; i < all.size(); i += 8) {
        int byte = 0;
        for (int bit = 0; bit < 8; ++bit)
            byte = byte << 1 | all[i + bit];
        if (zeros >= 2 && byte <= 3) {
            unit.append('\3');
            zeros = 0;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        unit.append(static_cast<char>(byte));
    }
    return unit;
}

std::optional<quint32> fx_TakeNumber(QByteArray const& bits, int& at)
{
    int zeros = 0;
    while (at + zeros < bits.size() && bits[at + zeros] == 0)
        ++zeros;
    if (zeros > 16 || at + 2 * zeros >= bits.size())
        return std::nullopt;
    quint32 number = 0;
    for (int i = 0; i <= zeros; ++i)
        number = number << 1 | static_cast<quint32>(bits[at + zeros + i]);
    at += 2 * zeros + 1;
    return number - 1;
}

QByteArray fx_NumberBits(quint32 number)
{
    QByteArray bits;
    for (quint32 code = number + 1; code > 0; code >>= 1)
        bits.prepend(static_cast<char>(code & 1));
    return QByteArray(bits.size() - 1, '\0') + bits;
}

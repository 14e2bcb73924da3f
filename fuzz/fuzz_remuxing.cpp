// What remux reads of a recording before it hands it on: the units of its frames, and their parameter sets,
// which it describes anew.
#include <QByteArray>
#include <cstdint>

#include "Expect.h"
#include "ParameterSets.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    QByteArray const frame(reinterpret_cast<char const*>(data), static_cast<int>(size));
    QVector<SxCodedUnit> const units = fx_UnitsOf(frame);
    qint64 bytes = 0;
    for (SxCodedUnit const& unit : units)
        bytes += unit.bytes.size();
    TARN_EXPECT(bytes <= frame.size());

    SxStreamDescription description;
    description.takeRate({30000, 1001});
    std::optional<SxH264Sps> const sps = fx_SpsOf(frame);
    for (SxCodedUnit const& unit : units) {
        if (sps)
            fx_SliceOf(unit, *sps);
        std::optional<QByteArray> const described =
            unit.type() == SxCodedUnit::kSps ? fx_DescribeSps(unit.bytes, description) : std::nullopt;
        TARN_EXPECT(!described || (!described->isEmpty() && described->at(0) == unit.bytes.at(0)));
    }

    CxParameterSets sets(description);
    if (!sets.take(frame))
        return 0;
    TARN_EXPECT(!sets.beforeStream().isEmpty());
    // Pictures stay what they are.
    auto const others = [](QByteArray const& bytesOfAFrame) {
        QByteArray rest;
        for (SxCodedUnit const& unit : fx_UnitsOf(bytesOfAFrame)) {
            if (unit.type() != SxCodedUnit::kSps && unit.type() != SxCodedUnit::kPps)
                rest += unit.bytes;
        }
        return rest;
    };
    TARN_EXPECT(others(sets.described(frame, true)) == others(frame));
    return 0;
}

// The search of StartCodeSearch.h, written once with Highway and compiled for each instruction set in
// that set's namespace.

#include "CompiledTargets.h"
#include "HighwayTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "StartCodeSearchSimd.cpp"
#include "hwy/foreach_target.h" // IWYU pragma: keep

#include "hwy/highway.h"

// The header's stand-ins for machines without vectors are slower than the scalar search.
#if HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR

HWY_BEFORE_NAMESPACE();
namespace HWY_NAMESPACE {

std::size_t fx_FindPrefix(std::uint8_t const* data, std::size_t size, std::size_t from)
{
    namespace hn = hwy::HWY_NAMESPACE;
    hn::ScalableTag<std::uint8_t> const bytes;
    std::size_t const lanes = hn::Lanes(bytes);
    auto const zero = hn::Zero(bytes);
    auto const one = hn::Set(bytes, 1);
    // Zero where two zeros follow each other: rare in coded data, where 00 00 is mostly escaped.
    auto const pairs = [&](std::size_t at) {
        return hn::Or(hn::LoadU(bytes, data + at), hn::LoadU(bytes, data + at + 1));
    };

    std::size_t at = from;
    for (; size - at >= 4 * lanes + 2; at += 4 * lanes) {
        auto const a = pairs(at), b = pairs(at + lanes);
        auto const c = pairs(at + 2 * lanes), d = pairs(at + 3 * lanes);
        if (HWY_LIKELY(hn::AllFalse(bytes, hn::Eq(hn::Min(hn::Min(a, b), hn::Min(c, d)), zero))))
            continue;
        for (std::size_t block = at; block < at + 4 * lanes; block += lanes) {
            auto const isOne = hn::Eq(hn::LoadU(bytes, data + block + 2), one);
            auto const found = hn::FindFirstTrue(bytes, hn::And(hn::Eq(pairs(block), zero), isOne));
            if (found >= 0)
                return block + static_cast<std::size_t>(found);
        }
    }
    return fx_FindPrefixScalar(data, size, at);
}

} // namespace HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif

#if HWY_ONCE

FxPrefixSearch fx_GetCompiledPrefixSearch(VectorTarget target)
{
    static constexpr FxPrefixSearch searches[] = TARN_EACH_TARGET(fx_FindPrefix);
    return searches[static_cast<int>(target)];
}

#endif

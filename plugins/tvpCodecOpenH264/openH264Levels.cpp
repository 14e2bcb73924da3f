#include "openH264Levels.h"

#include <algorithm>

#include <QtGlobal>

namespace {

constexpr std::array<SxLevel, 17> kLevels = {{
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "1"), LEVEL_1_0, {176, 144}, 76800},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "1b"), LEVEL_1_B, {176, 144}, 153600},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "1.1"), LEVEL_1_1, {352, 288}, 230400},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "1.2"), LEVEL_1_2, {352, 288}, 460800},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "1.3"), LEVEL_1_3, {352, 288}, 921600},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "2"), LEVEL_2_0, {352, 288}, 2400000},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "2.1"), LEVEL_2_1, {528, 384}, 4800000},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "2.2"), LEVEL_2_2, {720, 480}, 4800000},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "3"), LEVEL_3_0, {720, 480}, 12000000},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "3.1"), LEVEL_3_1, {1280, 720}, 16800000},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "3.2"), LEVEL_3_2, {1280, 1024}, 24000000},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "4"), LEVEL_4_0, {1920, 1080}, 24000000},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "4.1"), LEVEL_4_1, {1920, 1080}, 60000000},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "4.2"), LEVEL_4_2, {2048, 1088}, 60000000},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "5"), LEVEL_5_0, {3680, 2760}, 162000000},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "5.1"), LEVEL_5_1, {4096, 2304}, 288000000},
    {QT_TRANSLATE_NOOP("CxOpenH264Encoder", "5.2"), LEVEL_5_2, {4096, 2304}, 288000000},
}};

/// Null when \p level names none.
SxLevel const* fx_FindLevel(ELevelIdc level)
{
    auto const isWanted = [level](SxLevel const& entry) { return entry.level == level; };
    auto const found = std::find_if(kLevels.begin(), kLevels.end(), isWanted);
    return found != kLevels.end() ? &*found : nullptr;
}

} // namespace

std::array<SxLevel, 17> const& fx_GetLevels() { return kLevels; }

QSize fx_GetMaxResolutionForLevel(ELevelIdc level)
{
    SxLevel const* const found = fx_FindLevel(level);
    return found ? found->maxResolution : QSize(1920, 1080);
}

unsigned int fx_GetMaxBitRateForLevel(ELevelIdc level)
{
    SxLevel const* const found = fx_FindLevel(level);
    return found ? found->maxBitRate : kLevels.back().maxBitRate;
}

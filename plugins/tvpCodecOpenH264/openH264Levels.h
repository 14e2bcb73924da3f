#pragma once

#include <array>

#include <QSize>
#include <wels/codec_api.h>

/// One level of ITU-T H.264 and what the encoder makes of it.
struct SxLevel
{
    char const* name; ///< to be translated in the encoder's context
    ELevelIdc level;
    QSize maxResolution;     ///< largest picture that the encoder asks for, in pixels
    unsigned int maxBitRate; ///< bits a second: MaxBR of ITU-T H.264, table A-1, times 1200
};

/// In the order of ITU-T H.264, table A-1, where 1b stands between 1 and 1.1.
std::array<SxLevel, 17> const& fx_GetLevels();

/// A value that names no level has 1920 x 1080.
QSize fx_GetMaxResolutionForLevel(ELevelIdc level);

/// A value that names no level has that of 5.2.
unsigned int fx_GetMaxBitRateForLevel(ELevelIdc level);

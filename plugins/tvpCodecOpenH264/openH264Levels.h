#pragma once

#include <QSize>
#include <wels/codec_api.h>

/// Largest picture that the encoder asks for at a level, in pixels. Levels without an entry of their
/// own (4.0 and 4.1 among them) have 1920 x 1080.
QSize fx_GetMaxResolutionForLevel(ELevelIdc level);

/// Largest bit rate of a level in bits a second: MaxBR of ITU-T H.264, table A-1, times 1200. A value
/// that names no level has that of 5.2.
unsigned int fx_GetMaxBitRateForLevel(ELevelIdc level);

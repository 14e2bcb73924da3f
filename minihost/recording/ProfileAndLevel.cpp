#include "ProfileAndLevel.h"

#include "EncoderOptions.h"

/// profile_idc, constraint flags and level_idc stand right behind the header (ITU-T H.264, 7.3.2.1.1).
SxProfileAndLevel fx_ProfileAndLevel(QByteArray const& bytes)
{
    auto const header = bytes.indexOf(QByteArray("\0\0\1\x67", 4)) + 3;
    if (header < 3 || header + 3 >= bytes.size())
        return {};
    auto const profile_idc = static_cast<uchar>(bytes[header + 1]);
    auto const constraints = static_cast<uchar>(bytes[header + 2]);
    auto const level_idc = static_cast<uchar>(bytes[header + 3]);
    // Level 1b of the older profiles is written as 11 with constraint_set3_flag (A.3.1).
    bool const is1b = level_idc == 11 && (constraints & 0x10) != 0 && profile_idc < 100;
    return {fx_ProfileName(profile_idc), is1b ? QStringLiteral("1b") : fx_LevelName(level_idc)};
}

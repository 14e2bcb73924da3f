#include "ProfileAndLevel.h"

#include "EncoderOptions.h"
#include "H264Syntax.h"

SxProfileAndLevel fx_ProfileAndLevel(SxH264Sps const& sps)
{
    QString const profile = sps.profile_idc == 110   ? QStringLiteral("high 10")
                            : sps.profile_idc == 122 ? QStringLiteral("high 4:2:2")
                            : sps.profile_idc == 244 ? QStringLiteral("high 4:4:4")
                                                     : fx_ProfileName(sps.profile_idc);
    // Level 1b of the older profiles is written as 11 with constraint_set3_flag (ITU-T H.264, A.3.1).
    bool const is1b = sps.level_idc == 11 && (sps.constraints & 0x10) != 0 && sps.profile_idc < 100;
    return {profile, is1b ? QStringLiteral("1b") : fx_LevelName(sps.level_idc)};
}

SxProfileAndLevel fx_ProfileAndLevel(QByteArray const& bytes)
{
    auto const unit = bytes.indexOf(QByteArray("\0\0\1\x67", 4)) + 3;
    if (unit < 3)
        return {};
    auto const* const data = reinterpret_cast<uchar const*>(bytes.constData());
    std::optional<SxH264Sps> const sps =
        fx_ReadH264Sps(data + unit, static_cast<size_t>(bytes.size() - unit));
    return sps ? fx_ProfileAndLevel(*sps) : SxProfileAndLevel();
}

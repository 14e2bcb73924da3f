#pragma once

#include <wels/codec_api.h>

/// The encoder's options, as they are until somebody sets them.
struct SxEncoderOptions
{
    int quality = 5;                    ///< 1 to 10
    int keyFrameInterval = 5;           ///< a key frame every so many coded pictures
    int complexity = MEDIUM_COMPLEXITY; ///< ECOMPLEXITY_MODE
    int profile = PRO_BASELINE;         ///< EProfileIdc
    int level = LEVEL_5_2;              ///< ELevelIdc
    bool showAdvanced = false;          ///< for the panel only
};

// Their keys, by which the host keeps them. A host that sets options without our panel has its own copies of
// keys and defaults, as the stand-in has in EncoderOptions: plug-in and host share no file but those in
// host/.
constexpr char kQualityKey[] = "h264_quality";
constexpr char kKeyFrameRateKey[] = "h264_keyframerate";
constexpr char kComplexityKey[] = "h264_complexity";
constexpr char kProfileKey[] = "h264_profile_idc";
constexpr char kLevelKey[] = "h264_level_idc";
constexpr char kShowAdvancedKey[] = "h264_show_advanced";

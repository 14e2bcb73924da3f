#pragma once

#include <optional>

#include "BitReader.h"

/// What a sequence parameter set of H.264 says (ITU-T H.264, 7.3.2.1.1), as far as anyone here asks.
struct SxH264Sps
{
    int profile_idc = 0;
    int constraints = 0; ///< the flags' byte
    int level_idc = 0;
    int chroma_format_idc = 1;
    bool separate_colour_plane_flag = false;
    int bitDepth = 8;     ///< the larger of luma and chroma
    int frameNumBits = 4; ///< log2_max_frame_num_minus4 + 4
    bool frame_mbs_only_flag = true;
    int width = 0; ///< of the pictures shown, in pixels
    int height = 0;
    bool colour_description_present_flag = false;
    quint32 num_units_in_tick = 0; ///< 0: it says no rate
    quint32 time_scale = 0;        ///< ticks a second
};

/// What the header of a slice says (7.3.3), up to idr_pic_id.
struct SxH264Slice
{
    quint32 first_mb_in_slice = 0;
    bool isB = false;
    quint32 frame_num = 0;
    bool field_pic_flag = false;
    std::optional<quint32> idr_pic_id; ///< of nal_unit_type 5 alone
};

/// \param unit  of nal_unit_type 7, from its header byte on. Nothing when it makes no sense.
std::optional<SxH264Sps> fx_ReadH264Sps(uchar const* unit, size_t size);

/// \param unit  of nal_unit_type 1, 2 or 5, from its header byte on. Nothing when it makes no sense.
std::optional<SxH264Slice> fx_ReadH264Slice(uchar const* unit, size_t size, SxH264Sps const& sps);

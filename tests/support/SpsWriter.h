#pragma once

#include "BitWriter.h"

/// What a sequence parameter set says up to its cropping fields (ITU-T H.264, 7.3.2.1.1).
struct SxSps
{
    quint32 profile_idc = 66;
    quint32 seq_parameter_set_id = 0;
    quint32 chroma_format_idc = 1; ///< written for the high profiles only
    quint32 bit_depth_luma_minus8 = 0;
    quint32 bit_depth_chroma_minus8 = 0;
    bool seq_scaling_matrix_present_flag = false; ///< with the flags of all lists 0
    quint32 log2_max_frame_num_minus4 = 4;
    quint32 pic_order_cnt_type = 2;
    quint32 num_ref_frames_in_pic_order_cnt_cycle = 0; ///< as written
    quint32 offsets = 0;                               ///< offset_for_ref_frame that follow in fact
    quint32 max_num_ref_frames = 1;
    quint32 pic_width_in_mbs_minus1 = 39;
    quint32 pic_height_in_map_units_minus1 = 29;
    bool frame_mbs_only_flag = true;
    bool frame_cropping_flag = false;
    quint32 left = 0;
    quint32 right = 0;
    quint32 top = 0;
    quint32 bottom = 0;
};

/// Whether the standard has chroma fields in this profile. One more than our parser knows: 244, 44,
/// 83, 86, 118, 128 and others have them too.
inline bool fx_HasChromaFields(quint32 profile_idc)
{
    for (quint32 const high :
         {100u, 110u, 122u, 144u, 244u, 44u, 83u, 86u, 118u, 128u, 138u, 139u, 134u, 135u})
        if (profile_idc == high)
            return true;
    return false;
}

/// The set from profile_idc on, without header byte, emulation prevention and VUI.
inline std::vector<uchar> fx_WriteSps(SxSps const& sps)
{
    CxBitWriter writer;
    writer.bits(sps.profile_idc, 8);
    writer.bits(0xC0, 8); // constraint_set flags: bits that a walk gone astray would trip over
    writer.bits(31, 8);   // level_idc
    writer.ue(sps.seq_parameter_set_id);
    if (fx_HasChromaFields(sps.profile_idc)) {
        writer.ue(sps.chroma_format_idc);
        if (sps.chroma_format_idc == 3)
            writer.bit(false); // separate_colour_plane_flag
        writer.ue(sps.bit_depth_luma_minus8);
        writer.ue(sps.bit_depth_chroma_minus8);
        writer.bit(true); // qpprime_y_zero_transform_bypass_flag
        writer.bit(sps.seq_scaling_matrix_present_flag);
        if (sps.seq_scaling_matrix_present_flag)
            writer.bits(0, sps.chroma_format_idc == 3 ? 12 : 8);
    }
    writer.ue(sps.log2_max_frame_num_minus4);
    writer.ue(sps.pic_order_cnt_type);
    if (sps.pic_order_cnt_type == 0)
        writer.ue(4); // log2_max_pic_order_cnt_lsb_minus4
    if (sps.pic_order_cnt_type == 1) {
        writer.bit(true); // delta_pic_order_always_zero_flag
        writer.se(-3);    // offset_for_non_ref_pic
        writer.se(7);     // offset_for_top_to_bottom_field
        writer.ue(sps.num_ref_frames_in_pic_order_cnt_cycle);
        for (quint32 i = 0; i < sps.offsets; ++i)
            writer.se(static_cast<qint32>(i % 9) - 4); // offset_for_ref_frame
    }
    writer.ue(sps.max_num_ref_frames);
    writer.bit(true); // gaps_in_frame_num_value_allowed_flag
    writer.ue(sps.pic_width_in_mbs_minus1);
    writer.ue(sps.pic_height_in_map_units_minus1);
    writer.bit(sps.frame_mbs_only_flag);
    if (!sps.frame_mbs_only_flag)
        writer.bit(true); // mb_adaptive_frame_field_flag
    writer.bit(true);     // direct_8x8_inference_flag
    writer.bit(sps.frame_cropping_flag);
    if (sps.frame_cropping_flag) {
        writer.ue(sps.left);
        writer.ue(sps.right);
        writer.ue(sps.top);
        writer.ue(sps.bottom);
    }
    writer.bit(false); // vui_parameters_present_flag
    writer.trailingBits();
    return writer.bytes();
}

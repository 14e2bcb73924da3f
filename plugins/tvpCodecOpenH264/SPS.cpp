#include "SPS.h"

#include <algorithm>

void CxSPS::skipBits(quint32 count) { m_position += std::min(count, m_end - m_position); }

quint32 CxSPS::readBit()
{
    if (isAtEnd())
        return 0;
    quint32 const byte = m_data[m_position / 8];
    quint32 const bit = (byte >> (7 - m_position % 8)) & 1u;
    ++m_position;
    return bit;
}

quint32 CxSPS::readBits(quint32 count)
{
    quint32 value = 0;
    for (quint32 i = 0; i < count; ++i)
        value = value << 1 | readBit();
    return value;
}

quint32 CxSPS::readUe()
{
    quint32 zeros = 0; // leadingZeroBits (9.1); 32 are the most that a value can have
    while (zeros < 32 && readBit() == 0)
        ++zeros;
    quint32 const base = zeros < 32 ? (1u << zeros) - 1u : 0xFFFFFFFFu;
    return base + readBits(zeros);
}

void CxSPS::skipPicOrderCnt()
{
    quint32 const pic_order_cnt_type = readUe();
    if (pic_order_cnt_type == 0) {
        skipUe(); // log2_max_pic_order_cnt_lsb_minus4
    } else if (pic_order_cnt_type == 1) {
        skipBits(1); // delta_pic_order_always_zero_flag
        skipUe();    // offset_for_non_ref_pic
        skipUe();    // offset_for_top_to_bottom_field
        quint32 const num_ref_frames_in_pic_order_cnt_cycle = readUe();
        // Behind the end there is nothing left to skip, whatever the count claims.
        for (quint32 i = 0; i < num_ref_frames_in_pic_order_cnt_cycle && !isAtEnd(); ++i)
            skipUe(); // offset_for_ref_frame
    }
}

/// The profiles whose chroma fields this walk knows.
static bool fx_HasChromaFields(quint32 profile_idc)
{
    return profile_idc == 100 || profile_idc == 110 || profile_idc == 122 || profile_idc == 144;
}

void CxSPS::parse(unsigned char const* data, unsigned short length, int& width, int& height)
{
    m_data = data;
    m_position = 0;
    m_end = 8u * length;

    quint32 const profile_idc = readBits(8);
    skipBits(16); // constraint_set flags, level_idc
    skipUe();     // seq_parameter_set_id
    if (fx_HasChromaFields(profile_idc)) {
        quint32 const chroma_format_idc = readUe();
        if (chroma_format_idc == 3)
            skipBits(1); // separate_colour_plane_flag
        skipUe();        // bit_depth_luma_minus8
        skipUe();        // bit_depth_chroma_minus8
        skipBits(1);     // qpprime_y_zero_transform_bypass_flag
        if (readBit())   // seq_scaling_matrix_present_flag
            skipBits(8); // Deliberate: eight list flags and no list.
    }
    skipUe(); // log2_max_frame_num_minus4
    skipPicOrderCnt();
    skipUe();    // max_num_ref_frames
    skipBits(1); // gaps_in_frame_num_value_allowed_flag

    quint32 const pic_width_in_mbs_minus1 = readUe();
    quint32 const pic_height_in_map_units_minus1 = readUe();
    quint32 const frame_mbs_only_flag = readBit();
    if (frame_mbs_only_flag == 0)
        skipBits(1); // mb_adaptive_frame_field_flag
    skipBits(1);     // direct_8x8_inference_flag

    quint32 left = 0, right = 0, top = 0, bottom = 0;
    if (readBit()) { // frame_cropping_flag
        left = readUe();
        right = readUe();
        top = readUe();
        bottom = readUe();
    }
    // Deliberate: the cropping unit is 2 in both directions, which holds for 4:2:0 frame-coded
    // streams, the only ones our encoder writes.
    width = static_cast<int>(16 * (pic_width_in_mbs_minus1 + 1) - 2 * (left + right));
    height = static_cast<int>(16 * (2 - frame_mbs_only_flag) * (pic_height_in_map_units_minus1 + 1) -
                              2 * (top + bottom));
}

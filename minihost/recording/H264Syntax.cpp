#include "H264Syntax.h"

#include <algorithm>
#include <iterator>

static constexpr int kLargestSide = 16384; // level 6.2 ends below

/// Whether this profile's parameter sets have chroma format, bit depths and scaling matrices (7.3.2.1.1).
static bool fx_IsHighProfile(int profile_idc)
{
    static constexpr int kHigh[] = {100, 110, 122, 244, 44, 83, 86, 118, 128, 138, 139, 134, 135};
    return std::find(std::begin(kHigh), std::end(kHigh), profile_idc) != std::end(kHigh);
}

/// scaling_list() (7.3.2.1.1.1)
static void fx_SkipScalingList(CxBitReader& reader, int size)
{
    int next = 8;
    for (int i = 0, last = 8; i < size && next != 0 && reader.isGood(); ++i) {
        next = (last + reader.se() + 256) % 256;
        last = next == 0 ? last : next;
    }
}

static void fx_ReadHighPart(CxBitReader& reader, SxH264Sps& sps)
{
    sps.chroma_format_idc = static_cast<int>(std::min(reader.ue(), 4U));
    if (sps.chroma_format_idc == 3)
        sps.separate_colour_plane_flag = reader.flag();
    quint32 const luma = reader.ue();
    sps.bitDepth = 8 + static_cast<int>(std::min(std::max(luma, reader.ue()), 24U));
    reader.flag(); // qpprime_y_zero_transform_bypass_flag
    if (!reader.flag())
        return;
    for (int i = 0; i < (sps.chroma_format_idc == 3 ? 12 : 8); ++i) {
        if (reader.flag())
            fx_SkipScalingList(reader, i < 6 ? 16 : 64);
    }
}

static void fx_SkipPictureOrder(CxBitReader& reader)
{
    quint32 const pic_order_cnt_type = reader.ue();
    if (pic_order_cnt_type == 0) {
        reader.ue();
    } else if (pic_order_cnt_type == 1) {
        reader.flag();
        reader.se();
        reader.se();
        quint32 const cycle = reader.ue();
        for (quint32 i = 0; i < cycle && reader.isGood(); ++i)
            reader.se();
    }
}

static bool fx_ReadSize(CxBitReader& reader, SxH264Sps& sps)
{
    qint64 const columns = qint64(reader.ue()) + 1;
    qint64 const rows = qint64(reader.ue()) + 1;
    sps.frame_mbs_only_flag = reader.flag();
    if (!sps.frame_mbs_only_flag)
        reader.flag();      // mb_adaptive_frame_field_flag
    reader.flag();          // direct_8x8_inference_flag
    qint64 cropped[4] = {}; // left, right, top, bottom
    if (reader.flag())
        std::generate(std::begin(cropped), std::end(cropped), [&reader] { return qint64(reader.ue()); });
    int const fields = sps.frame_mbs_only_flag ? 1 : 2;
    int const unitX = sps.chroma_format_idc == 1 || sps.chroma_format_idc == 2 ? 2 : 1;
    int const unitY = (sps.chroma_format_idc == 1 ? 2 : 1) * fields;
    qint64 const width = columns * 16 - (cropped[0] + cropped[1]) * unitX;
    qint64 const height = rows * 16 * fields - (cropped[2] + cropped[3]) * unitY;
    if (!reader.isGood() || width < 1 || width > kLargestSide || height < 1 || height > kLargestSide)
        return false;
    sps.width = static_cast<int>(width);
    sps.height = static_cast<int>(height);
    return true;
}

/// vui_parameters() (E.1.1) up to the rate. What is cut off before says nothing.
static void fx_ReadVui(CxBitReader& reader, SxH264Sps& sps)
{
    if (reader.flag() && reader.bits(8) == 255) // aspect_ratio_idc, Extended_SAR
        reader.skip(32);
    if (reader.flag())
        reader.flag(); // overscan_appropriate_flag
    bool hasColours = false;
    if (reader.flag()) { // video_signal_type_present_flag
        reader.skip(4);
        hasColours = reader.flag();
        if (hasColours)
            reader.skip(24);
    }
    if (reader.flag()) { // chroma_loc_info_present_flag
        reader.ue();
        reader.ue();
    }
    bool const hasRate = reader.flag();
    quint32 const ticks = hasRate ? reader.bits(32) : 0;
    quint32 const scale = hasRate ? reader.bits(32) : 0;
    if (!reader.isGood())
        return;
    sps.colour_description_present_flag = hasColours;
    sps.num_units_in_tick = ticks;
    sps.time_scale = scale;
}

std::optional<SxH264Sps> fx_ReadH264Sps(uchar const* unit, size_t size)
{
    CxBitReader reader(unit, size);
    reader.skip(8);
    SxH264Sps sps;
    sps.profile_idc = static_cast<int>(reader.bits(8));
    sps.constraints = static_cast<int>(reader.bits(8));
    sps.level_idc = static_cast<int>(reader.bits(8));
    reader.ue(); // seq_parameter_set_id
    if (fx_IsHighProfile(sps.profile_idc))
        fx_ReadHighPart(reader, sps);
    sps.frameNumBits = static_cast<int>(std::min(reader.ue(), 12U)) + 4;
    fx_SkipPictureOrder(reader);
    reader.ue();   // max_num_ref_frames
    reader.flag(); // gaps_in_frame_num_value_allowed_flag
    if (!fx_ReadSize(reader, sps))
        return std::nullopt;
    if (reader.flag())
        fx_ReadVui(reader, sps);
    return sps;
}

std::optional<SxH264Slice> fx_ReadH264Slice(uchar const* unit, size_t size, SxH264Sps const& sps)
{
    CxBitReader reader(unit, size);
    reader.skip(8);
    SxH264Slice slice;
    slice.first_mb_in_slice = reader.ue();
    quint32 const slice_type = reader.ue();
    slice.isB = slice_type % 5 == 1;
    reader.ue(); // pic_parameter_set_id
    if (sps.separate_colour_plane_flag)
        reader.skip(2);
    slice.frame_num = reader.bits(sps.frameNumBits);
    if (!sps.frame_mbs_only_flag)
        slice.field_pic_flag = reader.flag();
    if (slice.field_pic_flag)
        reader.flag(); // bottom_field_flag
    if ((unit[0] & 0x1F) == 5)
        slice.idr_pic_id = reader.ue();
    return reader.isGood() && slice_type <= 9 ? std::make_optional(slice) : std::nullopt;
}

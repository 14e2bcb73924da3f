#include "H264Evidence.h"

static constexpr uchar kOpensKeyFrame = 0x67; // sequence parameter set, nal_ref_idc 3
static constexpr uchar kOpensFrame = 0x61;    // slice of a picture that is no key, nal_ref_idc 3

/// Whether the plug-in's decoder takes pictures of this kind.
static bool fx_IsPlayable(SxH264Sps const& sps)
{
    bool const isProfile =
        sps.profile_idc == 66 || sps.profile_idc == 77 || sps.profile_idc == 88 || sps.profile_idc == 100;
    return isProfile && sps.bitDepth == 8 && sps.chroma_format_idc == 1 && sps.frame_mbs_only_flag;
}

void CxH264Evidence::takeSps(uchar const* unit, size_t size)
{
    std::optional<SxH264Sps> const sps = fx_ReadH264Sps(unit, size);
    if (!sps)
        return;
    m_sps = sps;
    if (!m_firstSps)
        m_firstSps = sps;
    ++m_spsCount;
    if (!fx_IsPlayable(*sps))
        ++m_unplayableSps;
}

void CxH264Evidence::takeSlice(SxH264Slice const& slice)
{
    ++m_slices;
    if (slice.isB)
        ++m_bSlices;
    bool const beginsPicture = slice.first_mb_in_slice == 0;
    if (beginsPicture)
        m_fields += slice.field_pic_flag ? 1 : 2;
    if (!beginsPicture || m_isFrameFilled)
        ++m_misplaced;
    m_isFrameFilled = true;
}

void CxH264Evidence::take(uchar const* unit, size_t size)
{
    if (unit[0] == kOpensKeyFrame || unit[0] == kOpensFrame)
        m_isFrameFilled = false;
    int const nal_unit_type = unit[0] & 0x1F;
    if (m_units++ == 0)
        m_hasLeader = nal_unit_type == 6 || nal_unit_type == 9;
    if (nal_unit_type == 7)
        takeSps(unit, size);
    else if (nal_unit_type == 9)
        ++m_delimiters;
    else if (nal_unit_type == 1 || nal_unit_type == 2 || nal_unit_type == 5) {
        if (auto const slice = fx_ReadH264Slice(unit, size, m_sps.value_or(SxH264Sps())))
            takeSlice(*slice);
    }
}

/// Damage makes a recording strange here and there; another encoder, all along.
bool CxH264Evidence::isForeign() const
{
    if (!m_firstSps)
        return false;
    return m_unplayableSps * 2 > m_spsCount || m_misplaced * 5 > m_slices * 2 || m_bSlices * 8 > m_slices ||
           m_hasLeader || m_delimiters > pictures() / 2;
}

QStringList CxH264Evidence::features() const
{
    SxH264Sps const first = sps();
    QStringList words;
    if (first.bitDepth > 8)
        words += QStringLiteral("%1 bits").arg(first.bitDepth);
    if (first.chroma_format_idc != 1)
        words += first.chroma_format_idc == 0   ? QStringLiteral("grey")
                 : first.chroma_format_idc == 2 ? QStringLiteral("4:2:2")
                                                : QStringLiteral("4:4:4");
    if (!first.frame_mbs_only_flag)
        words += QStringLiteral("interlaced");
    if (m_bSlices > 0)
        words += QStringLiteral("B pictures");
    qint64 const slicesAPicture = m_fields == 0 ? 0 : (m_slices * 2 + m_fields / 2) / m_fields;
    if (slicesAPicture > 1)
        words += QStringLiteral("%1 slices a picture").arg(slicesAPicture);
    if (m_delimiters > pictures() / 2)
        words += QStringLiteral("access unit delimiters");
    if (words.isEmpty())
        words += QStringLiteral("pictures that begin with other units than a recording's");
    return words;
}

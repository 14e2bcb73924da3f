#include "ParameterSets.h"

namespace {

constexpr int kBeforeSpsId =
    24;                       // bits: profile_idc, the constraint flags, level_idc (ITU-T H.264, 7.3.2.1.1)
constexpr int kMostPps = 255; // in the box that MP4 and Matroska share (ISO/IEC 14496-15, 5.3.3.1)
constexpr quint32 kIdLimit = 256; // of picture parameter sets (7.4.2.2)

/// The unit with the number between these bits replaced by 0.
QByteArray fx_WithZero(QByteArray const& unit, QByteArray const& bits, int from, int to)
{
    return fx_UnitOf(unit[0], bits.left(from) + '\1' + bits.mid(to));
}

} // namespace

std::optional<QByteArray> CxParameterSets::describe(QByteArray const& sps)
{
    auto found = m_described.constFind(sps);
    if (found == m_described.constEnd())
        found = m_described.insert(sps, fx_DescribeSps(sps, m_description));
    return *found;
}

bool CxParameterSets::takePps(QByteArray const& pps, quint32 spsId)
{
    QByteArray const bits = fx_PayloadBits(pps);
    int at = 0;
    std::optional<quint32> const id = fx_TakeNumber(bits, at);
    int const from = at;
    std::optional<quint32> const named = fx_TakeNumber(bits, at);
    if (!id || *id >= kIdLimit || !named || *named != spsId)
        return false;
    QByteArray const common = fx_WithZero(pps, bits, from, at);
    if (m_pps.value(*id, common) != common || m_pps.size() > kMostPps)
        m_isCommon = false;
    m_pps.insert(*id, common);
    return true;
}

bool CxParameterSets::take(QByteArray const& frame)
{
    std::optional<quint32> spsId;
    QByteArray sets;
    bool hasPps = false;
    for (SxCodedUnit const& unit : fx_UnitsOf(frame)) {
        if (unit.type() == SxCodedUnit::kSps) {
            std::optional<QByteArray> const sps = describe(unit.bytes);
            QByteArray const bits = sps ? fx_PayloadBits(*sps) : QByteArray();
            int at = kBeforeSpsId;
            spsId = fx_TakeNumber(bits, at);
            if (!spsId)
                return false;
            QByteArray const common = fx_WithZero(*sps, bits, kBeforeSpsId, at);
            if (!m_sps.isEmpty() && m_sps != common)
                m_isCommon = false;
            m_sps = common;
            sets += fx_WithStartCode(*sps);
        } else if (unit.type() == SxCodedUnit::kPps) {
            if (!spsId || !takePps(unit.bytes, *spsId))
                return false;
            hasPps = true;
            sets += fx_WithStartCode(unit.bytes);
        }
    }
    if (m_first.isEmpty() && hasPps)
        m_first = sets;
    return hasPps;
}

QByteArray CxParameterSets::beforeStream() const
{
    if (!m_isCommon || m_first.isEmpty())
        return m_first;
    QByteArray all = fx_WithStartCode(m_sps);
    for (QByteArray const& pps : m_pps)
        all += fx_WithStartCode(pps);
    return all;
}

QByteArray CxParameterSets::described(QByteArray const& frame, bool withSets)
{
    QByteArray out;
    out.reserve(frame.size() + 64);
    for (SxCodedUnit const& unit : fx_UnitsOf(frame)) {
        bool const isSps = unit.type() == SxCodedUnit::kSps;
        std::optional<QByteArray> const sps = isSps ? describe(unit.bytes) : std::nullopt;
        if (!isSps && (withSets || unit.type() != SxCodedUnit::kPps))
            out += frame.mid(unit.begin, unit.end - unit.begin);
        else if (withSets)
            out += sps ? fx_WithStartCode(*sps) : frame.mid(unit.begin, unit.end - unit.begin);
    }
    return out;
}

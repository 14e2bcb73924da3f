#pragma once

#include <QStringList>
#include <optional>

#include "H264Syntax.h"

/// Takes the units of an H.264 stream and judges by them whether the stream is a recording, each of whose
/// pictures is one slice and has a place of its own in the loader's index.
class CxH264Evidence
{
public:
    void take(uchar const* unit, size_t size); ///< from the header byte on

    bool isH264() const { return m_firstSps.has_value() || m_slices > 0; }
    bool isForeign() const;
    QStringList features() const;                          ///< of a foreign stream, for people
    qint64 pictures() const { return (m_fields + 1) / 2; } ///< so far; two fields are one
    SxH264Sps sps() const { return m_firstSps.value_or(SxH264Sps()); }

private:
    void takeSps(uchar const* unit, size_t size);
    void takeSlice(SxH264Slice const& slice);

    std::optional<SxH264Sps> m_firstSps;
    std::optional<SxH264Sps> m_sps; ///< the last
    qint64 m_spsCount = 0;
    qint64 m_unplayableSps = 0;
    qint64 m_units = 0;
    qint64 m_delimiters = 0;
    qint64 m_slices = 0;
    qint64 m_misplaced = 0; ///< slices that are not the first and only of a frame of the index
    qint64 m_bSlices = 0;
    qint64 m_fields = 0; ///< two a picture
    bool m_isFrameFilled = false;
    bool m_hasLeader = false; ///< begins with a unit that would be a frame of its own
};

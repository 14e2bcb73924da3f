#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "Recorder.h"

/// Finds by encoding, without keeping anything, which quality would have kept every picture of a recording
/// whose source can be read again.
class CxQualityTrial
{
public:
    using MakeSource = std::function<std::unique_ptr<IxPictureSource>()>; ///< the source from its beginning

    /// \param recorded  what became of \p request. Of a long recording only the part that lost most is tried.
    CxQualityTrial(MakeSource make, SxRecordRequest const& request, SxRecordSummary const& recorded);

    /// The lowest quality from that in \p options on with which no picture was skipped, the other options
    /// being these. Nothing when there is none, or it was broken off.
    std::optional<int> lowestQuality(SxEncoderOptions options);

    /// The request's stop flag or an error ended it, so that nothing was seen.
    bool isBrokenOff() const { return m_isBrokenOff; }
    bool seesAll() const { return m_count == m_given; } ///< the whole recording is tried

private:
    bool keepsAll(SxEncoderOptions const& options);

    MakeSource m_make;
    SxRecordRequest m_request;
    int m_given;
    int m_first = 0; ///< number of the first picture tried
    int m_count;     ///< pictures tried
    bool m_isBrokenOff = false;
};

#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "QualityTrial.h"
#include "Recorder.h"

class IxPictureSource;

/// What may change beside the quality so that no picture is skipped.
struct SxKeepAllConsent
{
    bool level = false;     ///< a higher one
    bool keyFrames = false; ///< more seldom, or at last every picture one
};

/// Encodes with more and more bits until no picture is skipped. Each attempt goes into a file beside the
/// output, which only a recording of every picture replaces; the quality of the next is found on the part
/// that lost most.
class CxKeepAll
{
public:
    using MakeSource = CxQualityTrial::MakeSource; ///< the source from its beginning, the same each time

    CxKeepAll(MakeSource make, SxRecordRequest const& request, SxKeepAllConsent const& consent);

    /// Records. When every picture cannot be kept, or the recording fails or is stopped, nothing is written
    /// and what was there stays; the summary's error is then one sentence. The source of the last attempt
    /// lives as long as the object.
    /// \param progress  called after every picture of every attempt
    SxRecordSummary run(RecordProgress const& progress);

    /// Files of earlier attempts beside the output, which were killed: nothing needs them.
    QStringList leftAttempts() const;

    SxRecordRequest const& request() const { return m_request; } ///< with the options of the last attempt
    int attempts() const { return m_attempts; }

private:
    SxRecordSummary attempt(QString const& fileName, RecordProgress const& progress);
    SxRecordSummary commit(QString const& fileName, SxRecordSummary summary);
    std::optional<SxEncoderOptions> next(SxRecordSummary const& summary, SxKeepAllConsent const& consent);
    QString refusal(SxRecordSummary const& summary);

    MakeSource m_make;
    std::unique_ptr<IxPictureSource> m_source; ///< of the last attempt
    SxRecordRequest m_request;
    SxEncoderOptions m_asked;
    SxKeepAllConsent m_consent;
    QString m_target;      ///< where links in the output's name lead to
    bool m_isRead = false; ///< by the source
    int m_attempts = 0;
};

/// The options that differ, as on a command line: "--quality 10 --level 5.2".
QString fx_ChangedOptions(SxEncoderOptions const& from, SxEncoderOptions const& to);

/// For a source that comes only once: all that \p consent allows, at once.
SxEncoderOptions fx_MostKeeping(SxEncoderOptions options, SxKeepAllConsent const& consent);

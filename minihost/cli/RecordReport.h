#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include "ExitCode.h"
#include "Recorder.h"

class CxQualityTrial;

/// The summary for people, several lines without a newline at the end.
QString fx_RecordSummaryText(SxRecordRequest const& request, SxRecordSummary const& summary);

/// The summary for programs.
QJsonObject fx_RecordSummaryJson(SxRecordRequest const& request, SxRecordSummary const& summary,
                                 QStringList const& warnings);

/// What the summary amounts to, but for interruptions.
/// \param isStrict  skipped and lost pictures are a failure
ExitCode fx_RecordExitCode(SxRecordSummary const& summary, bool isStrict);

/// True when a recording without an error is no success: it was stopped before all was recorded that was
/// asked for, or before anything was.
bool fx_IsInterrupted(SxRecordSummary const& summary);

/// What is missing then, one sentence.
QString fx_InterruptionText(SxRecordRequest const& request, SxRecordSummary const& summary);

/// What to do about skipped pictures, one sentence; empty when none were skipped. Judged by the bit rate, or
/// with \p trial, which may be null, by what it saw.
QString fx_SkipAdvice(SxRecordRequest const& request, SxRecordSummary const& summary, CxQualityTrial* trial);

/// That pictures of a live source begin to be lost, and what helps, one sentence: the same all the time.
QString fx_LossWarning(SxRecordSummary const& summary);

/// That pictures are missing of a source that comes only once, though none may be; one sentence.
QString fx_MissingWarning(SxRecordRequest const& request, SxRecordSummary const& summary);

/// A question about the significant bits when the highest sample seen contradicts them; empty when it
/// does not, or nothing was seen.
QString fx_BitsAdvice(SxRecordSummary const& summary);

#pragma once

#include "Recorder.h"

/// fx_Record(), and beside a regular file a sidecar where the recording differs from what everybody assumes
/// of one: the source has another rate than kPicturesASecond, its pictures stand turned, or some were
/// skipped or lost. Pictures that stand turned differently leave no rotation: one would turn the others
/// wrongly.
///
/// A sidecar of what the recording replaces goes as soon as that is gone. What the request's sidecar option
/// forbids, or the disk, changes nothing of the recording.
SxRecordSummary fx_RecordWithSidecar(IxPictureSource& source, SxRecordRequest const& request,
                                     RecordProgress const& progress = {});

/// The two steps of it: the recording, with what the source says of itself in the summary, and the sidecar of
/// a request's output that is complete.
SxRecordSummary fx_RecordWithFacts(IxPictureSource& source, SxRecordRequest const& request,
                                   RecordProgress const& progress = {});
void fx_NoteRecording(SxRecordRequest const& request, SxRecordSummary& summary);

#pragma once

#include <QStringList>

#include "FFmpegSource.h"
#include "KeepAllArguments.h"
#include "Options.h"
#include "PictureChanges.h"
#include "Recorder.h"
#include "RecordingParts.h"
#include "SourceAhead.h"
#include "SourcePart.h"
#include "TestCamera.h"

/// A `record` command line, checked as far as it can be without opening anything.
struct SxRecordArguments
{
    QStringList sources;  ///< without the output; empty for the test camera
    QStringList warnings; ///< about these, still to be told
    bool isCamera = false;
    SxTestCameraOptions camera;
    SxRecordRequest request;
    int bits = 0; ///< 0: not given
    SxFFmpegOptions input;
    SxSourcePart part;
    SxLiveBuffer buffer;
    SxSplit split;
    bool isSplit() const { return split.microseconds > 0 || split.bytes > 0; }
    SxPictureChanges changes;
    SxKeepAllWish keepAll;
    bool overwrite = false;
    bool isStrict = false;
    SxRunOptions run;
};

/// Reads the arguments after "record". \return false, with \p error one sentence, when they make no sense.
bool fx_ParseRecordArguments(QStringList const& arguments, SxRecordArguments& parsed, QString& error);

QString fx_RecordHelp();

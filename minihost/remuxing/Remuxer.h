#pragma once

#include <QSize>
#include <QString>
#include <QVector>
#include <atomic>
#include <functional>

#include "ExactCut.h"
#include "StreamDescription.h"

class CxRecordingReader;

/// What of a recording is handed on, and where to.
struct SxRemuxRequest
{
    QString
        output; ///< ends in .mp4, .mov, .mkv or .h264; replaced when it exists: that is the caller's business
    SxStreamDescription description;
    int first = 0; ///< frames, both included, there in the recording
    int last = 0;
    SxCodedFrames front;                     ///< taken instead of the frames from first on; may be empty
    std::atomic<bool> const* stop = nullptr; ///< set from anywhere to end it, without an output
};

/// Whose fault it was.
enum class RemuxFailure { None, Input, Output, Interrupted };

/// What became of it; also the progress so far while it runs.
struct SxRemuxSummary
{
    QString error; ///< one sentence, or empty when there is a whole output
    RemuxFailure failure = RemuxFailure::None;
    int first = 0; ///< the frames really taken, both included
    int last = -1;
    int pictures = 0;             ///< written
    int keyFrames = 0;            ///< of these
    int leftOutAtFront = 0;       ///< frames before the recording's first key frame, which nothing decodes
    bool isEndCutOff = false;     ///< the recording's last picture is not whole and was left out
    QVector<int> damaged;         ///< frames that were taken but are not what an encoder writes, ascending
    bool hasSetsInStream = false; ///< no one set of parameters serves all pictures
    bool hasRotation = true;      ///< false: what the request says of it could not be written
    QSize size;                   ///< of the pictures, in pixels
    qint64 bytes = 0;             ///< of pictures so far; in the end of the output

    bool isInputDamaged() const { return leftOutAtFront > 0 || isEndCutOff || !damaged.isEmpty(); }
};

/// Hands frames of an opened recording on to other programs: the coded pictures as they are, in the container
/// that the output's name stands for, with rate and colours described there and in the stream. A raw stream
/// gets the latter alone.
///
/// The frames taken begin at the key frame at or before request.first, since decoding does, unless there is a
/// front. The output appears when it is whole and on the disk; what was there before stays until then.
SxRemuxSummary fx_Remux(CxRecordingReader& recording, SxRemuxRequest const& request,
                        std::function<void(SxRemuxSummary const&)> const& progress = {});

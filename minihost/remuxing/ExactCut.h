#pragma once

#include <QString>
#include <QVector>
#include <atomic>

class CxRecordingReader;

/// Frames coded anew, each with start codes; the first is a key frame.
struct SxCodedFrames
{
    QVector<QByteArray> frames;
    QVector<int> keys; ///< positions in frames
    int size() const { return static_cast<int>(frames.size()); }
};

/// What kept frames from being coded anew.
struct SxCodingFailure
{
    QString error;        ///< one sentence; empty when nothing did
    bool isInput = false; ///< one of them does not decode
    bool wasInterrupted = false;
};

/// Codes the frames from \p first on anew, as near to the recording's as the encoder can, so that decoding
/// may begin with \p first: up to the next key frame, or to \p last when that comes before. None when \p
/// first is a key frame. Profile and level are the recording's unless its level leaves pictures out;
/// OpenH264's count of key frames (idr_pic_id) leads up to that of the next one.
SxCodedFrames fx_CodeFrontAnew(CxRecordingReader& recording, int first, int last,
                               std::atomic<bool> const* stop, SxCodingFailure& failure);

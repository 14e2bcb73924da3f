#pragma once

#include <QString>
#include <QVector>

#include "ExitCode.h"
#include "PictureRate.h"
#include "VanishedPictures.h"

/// Frames that cannot be decoded, one behind the other, for one cause.
struct SxDamagedRange
{
    int first = 0; ///< frame numbers, both included
    int last = 0;
    qint64 offset = 0; ///< bytes from the start of the file
    qint64 size = 0;   ///< bytes
    QString cause;     ///< half a sentence
};

/// What `verify` found in one file.
struct SxFindings
{
    QString file;
    QString refusal; ///< one sentence when it could not be opened, and then nothing else
    ExitCode refusalCode = kDone;

    int frames = 0;
    qint64 fileBytes = 0;
    SxPictureRate rate;     ///< unknown when no sidecar tells it
    QVector<int> keyFrames; ///< ascending
    int decoded = 0;        ///< frames
    int failed = 0;
    QVector<SxDamagedRange> damage; ///< ascending
    qint64 endOfFrames = 0;         ///< bytes from the start of the file
    QVector<SxFrameMark> marks;     ///< of the frames that were read
    int maxFrameNum = 1;
    QVector<SxVanishedPictures> vanished;
    bool wasStopped = false; ///< by a signal: what comes behind is not known

    int vanishedForCertain() const;                   ///< pictures
    int examined() const { return decoded + failed; } ///< frames that were decoded or failed
    bool isKey(int frame) const;
    void addDamage(int frame, qint64 offset, qint64 size, QString const& cause);

    /// The damage that was added last, if it is the last that is known, reaches up to there.
    void closeDamageAt(qint64 end);
};

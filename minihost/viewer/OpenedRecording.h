#pragma once

#include <QList>
#include <QMetaType>
#include <QString>
#include <QVector>

#include "Sidecar.h"

/// What is known of a recording once it is open.
struct SxOpenedRecording
{
    QString fileName;
    int count = 0;        ///< pictures; 0: none is open
    double fps = 0.0;     ///< pictures a second, as its sidecar notes or else the loader assumes them
    QList<int> keyFrames; ///< ascending
    SxFoundSidecar sidecar;
    QVector<quint32> bytes; ///< of each picture as coded
    QString codec;      ///< with profile and level as far as the stream tells, "H.264 baseline, level 3.1"
    SxPictureRate rate; ///< as its sidecar or the stream itself tells it; unknown: fps is assumed
};

Q_DECLARE_METATYPE(SxOpenedRecording)

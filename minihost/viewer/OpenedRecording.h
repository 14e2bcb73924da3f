#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

#include "Sidecar.h"

/// What is known of a recording once it is open.
struct SxOpenedRecording
{
    QString fileName;
    int count = 0;        ///< pictures; 0: none is open
    double fps = 0.0;     ///< pictures a second, as its sidecar notes or else the loader assumes them
    QList<int> keyFrames; ///< ascending
    SxFoundSidecar sidecar;
};

Q_DECLARE_METATYPE(SxOpenedRecording)

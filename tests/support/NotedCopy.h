#pragma once

#include <QFile>

#include "Sidecar.h"

/// What record notes of a phone's video whose pictures 3, 4, 5 and 7 the encoder left out.
inline SxSidecar fx_ExampleSidecar()
{
    SxSidecar sidecar;
    sidecar.rate = {25};
    sidecar.rotation = 90;
    sidecar.source = QStringLiteral("phone.mp4");
    sidecar.options = {{QStringLiteral("quality"), 2}};
    sidecar.pictures = 34;
    sidecar.skippedCount = 4;
    sidecar.skipped = {{3, 5}, {7, 7}};
    sidecar.program = QStringLiteral("minihost 1");
    return sidecar;
}

/// Copies \p recording, and puts a sidecar beside the copy.
inline bool fx_CopyWithSidecar(QString const& recording, QString const& copy,
                               SxSidecar const& sidecar = fx_ExampleSidecar())
{
    QString error;
    return QFile::copy(recording, copy) && fx_WriteSidecar(copy, sidecar, error);
}

#pragma once

#include <QByteArray>
#include <QString>

/// Profile and level as a stream names them; empty when it does not.
struct SxProfileAndLevel
{
    QString profile;
    QString level;
};

/// Those of the first sequence parameter set in \p bytes, the beginning of a stream.
SxProfileAndLevel fx_ProfileAndLevel(QByteArray const& bytes);

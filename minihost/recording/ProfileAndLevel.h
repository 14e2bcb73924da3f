#pragma once

#include <QByteArray>
#include <QString>

struct SxH264Sps;

/// Names of profile and level as `--profile` and `--level` take them; empty when a stream does not say.
struct SxProfileAndLevel
{
    QString profile;
    QString level;
};

SxProfileAndLevel fx_ProfileAndLevel(SxH264Sps const& sps);

/// Those of the first sequence parameter set in \p bytes, the beginning of a stream.
SxProfileAndLevel fx_ProfileAndLevel(QByteArray const& bytes);

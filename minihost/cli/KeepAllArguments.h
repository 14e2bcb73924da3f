#pragma once

#include "KeepAll.h"
#include "Options.h"

/// That no picture may be missing, and what may change for it.
struct SxKeepAllWish
{
    bool isWanted = false;
    SxKeepAllConsent consent;
};

/// The options that say so, for parser and help.
QVector<SxOption> fx_KeepAllOptions();

/// Reads those of \p parser. \return one sentence when they make no sense, else empty.
QString fx_TakeKeepAllOptions(QCommandLineParser const& parser, SxKeepAllWish& wish);

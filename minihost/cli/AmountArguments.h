#pragma once

#include <QCommandLineParser>
#include <optional>

#include "Options.h"
#include "RecordingParts.h"
#include "SourceAhead.h"
#include "SourcePart.h"

/// A time or a size, as options take them.
struct SxAmount
{
    qint64 value = 0; ///< microseconds or bytes; above 0
    bool isBytes = false;
};

/// "10m", "1h", "1:02.5" and what else fx_PlayLength() takes for a time, or "512MB", "1.5GB", "900kB" in
/// thousands; nothing when it is neither, or nothing.
std::optional<SxAmount> fx_AmountFromText(QString const& text);

/// The options that end a recording or its files, for parser and help.
QVector<SxOption> fx_EndOptions();

/// Reads them. \return one sentence when they make no sense, else empty.
QString fx_TakeEndOptions(QCommandLineParser const& parser, SxSourcePart& part, SxSplit& split);

/// Reads --buffer of \p parser. \return one sentence when it makes no sense, else empty.
QString fx_TakeBuffer(QCommandLineParser const& parser, SxLiveBuffer& buffer);

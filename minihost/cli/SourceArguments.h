#pragma once

#include <QVector>

#include "Options.h"
#include "PictureChanges.h"
#include "SourcePart.h"

/// The options that say which part of a source is wanted, for parser and help.
QVector<SxOption> fx_PartOptions();

/// Reads those of \p parser. \return one sentence when they make no sense, else empty.
QString fx_TakePartOptions(QCommandLineParser const& parser, SxSourcePart& part);

/// The options that change what comes from a source, for parser and help.
QVector<SxOption> fx_PictureOptions();

/// Reads those of \p parser. \return one sentence when they make no sense, else empty.
QString fx_TakePictureOptions(QCommandLineParser const& parser, SxPictureChanges& changes);

#pragma once

#include <QVector>

#include "Options.h"
#include "PictureChanges.h"

/// The options that change what comes from a source, for parser and help.
QVector<SxOption> fx_PictureOptions();

/// Reads those of \p parser. \return one sentence when they make no sense, else empty.
QString fx_TakePictureOptions(QCommandLineParser const& parser, SxPictureChanges& changes);

#pragma once

#include <QStringList>
#include <optional>

#include "FrameSpec.h"
#include "PictureWriter.h"
#include "PlaySession.h"

/// An `export` command line, checked as far as it can be without opening anything.
struct SxExportArguments
{
    enum class Kind { Files, Stream, Sheet, Hashes };

    SxPlayArguments common;
    std::optional<CxFrameSpec> frames; ///< set unless help is asked for
    Kind kind = Kind::Files;
    QString output; ///< a file name or pattern; for a stream also "-"; empty for hashes
    CxPictureStream::Format stream = CxPictureStream::Format::Y4m;
    int sheetColumns = 0;
    bool overwrite = false;
};

/// Reads the arguments after "export". \return false, with \p error one sentence, when they make no sense.
bool fx_ParseExportArguments(QStringList const& arguments, SxExportArguments& parsed, QString& error);

QString fx_ExportHelp();

/// \p pattern with \p frame in the place of its %d or %05d, and %% as a percent sign. Nothing when a
/// percent sign stands for anything else.
std::optional<QString> fx_FileNameOf(QString const& pattern, int frame);

/// True when the pattern has a place for the frame number.
bool fx_HasPlaceForNumber(QString const& pattern);

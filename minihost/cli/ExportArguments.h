#pragma once

#include <QStringList>
#include <optional>

#include "ExportRequest.h"
#include "FrameSelection.h"
#include "PlayCommand.h"

/// An `export` command line, checked as far as it can be without opening anything.
struct SxExportArguments
{
    SxPlayArguments common;
    std::optional<CxFrameSelection> frames; ///< set unless help is asked for
    SxExportRequest request;
    bool keepsGoing = false; ///< past frames that cannot be decoded
    bool isStrict = false;   ///< and tells of them in the exit code
    int jobs = 1;            ///< threads that decode
};

/// Reads the arguments after "export". \return false, with \p error one sentence, when they make no sense.
bool fx_ParseExportArguments(QStringList const& arguments, SxExportArguments& parsed, QString& error);

QString fx_ExportHelp();

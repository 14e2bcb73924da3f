#pragma once

#include <QStringList>
#include <optional>

#include "FrameSelection.h"
#include "PictureRate.h"
#include "PlayCommand.h"

/// A `remux` command line, checked as far as it can be without opening anything.
struct SxRemuxArguments
{
    SxPlayArguments common; ///< its file is the recording
    QString output;
    std::optional<SxPictureRate> rate;      ///< when given
    std::optional<CxFrameSelection> frames; ///< when given
    bool isExact = false;                   ///< begins at the first of the frames, whatever it takes
    bool overwrite = false;
    bool removesInput = false;
};

/// Reads the arguments after "remux". \return false, with \p error one sentence, when they make no sense.
bool fx_ParseRemuxArguments(QStringList const& arguments, SxRemuxArguments& parsed, QString& error);

QString fx_RemuxHelp();

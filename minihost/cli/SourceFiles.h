#pragma once

#include <QStringList>

/// What the sources on a command line stand for.
struct SxSourceFiles
{
    QStringList names;    ///< of files, and whatever else FFmpeg opens, in their order
    QStringList notes;    ///< sentences
    QStringList warnings; ///< sentences
    QString
        obstacle; ///< what stands in the way of reading them, one sentence; empty when nothing is known to
};

/// Puts the pictures of folders and patterns in their place.
///
/// \param isReaderChosen  the sources go to a reader of the user's choice, who knows what their names mean.
SxSourceFiles fx_FindSources(QStringList const& sources, bool isReaderChosen);

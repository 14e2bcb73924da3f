#pragma once

#include <QJsonObject>
#include <QString>
#include <optional>

#include "PictureRanges.h"
#include "PictureRate.h"

/// What a raw stream cannot hold of its recording. It stands in a small file beside it, a JSON object, and is
/// the only thing that is lost with that.
struct SxSidecar
{
    SxPictureRate rate;   ///< of the source; unknown when nothing told it
    int rotation = 0;     ///< degrees clockwise, 0, 90, 180 or 270, that make the pictures stand upright
    QString source;       ///< as it was named
    QJsonObject options;  ///< with which it was encoded, by their names on the command line
    int pictures = 0;     ///< that the source gave
    int skippedCount = 0; ///< of these, how many the encoder left out
    QVector<SxPictureRange> skipped; ///< their numbers in the source; empty when they are too many to list
    int lostCount = 0; ///< of the pictures, how many a live source gave faster than they were encoded
    QVector<SxPictureRange> lost; ///< likewise
    QString program;              ///< that recorded them, with its version
};

/// Name of the file that belongs to \p recording: "out.h264.json".
QString fx_SidecarName(QString const& recording);

/// What fx_FindSidecar() found.
struct SxFoundSidecar
{
    std::optional<SxSidecar> sidecar; ///< nothing when there is none that belongs to the recording
    QString warning;                  ///< why the one that is there is ignored, one sentence; mostly empty
};

/// Reads what lies beside \p recording. It is used only if it describes just that file: its size and first
/// bytes must agree. Others may have written it: no more than some megabytes are read, and all of it is
/// checked.
SxFoundSidecar fx_FindSidecar(QString const& recording);

/// Writes it beside \p recording, which is complete, as a whole or not at all. \return false, with \p error
/// one sentence, when that fails, or when a file of that name is none of ours, which is then left alone.
///
/// \param isFinished  false: the recording is being written. The sidecar then belongs to that very file
/// (inode),
///                    whatever comes into it, so that a recording that is killed keeps its rate and rotation.
bool fx_WriteSidecar(QString const& recording, SxSidecar const& sidecar, QString& error,
                     bool isFinished = true);

/// Removes it, since \p recording is or becomes another. What is not ours stays.
void fx_RemoveSidecar(QString const& recording);

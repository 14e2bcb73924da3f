#pragma once

#include <QString>

#include "PictureRate.h"

/// Notes beside \p recording at which rate its pictures were taken; what else is noted there stays. An
/// unknown rate takes the note away, and the sidecar with it where it says nothing else.
///
/// \param pictures  of the recording, for a sidecar that is new.
/// \return false, with \p error one sentence, when that fails.
bool fx_NoteRate(QString const& recording, int pictures, SxPictureRate const& rate, QString& error);

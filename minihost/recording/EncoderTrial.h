#pragma once

#include <QString>

#include "SxPicBuf.h"

/// Encodes \p picture for nothing with an encoder of its own, at the size that a recording of it would have.
/// \return false when that fails; the plug-in's messages say why.
bool fx_EncoderTakes(SxPicBuf const& picture);

/// Why no encoder takes pictures like \p input, which would be saved like \p saved, one sentence; empty when
/// one may.
QString fx_ObstacleToEncoding(SxPicBufInfo const& input, SxPicBufInfo const& saved);

#pragma once

#include <QString>

#include "EncoderOptions.h"
#include "SxPicBuf.h"

/// Encodes \p picture for nothing with an encoder of its own, at the size that a recording of it would have.
/// \return false when that fails; the plug-in's messages say why.
bool fx_EncoderTakes(SxPicBuf const& picture);

/// The format that an encoder with these options saves pictures like \p input in: smaller when they are
/// larger than its level allows. \p input itself without an encoder.
SxPicBufInfo fx_SavedFormat(SxPicBufInfo const& input, SxEncoderOptions const& options);

/// Why no encoder takes pictures like \p input, which would be saved like \p saved, one sentence; empty when
/// one may.
QString fx_ObstacleToEncoding(SxPicBufInfo const& input, SxPicBufInfo const& saved);

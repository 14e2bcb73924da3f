#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

#include "tarnCoreGlobal.h"

/// Keeps the codec options that the user chose for streams of \p fourCC, in place of those before.
/// Every encoder that the codec manager hands out for that code from now on carries them. GUI thread only.
TARNCORE_EXPORT void fx_SetCodecOptions(unsigned int fourCC, QMap<QString, QVariant> const& options);

/// The codec options kept for \p fourCC; empty when none were given.
TARNCORE_EXPORT QMap<QString, QVariant> fx_CodecOptions(unsigned int fourCC);

#pragma once

#include <QtGlobal>
#include <optional>

#include "EncoderOptions.h"

/// Bits a second that the encoder aims at, for \p width x \p height pictures as saved and the given
/// options; the host's copy of the rule, to advise its user. Quality 1 stands for a quarter of one
/// uncompressed picture's bytes, in bits a second; quality 10 for the level's limit or every byte.
qint64 fx_TargetBitRate(quint32 width, quint32 height, int level, int quality);

/// The lowest quality above \p quality that probably keeps every picture, judged by the bytes that the
/// \p coded ones took together and how many were \p skipped; nothing when not even the highest does.
///
/// Coded pictures were made small to fit and grow with the bit rate: over nine clips and all qualities,
/// 1.4 times their rate sufficed where less than a sixth was skipped, 2.1 times in all cases.
std::optional<int> fx_QualityThatKeepsAll(quint32 width, quint32 height, SxEncoderOptions const& used,
                                          qint64 bytes, int coded, int skipped);

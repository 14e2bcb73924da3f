#pragma once

#include <QMap>
#include <QVector>

#include "VanishedPictures.h"

/// Key frames that vanished, by the idr_pic_id of those that are left: OpenH264 counts it up by one with
/// each, modulo 65536, and begins at 0 or 1.
///
/// \param marks  of all frames, ascending
/// \return how many are missing before a key frame, by its number. Empty unless the keys that are left count:
///         other encoders keep one id or alternate between two.
QMap<int, int> fx_VanishedKeys(QVector<SxFrameMark> const& marks);

#pragma once

#include <QStringList>
#include <atomic>
#include <climits>

#include "PictureChanges.h"

/// Looks into files, as far as it takes to know the size of their pictures, whether those come out alike.
///
/// \param first, end  numbers of the picture files, from 0, that matter; behind a video all do.
/// \param stop  once set, no further file is looked into; may be null.
/// \return the first that does not, one sentence naming it and its size; else empty. Of what cannot be
///         read, or is no regular file, nothing is said.
QString fx_SizeObstacle(QStringList const& files, SxPictureChanges const& changes,
                        std::atomic<bool> const* stop, qint64 first = 0, qint64 end = LLONG_MAX);

#pragma once

#include <QString>

#include "PictureChanges.h"

/// What is said about the pictures of a source that a recording cannot hold as they are: one sentence, or
/// empty when there is nothing to say.

QString fx_OddSidesNote(SxChangePlan const& plan);

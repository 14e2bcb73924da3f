#pragma once

#include "RecordArguments.h"

class IxPictureSource;

/// What stands in the way of writing numbered files, one sentence; empty when nothing does.
QString fx_SplitObstacle(SxRecordArguments const& arguments);

/// Records into numbered files and tells of each, and of all. \return the exit code
int fx_RecordSplit(IxPictureSource& source, SxRecordArguments const& arguments);

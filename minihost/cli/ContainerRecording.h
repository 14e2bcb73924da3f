#pragma once

#include <QString>

#include "Recorder.h"

class IxPictureSource;

/// What of \p request goes to the recorder: with a container as its output, the raw file beside that.
SxRecordRequest fx_RawRequest(SxRecordRequest request);

/// What stands in the way of recording to \p output when it is a container, one sentence; empty when nothing
/// does.
QString fx_ContainerObstacle(QString const& output);

/// After recording to a container: puts into it what was recorded from \p source, and says how far that is.
/// The raw file goes once the container is on the disk; \p summary then tells of that, else of what failed.
void fx_PutIntoContainer(SxRecordRequest const& request, IxPictureSource const& source,
                         SxRecordSummary& summary);

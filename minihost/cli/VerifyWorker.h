#pragma once

#include <QStringList>

/// The side of `verify` that decodes, a process of its own: a damaged recording can bring the decoder down,
/// and then takes only this process along.
///
/// Arguments: the first frame to decode, 1 for the plug-in's raw messages or 0, the plug-in's path (may be
/// empty), the recording. Says on standard output, a line each:
///
///     refused CODE SENTENCE           it cannot be opened: the exit code and why; then nothing more comes
///     recording FRAMES BYTES FPS      of the file; once, when it is open
///     keys FRAME,FRAME...
///     at FRAME OFFSET SIZE FRAME_NUM MAX_FRAME_NUM EXTRA_UNITS
///                                     what is decoded next, where it lies in the file, and its SxFrameMark
///     good | bad CAUSE                what became of it
///
/// \return 0 at the end of the recording
int fx_RunVerifyWorker(QStringList const& arguments);

#pragma once

#include <QStringList>

/// `verify` as the window runs it, a process of its own that it follows and may end.
///
/// Arguments: the plug-in's path (may be empty), how many processes decode at a time, the recording. Says on
/// standard output, a line each:
///
///     at EXAMINED FRAMES    how far it is, some ten times a second
///     found JSON            the object of `verify --json`; the last line
///
/// SIGTERM ends it early, with what was found until then. \return as `verify` does
int fx_RunWatchedVerify(QStringList const& arguments);

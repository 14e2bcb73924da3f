#pragma once

#include <QString>

/// Runs the viewer: `minihost view [FILE|SOURCE]`, the whole command line. Makes the application object
/// itself, so there must be none yet. \return the program's exit code.
int fx_RunViewer(int& argc, char** argv);

QString fx_ViewerHelp();

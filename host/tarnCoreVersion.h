#pragma once

#include "tarnCoreGlobal.h"

/// Fills in the three version numbers of the host's core library. Plug-ins that are delivered with
/// the host report them as their own.
TARNCORE_EXPORT void tarnCoreVersion(int& major, int& minor, int& build);

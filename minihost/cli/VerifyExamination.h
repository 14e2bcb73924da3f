#pragma once

#include <functional>

#include "Options.h"
#include "VerifyFindings.h"

/// How recordings are examined.
struct SxExamination
{
    SxRunOptions options;
    bool stopsAtFirst = false; ///< with the first frame that fails
    int jobs = 1;              ///< processes at a time; what is found does not depend on it
    std::function<void(int frames, int examined)> onProgress; ///< of all frames, how many were looked at
};

/// Decodes a recording from front to back in processes of their own. Where one crashes or hangs, that is a
/// finding, and another goes on behind it.
SxFindings fx_Examine(QString const& file, SxExamination const& how);

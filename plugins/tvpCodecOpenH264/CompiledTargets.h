#pragma once

#include "IYUVRows.h"
#include "StartCodeSearch.h"
#include "VectorTargets.h"

/// What was compiled for a target. Null stands for "nothing", as for Scalar, or for every target in a build
/// without vectors (WithoutVectors.cpp).

SxIYUVKernels const* fx_GetCompiledIYUVKernels(VectorTarget target);
FxPrefixSearch fx_GetCompiledPrefixSearch(VectorTarget target);

inline bool fx_IsCompiledFor(VectorTarget target)
{
    return fx_GetCompiledIYUVKernels(target) && fx_GetCompiledPrefixSearch(target);
}

// In place of IYUVRowsSimd.cpp and StartCodeSearchSimd.cpp where Highway is missing or too old, or where
// TARN_VECTORS is OFF: the scalar code serves. The results are the same.

#include "CompiledTargets.h"

SxIYUVKernels const* fx_GetCompiledIYUVKernels(VectorTarget) { return nullptr; }

FxPrefixSearch fx_GetCompiledPrefixSearch(VectorTarget) { return nullptr; }

void fx_FinishNonTemporalStores() {} // no scalar store passes the cache

#pragma once

#include <QtGlobal>

/// True when not even \p bytes more can be had. Libraries that ran out of memory rarely say that it was so.
bool fx_IsMemoryShort(quint64 bytes);

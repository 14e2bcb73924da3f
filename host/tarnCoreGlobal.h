#pragma once

#include <QtGlobal>

/// Marks what libtarnCore.so defines; everything else in these headers is defined where it is used.
#ifdef TARNCORE_LIBRARY
#define TARNCORE_EXPORT Q_DECL_EXPORT
#else
#define TARNCORE_EXPORT Q_DECL_IMPORT
#endif

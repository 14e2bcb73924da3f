#pragma once

#include <QtGlobal>
#include <cstddef>
#include <functional>

class QIODevice;

/// Whether a start code of three or four bytes comes next, and, behind one of three, anything.
bool fx_BeginsWithStartCode(QIODevice& file);

/// The units of a byte stream with start codes, as of H.264, H.265 and MPEG video, read from a file in
/// pieces.
///
/// \param limit  bytes to read at most; -1 for all
/// \param visit  gets each unit, from the byte behind its start code on: up to kUnitBytes of it, which may
///               run on into the next
/// \return false when the file cannot be read
bool fx_ForEachUnit(QIODevice& file, qint64 limit,
                    std::function<void(uchar const* unit, size_t size)> const& visit);

constexpr size_t kUnitBytes = 512;

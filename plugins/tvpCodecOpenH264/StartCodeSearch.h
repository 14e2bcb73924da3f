#pragma once

#include <cstddef>
#include <cstdint>

#include "VectorTargets.h"

/// Finds the bytes 00 00 01 that every start code ends with (ITU-T H.264, annex B).
///
/// \param from  at most \p size
/// \return the first position at or behind \p from where the three bytes stand within \p size bytes;
///         \p size when there is none
std::size_t fx_FindPrefix(std::uint8_t const* data, std::size_t size, std::size_t from);

/// The same by one instruction set, which this machine must have.
using FxPrefixSearch = std::size_t (*)(std::uint8_t const* data, std::size_t size, std::size_t from);
FxPrefixSearch fx_GetPrefixSearch(VectorTarget target);

/// The definition, written to be read; every other search gives the same positions.
std::size_t fx_FindPrefixScalar(std::uint8_t const* data, std::size_t size, std::size_t from);

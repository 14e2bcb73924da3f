#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// One way to find the bytes 00 00 01 that every start code ends with (ITU-T H.264, annex B).
struct SxPrefixSearch
{
    char const* name; ///< of the instruction set

    /// The first position at or behind \p from where the three bytes stand within \p size bytes;
    /// \p size when there is none. \p from is at most \p size.
    std::size_t (*find)(std::uint8_t const* data, std::size_t size, std::size_t from);
};

/// The definition, written to be read; every other search gives the same positions.
std::size_t fx_FindPrefixScalar(std::uint8_t const* data, std::size_t size, std::size_t from);

/// Every search that this machine can run, the fastest first and the scalar one last.
std::vector<SxPrefixSearch> fx_GetAllPrefixSearches();

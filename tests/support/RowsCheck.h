#pragma once

#include <string>

#include "IYUVRows.h"

/// Proofs that a table of row kernels gives the bytes of its scalar twin and, so that the two cannot drift
/// together, that these have the checksums they always had. Without Qt: the program that runs them on foreign
/// processors has none.
///
/// Each returns what is wrong with the kernels \p rows, called \p table, or nothing. Buffers are exactly as
/// large as the rows, so that the address sanitizer sees a stray read, and lie between guard bytes, which
/// show a stray write.

/// What a kernel got wrong, in one sentence.
std::string fx_Difference(std::string const& table, std::string const& kernel, std::size_t size,
                          std::string const& place, std::size_t expected, std::size_t found);

/// All 2^24 colours in all four formats, words of 12 bits with noise above and below the bits that count.
std::string fx_CheckColours(char const* table, SxIYUVKernels const& rows);

/// All 2^24 (Y, U, V), into cached and into rows written past the cache.
std::string fx_CheckSamples(char const* table, SxIYUVKernels const& rows);

/// All words in all word formats at every shift from 0 to 31.
std::string fx_CheckShifts(char const* table, SxIYUVKernels const& rows);

/// Every width from 0 to three of the widest vectors and around those of usual pictures, at odd addresses.
std::string fx_CheckWidths(char const* table, SxIYUVKernels const& rows);

#pragma once

#include <cstdint>

#include "SxPicBuf.h"

/// The highest value that the samples of a PGM, PPM or PAM file can have, by its header; 0 when \p data do
/// not begin with one.
int fx_PnmMaxval(uint8_t const* data, int size);

/// FFmpeg stretches words below any \p maxval to 16 bits. Gives a word picture back the values of its file
/// and their bits, where \p maxval is that of 9 to 15 bits; others stay stretched, with white as white.
void fx_RestorePnmWords(SxPicBuf& picture, int maxval);

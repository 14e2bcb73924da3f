#pragma once

#include "SxPicBuf.h"

/// Host pictures to planar YUV 4:2:0, 8 bits a sample, planes in I420 order, as OpenH264 takes them.
///
/// The planes of a picture of width w and height h, all divisions rounding down:
/// Y, w * h bytes, rows of w; U at w * h and V at w * h + (w * h) / 4, rows of w / 2, one for each
/// even row of the picture. Luma weights are those of ITU-R BT.601 in per-mille. Chroma is picked,
/// not averaged: the left pixel of each pair, on even rows. 16-bit samples first lose all but the
/// eight highest of their `bitsPerSample`.
///
/// Odd sizes keep this layout and overlap. With an odd width the pair walk of an even row runs one
/// pixel past the row: it reads the pixel that lies there and writes its luma behind the row, and a
/// chroma row's last sample lands on the next row's first. With an odd height there is one chroma
/// row more than h / 2. What falls inside the capacity is written, in the order of the walk (per
/// pair: left luma, U, V, right luma); what falls behind it is not. A pixel outside pitch * height
/// counts as a repeat of its row's last.
///
/// Every converter returns false, with nothing written, if \p dst is null, the picture's planes do
/// not fit into \p capacity bytes, or the picture has a size but no pixels to read (`data` null, a
/// pitch below one pixel).

/// Bytes of the planes, (width + width / 2) * height, in 32-bit arithmetic that wraps as the host's does.
unsigned long GetIYUVSize(SxPicBufInfo const& format);

bool ConvertRGB24toIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity);
bool ConvertRGB32toIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity);
bool ConvertRGB48toIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity);
bool ConvertRGB64toIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity);
bool ConvertMono8toIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity);
bool ConvertMono16toIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity);

/// Picks the converter by the format: layout 1, sampleType 2 (bytes) or 4 (native words), 1, 3 or 4
/// components. Also false for every other format.
bool ConvertPicBuftoIYUV(SxPicBuf const& source, unsigned char* dst, unsigned long capacity);

/// Decoded planes to RGB32: blue, green, red and 255, four bytes a pixel.
///
/// \param target  its width, height and pitch (at least width * 4) describe memory of pitch * height bytes.
/// \param y, u, v planes of height rows, and (height + 1) / 2 rows of chroma; a chroma sample serves two
///                pixels of two rows.
/// \param size    ignored: what the planes hold follows from the picture and the strides.
/// \param yStride, uvStride  bytes from row to row, of the luma plane and of both chroma planes.
/// \return always true.
///
/// Coefficients are per-mille, the quotients truncate toward zero and are clamped to a byte. They are
/// not the exact inverse of the conversion to YUV. With an odd width the last pair of a row runs one
/// pixel past it: that pixel is written where the pitch has room for it or a later row overwrites it.
bool ConvertIYUVtoRGB32(SxPicBuf& target, unsigned char const* y, unsigned char const* u,
                        unsigned char const* v, unsigned long size, unsigned int yStride,
                        unsigned int uvStride);

#pragma once

#include <QByteArray>

#include "Canvas.h"

/// A seven-segment display: digits that stay readable from 3 x 5 pixels up to any size.

int fx_LedWidth(QByteArray const& text, int height); ///< pixels across, for digits \p height pixels high

/// Draws digits, colons and points with the top left corner at (\p x, \p y); other characters leave
/// a blank. Segments that are off glow faintly where there is room. Clips at the canvas' edges.
void fx_DrawLed(SxCanvas& canvas, int x, int y, int height, QByteArray const& text, SxColour48 const& colour);

#pragma once

#include <QColor>

// As dark as the surround of the picture, on which the three colours are told apart.
static QColor const kPlotGround(0x1c, 0x1c, 0x1e);
static QColor const kPlotGrey(0xc8, 0xc8, 0xcc);
static QColor const kPlotColours[3] = {{0xe0, 0x30, 0x30}, {0x28, 0xb0, 0x40}, {0x38, 0x68, 0xf0}};

#pragma once

/// How wide and how high a pixel is to be shown, as the smallest whole numbers. A recording's are square.
struct SxPixelShape
{
    int width = 1;
    int height = 1;

    bool isSquare() const { return width == height; }
};

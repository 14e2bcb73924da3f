#include "LedDigits.h"

#include <algorithm>
#include <cstdlib>

namespace {

/// Bit n: segment n of a to g is lit (a the top, then clockwise, g the middle).
unsigned const kSegmentsOf[10] = {0x3F, 0x06, 0x5B, 0x4F, 0x66, 0x6D, 0x7D, 0x07, 0x7F, 0x6F};

constexpr int kOffCover = 20; // of 256: a segment that is off

/// Measures of a digit of one height.
struct SxLedShape
{
    explicit SxLedShape(int digitHeight)
        : height(digitHeight)
        , width(std::max(3, digitHeight * 11 / 20))
        , stroke(std::max(1, digitHeight * 2 / 13))
        , gap(std::max(1, digitHeight / 6))
        , isFine(stroke >= 4)
    {}
    int height;
    int width;
    int stroke;
    int gap;     ///< between digits
    bool isFine; ///< room for slanted strokes with pointed ends

    int advance(char c) const { return (c == ':' || c == '.' ? stroke : width) + gap; }
    int slant(int row) const { return isFine ? (height - 1 - row) / 14 : 0; }
};

/// One segment as the line of its middle, in half pixels.
struct SxSegment
{
    bool isHorizontal;
    int along0;
    int along1;
    int across;
};

SxSegment fx_Segment(SxLedShape const& shape, int index)
{
    // Middles of the outer strokes, in half pixels; the middle stroke lies between them.
    int const near = shape.stroke - 1;
    int const right = 2 * shape.width - 1 - shape.stroke;
    int const bottom = 2 * shape.height - 1 - shape.stroke;
    int const middle = (near + bottom) / 4 * 2 + near % 2;
    switch (index) {
    case 0:
        return {true, near, right, near};
    case 1:
        return {false, near, middle, right};
    case 2:
        return {false, middle, bottom, right};
    case 3:
        return {true, near, right, bottom};
    case 4:
        return {false, middle, bottom, near};
    case 5:
        return {false, near, middle, near};
    default:
        return {true, near, right, middle};
    }
}

void fx_Plot(SxCanvas& canvas, int x, int y, SxColour48 const& colour, int cover)
{
    if (canvas.contains(x, y))
        fx_Blend(canvas.pixel(x, y), colour, cover);
}

void fx_DrawSegment(SxCanvas& canvas, int x, int y, SxLedShape const& shape, SxSegment const& segment,
                    SxColour48 const& colour, int cover)
{
    // Rows of a level stroke, columns of an upright one: those within half the stroke of its middle.
    int const across0 = std::max(0, (segment.across - shape.stroke + 2) / 2);
    int const across1 = (segment.across + shape.stroke + 1) / 2;
    int const row0 = segment.isHorizontal ? across0 : 0;
    int const row1 = segment.isHorizontal ? std::min(across1, shape.height) : shape.height;
    int const column0 = segment.isHorizontal ? 0 : across0;
    int const column1 = segment.isHorizontal ? shape.width : std::min(across1, shape.width);
    for (int row = row0; row < row1; ++row) {
        for (int column = column0; column < column1; ++column) {
            int const along = 2 * (segment.isHorizontal ? column : row);
            int const across = std::abs(2 * (segment.isHorizontal ? row : column) - segment.across);
            // Pointed ends with a gap between strokes, or plain overlapping ones where pixels are few.
            int const inset = shape.isFine ? across + std::max(2, shape.stroke / 5) : 1 - shape.stroke;
            if (along < segment.along0 + inset || along > segment.along1 - inset)
                continue;
            fx_Plot(canvas, x + column + shape.slant(row), y + row, colour, cover);
        }
    }
}

void fx_DrawDot(SxCanvas& canvas, int x, int y, SxLedShape const& shape, int middleRow,
                SxColour48 const& colour)
{
    int const top = middleRow - shape.stroke / 2;
    for (int row = top; row < top + shape.stroke; ++row) {
        for (int column = 0; column < shape.stroke; ++column)
            fx_Plot(canvas, x + column + shape.slant(row), y + row, colour, 256);
    }
}

} // namespace

int fx_LedWidth(QByteArray const& text, int height)
{
    SxLedShape const shape(height);
    int width = shape.slant(0) - shape.gap;
    for (char const c : text)
        width += shape.advance(c);
    return std::max(width, 0);
}

void fx_DrawLed(SxCanvas& canvas, int x, int y, int height, QByteArray const& text, SxColour48 const& colour)
{
    SxLedShape const shape(height);
    for (char const c : text) {
        if (c >= '0' && c <= '9') {
            for (int index = 0; index < 7; ++index) {
                bool const isLit = (kSegmentsOf[c - '0'] >> index & 1) != 0;
                if (!isLit && shape.isFine)
                    fx_DrawSegment(canvas, x, y, shape, fx_Segment(shape, index), colour, kOffCover);
            }
            for (int index = 0; index < 7; ++index) {
                if ((kSegmentsOf[c - '0'] >> index & 1) != 0)
                    fx_DrawSegment(canvas, x, y, shape, fx_Segment(shape, index), colour, 256);
            }
        } else if (c == ':') {
            fx_DrawDot(canvas, x, y, shape, shape.height * 3 / 10, colour);
            fx_DrawDot(canvas, x, y, shape, shape.height * 7 / 10, colour);
        } else if (c == '.') {
            fx_DrawDot(canvas, x, y, shape, shape.height - (shape.stroke + 1) / 2, colour);
        }
        x += shape.advance(c);
    }
}

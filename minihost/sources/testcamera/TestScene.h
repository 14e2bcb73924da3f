#pragma once

#include <vector>

#include "Canvas.h"

/// The test camera's view: a colour wheel that turns, a zone plate that runs, balls that fly, colour
/// bars and line patterns that stand still, and frame number and time in large digits. Without noise,
/// and the same on every machine.
class CxTestScene
{
public:
    CxTestScene(int width, int height); ///< 16 pixels or more each way

    /// Draws picture \p frame, counted from 0 at kPicturesASecond. Valid until the next call.
    SxCanvas const& draw(int frame);

private:
    /// A disc with a table index for each of its pixels, so that turning it is a matter of the table.
    struct SxDisc
    {
        int left;
        int top;
        int size;
        std::vector<quint16> index; ///< size * size, meaningful where covered
        std::vector<quint16> cover; ///< 0 outside, 256 inside, between at the edge
    };
    /// A shaded ball, drawn once.
    struct SxBall
    {
        int size;
        int speedX;
        int speedY;
        int startX;
        int startY;
        std::vector<SxColour48> colour; ///< size * size
        std::vector<quint16> cover;
    };

    void drawBackdrop();
    void drawBars();
    void drawLinePatterns();
    SxDisc makeDisc(int centreX, int centreY, int radius, bool isWheel) const;
    SxBall makeBall(int radius, SxColour48 const& colour, int number) const;
    void turnDisc(SxDisc const& disc, std::vector<SxColour48> const& table, int phase);
    void moveBall(SxBall const& ball, int frame);
    void drawCounter(int frame);

    int m_unit;          ///< what sizes are taken from: the height of a 16:9 picture that fits
    SxCanvas m_backdrop; ///< what never moves
    SxCanvas m_canvas;
    SxDisc m_wheel;
    SxDisc m_zones;
    std::vector<SxColour48> m_wheelTable; ///< by angle
    std::vector<SxColour48> m_zoneTable;  ///< by phase
    std::vector<SxBall> m_balls;
};

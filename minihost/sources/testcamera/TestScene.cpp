#include "TestScene.h"

#include <algorithm>

#include "FixedMath.h"
#include "LedDigits.h"
#include "PictureRate.h"

namespace {

constexpr int kTableSize = 4096; // entries for one turn

int fx_Part(int whole, int percent) { return static_cast<int>(static_cast<qint64>(whole) * percent / 100); }

SxColour48 fx_Scaled(SxColour48 const& colour, int part, int whole)
{
    auto const scale = [part, whole](int sample) {
        return static_cast<quint16>(std::clamp<qint64>(static_cast<qint64>(sample) * part / whole, 0, 65535));
    };
    return {scale(colour.blue), scale(colour.green), scale(colour.red)};
}

/// The hue circle, softened: cosines a third of a turn apart.
SxColour48 fx_Hue(int angle)
{
    auto const sample = [](int a) { return static_cast<quint16>(36000 + fx_Cosine(a) * 27000 / 32767); };
    return {sample(angle + 21845), sample(angle - 21845), sample(angle)};
}

/// Coverage of a pixel by a disc around (0, 0): 256 inside, 0 outside, a ramp of one pixel between.
/// Offsets in half pixels.
quint16 fx_DiscCover(int dx2, int dy2, int radius)
{
    auto const square = static_cast<quint64>(qint64{dx2} * dx2 + qint64{dy2} * dy2);
    int const distance = fx_SquareRoot(square * 64 * 64); // in 128ths of a pixel
    return static_cast<quint16>(std::clamp((radius * 128 - distance) * 2 + 128, 0, 256));
}

} // namespace

CxTestScene::CxTestScene(int width, int height)
    : m_unit(std::min(height, width * 9 / 16))
{
    size_t const samples = static_cast<size_t>(width) * static_cast<size_t>(height) * 3;
    m_backdrop = {width, height, std::vector<quint16>(samples)};
    drawBackdrop();
    drawBars();
    drawLinePatterns();
    m_canvas = m_backdrop;

    m_wheel = makeDisc(fx_Part(width, 76), fx_Part(height, 32), fx_Part(m_unit, 27), true);
    m_zones = makeDisc(fx_Part(width, 21), fx_Part(height, 64), fx_Part(m_unit, 18), false);
    for (int i = 0; i < kTableSize; ++i) {
        int const angle = i * 65536 / kTableSize;
        // 24 soft spokes of light across the hue circle: sines keep fine detail without flicker.
        int const light = 190 + fx_Cosine(angle * 24) * 66 / 32767;
        m_wheelTable.push_back(fx_Scaled(fx_Hue(angle), light, 256));
        int const grey = 128 + fx_Cosine(angle) * 88 / 32767;
        m_zoneTable.push_back(fx_Rgb(grey, grey, grey));
    }
    m_balls.push_back(makeBall(fx_Part(m_unit, 9), fx_Rgb(235, 84, 64), 0));
    m_balls.push_back(makeBall(fx_Part(m_unit, 7), fx_Rgb(64, 196, 160), 1));
    m_balls.push_back(makeBall(fx_Part(m_unit, 5), fx_Rgb(246, 196, 72), 2));
}

/// A dim wall, lighter towards its middle, with the lines of graph paper.
void CxTestScene::drawBackdrop()
{
    int const step = std::max(8, m_unit / 18);
    for (int y = 0; y < m_backdrop.height; ++y) {
        for (int x = 0; x < m_backdrop.width; ++x) {
            qint64 const dx = (2 * x - m_backdrop.width) * qint64{256} / m_backdrop.width;
            qint64 const dy = (2 * y - m_backdrop.height) * qint64{256} / m_backdrop.height;
            int const light = static_cast<int>(256 - (dx * dx + dy * dy) * 150 / 131072);
            SxColour48 colour = fx_Scaled(fx_Rgb(52, 66, 92), light, 256);
            if (x % (step * 4) == 0 || y % (step * 4) == 0)
                colour = fx_Scaled(colour, 150, 100);
            else if (x % step == 0 || y % step == 0)
                colour = fx_Scaled(colour, 120, 100);
            fx_Blend(m_backdrop.pixel(x, y), colour, 256);
        }
    }
}

/// Eight colour bars and a grey ramp below them along the lower edge.
void CxTestScene::drawBars()
{
    static SxColour48 const kBars[8] = {fx_Rgb(235, 235, 235), fx_Rgb(220, 210, 30), fx_Rgb(30, 200, 210),
                                        fx_Rgb(40, 190, 50),   fx_Rgb(200, 50, 190), fx_Rgb(205, 45, 40),
                                        fx_Rgb(45, 60, 200),   fx_Rgb(16, 16, 16)};
    int const top = m_backdrop.height - std::max(2, fx_Part(m_unit, 14));
    int const ramp = m_backdrop.height - std::max(1, fx_Part(m_unit, 5));
    for (int y = top; y < m_backdrop.height; ++y) {
        for (int x = 0; x < m_backdrop.width; ++x) {
            auto const grey = static_cast<quint16>(qint64{65535} * x / std::max(m_backdrop.width - 1, 1));
            SxColour48 const colour =
                y >= ramp ? SxColour48{grey, grey, grey} : kBars[8 * x / m_backdrop.width];
            fx_Blend(m_backdrop.pixel(x, y), colour, 256);
        }
    }
}

/// Groups of upright lines, 1 to 6 pixels wide, and level ones below: what shows the sharpness.
void CxTestScene::drawLinePatterns()
{
    int const left = fx_Part(m_backdrop.width, 40);
    int const top = m_backdrop.height - std::max(2, fx_Part(m_unit, 14)) - fx_Part(m_unit, 22);
    int const groupWidth = fx_Part(m_unit, 10);
    int const groupHeight = fx_Part(m_unit, 9);
    SxColour48 const light = fx_Rgb(206, 210, 216);
    SxColour48 const dark = fx_Rgb(26, 28, 34);
    for (int group = 0; group < 6; ++group) {
        int const line = 6 - group;
        for (int y = 0; y < groupHeight; ++y) {
            for (int x = 0; x < groupWidth; ++x) {
                int const px = left + group * (groupWidth + m_unit / 50) + x;
                int const py = top + y;
                if (!m_backdrop.contains(px, py) || !m_backdrop.contains(px, py + groupHeight + m_unit / 50))
                    continue;
                fx_Blend(m_backdrop.pixel(px, py), x / line % 2 == 0 ? light : dark, 256);
                fx_Blend(m_backdrop.pixel(px, py + groupHeight + m_unit / 50),
                         y / line % 2 == 0 ? light : dark, 256);
            }
        }
    }
}

/// A disc whose table index is the angle (a wheel) or grows with the square of the radius (a zone
/// plate, finest at its edge).
CxTestScene::SxDisc CxTestScene::makeDisc(int centreX, int centreY, int radius, bool isWheel) const
{
    SxDisc disc{centreX - radius, centreY - radius, 2 * radius + 1, {}, {}};
    for (int y = 0; y < disc.size; ++y) {
        for (int x = 0; x < disc.size; ++x) {
            int const dx = x - radius;
            int const dy = y - radius;
            int cover = fx_DiscCover(2 * dx, 2 * dy, radius);
            int index = 0;
            if (isWheel) {
                index = fx_AngleOf(dx, dy) * kTableSize / 65536;
                // A hub, where the spokes would be finer than a pixel.
                cover = std::min(cover, 256 - fx_DiscCover(2 * dx, 2 * dy, radius / 6));
            } else if (radius > 0) {
                // A sixth of a turn a pixel at the edge.
                index =
                    static_cast<int>(qint64{kTableSize} * (dx * dx + dy * dy) / (12 * radius)) % kTableSize;
            }
            disc.index.push_back(static_cast<quint16>(index));
            disc.cover.push_back(static_cast<quint16>(cover));
        }
    }
    return disc;
}

/// A ball lit from the upper left, with a highlight.
CxTestScene::SxBall CxTestScene::makeBall(int radius, SxColour48 const& colour, int number) const
{
    SxBall ball{2 * radius + 1,
                5 - number + m_unit / 240,
                2 + number + m_unit / 360,
                number * fx_Part(m_backdrop.width, 37),
                number * fx_Part(m_backdrop.height, 23),
                {},
                {}};
    for (int y = 0; y < ball.size; ++y) {
        for (int x = 0; x < ball.size; ++x) {
            int const dx = x - radius;
            int const dy = y - radius;
            int const inside = std::max(radius * radius - dx * dx - dy * dy, 0);
            int const dz = fx_SquareRoot(static_cast<quint64>(inside));
            // The cosine to the light, in 256ths: direction (-4, -5, 6) of length about 9.
            int const light = std::max(0, (-4 * dx - 5 * dy + 6 * dz) * 256 / (9 * std::max(radius, 1)));
            int const shine = std::max(0, light - 232) * 10;
            SxColour48 const shade = fx_Scaled(colour, 70 + light * 186 / 256, 256);
            ball.colour.push_back(shade);
            fx_Blend(&ball.colour.back().blue, fx_Rgb(255, 255, 255), std::min(shine, 200));
            ball.cover.push_back(fx_DiscCover(2 * dx, 2 * dy, radius));
        }
    }
    return ball;
}

void CxTestScene::turnDisc(SxDisc const& disc, std::vector<SxColour48> const& table, int phase)
{
    int const first = std::max(-disc.left, 0);
    int const last = std::min(disc.size, m_canvas.width - disc.left);
    for (int row = 0; row < disc.size; ++row) {
        if (disc.top + row < 0 || disc.top + row >= m_canvas.height)
            continue;
        quint16* pixel = m_canvas.pixel(disc.left + first, disc.top + row);
        size_t at = static_cast<size_t>(row) * static_cast<size_t>(disc.size) + static_cast<size_t>(first);
        for (int column = first; column < last; ++column, ++at, pixel += 3) {
            if (disc.cover[at] != 0)
                fx_Blend(pixel, table[static_cast<size_t>((disc.index[at] + phase) & (kTableSize - 1))],
                         disc.cover[at]);
        }
    }
}

void CxTestScene::moveBall(SxBall const& ball, int frame)
{
    // Frame counts of days still fit: the paths repeat long before.
    int const time = frame % 1000000;
    int const left = fx_Bounce(ball.startX + time * ball.speedX, m_canvas.width - ball.size);
    int const top =
        fx_Bounce(ball.startY + time * ball.speedY, m_canvas.height - fx_Part(m_unit, 14) - ball.size);
    size_t at = 0;
    for (int y = top; y < top + ball.size; ++y) {
        for (int x = left; x < left + ball.size; ++x, ++at) {
            if (ball.cover[at] != 0 && m_canvas.contains(x, y))
                fx_Blend(m_canvas.pixel(x, y), ball.colour[at], ball.cover[at]);
        }
    }
}

/// Frame number and, where there is room, time (mm:ss.mmm) on a dark panel in the upper left corner.
void CxTestScene::drawCounter(int frame)
{
    int const margin = fx_Part(m_unit, 4);
    int const height = std::max(5, fx_Part(m_unit, 22));
    QByteArray number = QByteArray::number(frame).rightJustified(5, '0');
    while (number.size() > 1 && fx_LedWidth(number, height) > m_canvas.width - 2 * margin)
        number.remove(0, 1); // a tiny picture shows the last digits

    qint64 const ms = qint64{frame} * 1000 / kPicturesASecond;
    auto const two = [](qint64 value) { return QByteArray::number(value).rightJustified(2, '0'); };
    QByteArray const time = two(ms / 60000) + ':' + two(ms / 1000 % 60) + '.' +
                            QByteArray::number(ms % 1000).rightJustified(3, '0');
    int const timeHeight = std::max(5, height * 56 / 100);
    int const pad = margin / 2;
    bool const hasTime = fx_LedWidth(time, timeHeight) + 2 * (margin + pad) <= m_canvas.width &&
                         margin + height + timeHeight + 3 * pad + 1 < m_canvas.height;

    int const panelWidth = std::max(fx_LedWidth(number, height), hasTime ? fx_LedWidth(time, timeHeight) : 0);
    int const panelHeight = height + (hasTime ? timeHeight + pad + 1 : 0);
    int const left = std::max(margin - pad, 0);
    int const right = std::min(margin + panelWidth + pad, m_canvas.width);
    int const bottom = std::min(margin + panelHeight + pad, m_canvas.height);
    SxColour48 const dark = fx_Rgb(8, 11, 16);
    for (int y = std::max(margin - pad, 0); y < bottom; ++y) {
        quint16* pixel = m_canvas.pixel(left, y);
        for (int x = left; x < right; ++x, pixel += 3)
            fx_Blend(pixel, dark, 216);
    }
    fx_DrawLed(m_canvas, margin, margin, height, number, fx_Rgb(120, 255, 214));
    if (hasTime)
        fx_DrawLed(m_canvas, margin, margin + height + pad + 1, timeHeight, time, fx_Rgb(255, 190, 84));
}

SxCanvas const& CxTestScene::draw(int frame)
{
    std::copy(m_backdrop.samples.begin(), m_backdrop.samples.end(), m_canvas.samples.begin());
    int const turn = frame % kTableSize;
    turnDisc(m_wheel, m_wheelTable, turn * 14);  // a turn in ten seconds
    turnDisc(m_zones, m_zoneTable, turn * 3968); // inwards, a ring a second
    for (SxBall const& ball : m_balls)
        moveBall(ball, frame);
    drawCounter(frame);
    return m_canvas;
}

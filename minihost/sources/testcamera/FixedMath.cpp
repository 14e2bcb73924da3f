#include "FixedMath.h"

#include <algorithm>
#include <cstdlib>

static constexpr int kHalfTurn = 32768;

int fx_Sine(int angle)
{
    int const inTurn = angle & 0xFFFF;
    bool const isNegative = inTurn >= kHalfTurn;
    qint64 const x = inTurn % kHalfTurn;
    // Bhaskara's approximation: 16 p / (5 H^2 - 4 p) with p = x (H - x), H half a turn.
    qint64 const p = x * (kHalfTurn - x);
    qint64 const square = qint64{kHalfTurn} * kHalfTurn;
    int const sine = static_cast<int>(16 * p * 32767 / (5 * square - 4 * p));
    return isNegative ? -sine : sine;
}

int fx_Cosine(int angle) { return fx_Sine(angle + kHalfTurn / 2); }

int fx_AngleOf(int dx, int dy)
{
    qint64 const ax = std::abs(dx);
    qint64 const ay = std::abs(dy);
    qint64 const longer = std::max(ax, ay);
    if (longer == 0)
        return 0;
    // Within an eighth of a turn: atan r = r (1/8 + 0.0434 (1 - r)) turns, r in 32768ths.
    qint64 const r = std::min(ax, ay) * 32768 / longer;
    int const eighth = static_cast<int>(r * (8192 + 2847 * (32768 - r) / 32768) / 32768);
    int const quarter = ax >= ay ? eighth : 16384 - eighth;
    int const half = dx >= 0 ? quarter : 32768 - quarter;
    return (dy >= 0 ? half : 65536 - half) & 0xFFFF;
}

int fx_SquareRoot(quint64 value)
{
    quint64 root = 0;
    for (quint64 bit = quint64{1} << 31; bit != 0; bit >>= 1) {
        if ((root | bit) * (root | bit) <= value)
            root |= bit;
    }
    return static_cast<int>(root);
}

int fx_Bounce(int time, int length)
{
    if (length <= 0)
        return 0;
    int const phase = time % (2 * length);
    return phase <= length ? phase : 2 * length - phase;
}

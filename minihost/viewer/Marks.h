#pragma once

class QPainter;
class QPalette;
class QRectF;

/// The part of a recording that somebody marked: numbers of its first and last picture, -1 where no mark is.
struct SxMarks
{
    int in = -1;
    int out = -1;

    bool isAny() const { return in >= 0 || out >= 0; }
    int first() const { return in >= 0 ? in : 0; }
    int last(int count) const { return out >= 0 ? out : count - 1; }
};

/// Paints brackets and the part between them on a timeline.
///
/// \param part  from the in mark to the out mark, or to the end of the line where there is none.
void fx_PaintMarks(QPainter& painter, QRectF const& part, SxMarks const& marks, QPalette const& palette);

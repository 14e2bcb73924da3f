#include "UnitScan.h"

#include <QByteArray>
#include <QIODevice>
#include <algorithm>
#include <cstring>

static constexpr qint64 kPiece = 1 << 20;
static constexpr size_t kPrefix = 3; // 00 00 01

bool fx_BeginsWithStartCode(QIODevice& file)
{
    QByteArray const begin = file.peek(4);
    return begin.size() == 4 &&
           (begin.startsWith(QByteArray("\0\0\1", 3)) || begin == QByteArray("\0\0\0\1", 4));
}

bool fx_ForEachUnit(QIODevice& file, qint64 limit,
                    std::function<void(uchar const* unit, size_t size)> const& visit)
{
    QByteArray bytes; // what of the last piece is not done with, and the next
    for (qint64 left = limit;;) {
        QByteArray const piece = file.read(left < 0 ? kPiece : std::min(left, kPiece));
        if (piece.isEmpty() && !file.atEnd() && left != 0)
            return false;
        left = left < 0 ? left : left - piece.size();
        bytes += piece;
        bool const isLast = piece.isEmpty();
        auto const* const begin = reinterpret_cast<uchar const*>(bytes.constData());
        auto const size = static_cast<size_t>(bytes.size());
        size_t at = 0;
        while (at < size) {
            auto const* const found =
                static_cast<uchar const*>(memmem(begin + at, size - at, "\0\0\1", kPrefix));
            if (!found) {
                at = std::max(at, size - std::min(size, kPrefix - 1)); // which may begin one
                break;
            }
            auto const unit = static_cast<size_t>(found - begin) + kPrefix;
            if (!isLast && size - unit < kUnitBytes) {
                at = unit - kPrefix;
                break;
            }
            if (unit < size)
                visit(begin + unit, std::min(size - unit, kUnitBytes));
            at = unit;
        }
        if (isLast)
            return true;
        bytes.remove(0, static_cast<int>(at));
    }
}

#include "PictureRanges.h"

#include <QStringList>

QVector<SxPictureRange> fx_RangesOf(QVector<int> const& numbers)
{
    QVector<SxPictureRange> ranges;
    for (int const number : numbers) {
        if (!ranges.isEmpty() && ranges.last().last == number - 1)
            ranges.last().last = number;
        else
            ranges.append({number, number});
    }
    return ranges;
}

qint64 fx_CountOf(QVector<SxPictureRange> const& ranges)
{
    qint64 count = 0;
    for (SxPictureRange const& range : ranges)
        count += qint64{range.last} - range.first + 1;
    return count;
}

QString fx_RangesText(QVector<SxPictureRange> const& ranges, int most)
{
    QStringList texts;
    for (SxPictureRange const& range : ranges) {
        if (most > 0 && texts.size() == most) {
            texts += QStringLiteral("...");
            break;
        }
        texts += range.first == range.last ? QString::number(range.first)
                                           : QStringLiteral("%1-%2").arg(range.first).arg(range.last);
    }
    return texts.join(QStringLiteral(", "));
}

QString fx_ReadableRanges(QVector<int> const& numbers, int most)
{
    return fx_RangesText(fx_RangesOf(numbers), most);
}

std::optional<QVector<SxPictureRange>> fx_RangesFromText(QString const& text, int end)
{
    QVector<SxPictureRange> ranges;
    if (text.isEmpty())
        return ranges;
    for (QString const& piece : text.split(QStringLiteral(", "))) {
        bool isFirst = false;
        bool isLast = false;
        SxPictureRange const range{piece.section(QLatin1Char('-'), 0, 0).toInt(&isFirst),
                                   piece.section(QLatin1Char('-'), -1).toInt(&isLast)};
        int const least = ranges.isEmpty() ? 0 : ranges.last().last + 2;
        if (!isFirst || !isLast || range.first < least || range.last < range.first || range.last >= end ||
            piece.count(QLatin1Char('-')) > 1)
            return std::nullopt;
        ranges.append(range);
    }
    return ranges;
}

#pragma once

#include <QString>
#include <QVector>
#include <optional>

/// Pictures that follow each other, by their numbers; both ends are included.
struct SxPictureRange
{
    int first;
    int last;
};

QVector<SxPictureRange> fx_RangesOf(QVector<int> const& numbers); ///< of ascending numbers
qint64 fx_CountOf(QVector<SxPictureRange> const& ranges);         ///< pictures in all of them

/// "2-4, 7, 9-12", at most \p most ranges, then "..."; 0: all of them.
QString fx_RangesText(QVector<SxPictureRange> const& ranges, int most);
QString fx_ReadableRanges(QVector<int> const& numbers, int most); ///< the same of ascending numbers

/// Back from the whole text. Nothing when it is none, or the ranges are not in order, apart from each other
/// and below \p end.
std::optional<QVector<SxPictureRange>> fx_RangesFromText(QString const& text, int end);

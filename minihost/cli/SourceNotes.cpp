#include "SourceNotes.h"

#include <cmath>

#include "IxPictureSource.h"

static QString fx_OddSidesNote(QSize whole, QSize size)
{
    QStringList lost;
    if (size.width() != whole.width())
        lost += QStringLiteral("column");
    if (size.height() != whole.height())
        lost += QStringLiteral("row");
    if (lost.isEmpty() || whole.isEmpty())
        return QString();
    return QStringLiteral(
               "A recording's sides are even: without their last %1 the pictures of %2 x %3 become %4 x %5 "
               "(--scale %4x%5 would resample them).")
        .arg(lost.join(QStringLiteral(" and ")))
        .arg(whole.width())
        .arg(whole.height())
        .arg(size.width())
        .arg(size.height());
}

static QString fx_PixelNote(SxPixelShape const& shape, QSize size)
{
    if (shape.isSquare())
        return QString();
    // Nothing is made smaller: what is too narrow becomes wider, what is too low higher.
    bool const isWide = shape.width > shape.height;
    double const factor = static_cast<double>(shape.width) / shape.height;
    int const width = isWide ? 2 * static_cast<int>(std::lround(size.width() * factor / 2)) : size.width();
    int const height = isWide ? size.height() : 2 * static_cast<int>(std::lround(size.height() / factor / 2));
    return QStringLiteral(
               "The pixels are to be shown at %1:%2, width to height, and a recording's are square: --scale "
               "%3x%4 keeps the shape of what is seen.")
        .arg(shape.width)
        .arg(shape.height)
        .arg(width)
        .arg(height);
}

static QString fx_RotationNote(int rotation, RateKeeper keeper)
{
    if (rotation == 0 || keeper == RateKeeper::Container)
        return QString();
    return QStringLiteral("The pictures are to be turned clockwise by %1 degrees, which a recording cannot "
                          "say%2: --rotate "
                          "auto turns them.")
        .arg(rotation)
        .arg(keeper == RateKeeper::Sidecar ? QStringLiteral(" but in the note beside it") : QString());
}

static QString fx_RateNote(SxPictureRate const& rate, RateKeeper keeper)
{
    if (keeper != RateKeeper::Nobody || rate.isAsAssumed())
        return QString();
    return QStringLiteral("The source has %1 pictures a second, and nothing will say so: players show a "
                          "recording's at %2 "
                          "or 25.")
        .arg(rate.text())
        .arg(kPicturesASecond);
}

QStringList fx_SourceNotes(IxPictureSource const& source, QSize size, RateKeeper keeper)
{
    QStringList notes{fx_OddSidesNote(source.wholeSize(), size), fx_PixelNote(source.pixelShape(), size),
                      fx_RotationNote(source.rotation(), keeper), fx_RateNote(source.rate(), keeper)};
    notes.removeAll(QString());
    return notes;
}

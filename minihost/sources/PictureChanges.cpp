#include "PictureChanges.h"

QByteArray fx_TurnFilter(int rotation)
{
    switch (rotation) {
    case 90:
        return "transpose=clock";
    case 180:
        return "hflip,vflip";
    case 270:
        return "transpose=cclock";
    default:
        return QByteArray();
    }
}

static QByteArray fx_Number(int value) { return QByteArray::number(value); }

static QByteArray fx_CropFilter(QRect const& part)
{
    return "crop=" + fx_Number(part.width()) + ':' + fx_Number(part.height()) + ':' + fx_Number(part.x()) +
           ':' + fx_Number(part.y());
}

static QString fx_SizeText(QSize size)
{
    return QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
}

static void fx_Append(SxChangePlan& plan, QByteArray const& filter, QSize size)
{
    if (!plan.filters.isEmpty() && !filter.isEmpty())
        plan.filters += ',';
    plan.filters += filter;
    plan.size = size;
}

SxChangePlan fx_PlanChanges(SxPictureChanges const& changes, QSize stored, int ownRotation)
{
    SxChangePlan plan;
    int const rotation = changes.turnsItself ? (ownRotation % 360 + 360) % 360 : changes.rotation;
    plan.isTurned = rotation % 180 != 0;
    fx_Append(plan, fx_TurnFilter(rotation), plan.isTurned ? stored.transposed() : stored);

    if (!changes.crop.isNull() && changes.crop != QRect(QPoint(0, 0), plan.size)) {
        if (!QRect(QPoint(0, 0), plan.size).contains(changes.crop)) {
            plan.obstacle =
                QStringLiteral("is %1%2; %3 from column %4 and row %5 on are not within it")
                    .arg(fx_SizeText(plan.size), rotation == 0 ? QString() : QStringLiteral(" when turned"),
                         fx_SizeText(changes.crop.size()))
                    .arg(changes.crop.x())
                    .arg(changes.crop.y());
            plan.size = QSize();
            return plan;
        }
        fx_Append(plan, fx_CropFilter(changes.crop), changes.crop.size());
    }
    if (!changes.scale.isEmpty() && changes.scale != plan.size)
        // Without these flags colours are taken from every second column, and rounded to fewer bits.
        fx_Append(plan,
                  "scale=" + fx_Number(changes.scale.width()) + ':' + fx_Number(changes.scale.height()) +
                      ":flags=bilinear+accurate_rnd+full_chroma_int+full_chroma_inp",
                  changes.scale);
    plan.whole = plan.size;
    QSize const even(plan.size.width() & ~1, plan.size.height() & ~1);
    // What is smaller is refused as it is.
    bool const isLargeEnough = even.width() >= kSmallestSide && even.height() >= kSmallestSide;
    if (changes.isEven && even != plan.size && isLargeEnough)
        fx_Append(plan, fx_CropFilter(QRect(QPoint(0, 0), even)), even);
    return plan;
}

#include "SourceNotes.h"

#include <QStringList>

QString fx_OddSidesNote(SxChangePlan const& plan)
{
    QStringList lost;
    if (plan.size.width() != plan.whole.width())
        lost += QStringLiteral("column");
    if (plan.size.height() != plan.whole.height())
        lost += QStringLiteral("row");
    if (lost.isEmpty())
        return QString();
    return QStringLiteral(
               "A recording's sides are even: without their last %1 the pictures of %2 x %3 become %4 x %5 "
               "(--scale %4x%5 would resample them).")
        .arg(lost.join(QStringLiteral(" and ")))
        .arg(plan.whole.width())
        .arg(plan.whole.height())
        .arg(plan.size.width())
        .arg(plan.size.height());
}

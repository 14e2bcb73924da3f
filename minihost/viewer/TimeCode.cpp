#include "TimeCode.h"

#include <cmath>

QString fx_TimeCode(int number, double fps)
{
    qint64 const time = fps > 0.0 ? static_cast<qint64>(std::floor(number * 1000.0 / fps)) : 0;
    return QStringLiteral("%1:%2:%3.%4")
        .arg(time / 3600000)
        .arg(time / 60000 % 60, 2, 10, QLatin1Char('0'))
        .arg(time / 1000 % 60, 2, 10, QLatin1Char('0'))
        .arg(time % 1000, 3, 10, QLatin1Char('0'));
}

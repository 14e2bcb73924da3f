#include "Readable.h"

#include <QStringList>
#include <cmath>

/// Three significant digits with the largest prefix that leaves one before the point.
static QString fx_Scaled(double value, QString const& unit)
{
    static char const* const kPrefixes[] = {"", "k", "M", "G", "T"};
    int prefix = 0;
    while (value >= 999.5 && prefix < 4) {
        value /= 1000;
        ++prefix;
    }
    int const decimals = prefix == 0 ? 0 : value < 9.995 ? 2 : value < 99.95 ? 1 : 0;
    return QStringLiteral("%1 %2%3").arg(value, 0, 'f', decimals).arg(QLatin1String(kPrefixes[prefix]), unit);
}

QString fx_ReadableSize(qint64 bytes)
{
    return bytes < 1000 ? QStringLiteral("%1 bytes").arg(bytes)
                        : fx_Scaled(static_cast<double>(bytes), QStringLiteral("B"));
}

QString fx_ReadableBitRate(double bits) { return fx_Scaled(bits, QStringLiteral("bit/s")); }

QString fx_ReadableTime(double seconds)
{
    qint64 const whole = std::llround(seconds);
    QString const tail = QStringLiteral("%1").arg(whole % 60, 2, 10, QLatin1Char('0'));
    if (whole < 3600)
        return QStringLiteral("%1:%2").arg(whole / 60).arg(tail);
    return QStringLiteral("%1:%2:%3")
        .arg(whole / 3600)
        .arg(whole / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(tail);
}

QString fx_Count(qint64 count, char const* of)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(QLatin1String(of), QLatin1String(count == 1 ? "" : "s"));
}

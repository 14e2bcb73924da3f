#include "TimeCode.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>

static constexpr int kMostPictures = 1000000000;

/// When a picture begins, cut to milliseconds.
static qint64 fx_Milliseconds(int number, double fps)
{
    return fps > 0.0 ? static_cast<qint64>(std::floor(number * 1000.0 / fps)) : 0;
}

QString fx_TimeCode(int number, double fps)
{
    qint64 const time = fx_Milliseconds(number, fps);
    return QStringLiteral("%1:%2:%3.%4")
        .arg(time / 3600000)
        .arg(time / 60000 % 60, 2, 10, QLatin1Char('0'))
        .arg(time / 1000 % 60, 2, 10, QLatin1Char('0'))
        .arg(time % 1000, 3, 10, QLatin1Char('0'));
}

std::optional<qint64> fx_TimeFromText(QString const& text)
{
    static QRegularExpression const kTime(
        QStringLiteral(R"(^(?:(?:(\d{1,4}):)?(\d{1,4}):)?(\d{1,7})(?:[.,](\d{1,9}))?\s*(s?)$)"));
    QRegularExpressionMatch const match = kTime.match(text.trimmed());
    if (!match.hasMatch())
        return {};
    bool const hasMinutes = !match.captured(2).isEmpty();
    bool const hasHours = !match.captured(1).isEmpty();
    qint64 const minutes = match.captured(2).toLongLong();
    qint64 const seconds = match.captured(3).toLongLong();
    if (!hasMinutes && match.captured(4).isEmpty() && match.captured(5).isEmpty())
        return {};
    if ((hasMinutes && seconds > 59) || (hasHours && minutes > 59))
        return {};
    qint64 const milliseconds = match.captured(4).leftJustified(3, QLatin1Char('0')).left(3).toLongLong();
    return (match.captured(1).toLongLong() * 3600 + minutes * 60 + seconds) * 1000 + milliseconds;
}

int fx_PictureAt(qint64 milliseconds, double fps)
{
    double const estimate = static_cast<double>(milliseconds) * fps / 1000.0;
    if (!(estimate > 0.0 && estimate < kMostPictures))
        return estimate > 0.0 ? kMostPictures : 0;
    // Times are cut, and dividing loses a little: the estimate may be one picture off.
    int number = static_cast<int>(estimate);
    while (fx_Milliseconds(number + 1, fps) <= milliseconds)
        ++number;
    return number;
}

#include "NumberedFileName.h"

#include <QRegularExpression>

static constexpr int kMostDigits = 20;

std::optional<QString> fx_FileNameOf(QString const& pattern, int frame)
{
    static QRegularExpression const kPlace(QStringLiteral("\\G%(?:(%)|(0?)(\\d{0,2})d)"));
    QString name;
    int done = 0;
    for (auto at = pattern.indexOf(QLatin1Char('%')); at >= 0; at = pattern.indexOf(QLatin1Char('%'), done)) {
        QRegularExpressionMatch const match = kPlace.match(pattern, at);
        int const width = match.captured(3).toInt();
        if (!match.hasMatch() || width > kMostDigits)
            return std::nullopt;
        name += pattern.mid(done, at - done);
        QChar const fill = match.captured(2).isEmpty() ? QLatin1Char(' ') : QLatin1Char('0');
        name += match.captured(1).isEmpty() ? QStringLiteral("%1").arg(frame, width, 10, fill)
                                            : QStringLiteral("%");
        done = static_cast<int>(match.capturedEnd());
    }
    return name + pattern.mid(done);
}

bool fx_HasPlaceForNumber(QString const& pattern)
{
    return fx_FileNameOf(pattern, 0) != fx_FileNameOf(pattern, 1);
}

#include "AmountArguments.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>

#include "SourcePart.h"

std::optional<SxAmount> fx_AmountFromText(QString const& text)
{
    static QRegularExpression const kSize(QStringLiteral("^(\\d{1,9}(?:\\.\\d{1,9})?)([kMGT])B$"));
    SxAmount amount;
    QRegularExpressionMatch const size = kSize.match(text);
    if (size.hasMatch()) {
        auto const prefix = QStringLiteral("kMGT").indexOf(size.captured(2)) + 1;
        double const bytes = size.captured(1).toDouble() * std::pow(1000, static_cast<double>(prefix));
        amount = {std::llround(std::min(bytes, 1e18)), true};
    } else if (std::optional<SxPlayLength> const time = fx_PlayLength(text)) {
        amount.value = time->isPictures ? 0 : time->value;
    }
    return amount.value > 0 ? std::optional<SxAmount>(amount) : std::nullopt;
}

QString fx_TakeBuffer(QCommandLineParser const& parser, SxLiveBuffer& buffer)
{
    QString const option = QStringLiteral("buffer");
    if (!parser.isSet(option))
        return QString();
    for (QString const& text : parser.value(option).split(QLatin1Char(','))) {
        std::optional<SxAmount> const amount = fx_AmountFromText(text);
        if (!amount)
            return QStringLiteral(
                       "--buffer takes a time such as 5s, a size such as 2GB, or both as 5s,2GB, not '%1'.")
                .arg(parser.value(option));
        (amount->isBytes ? buffer.bytes : buffer.microseconds) = amount->value;
    }
    return QString();
}

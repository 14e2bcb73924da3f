#include "AmountArguments.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>

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

QVector<SxOption> fx_EndOptions()
{
    return {
        {"for", 0, "T", QStringLiteral("end after that much of the source's time: 1h, 10m, 90s")},
        {"split", 0, "T|SIZE",
         QStringLiteral("files OUTPUT_001.h264 and so on, a new one after each 10m of the\n"
                        "source's time or 4GB, with not a picture lost in between")},
    };
}

QString fx_TakeEndOptions(QCommandLineParser const& parser, SxSourcePart& part, SxSplit& split)
{
    QString const length = parser.value(QStringLiteral("for"));
    if (parser.isSet(QStringLiteral("for"))) {
        std::optional<SxAmount> const time = fx_AmountFromText(length);
        if (part.duration)
            return QStringLiteral("--for and --duration say the same: one of them is enough.");
        if (!time || time->isBytes)
            return QStringLiteral("--for takes a time such as 1h, 10m or 90s, not '%1'.").arg(length);
        part.duration = SxPlayLength{time->value, false};
    }
    if (parser.isSet(QStringLiteral("split"))) {
        QString const text = parser.value(QStringLiteral("split"));
        std::optional<SxAmount> const amount = fx_AmountFromText(text);
        if (!amount)
            return QStringLiteral("--split takes a time such as 10m or a size such as 4GB, not '%1'.")
                .arg(text);
        (amount->isBytes ? split.bytes : split.microseconds) = amount->value;
    }
    return QString();
}

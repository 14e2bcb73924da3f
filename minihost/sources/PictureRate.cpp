#include "PictureRate.h"

#include <QRegularExpression>
#include <cmath>

static constexpr double kLeast = 1.0 / 900; // a picture in a quarter of an hour
static constexpr double kMost = 100000;
static constexpr int kDecimals = 1000;

QString SxPictureRate::text() const
{
    return QString::number(std::round(perSecond() * kDecimals) / kDecimals, 'g', 9);
}

QString SxPictureRate::exact() const
{
    return denominator == 1 ? QString::number(numerator)
                            : QStringLiteral("%1/%2").arg(numerator).arg(denominator);
}

QString SxPictureRate::described() const
{
    if (!isKnown())
        return QStringLiteral("%1 pictures a second (assumed)").arg(kPicturesASecond);
    QString const rate = QStringLiteral("%1 pictures a second").arg(text());
    return isAverage ? rate + QStringLiteral(" (average)") : rate;
}

bool fx_IsSane(SxPictureRate const& rate)
{
    return rate.numerator > 0 && rate.denominator > 0 && rate.perSecond() >= kLeast &&
           rate.perSecond() <= kMost;
}

std::optional<SxPictureRate> fx_RateFromText(QString const& text)
{
    static QRegularExpression const kForm(
        QStringLiteral("^(?:(\\d{1,9})/(\\d{1,9})|(\\d{1,6})(?:\\.(\\d{1,3}))?)$"));
    QRegularExpressionMatch const match = kForm.match(text);
    SxPictureRate rate;
    if (!match.captured(1).isEmpty()) {
        rate.numerator = match.captured(1).toInt();
        rate.denominator = match.captured(2).toInt();
    } else if (match.captured(4).isEmpty()) {
        rate.numerator = match.captured(3).toInt();
    } else {
        rate.denominator = kDecimals;
        rate.numerator = match.captured(3).toInt() * kDecimals +
                         match.captured(4).leftJustified(3, QLatin1Char('0')).toInt();
    }
    return fx_IsSane(rate) ? std::optional<SxPictureRate>(rate) : std::nullopt;
}

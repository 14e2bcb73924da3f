#include "SourcePart.h"

#include <QMap>
#include <QRegularExpression>
#include <cmath>
#include <utility>

static constexpr double kMicroseconds = 1e6; // in a second

std::optional<SxPlayLength> fx_PlayLength(QString const& text)
{
    static QRegularExpression const kPictures(QStringLiteral("^(\\d{1,9})f$"));
    static QRegularExpression const kUnit(QStringLiteral("^(\\d{1,9}(?:\\.\\d{1,9})?)(ms|s|m|h)$"));
    static QRegularExpression const kClock(
        QStringLiteral("^(?:(\\d{1,5}):(?=\\d\\d:))?(\\d{1,5}):([0-5]\\d(?:\\.\\d{1,9})?)$"));

    QRegularExpressionMatch match = kPictures.match(text);
    if (match.hasMatch())
        return SxPlayLength{match.captured(1).toLongLong(), true};
    double seconds = 0;
    match = kUnit.match(text);
    if (match.hasMatch()) {
        static QMap<QString, double> const kUnits{{QStringLiteral("ms"), 0.001},
                                                  {QStringLiteral("s"), 1},
                                                  {QStringLiteral("m"), 60},
                                                  {QStringLiteral("h"), 3600}};
        seconds = match.captured(1).toDouble() * kUnits.value(match.captured(2));
    } else {
        match = kClock.match(text);
        bool const hasHours = !match.captured(1).isEmpty();
        if (!match.hasMatch() || (hasHours && match.captured(2).toInt() > 59))
            return std::nullopt;
        seconds =
            (match.captured(1).toInt() * 60 + match.captured(2).toInt()) * 60 + match.captured(3).toDouble();
    }
    return SxPlayLength{std::llround(seconds * kMicroseconds), false};
}

CxPartOfSource::CxPartOfSource(std::unique_ptr<IxPictureSource> source, SxSourcePart const& part,
                               std::atomic<bool> const* stop)
    : m_source(std::move(source))
    , m_part(part)
    , m_stop(stop)
{}

/// The first picture of the part; drops those before it.
IxPictureSource::Result CxPartOfSource::toStart(SxPicBuf& picture)
{
    SxPlayLength const start = m_part.start.value_or(SxPlayLength{0, true});
    quint64 last = 0;
    for (;; ++m_dropped) {
        Result const result = m_source->next(picture);
        if (m_stop && m_stop->load() && result != Result::Error)
            return Result::End;
        if (result == Result::End && m_dropped > 0) {
            m_error =
                QStringLiteral("The last of the pictures is number %1, at %2 s: the start lies behind it.")
                    .arg(m_dropped - 1)
                    .arg(static_cast<double>(last) / kMicroseconds, 0, 'f', 3);
            return Result::Error;
        }
        if (result != Result::Picture)
            return result;
        last = picture.timestamp;
        if (start.isPictures ? m_dropped >= start.value : last >= static_cast<quint64>(start.value))
            break;
    }
    m_first = picture.timestamp;
    m_begin = start.isPictures ? m_first : static_cast<quint64>(start.value);
    return Result::Picture;
}

bool CxPartOfSource::isAtEnd(SxPicBuf const& picture) const
{
    return m_part.duration && !m_part.duration->isPictures &&
           picture.timestamp >= m_begin + static_cast<quint64>(m_part.duration->value);
}

IxPictureSource::Result CxPartOfSource::next(SxPicBuf& picture)
{
    bool const hasAll =
        m_part.duration && m_part.duration->isPictures && m_delivered >= m_part.duration->value;
    if (m_hasEnded || hasAll)
        return Result::End;
    Result const result = m_delivered == 0 ? toStart(picture) : m_source->next(picture);
    if (result != Result::Picture)
        return result;
    m_hasEnded = isAtEnd(picture);
    if (m_hasEnded)
        return Result::End;
    picture.timestamp -= m_first;
    ++m_delivered;
    return Result::Picture;
}

/// Pictures that come before that time, when they come steadily.
double CxPartOfSource::picturesUntil(qint64 microseconds) const
{
    SxPictureRate const rate = m_source->rate();
    double const perSecond = rate.isKnown() ? rate.perSecond() : kPicturesASecond;
    // Times are rounded to microseconds: what is a hair behind a picture is at it.
    return std::ceil(static_cast<double>(microseconds) * perSecond / kMicroseconds - 1e-3);
}

int CxPartOfSource::expectedPictures() const
{
    SxPlayLength const start = m_part.start.value_or(SxPlayLength{0, true});
    bool const isCounted =
        (start.isPictures || m_delivered > 0) && (!m_part.duration || m_part.duration->isPictures);
    if (m_source->rate().isAverage && !isCounted)
        return -1; // at no steady rate a time holds nobody knows how many
    double expected = m_source->expectedPictures();
    double const before = m_delivered > 0    ? static_cast<double>(m_dropped)
                          : start.isPictures ? static_cast<double>(start.value)
                                             : picturesUntil(start.value);
    if (expected >= 0)
        expected = std::max(expected - before, 0.0);
    if (m_part.duration) {
        double const wanted = m_part.duration->isPictures
                                  ? static_cast<double>(m_part.duration->value)
                                  : picturesUntil(static_cast<qint64>(m_begin) + m_part.duration->value) -
                                        picturesUntil(static_cast<qint64>(m_begin));
        expected = expected < 0 ? wanted : std::min(expected, wanted);
    }
    return static_cast<int>(std::min(expected, 2e9));
}

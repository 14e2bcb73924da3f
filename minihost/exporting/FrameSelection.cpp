#include "FrameSelection.h"

#include <QRegularExpression>
#include <QStringList>

static QString fx_NoSuchFrame(qint64 frame, int frameCount)
{
    if (frameCount == 1)
        return QStringLiteral("frame %1: the recording has one frame, number 0.").arg(frame);
    return QStringLiteral("frame %1: the recording has %2 frames, 0 to %3.")
        .arg(frame)
        .arg(frameCount)
        .arg(frameCount - 1);
}

std::optional<CxFrameSelection::SxItem> CxFrameSelection::parseItem(QString const& text, QString& error)
{
    SxItem item;
    if (text == QLatin1String("key") || text == QLatin1String("all")) {
        item.kind = text == QLatin1String("key") ? Kind::Key : Kind::All;
        return item;
    }
    // Twelve digits are more than any recording has frames and less than a number can hold.
    static QRegularExpression const kRange(
        QStringLiteral("^([0-9]{1,12})(?:(-)([0-9]{1,12})?(?::([0-9]{1,12}))?)?$"));
    QRegularExpressionMatch const match = kRange.match(text);
    if (!match.hasMatch()) {
        error = QStringLiteral("--frames takes numbers (0), ranges (10-20, 0-300:30), key and all, separated "
                               "by commas, not '%1'.")
                    .arg(text);
        return std::nullopt;
    }
    item.first = match.captured(1).toLongLong();
    item.last = item.first;
    if (!match.captured(2).isEmpty())
        item.last = match.captured(3).isEmpty() ? kToTheEnd : match.captured(3).toLongLong();
    if (!match.captured(4).isEmpty())
        item.step = match.captured(4).toLongLong();
    if (item.step == 0) {
        error = QStringLiteral("--frames takes a step of 1 or more, not '%1'.").arg(text);
        return std::nullopt;
    }
    return item;
}

std::optional<CxFrameSelection> CxFrameSelection::parse(QString const& text, QString& error)
{
    CxFrameSelection spec;
    for (QString const& part : text.split(QLatin1Char(','))) {
        std::optional<SxItem> const item = parseItem(part.trimmed(), error);
        if (!item)
            return std::nullopt;
        spec.m_items.append(*item);
    }
    return spec;
}

std::optional<QVector<int>> CxFrameSelection::frames(int frameCount, QList<int> const& keyFrames,
                                                     QString& error) const
{
    QVector<int> numbers;
    for (SxItem const& item : m_items) {
        if (item.kind == Kind::Key) {
            numbers += keyFrames.toVector();
            continue;
        }
        bool const goesToTheEnd = item.kind == Kind::All || item.last == kToTheEnd;
        qint64 const last = goesToTheEnd ? qMax<qint64>(item.first, frameCount - 1) : item.last;
        qint64 const step = last < item.first ? -item.step : item.step;
        // Ends at the first frame that is not there, so no range is too long to walk.
        for (qint64 frame = item.first; step > 0 ? frame <= last : frame >= last; frame += step) {
            if (frame >= frameCount) {
                error = fx_NoSuchFrame(frame, frameCount);
                return std::nullopt;
            }
            numbers.append(static_cast<int>(frame));
        }
    }
    return numbers;
}

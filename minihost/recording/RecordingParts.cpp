#include "RecordingParts.h"

#include <QFileInfo>
#include <algorithm>
#include <utility>

QString fx_NumberedRecording(QString const& fileName, int number)
{
    auto const suffix = QFileInfo(fileName).suffix().size() + 1;
    return fileName.left(fileName.size() - suffix) +
           QStringLiteral("_%1").arg(number, 3, 10, QLatin1Char('0')) + fileName.right(suffix);
}

CxSourceInParts::CxSourceInParts(IxPictureSource& source, SxSplit const& split)
    : m_source(source)
    , m_split(split)
{}

void CxSourceInParts::beginPart()
{
    m_inPart = 0;
    m_isFull = false;
    m_meter = CxRateMeter();
    m_meter.beginInput(SxPictureRate(), true);
}

void CxSourceInParts::noteBytes(qint64 bytes)
{
    m_isFull = m_isFull || (m_split.bytes > 0 && bytes >= m_split.bytes);
}

/// Files end where the times that the split names have passed since the first picture, so that they do not
/// drift.
bool CxSourceInParts::endsPart(SxPicBuf const& picture)
{
    auto const length = static_cast<quint64>(m_split.microseconds);
    if (m_isFirst)
        m_nextEnd = picture.timestamp + length;
    m_isFirst = false;
    bool const isBehind = length > 0 && picture.timestamp >= m_nextEnd;
    if (isBehind) // over a gap, by several
        m_nextEnd += ((picture.timestamp - m_nextEnd) / length + 1) * length;
    return m_inPart > 0 && (isBehind || m_isFull);
}

IxPictureSource::Result CxSourceInParts::next(SxPicBuf& picture)
{
    m_isFromKept = m_hasKept;
    m_hasKept = false;
    if (m_isFromKept) {
        std::swap(picture, m_kept.get());
    } else {
        Result const result = m_source.next(picture);
        if (result != Result::Picture)
            return result;
        if (endsPart(picture)) {
            std::swap(picture, m_kept.get());
            m_hasKept = true;
            return Result::End;
        }
    }
    if (m_inPart++ == 0)
        m_begin = picture.timestamp;
    picture.timestamp -= m_begin;
    m_meter.add(picture.timestamp);
    return Result::Picture;
}

SxPictureRate CxSourceInParts::rate() const
{
    SxPictureRate const whole = m_source.rate();
    SxPictureRate const own =
        whole.isAverage ? m_meter.rate() : SxPictureRate(); // gaps elsewhere are no part of it
    return own.isKnown() ? own : whole;
}

SxMissingPictures CxSourceInParts::missing() const
{
    return m_isFromKept ? SxMissingPictures() : m_source.missing();
}

QVector<SxRecordSummary>
fx_RecordInParts(IxPictureSource& source, SxRecordRequest const& request, SxSplit const& split,
                 std::function<SxRecordSummary(CxSourceInParts&, SxRecordRequest const&)> const& record)
{
    QVector<SxRecordSummary> parts;
    CxSourceInParts inParts(source, split);
    SxRecordRequest next = request;
    for (;;) {
        next.outputFile = fx_NumberedRecording(request.outputFile, static_cast<int>(parts.size()) + 1);
        inParts.beginPart();
        SxRecordSummary const part = record(inParts, next);
        bool const isStopOnly = part.given == 0 && part.error.isEmpty() && !parts.isEmpty();
        if (isStopOnly) { // it came between two files
            parts.last().wasStopped = part.wasStopped;
            parts.last().isCutShort = part.isCutShort;
            return parts;
        }
        parts.append(part);
        next.maxPictures = std::max(next.maxPictures - part.given, 0);
        bool const hasAll = request.maxPictures > 0 && next.maxPictures == 0;
        if (!part.error.isEmpty() || hasAll || !inParts.hasMore())
            return parts;
    }
}

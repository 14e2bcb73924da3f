#pragma once

#include <QString>
#include <atomic>
#include <memory>
#include <optional>

#include "IxPictureSource.h"

/// How much of a source: a time that it plays, or a number of pictures.
struct SxPlayLength
{
    qint64 value = 0; ///< microseconds, or pictures
    bool isPictures = false;
};

/// "1:02.5", "1:00:00", "3s", "500ms", "10m", "1.5h" or "100f", pictures; nothing when it is none of these. A
/// bare number is none: it could mean either.
std::optional<SxPlayLength> fx_PlayLength(QString const& text);

/// The part of a source that is wanted.
struct SxSourcePart
{
    std::optional<SxPlayLength> start;    ///< it begins with the first picture at or behind this
    std::optional<SxPlayLength> duration; ///< and ends before the first picture that much later
};

/// A part of another source, its times beginning at 0. What comes before is decoded and dropped: whatever the
/// file's index says, no picture is missed or taken twice.
class CxPartOfSource : public IxPictureSource
{
public:
    /// \param stop  once set, next() returns End; may be null.
    CxPartOfSource(std::unique_ptr<IxPictureSource> source, SxSourcePart const& part,
                   std::atomic<bool> const* stop);

    Result next(SxPicBuf& picture) override;
    QString errorText() const override { return m_error.isEmpty() ? m_source->errorText() : m_error; }
    int expectedPictures() const override;
    bool hasEnd() const override { return m_part.duration.has_value() || m_source->hasEnd(); }
    bool isLive() const override { return m_source->isLive(); }
    SxMissingPictures missing() const override { return m_source->missing(); }
    SxPictureRate rate() const override { return m_source->rate(); }
    int rotation() const override { return m_source->rotation(); }
    SxPixelShape pixelShape() const override { return m_source->pixelShape(); }
    bool knowsSignificantBits() const override { return m_source->knowsSignificantBits(); }
    QStringList takeWarnings() override { return m_source->takeWarnings(); }
    bool isDamaged() const override { return m_source->isDamaged(); }

private:
    Result toStart(SxPicBuf& picture);
    bool isAtEnd(SxPicBuf const& picture) const;
    double picturesUntil(qint64 microseconds) const;

    std::unique_ptr<IxPictureSource> m_source;
    SxSourcePart m_part;
    std::atomic<bool> const* m_stop;
    qint64 m_dropped = 0;   ///< pictures before the start
    qint64 m_delivered = 0; ///< pictures
    quint64 m_begin = 0;    ///< microseconds from which the duration counts
    quint64 m_first = 0;    ///< microseconds of the first picture delivered
    bool m_hasEnded = false;
    QString m_error;
};

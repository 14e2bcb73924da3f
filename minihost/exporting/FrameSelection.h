#pragma once

#include <QList>
#include <QString>
#include <QVector>
#include <optional>

/// Which frames a user asks for, in the order asked: numbers and ranges separated by commas.
///
///     4711      one frame; frames count from 0
///     10-20     both ends included; 20-10 goes backwards, 10- to the last frame
///     0-300:30  every 30th of a range, its first included
///     key       the key frames
///     all       every frame
///
/// A frame asked for twice comes twice.
class CxFrameSelection
{
public:
    /// Reads \p text without knowing the recording. Nothing, with \p error one sentence, when it is no
    /// such list.
    static std::optional<CxFrameSelection> parse(QString const& text, QString& error);

    /// The frame numbers for a recording of \p frameCount frames with these key frames. Nothing, with
    /// \p error one sentence, when a frame asked for is not there.
    std::optional<QVector<int>> frames(int frameCount, QList<int> const& keyFrames, QString& error) const;

private:
    enum class Kind { Range, Key, All };
    struct SxItem
    {
        Kind kind = Kind::Range;
        qint64 first = 0;
        qint64 last = 0; ///< kToTheEnd: the last frame
        qint64 step = 1;
    };
    static constexpr qint64 kToTheEnd = -1;

    static std::optional<SxItem> parseItem(QString const& text, QString& error);

    QVector<SxItem> m_items;
};

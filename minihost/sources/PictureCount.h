#pragma once

#include <QString>
#include <QVector>

#include "FFmpegHandles.h"

/// Counts what is read from one input against what its file says it holds: a file that was cut off mostly
/// just ends. What a file does not say is not guessed.
class CxPictureCount
{
public:
    /// Right after opening, before more is read: what is indexed then, the file itself indexes.
    void readIndex(AVFormatContext const& format);

    void begin(AVFormatContext const& format, int stream); ///< from here on this stream's packets are read
    void add(AVPacket const& packet);                      ///< one of them

    /// At the input's end: what of it is missing, as the end of a sentence; empty when nothing is known to.
    QString missing() const;

private:
    void expectDuration(AVFormatContext const& format, AVStream const& stream);
    bool isTimeShort() const;

    QVector<int> m_indexed;                 ///< entries of each stream's index
    AVIOContext* m_wholePictures = nullptr; ///< where pictures of one size stand without anything behind them
    double m_unit = 0;                      ///< seconds that a unit of time is
    int m_expected = 0;                     ///< packets; 0: not known
    qint64 m_places = 0;                    ///< for pictures, also those left empty; 0: not known
    double m_duration = 0;                  ///< seconds; 0: not known

    int m_packets = 0;
    qint64 m_firstTime = AV_NOPTS_VALUE;
    qint64 m_lastTime = AV_NOPTS_VALUE;
    qint64 m_end = 0;         ///< time behind the last picture
    qint64 m_largestStep = 0; ///< time between pictures
    qint64 m_bytesEnd = 0;    ///< of the file, behind the last packet
};

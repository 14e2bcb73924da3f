#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>
#include <atomic>

#include "FFmpegHandles.h"
#include "OutputFile.h"
#include "StreamDescription.h"

/// The containers that recordings are handed on in.
enum class ContainerKind { Mp4, Mov, Matroska };

/// The one that a file name's end stands for, as "out.mp4"; nothing for others.
std::optional<ContainerKind> fx_ContainerKindOf(QString const& fileName);

/// Why nothing can be remuxed to what stands under a name, one sentence; empty when it can.
QString fx_ObstacleToIndex(QString const& fileName);

/// What a container says of its one track.
struct SxTrack
{
    ContainerKind kind = ContainerKind::Mp4;
    QSize size;                   ///< of the pictures, in pixels
    QByteArray parameterSets;     ///< with start codes
    bool hasSetsInStream = false; ///< and further ones come with the pictures
    SxStreamDescription description;
};

/// Writes coded pictures into a container, one at a time, each shown as long as the others. The file appears
/// when it is whole: with its index in front (MP4, MOV) or cues behind (Matroska).
///
/// Every operation returns false with \p error one sentence when it fails, but an empty one when \p stop was
/// set, which also ends the work on the index.
class CxContainerWriter
{
public:
    CxContainerWriter(QString const& fileName, std::atomic<bool> const* stop);
    ~CxContainerWriter();
    CxContainerWriter(CxContainerWriter const&) = delete;
    CxContainerWriter& operator=(CxContainerWriter const&) = delete;

    bool begin(SxTrack const& track, QString& error);
    bool add(QByteArray const& picture, bool isKey, QString& error); ///< with start codes
    bool finish(QString& error);

    /// After finish(): false when this FFmpeg's container of that kind has lost the rotation.
    bool hasRotation() const { return m_hasRotation; }

private:
    bool makeStream(SxTrack const& track);
    bool isWritten(int result, QString& error) const;
    int writtenRotation() const;

    QString m_fileName;
    std::atomic<bool> const* m_stop; ///< may be null
    CxOutputFile m_file;
    QByteArray m_name; ///< of the file, for FFmpeg
    AVFormatContext* m_format = nullptr;
    AVRational m_pictureTime = {1, 30}; ///< seconds that a picture is shown
    int m_rotation = 0;                 ///< degrees clockwise
    bool m_hasRotation = true;
    qint64 m_pictures = 0;
};

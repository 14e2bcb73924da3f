#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <memory>
#include <vector>

#include "CxImageData.h"
#include "IxImageDataLoader.h"
#include "IxVideoAccessor.h"
#include "PluginHost.h"
#include "Sidecar.h"

/// Where a coded frame lies in its file.
struct SxCodedFrame
{
    qint64 offset; ///< bytes from the start of the file
    quint64 size;  ///< bytes
    bool isKey;    ///< decoding can start here
};

/// A raw H.264 file opened through the plug-in's loader: its frames as coded and as pictures.
///
/// A plug-in must be loaded and a CxPluginMessages alive. One thread at a time: made in the GUI thread, which
/// alone may look classes up, then opened, used and deleted in one thread, after moveToThread() if another.
class CxRecordingReader
{
public:
    CxRecordingReader(); ///< reads with a loader of the loaded plug-ins
    explicit CxRecordingReader(std::unique_ptr<QObject> loader); ///< an IxImageDataLoader and IxVideoAccessor

    void moveToThread(QThread* thread); ///< before open(): what the loader makes becomes its children

    /// \return false, with \p error one sentence naming the file and the cause. Once for an object.
    bool open(QString const& fileName, QString& error);

    QString const& fileName() const { return m_fileName; }

    /// The frames in file order. They lie back to back from the first byte on, as those of a stream
    /// without container do; offsets are the running sum of the sizes.
    std::vector<SxCodedFrame> const& frames() const { return m_frames; }
    int frameCount() const { return static_cast<int>(m_frames.size()); }
    QList<int> const& keyFrames() const { return m_keyFrames; } ///< ascending

    /// Bytes of the file when it was opened; more than the frames' sum when its end belongs to none.
    qint64 fileBytes() const { return m_fileBytes; }

    /// What is known of it beyond the stream, and why no more is.
    SxFoundSidecar const& sidecar() const { return m_sidecar; }

    /// The sidecar's rate, or what the stream says itself after all; unknown when neither tells it.
    SxPictureRate rate() const { return m_rate; }

    /// Pictures a second: the sidecar's, else the loader's assumption, since the stream does not carry a
    /// rate.
    double fps() const { return rate().isKnown() ? rate().perSecond() : m_fps; }

    /// Frame \p frame decoded, as RGB32. Null, with \p error the cause as half a sentence ("the decoder
    /// failed with ..."), when that fails.
    ///
    /// To show one the decoder goes through all before it in the group of pictures: behind two failures in a
    /// row the rest of the group fails with them, without another try.
    ///
    /// Keep the picture until the next one has come: the host then reuses the memory of the one before.
    std::unique_ptr<CxImageData> picture(int frame, QString& error);

    /// The coded bytes of frame \p frame, start codes included; empty when they cannot be read.
    QByteArray codedFrame(int frame);

private:
    std::unique_ptr<CxImageData> decode(int frame, QString& error);

    QString m_fileName;
    QString m_whyNoLoader; ///< one sentence, when there is none; filled while m_loader is made
    SxCreated<IxImageDataLoader> m_loader;
    IxVideoAccessor* m_accessor = nullptr; ///< the loader's
    std::vector<SxCodedFrame> m_frames;
    QList<int> m_keyFrames;
    qint64 m_fileBytes = 0;
    SxFoundSidecar m_sidecar;
    SxPictureRate m_rate;
    double m_fps = 0; ///< that the loader assumes
    int m_lastFailed = -1;
    int m_failedInARow = 0; ///< up to that frame, in its group
    QString m_lastCause;
};

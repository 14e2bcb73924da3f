#pragma once

#include <QMutex>
#include <QThread>
#include <QWaitCondition>
#include <atomic>
#include <map>
#include <memory>
#include <optional>

#include "OpenedRecording.h"
#include "RecordingReader.h"
#include "ShownPicture.h"

/// Reads the pictures of one recording at a time in a thread of its own.
///
/// A request replaces the one before it that has not begun: nothing queues up, whatever the timeline does.
/// Pictures already read are kept, nearest first, up to a memory limit, so that going back and forth inside
/// a group of pictures decodes nothing again. All functions are for the GUI thread; signals arrive there.
class CxPictureReader : public QThread
{
    Q_OBJECT

public:
    static constexpr qint64 kDefaultMemory = 256 * 1024 * 1024;

    explicit CxPictureReader(qint64 memoryLimit = kDefaultMemory, QObject* parent = nullptr);
    ~CxPictureReader() override;

    /// Opens \p fileName with \p recording, which has opened nothing yet; it is deleted in the reader's
    /// thread. When that fails, the recording before stays open.
    void open(std::unique_ptr<CxRecordingReader> recording, QString const& fileName);
    void closeRecording();

    /// Asks for one picture. \p isBackwards announces that the pictures before it come next: the group of
    /// pictures is then read into memory up to it.
    /// \return a ticket that comes back with the picture; tickets only grow.
    int request(int number, bool isBackwards = false);

    int picturesDecoded() const { return m_decoded.load(); } ///< by the loader, since the start

signals:
    void opened(SxOpenedRecording const& info);
    void openFailed(QString const& fileName, QString const& error); ///< one sentence
    void pictureRead(int ticket, SxShownPicture const& picture);
    void pictureFailed(int ticket, int number, QString const& error);

protected:
    void run() override;

private:
    /// The one thing to do next; a newer one takes its place.
    struct SxOrder
    {
        int ticket = 0;
        int number = 0;
        bool isBackwards = false;
    };

    void openFile(std::unique_ptr<CxRecordingReader> recording, QString const& fileName);
    void fulfil(SxOrder const& order);
    bool read(int number, bool isBackwards, SxShownPicture& picture, QString& cause);
    bool readGroupUpTo(int number, SxShownPicture& picture, QString& cause);
    int groupStart(int number) const;
    void keep(SxShownPicture const& picture, bool isBackwards);
    bool isSuperseded();

    // Between the threads
    QMutex m_mutex;
    QWaitCondition m_wake;
    bool m_quit = false;
    bool m_hasNewFile = false;
    std::unique_ptr<CxRecordingReader> m_newRecording; ///< null with m_hasNewFile: only close
    QString m_newFileName;
    std::optional<SxOrder> m_order;
    int m_lastTicket = 0;
    std::atomic<int> m_decoded{0};

    // The thread's own
    qint64 m_memoryLimit;
    std::unique_ptr<CxRecordingReader> m_recording; ///< null unless open
    SxOpenedRecording m_info;
    std::map<int, SxShownPicture> m_kept; ///< by number
    qint64 m_keptBytes = 0;
};

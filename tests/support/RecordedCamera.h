#pragma once

#include <QTemporaryDir>
#include <memory>

#include "support/FileBytes.h"
#include "support/Minihost.h"

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr int kFrames = 30;

/// A recording of the test camera, made by the built minihost, and for each test function a folder of its own
/// in which it runs commands.
class CxRecordedCamera
{
protected:
    void makeRecording(); ///< for initTestCase(), which fails when it cannot be made
    void makeFolder();    ///< for init()

    /// A command line that is wrong usage: fails the test unless it is refused in one line that holds
    /// \p sentence and where to read on, and leaves nothing beside the recording.
    void checkRefused(QStringList const& arguments, QString const& sentence) const;

    QString path(QString const& name) const { return m_folder->filePath(name); }
    SxMinihostRun run(QStringList const& arguments) const
    {
        return fx_RunMinihost(arguments, QByteArray(), m_folder->path());
    }

    QTemporaryDir m_shared; ///< holds only the recording, in.h264
    QString m_recording;    ///< kFrames pictures, a key frame every 5
    QByteArray m_bytes;     ///< of that file
    std::unique_ptr<QTemporaryDir> m_folder;
};

#include "UnfinishedRecording.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "ContainerWriter.h"
#include "ShellWord.h"
#include "Sidecar.h"

namespace {

QString const kEnding = QStringLiteral(".h264");

/// A file, opened to read, as long as the object lives.
class CxOpenFile
{
public:
    explicit CxOpenFile(QString const& fileName)
        : m_file(open(QFile::encodeName(fileName).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC))
    {}
    ~CxOpenFile()
    {
        if (m_file >= 0)
            close(m_file);
    }
    CxOpenFile(CxOpenFile const&) = delete;
    CxOpenFile& operator=(CxOpenFile const&) = delete;

    /// A file system that cannot tell, or need not, has it there.
    bool isOnDisk() const { return m_file >= 0 && (fsync(m_file) == 0 || errno == EINVAL || errno == EROFS); }

    bool isLocked() const
    {
        return m_file >= 0 && flock(m_file, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    }

private:
    int m_file;
};

} // namespace

QString fx_RawFileOf(QString const& container) { return container + kEnding; }

QString fx_ContainerOf(QString const& rawFile)
{
    QString const container =
        rawFile.endsWith(kEnding) ? rawFile.left(rawFile.size() - kEnding.size()) : QString();
    return fx_ContainerKindOf(container) ? container : QString();
}

bool fx_IsBeingRecorded(QString const& rawFile) { return CxOpenFile(rawFile).isLocked(); }

QString fx_CommandToFinish(QString const& rawFile)
{
    QString const container = fx_ContainerOf(rawFile);
    return QStringLiteral("minihost remux --remove-input %1%2 %3")
        .arg(QFileInfo::exists(container) ? QStringLiteral("--overwrite ") : QString(), fx_ShellWord(rawFile),
             fx_ShellWord(container));
}

QString fx_UnfinishedText(QString const& container)
{
    QString const raw = fx_RawFileOf(container);
    QFileInfo const info(raw);
    if (!fx_ContainerKindOf(container) || !info.isFile() || info.size() == 0 || fx_IsBeingRecorded(raw))
        return QString();
    return QStringLiteral(
               "%1: a recording was not finished, what there is of it lies in %2; '%3' finishes it.")
        .arg(container, raw, fx_CommandToFinish(raw));
}

bool fx_RemoveHandedOn(QString const& recording, QString const& output, QString& error)
{
    CxOpenFile const written(output);
    CxOpenFile const folder(QFileInfo(output).absolutePath());
    if (!written.isOnDisk() || !folder.isOnDisk()) {
        error = QStringLiteral("%1: it stays, since %2 may not be on the disk: %3.")
                    .arg(recording, output, qt_error_string(errno));
        return false;
    }
    if (fx_IsBeingRecorded(recording)) {
        error = QStringLiteral("%1: it stays, since a recording is being written to it.").arg(recording);
        return false;
    }
    fx_RemoveSidecar(recording);
    if (QFile file(recording); !file.remove()) {
        error = QStringLiteral("%1: it cannot be removed: %2.").arg(recording, file.errorString());
        return false;
    }
    return true;
}

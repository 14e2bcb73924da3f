#include "RecordingOutput.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "SameFile.h"

namespace {

constexpr int kWaitMs = 50;          // between looks at the stop flag
constexpr int kPatienceMs = 5000;    // of a stopped recording with a reader that takes nothing
constexpr int kHead = 256;           // bytes
constexpr size_t kChunk = 64 * 1024; // bytes; as many as a pipe holds

} // namespace

CxRecordingOutput::~CxRecordingOutput()
{
    if (m_isNew && size() == 0)
        QFile::remove(m_fileName);
    for (int const file : {m_out, m_memory}) {
        if (file >= 0)
            close(file);
    }
}

bool CxRecordingOutput::open(QString const& fileName, std::atomic<bool> const* stop, QString& error)
{
    m_fileName = fileName;
    m_stop = stop;
    struct stat found = {};
    bool const exists = stat(QFile::encodeName(fileName).constData(), &found) == 0;
    if (exists && !S_ISREG(found.st_mode))
        return openOther(error);
    if (fileName != QLatin1String(kStandardOutputName))
        return openFile(error);
    // The file is the shell's, which may have begun it or want it written behind its end.
    m_out = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    return openMemory(error);
}

/// Opens and locks the file. The lock is the system's, goes with the process and leaves nothing behind.
bool CxRecordingOutput::openFile(QString& error)
{
    QByteArray const name = QFile::encodeName(m_fileName);
    m_saverFile = m_fileName;
    for (;;) {
        m_out = ::open(name.constData(), O_WRONLY | O_CLOEXEC);
        bool const isMissing = m_out < 0 && errno == ENOENT;
        if (isMissing)
            m_out = ::open(name.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
        m_isNew = isMissing && m_out >= 0 && !QFileInfo(m_fileName).isSymLink();
        if (m_out < 0) {
            error = QStringLiteral("%1: %2.").arg(m_fileName, qt_error_string(errno));
            return false;
        }
        // File systems without locks are no reason not to record.
        if (flock(m_out, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
            m_isNew = false;
            error = QStringLiteral("%1: another recording is being written to it.").arg(m_fileName);
            return false;
        }
        struct stat held = {};
        struct stat named = {};
        if (fstat(m_out, &held) == 0 && stat(name.constData(), &named) == 0 && fx_IsSameInode(held, named))
            return true;
        close(m_out); // removed or replaced before it was locked
    }
}

bool CxRecordingOutput::openOther(QString& error)
{
    QByteArray const name = QFile::encodeName(m_fileName);
    bool const isStandard = fx_IsStandardOutput(m_fileName);
    // Never a write that waits: the stop flag is seen meanwhile.
    bool const isClosed = isStandard && (fcntl(STDOUT_FILENO, F_GETFL) & O_ACCMODE) == O_RDONLY;
    errno = EBADF;
    while (!isClosed &&
           (m_out = ::open(name.constData(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) < 0) {
        struct stat found = {};
        if (errno != ENXIO || stat(name.constData(), &found) != 0 || !S_ISFIFO(found.st_mode))
            break;
        if (m_stop && m_stop->load())
            return false;
        poll(nullptr, 0, kWaitMs); // nothing tells when a reader comes
    }
    return openMemory(error);
}

/// The file in memory for what has been opened; false, with \p error one sentence, when that or this failed.
bool CxRecordingOutput::openMemory(QString& error)
{
    if (m_out >= 0)
        m_memory = memfd_create("recording", MFD_CLOEXEC);
    if (m_memory < 0) {
        error = QStringLiteral("%1: %2.").arg(m_fileName, qt_error_string(errno));
        return false;
    }
    m_saverFile = QStringLiteral("/proc/self/fd/%1").arg(m_memory);
    return true;
}

bool CxRecordingOutput::writeOut(char const* bytes, size_t count)
{
    int waited = 0;
    while (count > 0) {
        ssize_t const written = write(m_out, bytes, count);
        if (written > 0) {
            bytes += written;
            count -= static_cast<size_t>(written);
            m_passed += written;
            waited = 0;
            continue;
        }
        if (written < 0 && errno != EAGAIN && errno != EINTR) {
            m_error = errno;
            return false;
        }
        if (m_stop && m_stop->load() && (waited += kWaitMs) > kPatienceMs) {
            m_error = ETIMEDOUT;
            return false;
        }
        pollfd out = {m_out, POLLOUT, 0};
        poll(&out, 1, kWaitMs);
    }
    return true;
}

bool CxRecordingOutput::passOn()
{
    if (m_error != 0)
        return false;
    std::vector<char> chunk(kChunk);
    for (;;) {
        ssize_t const got = pread(m_memory, chunk.data(), chunk.size(), m_passed);
        if (got <= 0)
            break;
        if (m_passed == 0)
            m_head = QByteArray(chunk.data(), static_cast<int>(got)).left(kHead);
        if (!writeOut(chunk.data(), static_cast<size_t>(got)))
            return false;
    }
    // What has passed needs no memory any more.
    static_cast<void>(fallocate(m_memory, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0, m_passed));
    return true;
}

QString CxRecordingOutput::why()
{
    if (m_error == ETIMEDOUT)
        return QStringLiteral("its reader takes no more");
    if (m_error != 0)
        return qt_error_string(m_error);
    int const file = isRelayed() ? m_memory : m_out;
    struct stat found = {};
    if (file < 0 || fstat(file, &found) != 0)
        return QString();
    // Qt knows no cause for a write that ended halfway. The next one shows it.
    std::vector<char> const zeros(kChunk);
    qint64 end = found.st_size;
    ssize_t written = 0;
    for (int i = 0; i < 4 && (written = pwrite(file, zeros.data(), zeros.size(), end)) > 0; ++i)
        end += written;
    QString cause = written < 0 ? qt_error_string(errno) : QString();
    static_cast<void>(ftruncate(file, found.st_size));
    return cause;
}

qint64 CxRecordingOutput::size() const
{
    if (isRelayed())
        return m_passed;
    struct stat found = {};
    return m_out >= 0 && fstat(m_out, &found) == 0 ? qint64{found.st_size} : 0;
}

QByteArray CxRecordingOutput::head() const
{
    QFile file(m_fileName);
    return isRelayed() || !file.open(QIODevice::ReadOnly) ? m_head : file.read(kHead);
}

void CxRecordingOutput::cutOff(qint64 end)
{
    if (!isRelayed() && m_out >= 0)
        static_cast<void>(ftruncate(m_out, end));
}

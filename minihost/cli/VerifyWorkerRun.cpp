#include "VerifyWorkerRun.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "Interrupt.h"

namespace {

constexpr int kPatienceMs = 30000;          // for one frame
constexpr int kLookAroundMs = 100;          // for signals
constexpr qint64 kSlowestBytesPerMs = 5000; // of a disk, while a file is opened

/// For one frame; tests have less time.
int fx_Patience()
{
    bool isSet = false;
    int const ms = qEnvironmentVariableIntValue("MINIHOST_VERIFY_PATIENCE_MS", &isSet);
    return isSet && ms > 0 ? ms : kPatienceMs;
}

/// 0, or the errno that says why a process cannot be started: QProcess tells this in words of its own, not to
/// its caller, and names another cause. The worker inherits the limit, so that it is told here for both.
int fx_DescriptorsMissing()
{
    std::array<int, 16> probes;
    int missing = 0;
    for (int& probe : probes) {
        probe = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        if (probe < 0)
            missing = errno;
    }
    for (int const probe : probes) {
        if (probe >= 0)
            ::close(probe);
    }
    return missing;
}

} // namespace

void CxWorkerRun::takeFrame(QString const& word, QString const& rest)
{
    if (word == QLatin1String("good")) {
        ++m_findings.decoded;
    } else {
        m_findings.addDamage(m_next, m_offset, m_size, rest);
        m_isDone = m_stopsAtFirst;
    }
    ++m_next;
    m_onFrame(m_findings);
    if (!m_isDone && m_next == m_order.end && m_order.onEnd)
        m_order.end = m_order.onEnd();
    m_isDone = m_isDone || m_next >= m_order.end;
}

void CxWorkerRun::take(QString const& line)
{
    QString const word = line.section(QLatin1Char(' '), 0, 0);
    QString const rest = line.section(QLatin1Char(' '), 1);
    QStringList const values = rest.split(QLatin1Char(' '));
    if (word == QLatin1String("refused")) {
        m_findings.refusalCode = static_cast<ExitCode>(values.value(0).toInt());
        m_findings.refusal = rest.section(QLatin1Char(' '), 1);
        m_isDone = true;
    } else if (word == QLatin1String("recording")) {
        m_isOpen = true;
        if (m_findings.frames > 0)
            return; // the first worker's numbers stand, should the file have changed
        m_findings.frames = values.value(0).toInt();
        m_findings.fileBytes = values.value(1).toLongLong();
        m_findings.rate = fx_RateFromText(values.value(2)).value_or(SxPictureRate());
    } else if (word == QLatin1String("keys") && m_findings.keyFrames.isEmpty()) {
        for (QString const& key : rest.split(QLatin1Char(',')))
            m_findings.keyFrames += key.toInt();
        if (m_order.onOpened)
            m_order.end = m_order.onOpened(m_findings);
    } else if (word == QLatin1String("at")) {
        m_next = values.value(0).toInt();
        m_offset = values.value(1).toLongLong();
        m_size = values.value(2).toLongLong();
        m_findings.closeDamageAt(m_offset); // of frames that nobody could look at the size was not known
        m_findings.endOfFrames = m_offset + m_size;
        m_findings.marks.append({m_next, m_findings.isKey(m_next), values.value(3).toInt(),
                                 values.value(5).toInt(), values.value(6).toInt()});
        m_findings.maxFrameNum = std::max(values.value(4).toInt(), 1);
    } else if (word == QLatin1String("good") || word == QLatin1String("bad")) {
        takeFrame(word, rest);
    }
}

/// Listens until the worker ends, is no longer wanted or says nothing for too long.
void CxWorkerRun::watch(QProcess& worker)
{
    std::atomic<bool> const& stop = fx_CatchInterrupts();
    int const patience = fx_Patience();
    qint64 const patienceToOpen = patience + QFileInfo(m_findings.file).size() / kSlowestBytesPerMs;
    QElapsedTimer silence;
    silence.start();
    while (!m_isDone) {
        bool const isStopped = stop.load();
        worker.waitForReadyRead(isStopped ? 0 : kLookAroundMs); // what it has said until now counts
        while (!m_isDone && worker.canReadLine()) {
            take(QString::fromUtf8(worker.readLine()).trimmed());
            silence.start();
        }
        if (isStopped)
            m_findings.wasStopped = m_isDone = true;
        m_isDone = m_isDone || m_order.isCancelled();
        if (m_isDone || (worker.state() == QProcess::NotRunning && !worker.canReadLine()))
            break;
        if (silence.elapsed() > (m_isOpen ? patience : patienceToOpen)) {
            m_death =
                QStringLiteral("the decoder did not come back within %1 s").arg((patience + 999) / 1000);
            break;
        }
    }
}

void CxWorkerRun::run(SxWorkerOrder const& order)
{
    m_order = order;
    m_next = order.first;
    if (int const missing = fx_DescriptorsMissing()) {
        noteNoStart(QString::fromLocal8Bit(std::strerror(missing)));
        return;
    }
    QProcess worker;
    if (m_options.verbose)
        worker.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    else
        worker.setStandardErrorFile(QProcess::nullDevice()); // what there is to tell comes over its output
    worker.start(QCoreApplication::applicationFilePath(),
                 {QStringLiteral("verify"), QStringLiteral("--worker"), QString::number(order.first),
                  QString::number(order.end), m_options.verbose ? QStringLiteral("1") : QStringLiteral("0"),
                  m_options.pluginPath, m_findings.file},
                 QIODevice::ReadOnly);
    if (!worker.waitForStarted()) {
        noteNoStart(worker.errorString());
        return;
    }
    watch(worker);
    if (worker.state() != QProcess::NotRunning)
        worker.kill();
    worker.waitForFinished(-1);
    if (m_isDone)
        return;
    if (m_death.isEmpty() && worker.exitStatus() == QProcess::CrashExit)
        m_death = QStringLiteral("the decoder crashed (signal %1)").arg(worker.exitCode());
    else if (m_death.isEmpty() && worker.exitCode() == kFailed)
        noteShortMemory();
    else if (m_death.isEmpty() && worker.exitCode() != 0)
        m_death = QStringLiteral("the decoder ended the program (exit code %1)").arg(worker.exitCode());
    if (m_death.isEmpty())
        m_isDone = true;
    else
        noteDeath();
}

void CxWorkerRun::noteNoStart(QString const& cause)
{
    m_findings.refusal = QStringLiteral("The process that decodes cannot be started: %1.").arg(cause);
    m_findings.refusalCode = kFailed;
    m_isDone = true;
}

/// The program ends so when memory runs out where no words for it are left.
void CxWorkerRun::noteShortMemory()
{
    m_findings.refusal = QStringLiteral("%1: there is not enough memory to decode it.").arg(m_findings.file);
    m_findings.refusalCode = kFailed;
}

void CxWorkerRun::noteDeath()
{
    if (m_findings.frames == 0) {
        m_findings.refusal = QStringLiteral("%1: it cannot be opened: %2.").arg(m_findings.file, m_death);
        m_findings.refusalCode = kBadInput;
        m_isDone = true;
    } else if (m_next < m_findings.frames) {
        m_findings.addDamage(m_next++, m_offset, m_size, m_death);
    }
}

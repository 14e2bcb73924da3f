#include "VerifyExamination.h"

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

constexpr int kMostCrashes = 12;            // of one file; each may take the time of kPatienceMs
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

bool fx_IsKey(SxFindings const& findings, int frame)
{
    return std::binary_search(findings.keyFrames.begin(), findings.keyFrames.end(), frame);
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

/// One worker, from its start to its end, and what it says.
class CxWorkerRun
{
public:
    CxWorkerRun(SxFindings& findings, SxRunOptions const& options, bool stopsAtFirst,
                std::function<void(SxFindings const&)> const& onFrame)
        : m_findings(findings)
        , m_options(options)
        , m_stopsAtFirst(stopsAtFirst)
        , m_onFrame(onFrame)
    {}

    void run(int first);

    /// What it died of, half a sentence, after which it could not go on; empty: it ended in peace.
    QString const& death() const { return m_death; }
    int nextFrame() const { return m_next; } ///< behind the last that is known of
    bool isDone() const { return m_isDone; } ///< nothing more is wanted of anyone

private:
    void watch(QProcess& worker);
    void take(QString const& line);
    void takeFrame(QString const& word, QString const& rest);
    void noteDeath();
    void noteShortMemory();
    void noteNoStart(QString const& cause);

    SxFindings& m_findings;
    SxRunOptions const& m_options;
    bool m_stopsAtFirst;
    std::function<void(SxFindings const&)> const& m_onFrame;
    QString m_death;
    int m_next = 0;
    qint64 m_offset = 0; ///< of the next frame, when the worker has named it
    qint64 m_size = 0;
    bool m_isDone = false;
    bool m_isOpen = false;
};

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
        m_findings.fps = values.value(2).toDouble();
    } else if (word == QLatin1String("keys") && m_findings.keyFrames.isEmpty()) {
        for (QString const& key : rest.split(QLatin1Char(',')))
            m_findings.keyFrames += key.toInt();
    } else if (word == QLatin1String("at")) {
        m_next = values.value(0).toInt();
        m_offset = values.value(1).toLongLong();
        m_size = values.value(2).toLongLong();
        m_findings.closeDamageAt(m_offset); // of frames that nobody could look at the size was not known
        m_findings.endOfFrames = m_offset + m_size;
        m_findings.marks.append({m_next, fx_IsKey(m_findings, m_next), values.value(3).toInt(),
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
        if (m_isDone || (worker.state() == QProcess::NotRunning && !worker.canReadLine()))
            break;
        if (silence.elapsed() > (m_isOpen ? patience : patienceToOpen)) {
            m_death =
                QStringLiteral("the decoder did not come back within %1 s").arg((patience + 999) / 1000);
            break;
        }
    }
}

void CxWorkerRun::run(int first)
{
    m_next = first;
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
                 {QStringLiteral("verify"), QStringLiteral("--worker"), QString::number(first),
                  m_options.verbose ? QStringLiteral("1") : QStringLiteral("0"), m_options.pluginPath,
                  m_findings.file},
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

/// The key frame behind \p frame, or the end.
int fx_NextKeyFrame(SxFindings const& findings, int frame)
{
    auto const next = std::upper_bound(findings.keyFrames.begin(), findings.keyFrames.end(), frame);
    return next == findings.keyFrames.end() ? findings.frames : *next;
}

/// Takes the frames up to \p next, which nobody will look at, for damaged like those before or for \p cause.
void fx_PassOver(SxFindings& findings, int first, int next, QString const& cause)
{
    for (int frame = first; frame < next; ++frame) {
        findings.addDamage(frame, findings.endOfFrames, 0, cause);
        findings.marks.append({frame, fx_IsKey(findings, frame), -1, 0});
    }
    if (first < next && next == findings.frames) {
        findings.closeDamageAt(findings.fileBytes);
        findings.endOfFrames = findings.fileBytes;
    }
}

} // namespace

int SxFindings::vanishedForCertain() const
{
    int pictures = 0;
    for (SxVanishedPictures const& place : vanished)
        pictures += place.isCertain ? place.pictures : 0;
    return pictures;
}

void SxFindings::addDamage(int frame, qint64 offset, qint64 size, QString const& cause)
{
    ++failed;
    if (!damage.isEmpty() && damage.last().last == frame - 1 && damage.last().cause == cause) {
        damage.last().last = frame;
        damage.last().size += size;
    } else {
        damage.append({frame, frame, offset, size, cause});
    }
}

void SxFindings::closeDamageAt(qint64 end)
{
    if (!damage.isEmpty() && damage.last().last == examined() - 1)
        damage.last().size = end - damage.last().offset;
}

SxFindings fx_Examine(QString const& file, SxRunOptions const& options, bool stopsAtFirst,
                      std::function<void(SxFindings const& soFar)> const& onFrame)
{
    SxFindings findings;
    findings.file = file;
    int first = 0;
    for (int crashes = 0;;) {
        CxWorkerRun run(findings, options, stopsAtFirst, onFrame);
        run.run(first);
        int next = run.nextFrame();
        if (run.isDone()) {
            if (!findings.wasStopped && !stopsAtFirst)
                fx_PassOver(findings, next, findings.frames, QStringLiteral("the file became shorter"));
            break;
        }
        ++crashes;
        if (stopsAtFirst)
            break;
        // On its way to the frame behind it the next worker may have met the same frame again; then only a
        // key frame leads past it.
        bool const diedAtOnce = next == first + 1;
        if (crashes == kMostCrashes) {
            fx_PassOver(findings, next, findings.frames,
                        QStringLiteral("not looked at after %1 crashes").arg(crashes));
        } else if (crashes > 1 && diedAtOnce) {
            int const key = fx_NextKeyFrame(findings, next - 1);
            fx_PassOver(findings, next, key, run.death());
            next = key;
        }
        if (findings.examined() >= findings.frames)
            break;
        first = next;
    }
    if (!stopsAtFirst)
        findings.vanished = fx_VanishedPictures(findings.marks, findings.maxFrameNum);
    return findings;
}

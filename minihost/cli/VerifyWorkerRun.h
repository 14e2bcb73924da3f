#pragma once

#include <atomic>
#include <climits>
#include <functional>

#include "Options.h"
#include "VerifyFindings.h"

class QProcess;

/// Which frames a worker decodes.
struct SxWorkerOrder
{
    int first = 0;     ///< a key frame, or where a worker died before
    int end = INT_MAX; ///< behind the last

    /// Called once it is known what the file holds, and at the end; both return the new end.
    std::function<int(SxFindings const&)> onOpened = nullptr;
    std::function<int()> onEnd = nullptr;

    std::atomic<bool> const* cancelled = nullptr; ///< set from anywhere to end it
    bool isCancelled() const { return cancelled && cancelled->load(); }
};

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

    void run(SxWorkerOrder const& order);

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
    SxWorkerOrder m_order;
    std::function<void(SxFindings const&)> const& m_onFrame;
    QString m_death;
    int m_next = 0;
    qint64 m_offset = 0; ///< of the next frame, when the worker has named it
    qint64 m_size = 0;
    bool m_isDone = false;
    bool m_isOpen = false;
};

#include "VerifyShares.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "VerifyExamination.h"
#include "VerifyWorkerRun.h"

static constexpr int kLeastFrames = 150; // of a share: below, starting a process costs more than it saves
static constexpr std::chrono::milliseconds kLookAround(100);

/// Frames from one key frame to another, and what became of them.
struct SxVerifyShare
{
    SxVerifyShare(int firstFrame, int endFrame)
        : first(firstFrame)
        , end(endFrame)
    {}

    int const first;
    int const end;
    SxFindings findings;
    bool isSound = false; ///< every frame was looked at and decodes
    bool hasEnded = false;
    std::atomic<int> examined{0};
    std::thread thread;
};

CxVerifyShares::CxVerifyShares(SxExamination const& how, std::function<void()> onTime)
    : m_how(how)
    , m_onTime(std::move(onTime))
{}

CxVerifyShares::~CxVerifyShares()
{
    cancel();
    for (auto const& share : m_shares)
        share->thread.join();
}

void CxVerifyShares::cancel() { m_isCancelled = true; }

int CxVerifyShares::divide(SxFindings const& opened)
{
    m_opened = opened;
    int const shares = std::min(m_how.jobs, opened.frames / kLeastFrames);
    QVector<int> starts;
    for (int i = 1; i < shares; ++i) {
        int const wanted = static_cast<int>(qint64(opened.frames) * i / shares);
        auto const key = std::lower_bound(opened.keyFrames.begin(), opened.keyFrames.end(), wanted);
        if (key != opened.keyFrames.end() && !starts.contains(*key))
            starts.append(*key);
    }
    for (int i = 0; i < starts.size(); ++i)
        m_shares.push_back(std::make_unique<SxVerifyShare>(starts[i], starts.value(i + 1, opened.frames)));
    for (auto const& share : m_shares)
        share->thread = std::thread([this, one = share.get()] { work(*one); });
    return starts.value(0, INT_MAX);
}

void CxVerifyShares::work(SxVerifyShare& share)
{
    share.findings = m_opened;
    std::function<void(SxFindings const&)> const onFrame = [&share](SxFindings const& soFar) {
        share.examined = soFar.examined();
    };
    SxWorkerOrder order;
    order.first = share.first;
    order.end = share.end;
    order.cancelled = &m_isCancelled;
    CxWorkerRun run(share.findings, m_how.options, true, onFrame);
    run.run(order);
    std::lock_guard<std::mutex> const lock(m_mutex);
    share.isSound = share.findings.decoded == share.end - share.first;
    share.hasEnded = true;
    m_ended.notify_one();
}

int CxVerifyShares::awaitOthers()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (size_t i = 0; i < m_shares.size(); ++i) {
        while (!m_ended.wait_for(lock, kLookAround, [&] { return m_shares[i]->hasEnded; }))
            m_onTime();
        if (!m_shares[i]->isSound)
            m_firstTaken = i + 1;
    }
    return m_firstTaken == 0 ? m_shares.front()->first : m_shares[m_firstTaken - 1]->end;
}

void CxVerifyShares::appendTo(SxFindings& findings) const
{
    for (size_t i = m_firstTaken; i < m_shares.size(); ++i) {
        SxFindings const& sound = m_shares[i]->findings;
        findings.decoded += sound.decoded;
        findings.endOfFrames = sound.endOfFrames;
        findings.marks += sound.marks;
        findings.maxFrameNum = sound.maxFrameNum;
    }
}

int CxVerifyShares::examined() const
{
    int frames = 0;
    for (size_t i = m_firstTaken; i < m_shares.size(); ++i)
        frames += m_isCancelled ? 0 : m_shares[i]->examined.load();
    return frames;
}

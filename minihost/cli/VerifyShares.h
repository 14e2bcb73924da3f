#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "VerifyFindings.h"

struct SxExamination;
struct SxVerifyShare;

/// A recording examined by several workers at a time, each from a key frame to the next one's. The first is
/// the caller's; the others run in threads of this object, and end with it.
///
/// What the others find counts only where it is nothing: how a damaged frame fails may depend on all before
/// it, as on parameter sets of an earlier group, so that such a share is left to the first worker, which
/// comes from the front.
class CxVerifyShares
{
public:
    CxVerifyShares(SxExamination const& how, std::function<void()> onTime);
    ~CxVerifyShares();

    /// Starts the others once \p opened says what the file holds. \return the end of the caller's own share:
    /// INT_MAX for short files and for one job.
    int divide(SxFindings const& opened);

    /// Once the caller is there: waits for the others, calling `onTime` now and then. \return where the
    /// caller ends then: the same, or behind the last share that is not sound.
    int awaitOthers();

    /// What the others found behind the caller's end.
    void appendTo(SxFindings& findings) const;

    int examined() const; ///< frames, by the others
    void cancel();        ///< what the others find is not wanted any more

private:
    void work(SxVerifyShare& share);

    SxExamination const& m_how;
    std::function<void()> m_onTime;
    SxFindings m_opened;
    std::vector<std::unique_ptr<SxVerifyShare>> m_shares; ///< ascending
    size_t m_firstTaken = 0;                              ///< of these, the first behind the caller's end
    std::atomic<bool> m_isCancelled{false};
    std::mutex m_mutex;
    std::condition_variable m_ended;
};

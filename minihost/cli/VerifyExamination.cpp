#include "VerifyExamination.h"

#include <algorithm>

#include "VerifyShares.h"
#include "VerifyWorkerRun.h"

namespace {

constexpr int kMostCrashes = 12; // of one file; each may take the time of a frame's patience

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
        findings.marks.append({frame, findings.isKey(frame), -1, 0});
    }
    if (first < next && next == findings.frames) {
        findings.closeDamageAt(findings.fileBytes);
        findings.endOfFrames = findings.fileBytes;
    }
}

/// After a worker that began at \p first died before \p next, which becomes where another begins. False when
/// none is to.
bool fx_PassCrash(SxFindings& findings, int crashes, int first, int& next, QString const& death)
{
    // On its way to the frame behind it the next worker may have met the same frame again; then only a
    // key frame leads past it.
    bool const diedAtOnce = next == first + 1;
    if (crashes == kMostCrashes) {
        fx_PassOver(findings, next, findings.frames,
                    QStringLiteral("not looked at after %1 crashes").arg(crashes));
    } else if (crashes > 1 && diedAtOnce) {
        int const key = fx_NextKeyFrame(findings, next - 1);
        fx_PassOver(findings, next, key, death);
        next = key;
    }
    return findings.examined() < findings.frames;
}

} // namespace

SxFindings fx_Examine(QString const& file, SxExamination const& how)
{
    SxFindings findings;
    findings.file = file;
    std::function<void(SxFindings const&)> tell; // not before there are shares
    CxVerifyShares shares(how, [&] { tell(findings); });
    tell = [&](SxFindings const& soFar) {
        how.onProgress(soFar.frames, soFar.examined() + shares.examined());
    };
    int firstEnd = INT_MAX;
    SxWorkerOrder order;
    order.onOpened = [&](SxFindings const& opened) { return firstEnd = shares.divide(opened); };
    order.onEnd = [&] { return firstEnd = shares.awaitOthers(); };
    for (int crashes = 0;;) {
        CxWorkerRun run(findings, how.options, how.stopsAtFirst, tell);
        run.run(order);
        int next = run.nextFrame();
        bool const isUpToOthers = run.isDone() && order.onEnd && next >= firstEnd;
        if (isUpToOthers && !findings.wasStopped && !(how.stopsAtFirst && findings.failed > 0)) {
            shares.appendTo(findings);
            break;
        }
        shares.cancel();
        if (run.isDone()) {
            if (!findings.wasStopped && !how.stopsAtFirst)
                fx_PassOver(findings, next, findings.frames, QStringLiteral("the file became shorter"));
            break;
        }
        ++crashes;
        if (how.stopsAtFirst)
            break;
        if (!fx_PassCrash(findings, crashes, order.first, next, run.death()))
            break;
        order = SxWorkerOrder();
        order.first = next;
    }
    if (!how.stopsAtFirst)
        findings.vanished = fx_VanishedPictures(findings.marks, findings.maxFrameNum);
    return findings;
}

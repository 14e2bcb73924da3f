#include "NotedRate.h"

#include "Sidecar.h"

static bool fx_SaysNothingElse(SxSidecar const& sidecar)
{
    return sidecar.rotation == 0 && sidecar.skippedCount == 0 && sidecar.source.isEmpty() &&
           sidecar.options.isEmpty();
}

bool fx_NoteRate(QString const& recording, int pictures, SxPictureRate const& rate, QString& error)
{
    SxSidecar fresh;
    fresh.pictures = pictures;
    fresh.program = QStringLiteral("minihost " MINIHOST_VERSION);
    SxFoundSidecar const found = fx_FindSidecar(recording);
    SxSidecar sidecar = found.sidecar.value_or(fresh);
    sidecar.rate = rate;
    if (!rate.isKnown() && fx_SaysNothingElse(sidecar)) {
        if (found.sidecar) // one of another recording is none of ours to take away
            fx_RemoveSidecar(recording);
        return true;
    }
    return fx_WriteSidecar(recording, sidecar, error);
}

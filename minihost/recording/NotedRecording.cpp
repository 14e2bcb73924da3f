#include "NotedRecording.h"

#include <QFileInfo>
#include <QRegularExpression>

#include "IxPictureSource.h"
#include "SameFile.h"
#include "Sidecar.h"

/// True when a player that assumes what everybody does shows the recording as it was.
static bool fx_IsAsAssumed(SxRecordSummary const& summary)
{
    return summary.rate.isAsAssumed() && summary.rotation == 0 && summary.skipped.isEmpty() &&
           summary.lost.isEmpty();
}

static SxSidecar fx_SidecarOf(SxRecordRequest const& request, SxRecordSummary const& summary)
{
    SxEncoderOptions const& encoder = request.encoder;
    SxSidecar sidecar;
    sidecar.rate = summary.rate;
    sidecar.rotation = summary.rotation;
    // Recordings are handed on with their notes: who may open the camera stays here.
    static QRegularExpression const credentials(QStringLiteral("://[^/@\\s]*@"));
    sidecar.source = QString(request.sourceName).replace(credentials, QStringLiteral("://"));
    sidecar.options = {
        {QStringLiteral("quality"), encoder.quality},
        {QStringLiteral("keyframe-rate"), encoder.keyFrameInterval},
        {QStringLiteral("complexity"), fx_ComplexityNames().value(encoder.complexity)},
        {QStringLiteral("profile"), fx_ProfileName(encoder.profile)},
        {QStringLiteral("level"), fx_LevelName(encoder.level)},
    };
    sidecar.pictures = summary.given;
    sidecar.skippedCount = static_cast<int>(summary.skipped.size());
    sidecar.skipped = fx_RangesOf(summary.skipped);
    sidecar.lostCount = static_cast<int>(summary.lost.size());
    sidecar.lost = fx_RangesOf(summary.lost);
    sidecar.program = QStringLiteral("minihost " MINIHOST_VERSION);
    return sidecar;
}

/// What has other names than its own, such as standard output, has none beside which a sidecar could lie.
static bool fx_CanHaveSidecar(QString const& output)
{
    return QFileInfo(output).isFile() && !fx_IsStandardOutput(output);
}

SxRecordSummary fx_RecordWithFacts(IxPictureSource& source, SxRecordRequest const& request,
                                   RecordProgress const& progress)
{
    int rotation = 0; // of all pictures, or none
    SxRecordSummary summary = fx_Record(source, request, [&](SxRecordSummary const& soFar) {
        rotation = soFar.given == 1 || rotation == source.rotation() ? source.rotation() : 0;
        if (progress)
            progress(soFar);
    });
    summary.rate = source.rate();
    summary.rotation = rotation;
    return summary;
}

void fx_NoteRecording(SxRecordRequest const& request, SxRecordSummary& summary)
{
    QString const& output = request.outputFile;
    if (summary.given == 0 || !fx_CanHaveSidecar(output))
        return;
    if (summary.coded > 0 && request.keepsSidecar && !fx_IsAsAssumed(summary)) {
        if (fx_WriteSidecar(output, fx_SidecarOf(request, summary), summary.sidecarError))
            summary.sidecar = fx_SidecarName(output);
    } else if (!fx_FindSidecar(output).sidecar) { // that of an untouched recording stays
        fx_RemoveSidecar(output);
    }
}

/// What is known with the first picture, for a recording that is killed; at its end it is written anew.
static void fx_NoteBeginning(IxPictureSource const& source, SxRecordRequest const& request,
                             SxRecordSummary const& soFar)
{
    fx_RemoveSidecar(request.outputFile);
    SxRecordSummary begun = soFar;
    begun.rate = source.rate();
    begun.rotation = source.rotation();
    QString told; // at the end, if it still fails
    if (request.keepsSidecar && !fx_IsAsAssumed(begun))
        fx_WriteSidecar(request.outputFile, fx_SidecarOf(request, begun), told, false);
}

SxRecordSummary fx_RecordWithSidecar(IxPictureSource& source, SxRecordRequest const& request,
                                     RecordProgress const& progress)
{
    SxRecordSummary summary = fx_RecordWithFacts(source, request, [&](SxRecordSummary const& soFar) {
        if (soFar.given == 1 && fx_CanHaveSidecar(request.outputFile))
            fx_NoteBeginning(source, request, soFar);
        if (progress)
            progress(soFar);
    });
    fx_NoteRecording(request, summary);
    return summary;
}

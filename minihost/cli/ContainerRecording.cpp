#include "ContainerRecording.h"

#include <QFileInfo>

#include "Console.h"
#include "ContainerWriter.h"
#include "IxPictureSource.h"
#include "ProgressLine.h"
#include "RecordingReader.h"
#include "RemuxReport.h"
#include "Remuxer.h"
#include "UnfinishedRecording.h"

namespace {

SxStreamDescription fx_DescriptionOf(IxPictureSource const& source, SxRecordSummary const& summary)
{
    SxStreamDescription description;
    description.takeRate(source.rate());
    description.rotation = summary.rotation;
    description.comment = fx_SkippedComment(fx_RangesOf(summary.skipped),
                                            static_cast<int>(summary.skipped.size()), summary.given);
    return description;
}

/// One sentence on what failed; empty when the container is there and the raw file gone.
QString fx_Finish(QString const& raw, QString const& container, SxStreamDescription const& description)
{
    QString error;
    CxRecordingReader recording;
    if (!recording.open(raw, error))
        return error;
    SxRemuxRequest request;
    request.output = container;
    request.description = description;
    request.last = recording.frameCount() - 1;
    CxProgressLine line(recording.frameCount());
    SxRemuxSummary const written = fx_Remux(recording, request, [&line](SxRemuxSummary const& soFar) {
        line.update(soFar.pictures, soFar.bytes, QStringLiteral("into the container"));
    });
    Console::transient(QString());
    if (written.error.isEmpty() && written.isInputDamaged())
        return QStringLiteral("%1: not all of it could be put into %2, so it stays.").arg(raw, container);
    QString const notTurned = fx_RotationWarning(request, written);
    if (!notTurned.isEmpty())
        Console::warning(notTurned);
    if (written.error.isEmpty())
        fx_RemoveHandedOn(raw, container, error);
    return written.error.isEmpty() ? error : written.error;
}

} // namespace

SxRecordRequest fx_RawRequest(SxRecordRequest request)
{
    if (fx_ContainerKindOf(request.outputFile))
        request.outputFile = fx_RawFileOf(request.outputFile);
    return request;
}

QString fx_ContainerObstacle(QString const& output)
{
    if (!fx_ContainerKindOf(output))
        return QString();
    QString obstacle = fx_ObstacleToIndex(output);
    if (!obstacle.isEmpty())
        return obstacle;
    if (fx_IsBeingRecorded(fx_RawFileOf(output)))
        return QStringLiteral("%1: another recording is being written to it.").arg(output);
    return fx_UnfinishedText(output);
}

void fx_PutIntoContainer(SxRecordRequest const& request, IxPictureSource const& source,
                         SxRecordSummary& summary)
{
    QString const& container = request.outputFile;
    if (!fx_ContainerKindOf(container) || summary.coded == 0)
        return;
    QString const raw = fx_RawFileOf(container);
    // Where the disk is full there is no room for another file.
    QString const error = summary.failure == RecordFailure::Output
                              ? summary.error
                              : fx_Finish(raw, container, fx_DescriptionOf(source, summary));
    if (error.isEmpty()) {
        summary.bytes = QFileInfo(container).size();
        summary.sidecar.clear();
        return;
    }
    summary.error = QFileInfo::exists(raw)
                        ? QStringLiteral("%1 What was recorded lies in %2; '%3' makes the container.")
                              .arg(error, raw, fx_CommandToFinish(raw))
                        : error;
    summary.failure = RecordFailure::Output;
}

#include "SplitRecording.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QRegularExpression>
#include <algorithm>

#include "Console.h"
#include "ContainerWriter.h"
#include "Interrupt.h"
#include "NotedRecording.h"
#include "RecordReport.h"
#include "RecordWatcher.h"
#include "SameFile.h"

/// What there is under names that the recording would write to, in order.
static QFileInfoList fx_ExistingParts(QString const& output)
{
    QFileInfo const info(output);
    QRegularExpression const part(QStringLiteral("^%1_\\d{3,9}\\.%2$")
                                      .arg(QRegularExpression::escape(info.completeBaseName()),
                                           QRegularExpression::escape(info.suffix())));
    QFileInfoList found = info.dir().entryInfoList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    found.erase(
        std::remove_if(found.begin(), found.end(),
                       [&part](QFileInfo const& entry) { return !part.match(entry.fileName()).hasMatch(); }),
        found.end());
    return found;
}

QString fx_SplitObstacle(SxRecordArguments const& arguments)
{
    for (QFileInfo const& existing : fx_ExistingParts(arguments.request.outputFile)) {
        QString const name = existing.filePath();
        // In hours, when its turn comes, nobody may be there to read it.
        if (existing.exists() && !existing.isFile())
            return QStringLiteral(
                       "%1: this is no regular file, and a part of the recording would get its name.")
                .arg(name);
        for (QString const& source : arguments.sources) {
            if (fx_IsSameFile(source, name))
                return QStringLiteral("%1: the recording would replace its own source.").arg(source);
        }
        if (!arguments.overwrite)
            return QStringLiteral("%1: the file exists; --overwrite replaces such files.").arg(name);
    }
    return QString();
}

/// All files as one object for programs.
static QJsonObject fx_AllJson(SxRecordArguments const& arguments, QVector<SxRecordSummary> const& parts,
                              QVector<QStringList> const& warnings)
{
    QJsonArray files;
    int given = 0;
    int coded = 0;
    qint64 bytes = 0;
    for (int i = 0; i < parts.size(); ++i) {
        SxRecordRequest request = arguments.request;
        request.outputFile = fx_NumberedRecording(request.outputFile, i + 1);
        files.append(fx_RecordSummaryJson(request, parts[i], warnings.value(i)));
        given += parts[i].given;
        coded += parts[i].coded;
        bytes += parts[i].bytes;
    }
    QString const& error = parts.last().error;
    return {{QStringLiteral("files"), files},
            {QStringLiteral("given"), given},
            {QStringLiteral("coded"), coded},
            {QStringLiteral("bytes"), bytes},
            {QStringLiteral("error"), error.isEmpty() ? QJsonValue() : QJsonValue(error)}};
}

int fx_RecordSplit(IxPictureSource& source, SxRecordArguments const& arguments)
{
    QStringList told;
    QVector<QStringList> warnings;
    auto const record = [&](CxSourceInParts& part, SxRecordRequest const& request) {
        auto const tells =
            warnings.isEmpty() ? CxRecordWatcher::Tells::All : CxRecordWatcher::Tells::NextPart;
        CxRecordWatcher watcher(part, request, tells, told);
        if (warnings.isEmpty()) {
            for (QString const& warning : arguments.warnings)
                watcher.warn(warning);
        }
        SxRecordSummary summary = fx_RecordWithSidecar(part, request, [&](SxRecordSummary const& soFar) {
            part.noteBytes(soFar.bytes);
            watcher.onPicture(soFar);
        });
        watcher.onEnd(summary, nullptr);
        warnings.append(watcher.warnings().mid(told.size()));
        told = watcher.warnings();
        if (summary.given > 0)
            Console::message(fx_RecordSummaryText(request, summary));
        return summary;
    };
    QVector<SxRecordSummary> parts = fx_RecordInParts(source, arguments.request, arguments.split, record);
    SxRecordSummary& last = parts.last();
    SxRecordRequest request = arguments.request;
    request.outputFile = fx_NumberedRecording(request.outputFile, static_cast<int>(parts.size()));
    bool const isInterrupted = last.error.isEmpty() && fx_IsInterrupted(last);
    if (isInterrupted)
        last.error = fx_InterruptionText(request, last);
    if (arguments.run.json)
        Console::data(QJsonDocument(fx_AllJson(arguments, parts, warnings)));
    if (isInterrupted)
        return fx_Interrupted(last.error);
    if (!last.error.isEmpty())
        Console::error(last.error);
    ExitCode code = kDone;
    for (SxRecordSummary const& part : parts)
        code = std::max(code, fx_RecordExitCode(part, arguments.isStrict));
    return last.error.isEmpty() ? code : fx_RecordExitCode(last, arguments.isStrict);
}

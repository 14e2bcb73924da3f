#include <QJsonArray>
#include <algorithm>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "Interrupt.h"
#include "PlayCommand.h"
#include "ProgressLine.h"
#include "VerifyExamination.h"
#include "VerifyReport.h"
#include "VerifyWatch.h"
#include "VerifyWorker.h"

namespace {

QVector<SxOption> fx_Options()
{
    QVector<SxOption> const own{
        {"first", 0, nullptr, QStringLiteral("only the first frame that fails, which is quicker")},
        fx_JobsOption(QStringLiteral("processes that decode at a time"))};
    return own + fx_RunOptions(QStringLiteral("what was found as JSON on standard output: an object, for\n"
                                              "several files an array of them"));
}

QString fx_Help()
{
    return QStringLiteral(
               "Decodes raw H.264 recordings from front to back and reports what cannot be decoded.\n"
               "\n"
               "  minihost verify test.h264\n"
               "  minihost verify -q *.h264     only what is wrong\n"
               "\n"
               "Usage: minihost verify [options] FILE...\n"
               "\n") +
           fx_OptionsHelp(fx_Options()) +
           QStringLiteral(
               "\nEach file is decoded in a process of its own: one that makes the decoder crash or hang\n"
               "is reported as damaged, and the next file goes on.\n") +
           fx_ExitCodesHelp({kDone, kFailed, kWrongUsage, kBadInput, kOutputFailed, kInterrupted});
}

/// Tells what was found in a file. \return the exit code that it asks for
int fx_Tell(SxFindings const& findings)
{
    QString const caution = fx_Caution(findings);
    if (!caution.isEmpty())
        Console::warning(QStringLiteral("%1: %2").arg(findings.file, caution));
    QString const complaint = fx_Complaint(findings);
    if (findings.wasStopped)
        return fx_Interrupted(complaint);
    if (!complaint.isEmpty())
        return fx_Failed(complaint, findings.refusal.isEmpty() ? kBadInput : findings.refusalCode);
    Console::message(fx_Praise(findings));
    return kDone;
}

int fx_Verify(SxPlayArguments const& arguments, bool stopsAtFirst, int jobs)
{
    Console::setQuiet(arguments.run.quiet);
    SxExamination how;
    how.options = arguments.run;
    how.stopsAtFirst = stopsAtFirst;
    how.jobs = jobs;
    QJsonArray json;
    int code = kDone;
    for (QString const& file : arguments.files) {
        CxProgressLine line;
        how.onProgress = [&line](int frames, int examined) {
            line.setTotal(frames);
            line.update(examined, -1, QString());
        };
        SxFindings const findings = fx_Examine(file, how);
        Console::transient(QString());
        json.append(fx_FindingsJson(findings));
        code = std::max(code, fx_Tell(findings));
        if (findings.wasStopped || findings.refusalCode == kFailed)
            break; // the next file would fare no better
    }
    if (arguments.run.json) {
        Console::data(arguments.files.size() == 1 ? QJsonDocument(json.first().toObject())
                                                  : QJsonDocument(json));
    }
    return code;
}

} // namespace

int fx_RunVerify(QStringList const& arguments)
{
    if (arguments.value(1) == QLatin1String("--worker")) // for this program alone
        return fx_RunVerifyWorker(arguments.mid(2));
    if (arguments.value(1) == QLatin1String("--watched"))
        return fx_RunWatchedVerify(arguments.mid(2));
    QCommandLineParser parser;
    fx_AddOptions(parser, fx_Options());
    SxPlayArguments parsed;
    QString error;
    if (!fx_ParseSeveralPlayArguments(parser, arguments, parsed, error))
        return fx_WrongUsage(QStringLiteral("verify"), error);
    if (parsed.run.help) {
        Console::data(fx_Help());
        return kDone;
    }
    std::optional<int> const jobs = fx_Jobs(parser, error);
    if (!jobs)
        return fx_WrongUsage(QStringLiteral("verify"), error);
    return fx_Verify(parsed, parser.isSet(QStringLiteral("first")), *jobs);
}

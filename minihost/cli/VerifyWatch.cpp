#include "VerifyWatch.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <sys/prctl.h>

#include "ExitCode.h"
#include "Interrupt.h"
#include "VerifyExamination.h"
#include "VerifyReport.h"

static constexpr qint64 kReportInterval = 100; // milliseconds; a person reads no faster

static void fx_Say(QByteArray const& line)
{
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

int fx_RunWatchedVerify(QStringList const& arguments)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL); // with the window goes whoever wants to know
    fx_CatchInterrupts();             // from here on SIGTERM ends it with what is known
    SxExamination how;
    how.options.pluginPath = arguments.value(0);
    how.jobs = std::max(arguments.value(1).toInt(), 1);
    QElapsedTimer sinceReport;
    how.onProgress = [&](int frames, int examined) {
        if (sinceReport.isValid() && sinceReport.elapsed() < kReportInterval)
            return;
        sinceReport.start();
        fx_Say("at " + QByteArray::number(examined) + ' ' + QByteArray::number(frames));
    };
    SxFindings const findings = fx_Examine(arguments.value(2), how);
    fx_Say("found " + QJsonDocument(fx_FindingsJson(findings)).toJson(QJsonDocument::Compact));
    if (!findings.refusal.isEmpty())
        return findings.refusalCode;
    return fx_Complaint(findings).isEmpty() ? kDone : kBadInput;
}

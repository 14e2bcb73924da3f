#include "Minihost.h"

#include <QJsonDocument>
#include <QProcess>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

QJsonObject SxMinihostRun::json() const { return QJsonDocument::fromJson(out).object(); }

QString fx_MinihostProgram() { return QStringLiteral(MINIHOST_PROGRAM); }

/// Under the sanitizers minihost leaves standard error open for their reports, and with it for the
/// remarks of OpenH264, which nobody asked for.
static QByteArray fx_WithoutLibraryRemarks(QByteArray const& err)
{
#ifdef __SANITIZE_ADDRESS__
    QByteArray kept;
    for (QByteArray const& line : err.split('\n')) {
        if (!line.startsWith("[OpenH264] ") && !line.isEmpty())
            kept += line + '\n';
    }
    return kept;
#else
    return err;
#endif
}

static SxMinihostRun fx_Run(QString const& program, QStringList const& arguments, QByteArray const& input,
                            QString const& folder)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    SxMinihostRun run;
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit)
        return run;
    run.exitCode = process.exitCode();
    run.out = process.readAllStandardOutput();
    run.err = fx_WithoutLibraryRemarks(process.readAllStandardError());
    return run;
}

SxMinihostRun fx_RunMinihost(QStringList const& arguments, QByteArray const& input, QString const& folder)
{
    return fx_Run(fx_MinihostProgram(), arguments, input, folder);
}

SxMinihostRun fx_RunMinihostInShell(QString const& script, QStringList const& arguments,
                                    QString const& folder)
{
    QStringList const shell{QStringLiteral("-c"), script, QStringLiteral("sh"), fx_MinihostProgram()};
    return fx_Run(QStringLiteral("/bin/sh"), shell + arguments, QByteArray(), folder);
}

long fx_MinihostPeakKb(QStringList const& arguments)
{
    std::vector<QByteArray> words{fx_MinihostProgram().toLocal8Bit()};
    for (QString const& argument : arguments)
        words.push_back(argument.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    // The address sanitizer keeps freed memory; here that would look like a leak.
    QByteArray sanitizer("ASAN_OPTIONS=quarantine_size_mb=0:thread_local_quarantine_size_kb=0");
    std::vector<char*> environment{sanitizer.data(), nullptr};

    pid_t child = 0;
    if (posix_spawn(&child, argv[0], nullptr, nullptr, argv.data(), environment.data()) != 0)
        return -1;
    int status = 0;
    rusage usage = {};
    if (wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return -1;
    return usage.ru_maxrss;
}

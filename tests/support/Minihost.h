#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QStringList>

/// What a run of the built minihost left behind.
struct SxMinihostRun
{
    int exitCode = -1; ///< -1 when it did not end by itself
    QByteArray out;    ///< standard output
    QByteArray err;    ///< standard error

    QJsonObject json() const; ///< standard output as a JSON object; empty when it is none
};

QString fx_MinihostProgram(); ///< path of the program under test

/// Runs minihost with \p arguments and \p input on its standard input, in \p folder, and waits for its
/// end. Neither of its outputs is a terminal.
SxMinihostRun fx_RunMinihost(QStringList const& arguments, QByteArray const& input = QByteArray(),
                             QString const& folder = QString());

/// The same through a shell, whose \p script has the command as "$@": `"$@" >/dev/full`.
SxMinihostRun fx_RunMinihostInShell(QString const& script, QStringList const& arguments,
                                    QString const& folder = QString());

/// Runs minihost quietly and returns the largest memory that it had resident, in kB; -1 unless it
/// ended with exit code 0.
long fx_MinihostPeakKb(QStringList const& arguments);

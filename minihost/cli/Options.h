#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QVector>
#include <optional>

/// An option of a command, described once for the parser and for the help.
struct SxOption
{
    char const* name;
    char letter = 0;             ///< its short form; 0 for none
    char const* value = nullptr; ///< what help calls its value; null when it takes none
    QString description;         ///< for help; a newline breaks the line
};

void fx_AddOptions(QCommandLineParser& parser, QVector<SxOption> const& options);

/// A line for each option, and one more for each break in its description; a newline at the end.
/// QCommandLineParser::helpText() has no headings between options and breaks lines where it likes.
QString fx_OptionsHelp(QVector<SxOption> const& options);

/// How a command runs, whatever it does.
struct SxRunOptions
{
    bool json = false;
    bool quiet = false;
    bool verbose = false;
    bool help = false;
    QString pluginPath;
};

QVector<SxOption> fx_RunOptions(QString const& json); ///< \p json: what --json prints, for help

SxOption fx_JobsOption(QString const& what); ///< --jobs

/// What --jobs says, or as many as the machine has processors. Nothing, with \p error one sentence, when it
/// is no number of jobs.
std::optional<int> fx_Jobs(QCommandLineParser const& parser, QString& error);

/// Reads \p arguments with \p parser, which knows fx_RunOptions() and the command's own. \return false, with
/// \p error one sentence, when they make no sense. With help asked for nothing else is looked at.
bool fx_ParseOptions(QCommandLineParser& parser, QStringList const& arguments, SxRunOptions& parsed,
                     QString& error);

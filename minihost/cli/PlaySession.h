#pragma once

#include <QCommandLineParser>
#include <QString>
#include <optional>

#include "PluginHost.h"
#include "PluginMessages.h"
#include "RecordingReader.h"

/// What the commands that read a recording have in common on their command lines.
struct SxPlayArguments
{
    QString file;
    bool json = false;
    bool quiet = false;
    bool verbose = false;
    bool help = false;
    QString pluginPath;
};

void fx_DeclarePlayOptions(QCommandLineParser& parser);

/// Reads \p arguments with \p parser, which knows the options above and the command's own. \return false,
/// with \p error one sentence, when they make no sense. With help asked for nothing else is looked at.
bool fx_ParsePlayArguments(QCommandLineParser& parser, QStringList const& arguments, SxPlayArguments& parsed,
                           QString& error);

/// The part of every help text that tells of the options above but --json.
QString fx_PlayOptionsHelp();

/// A wrong command line: says so and returns the exit code.
int fx_WrongUsage(QString const& command, QString const& sentence);

/// A loaded plug-in and a recording opened with it.
class CxPlaySession
{
public:
    explicit CxPlaySession(SxPlayArguments const& arguments);

    /// \return false, with \p error one sentence, when the plug-in or the recording cannot be had.
    bool open(QString& error);

    CxRecordingReader& recording() { return *m_recording; } ///< once open

private:
    SxPlayArguments const& m_arguments;
    CxPluginMessages m_messages;
    CxPluginHost m_host;
    std::optional<CxRecordingReader> m_recording; // last, so that its objects go before the plug-in finishes
};

#pragma once

#include <functional>

#include "ExitCode.h"
#include "Options.h"
#include "RecordingReader.h"

/// What the commands that read a recording have in common on their command lines.
struct SxPlayArguments
{
    SxRunOptions run;
    QStringList files; ///< one, unless the command takes several
    QString file() const { return files.value(0); }
};

/// Reads \p arguments with \p parser, which knows fx_RunOptions() and the command's own. \return false, with
/// \p error one sentence, when they make no sense. With help asked for nothing else is looked at.
bool fx_ParsePlayArguments(QCommandLineParser& parser, QStringList const& arguments, SxPlayArguments& parsed,
                           QString& error);

/// The same for a command that takes several recordings.
bool fx_ParseSeveralPlayArguments(QCommandLineParser& parser, QStringList const& arguments,
                                  SxPlayArguments& parsed, QString& error);

/// What a command ends with that could not open \p file: kBadInput, unless it is memory that is short.
ExitCode fx_RefusalCode(QString const& file);

/// After a picture that does not decode: throws std::bad_alloc when that may be for want of memory, which
/// says nothing about the recording.
void fx_RuleOutShortMemory();

/// Opens plug-in and recording and has \p work done with it. \return what \p work returned, or the exit code
/// of what could not be opened, which is then told.
int fx_RunOnRecording(SxPlayArguments const& arguments,
                      std::function<int(CxRecordingReader& recording)> const& work);

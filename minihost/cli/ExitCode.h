#pragma once

#include <QString>
#include <initializer_list>

/// What a command ends with. Scripts rely on the numbers.
enum ExitCode {
    kDone = 0,
    kFailed = 1, ///< for a reason that none of the others names
    kWrongUsage = 2,
    kNotWhole = 3,     ///< done, but pictures are missing; only where --strict or --keep-all asks for it
    kBadInput = 4,     ///< unreadable, damaged or not what the command reads
    kOutputFailed = 5, ///< a file, a pipe or standard output did not take it all
    kNoSuchFrame = 6,
    kInterrupted = 128, ///< plus the signal's number; what is written until then is complete
};

/// "Exit code: 0 done, 1 failed, …" for the help of a command that ends with \p codes; no newline at the end.
QString fx_ExitCodesHelp(std::initializer_list<ExitCode> codes);

int fx_Failed(QString const& sentence, ExitCode code = kFailed);    ///< tells the error; \p code
int fx_WrongUsage(QString const& command, QString const& sentence); ///< also where to read on; kWrongUsage

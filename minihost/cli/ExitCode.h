#pragma once

#include <QString>

/// What a command ends with.
enum ExitCode {
    kDone = 0,
    kFailed = 1,
    kWrongUsage = 2,
};

int fx_Failed(QString const& sentence);                             ///< tells the error; kFailed
int fx_WrongUsage(QString const& command, QString const& sentence); ///< also where to read on; kWrongUsage

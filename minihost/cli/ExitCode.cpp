#include "ExitCode.h"

#include "Console.h"

int fx_Failed(QString const& sentence)
{
    Console::error(sentence);
    return kFailed;
}

int fx_WrongUsage(QString const& command, QString const& sentence)
{
    Console::error(QStringLiteral("%1 See minihost %2 --help.").arg(sentence, command));
    return kWrongUsage;
}

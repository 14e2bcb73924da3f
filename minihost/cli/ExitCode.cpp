#include "ExitCode.h"

#include <QStringList>

#include "Console.h"

static constexpr int kColumns = 80;

static QString fx_Meaning(ExitCode code)
{
    switch (code) {
    case kDone:
        return QStringLiteral("0 done");
    case kFailed:
        return QStringLiteral("1 failed otherwise");
    case kWrongUsage:
        return QStringLiteral("2 wrong usage");
    case kNotWhole:
        return QStringLiteral("3 done, but not whole (with --strict)");
    case kBadInput:
        return QStringLiteral("4 input unreadable, damaged or not a recording");
    case kOutputFailed:
        return QStringLiteral("5 output failed");
    case kNoSuchFrame:
        return QStringLiteral("6 no such frame");
    case kInterrupted:
        return QStringLiteral("129, 130, 143 interrupted by HUP, INT, TERM: what is written is complete");
    }
    return QString();
}

QString fx_ExitCodesHelp(std::initializer_list<ExitCode> codes)
{
    QStringList meanings;
    for (ExitCode const code : codes)
        meanings += fx_Meaning(code);
    QString help = QStringLiteral("Exit code:");
    auto column = help.size();
    for (QString const& word : meanings.join(QStringLiteral(", ")).split(QLatin1Char(' '))) {
        bool const fits = column + 1 + word.size() < kColumns;
        help += fits ? QLatin1Char(' ') : QLatin1Char('\n');
        column = (fits ? column + 1 : 0) + word.size();
        help += word;
    }
    return help + QLatin1Char('.');
}

int fx_Failed(QString const& sentence, ExitCode code)
{
    Console::error(sentence);
    return code;
}

int fx_WrongUsage(QString const& command, QString const& sentence)
{
    Console::error(QStringLiteral("%1 See minihost %2 --help.").arg(sentence, command));
    return kWrongUsage;
}

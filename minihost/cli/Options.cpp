#include "Options.h"

#include <algorithm>
#include <thread>

static constexpr int kMostJobs = 256;
static constexpr int kLeftColumn = 20; // characters, for the option and its value

void fx_AddOptions(QCommandLineParser& parser, QVector<SxOption> const& options)
{
    // A file name that begins with a dash is not read as letters behind each other, of which one asks for
    // help.
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    for (SxOption const& option : options) {
        QStringList names{QString::fromLatin1(option.name)};
        if (option.letter != 0)
            names.prepend(QString(QLatin1Char(option.letter)));
        parser.addOption({names, option.description, QString::fromLatin1(option.value)});
    }
}

QString fx_OptionsHelp(QVector<SxOption> const& options)
{
    QString help;
    for (SxOption const& option : options) {
        QString left = QStringLiteral("--") + QLatin1String(option.name);
        if (option.letter != 0)
            left.prepend(QStringLiteral("-%1, ").arg(QLatin1Char(option.letter)));
        if (option.value)
            left += QLatin1Char(' ') + QLatin1String(option.value);
        for (QString const& line : option.description.split(QLatin1Char('\n'))) {
            help += QStringLiteral("  %1%2\n").arg(left, -kLeftColumn).arg(line);
            left.clear();
        }
    }
    return help;
}

QVector<SxOption> fx_RunOptions(QString const& json)
{
    return {
        {"json", 0, nullptr, json},
        {"quiet", 'q', nullptr, QStringLiteral("only warnings and errors")},
        {"verbose", 'v', nullptr, QStringLiteral("also the raw messages of the plug-in and of FFmpeg")},
        {"plugin-path", 0, "P",
         QStringLiteral("the plug-in's file or folder, or the prefix it is installed "
                        "in\n(MINIHOST_PLUGIN_PATH, else this program's)")},
        {"help", 'h', nullptr, QStringLiteral("this text")},
    };
}

SxOption fx_JobsOption(QString const& what)
{
    return {
        "jobs", 0, "N",
        QStringLiteral("%1; the results are the same with any\nnumber (one for each processor)").arg(what)};
}

std::optional<int> fx_Jobs(QCommandLineParser const& parser, QString& error)
{
    QString const text = parser.value(QStringLiteral("jobs"));
    if (!parser.isSet(QStringLiteral("jobs")))
        return std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, kMostJobs);
    bool isNumber = false;
    int const jobs = text.toInt(&isNumber);
    if (isNumber && jobs >= 1 && jobs <= kMostJobs)
        return jobs;
    error = QStringLiteral("--jobs takes a number from 1 to %1, not '%2'.").arg(kMostJobs).arg(text);
    return std::nullopt;
}

/// The option that has two values where only one counts, as it was typed; empty when there is none.
static QString fx_GivenTwice(QCommandLineParser const& parser)
{
    for (QString const& name : parser.optionNames()) {
        if (name != QLatin1String("input-option") && parser.values(name).size() > 1)
            return (name.size() > 1 ? QStringLiteral("--") : QStringLiteral("-")) + name;
    }
    return QString();
}

bool fx_ParseOptions(QCommandLineParser& parser, QStringList const& arguments, SxRunOptions& parsed,
                     QString& error)
{
    bool const isParsed = parser.parse(arguments);
    parsed.help = parser.isSet(QStringLiteral("help"));
    if (parsed.help)
        return true;
    if (!isParsed) {
        error = parser.errorText();
        if (!error.endsWith(QLatin1Char('.')))
            error += QLatin1Char('.');
        return false;
    }
    QString const twice = fx_GivenTwice(parser);
    if (!twice.isEmpty()) {
        error = QStringLiteral("%1 is given twice.").arg(twice);
        return false;
    }
    parsed.json = parser.isSet(QStringLiteral("json"));
    parsed.quiet = parser.isSet(QStringLiteral("quiet"));
    parsed.verbose = parser.isSet(QStringLiteral("verbose"));
    parsed.pluginPath = parser.value(QStringLiteral("plugin-path"));
    return true;
}

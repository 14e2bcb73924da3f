#include "PlaySession.h"

#include "Console.h"
#include "FFmpegSource.h"

void fx_DeclarePlayOptions(QCommandLineParser& parser)
{
    for (QStringList const& names :
         {QStringList{QStringLiteral("json")}, QStringList{QStringLiteral("q"), QStringLiteral("quiet")},
          QStringList{QStringLiteral("v"), QStringLiteral("verbose")},
          QStringList{QStringLiteral("h"), QStringLiteral("help")}})
        parser.addOption(QCommandLineOption(names));
    parser.addOption({QStringLiteral("plugin-path"), QString(), QStringLiteral("value")});
}

bool fx_ParsePlayArguments(QCommandLineParser& parser, QStringList const& arguments, SxPlayArguments& parsed,
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
    QStringList const names = parser.positionalArguments();
    if (names.size() != 1 || names.first().isEmpty()) {
        error = names.size() > 1
                    ? QStringLiteral("One recording at a time: '%1' is one too many.").arg(names[1])
                    : QStringLiteral("No recording is given.");
        return false;
    }
    parsed.file = names.first();
    parsed.json = parser.isSet(QStringLiteral("json"));
    parsed.quiet = parser.isSet(QStringLiteral("quiet"));
    parsed.verbose = parser.isSet(QStringLiteral("verbose"));
    parsed.pluginPath = parser.value(QStringLiteral("plugin-path"));
    return true;
}

QString fx_PlayOptionsHelp()
{
    return QStringLiteral("  -q, --quiet         only warnings and errors\n"
                          "  -v, --verbose       also the raw messages of the plug-in and of FFmpeg\n"
                          "  --plugin-path P     the plug-in's file or folder (MINIHOST_PLUGIN_PATH, else\n"
                          "                      beside this program)\n"
                          "  -h, --help          this text\n");
}

int fx_WrongUsage(QString const& command, QString const& sentence)
{
    Console::error(QStringLiteral("%1 See minihost %2 --help.").arg(sentence, command));
    return kWrongUsage;
}

CxPlaySession::CxPlaySession(SxPlayArguments const& arguments)
    : m_arguments(arguments)
    , m_messages(arguments.verbose)
{
    Console::setQuiet(arguments.quiet);
    CxFFmpegSource::setLogShown(arguments.verbose);
}

bool CxPlaySession::open(QString& error)
{
    return m_host.load(m_arguments.pluginPath, error) && m_recording.emplace().open(m_arguments.file, error);
}

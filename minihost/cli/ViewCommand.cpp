#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "Options.h"
#include "Viewer.h"

/// Of what every command has; a window has nothing to print.
static QVector<SxOption> fx_Options()
{
    QVector<SxOption> options;
    for (SxOption const& option : fx_RunOptions({})) {
        if (qstrcmp(option.name, "plugin-path") == 0 || qstrcmp(option.name, "help") == 0)
            options.append(option);
    }
    return options;
}

static QString fx_Help()
{
    return QStringLiteral("Opens a window that plays recordings, shows cameras and records them.\n"
                          "\n"
                          "  minihost view                    a window to choose in\n"
                          "  minihost view test.h264          a recording\n"
                          "  minihost view camera:            the built-in test camera, live\n"
                          "  minihost view v4l2:/dev/video0   a webcam, live\n"
                          "\n"
                          "Usage: minihost view [options] [FILE.h264|SOURCE]\n"
                          "\n"
                          "SOURCE is camera:, a video file, or a URL or DEVICE:NAME that FFmpeg opens.\n"
                          "\n") +
           fx_OptionsHelp(fx_Options()) +
           QStringLiteral("\n"
                          "F1 in the window lists its keys. Texts follow the locale: English or German.\n") +
           fx_ExitCodesHelp({kDone, kFailed, kWrongUsage, kOutputFailed});
}

int fx_RunView(QStringList const& arguments)
{
    QCommandLineParser parser;
    fx_AddOptions(parser, fx_Options());
    bool const isParsed = parser.parse(arguments);
    if (parser.isSet(QStringLiteral("help"))) {
        Console::data(fx_Help());
        return kDone;
    }
    if (!isParsed)
        return fx_WrongUsage(QStringLiteral("view"), parser.errorText());
    QStringList const names = parser.positionalArguments();
    if (names.size() > 1)
        return fx_WrongUsage(QStringLiteral("view"), QStringLiteral("One file or source can be opened."));
    QString error;
    return fx_ShowWindow(parser.value(QStringLiteral("plugin-path")), names.value(0), error)
               ? kDone
               : fx_Failed(error);
}

#include <QCoreApplication>
#include <clocale>
#include <langinfo.h>

#include "Commands.h"
#include "Console.h"
#include "Viewer.h"

static QString fx_Help()
{
    return QStringLiteral(
        "Runs the H.264 codec plug-in without its camera viewer.\n"
        "\n"
        "  minihost record camera: test.h264    record the built-in test camera\n"
        "  minihost record clip.mp4 clip.h264   record what a video shows\n"
        "\n"
        "Usage: minihost COMMAND [arguments]\n"
        "\n"
        "  record     pictures into a raw H.264 file\n"
        "  info       what a recording holds: size, frames, duration, bit rate\n"
        "  export     frames of a recording as pictures, a contact sheet, a stream, hashes\n"
        "  view       a window to watch, play and record in\n"
        "  verify     decode a recording and report the first frame that fails\n"
        "  help C     how to use command C, as C --help\n"
        "  --version  version of this program\n"
        "\n"
        "Exit code: 0 done, 1 failed, 2 wrong usage.");
}

static int fx_Dispatch(QStringList arguments)
{
    QString command = arguments.isEmpty() ? QString() : arguments.first();
    if (command == QLatin1String("help") && arguments.size() > 1) {
        command = arguments[1];
        arguments = QStringList{command, QStringLiteral("--help")};
    }
    if (command == QLatin1String("view")) { // only "help view": main() runs the viewer
        Console::data(fx_ViewerHelp());
        return kDone;
    }
    if (command == QLatin1String("record"))
        return fx_RunRecord(arguments);
    if (command == QLatin1String("info"))
        return fx_RunInfo(arguments);
    if (command == QLatin1String("export"))
        return fx_RunExport(arguments);
    if (command == QLatin1String("verify"))
        return fx_RunVerify(arguments);
    if (command == QLatin1String("--help") || command == QLatin1String("-h") ||
        command == QLatin1String("help")) {
        Console::data(fx_Help());
        return kDone;
    }
    if (command == QLatin1String("--version")) {
        Console::data(QStringLiteral("minihost " MINIHOST_VERSION));
        return kDone;
    }
    Console::error(command.isEmpty()
                       ? QStringLiteral("No command is given. See minihost --help.")
                       : QStringLiteral("There is no command '%1'. See minihost --help.").arg(command));
    return kWrongUsage;
}

/// Without a locale, as in containers, file names are still UTF-8. Qt takes the locale from the environment.
static void fx_UseUtf8()
{
    std::setlocale(LC_CTYPE, "");
    if (qstrcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0)
        qputenv(qEnvironmentVariableIsEmpty("LC_ALL") ? "LC_CTYPE" : "LC_ALL", "C.UTF-8");
}

int main(int argc, char** argv)
{
    fx_UseUtf8();
    if (argc > 1 && qstrcmp(argv[1], "view") == 0)
        return fx_RunViewer(argc, argv); // with an application object of its own
    QCoreApplication const app(argc, argv);
    return fx_Dispatch(QCoreApplication::arguments().mid(1));
}

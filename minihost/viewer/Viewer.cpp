#include "Viewer.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

#include "MainWindow.h"
#include "PluginHost.h"
#include "PluginMessages.h"
#include "Translations.h"

QString fx_ViewerHelp()
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
                          "\n"
                          "  --plugin-path P     the plug-in's file or folder (MINIHOST_PLUGIN_PATH, else\n"
                          "                      beside this program)\n"
                          "  -h, --help          this text\n"
                          "\n"
                          "F1 in the window lists its keys. Texts follow the locale: English or German.\n"
                          "Exit code: 0 done, 1 failed, 2 wrong usage.");
}

/// Qt ends the process when it finds no display: better to say so first.
static bool fx_HasDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

static int fx_Fail(QString const& sentence, int exitCode)
{
    QTextStream(stderr) << "error: " << sentence << Qt::endl;
    return exitCode;
}

int fx_RunViewer(int& argc, char** argv)
{
    QCommandLineParser parser;
    QCommandLineOption const help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    QCommandLineOption const pluginPath(QStringLiteral("plugin-path"), {}, QStringLiteral("P"));
    parser.addOptions({help, pluginPath});
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    if (!parser.parse(arguments))
        return fx_Fail(parser.errorText() + QStringLiteral(" See minihost view --help."), 2);
    if (parser.isSet(help)) {
        QTextStream(stdout) << fx_ViewerHelp() << Qt::endl;
        return 0;
    }
    if (parser.positionalArguments().size() > 1)
        return fx_Fail(QStringLiteral("One file or source can be opened. See minihost view --help."), 2);
    if (!fx_HasDisplay())
        return fx_Fail(QStringLiteral("There is no display to open a window on."), 1);

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0) // later versions always do
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("tarn"));
    QApplication::setApplicationName(QStringLiteral("minihost"));
    QApplication::setApplicationVersion(QStringLiteral(MINIHOST_VERSION));

    CxPluginMessages const messages; // kept for the window, which says them in its own words
    CxPluginHost plugins;
    QString error;
    if (!plugins.load(parser.value(pluginPath), error))
        return fx_Fail(error, 1);
    fx_InstallTranslations(QLocale(), plugins.fileNames());

    CxMainWindow window(plugins);
    window.show();
    if (!parser.positionalArguments().isEmpty())
        window.openNamed(parser.positionalArguments().first());
    return QApplication::exec();
}

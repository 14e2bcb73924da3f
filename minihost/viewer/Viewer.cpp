#include "Viewer.h"

#include <QApplication>
#include <QIcon>

#include "MainWindow.h"
#include "PluginHost.h"
#include "PluginMessages.h"
#include "Translations.h"

/// Qt ends the process when it finds no display: better to say so first.
static bool fx_HasDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

bool fx_ShowWindow(QString const& pluginPath, QString const& toOpen, QString& error)
{
    if (!fx_HasDisplay()) {
        error = QStringLiteral("There is no display to open a window on.");
        return false;
    }
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0) // later versions always do
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    char name[] = "minihost"; // Qt's own options are none of the program's
    char* argv[] = {name, nullptr};
    int argc = 1;
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("tarn"));
    QApplication::setApplicationName(QStringLiteral("minihost"));
    QApplication::setApplicationVersion(QStringLiteral(MINIHOST_VERSION));
    QString const id = QStringLiteral("com.quarn.minihost"); // of the desktop file and the icon
    QApplication::setDesktopFileName(id);
    QApplication::setWindowIcon(QIcon::fromTheme(id));

    CxPluginMessages const messages; // kept for the window, which says them in its own words
    CxPluginHost plugins;
    if (!plugins.load(pluginPath, error))
        return false;
    fx_InstallTranslations(QLocale(), plugins.fileNames());

    CxMainWindow window(plugins);
    window.show();
    if (!toOpen.isEmpty())
        window.openNamed(toOpen);
    QApplication::exec();
    return true;
}

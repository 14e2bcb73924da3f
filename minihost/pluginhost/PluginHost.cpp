#include "PluginHost.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPluginLoader>
#include <cerrno>
#include <dirent.h>

#include "ClassRegistry.h"
#include "CxPlugin.h"

static QString fx_WhereToLook(QString const& path)
{
    if (!path.isEmpty())
        return path;
    QString const fromEnvironment = qEnvironmentVariable("MINIHOST_PLUGIN_PATH");
    return fromEnvironment.isEmpty() ? QCoreApplication::applicationDirPath() : fromEnvironment;
}

/// Why the folder cannot be read, for which Qt has no word; empty when it can.
static QString fx_WhyUnreadable(QString const& folder)
{
    DIR* const opened = ::opendir(QFile::encodeName(folder).constData());
    if (!opened)
        return qt_error_string(errno);
    ::closedir(opened);
    return QString();
}

CxPluginHost::~CxPluginHost()
{
    for (CxPlugin* plugin : m_plugins)
        plugin->finish();
}

bool CxPluginHost::load(QString const& path, QString& error)
{
    QString const place = fx_WhereToLook(path);
    QFileInfo const info(place);
    if (!info.exists()) {
        error = QStringLiteral("%1: there is no such plug-in file or folder.").arg(place);
        return false;
    }
    if (!info.isDir())
        return loadFile(info.absoluteFilePath(), error);

    QDir const folder(place);
    QStringList const names = folder.entryList({QStringLiteral("libtvp*.so")}, QDir::Files, QDir::Name);
    if (names.isEmpty()) {
        QString const cause = fx_WhyUnreadable(place);
        if (!cause.isEmpty()) {
            error = QStringLiteral("%1: the folder cannot be searched for plug-ins: %2.").arg(place, cause);
            return false;
        }
        error = QStringLiteral("%1: the folder holds no plug-in (libtvp*.so).").arg(place);
        return false;
    }
    for (QString const& name : names) {
        if (!loadFile(folder.absoluteFilePath(name), error))
            return false;
    }
    return true;
}

bool CxPluginHost::loadFile(QString const& fileName, QString& error)
{
    QPluginLoader loader(fileName);
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    QObject* const instance = loader.instance();
    if (!instance) {
        // Qt's text names the file and the linker's reason.
        error = QStringLiteral("%1: the plug-in cannot be loaded: %2").arg(fileName, loader.errorString());
        return false;
    }
    auto* const plugin = qobject_cast<CxPlugin*>(instance);
    if (!plugin) {
        error = QStringLiteral("%1: the library is a Qt plug-in, but none for this host.").arg(fileName);
        return false;
    }
    if (!plugin->init()) {
        error = QStringLiteral("%1: the plug-in refused to start.").arg(fileName);
        return false;
    }
    m_plugins.push_back(plugin);
    m_fileNames.append(fileName);
    return true;
}

std::unique_ptr<QObject> CxPluginHost::create(char const* interfaceName, QString& error)
{
    QString const wanted = QString::fromLatin1(interfaceName);
    for (SxRegisteredClass const& entry : fx_RegisteredClasses(wanted)) {
        std::unique_ptr<QObject> object(entry.metaObject->newInstance());
        if (object && object->qt_metacast(interfaceName))
            return object;
    }
    error = QStringLiteral("No loaded plug-in provides an %1.").arg(wanted);
    return nullptr;
}

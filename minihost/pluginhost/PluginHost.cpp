#include "PluginHost.h"

#include <QJsonObject>
#include <QPluginLoader>

#include "ClassRegistry.h"
#include "CxPlugin.h"
#include "PluginFault.h"
#include "PluginPlaces.h"

CxPluginHost::~CxPluginHost()
{
    for (CxPlugin* plugin : m_plugins)
        plugin->finish();
}

bool CxPluginHost::load(QString const& path, QString& error)
{
    QStringList const files = fx_FindPlugins(path, error);
    for (QString const& file : files) {
        if (!loadFile(file, error))
            return false;
    }
    return !files.isEmpty();
}

bool CxPluginHost::loadFile(QString const& fileName, QString& error)
{
    QPluginLoader loader(fileName);
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    QObject* const instance = loader.instance();
    if (!instance) {
        error = QStringLiteral("%1: the plug-in cannot be loaded: %2.")
                    .arg(fileName, fx_WhyNotLoaded(fileName, loader.errorString()));
        return false;
    }
    auto* const plugin = qobject_cast<CxPlugin*>(instance);
    if (!plugin) {
        error = QStringLiteral("%1: the library is a Qt plug-in, but none for this host: its IID is %2.")
                    .arg(fileName, loader.metaData().value(QLatin1String("IID")).toString());
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

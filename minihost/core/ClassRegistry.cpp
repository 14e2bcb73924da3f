#include "ClassRegistry.h"

#include <algorithm>
#include <utility>

#include "CxRTTI.h"

static QList<SxRegisteredClass>& fx_Registry()
{
    static QList<SxRegisteredClass> registry;
    return registry;
}

CxRTTI* CxRTTI::instance()
{
    static CxRTTI registry;
    return &registry;
}

bool CxRTTI::registerClass(CxPlugin* plugin, QMetaObject const& metaObject, QString const& interfaceName)
{
    QList<SxRegisteredClass>& registry = fx_Registry();
    bool const isKnown = std::any_of(registry.cbegin(), registry.cend(), [&](SxRegisteredClass const& known) {
        return known.metaObject == &metaObject;
    });
    if (isKnown)
        return false;
    registry.append({plugin, &metaObject, interfaceName});
    return true;
}

QList<SxRegisteredClass> fx_RegisteredClasses(QString const& interfaceName)
{
    if (interfaceName.isEmpty())
        return fx_Registry();
    QList<SxRegisteredClass> classes;
    for (SxRegisteredClass const& known : std::as_const(fx_Registry())) {
        if (known.interfaceName == interfaceName)
            classes.append(known);
    }
    return classes;
}

void fx_UnregisterClasses(CxPlugin* plugin)
{
    QList<SxRegisteredClass>& registry = fx_Registry();
    registry.erase(
        std::remove_if(registry.begin(), registry.end(),
                       [plugin](SxRegisteredClass const& known) { return known.plugin == plugin; }),
        registry.end());
}

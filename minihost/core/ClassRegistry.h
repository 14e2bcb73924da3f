#pragma once

#include <QList>
#include <QMetaObject>
#include <QString>

#include "tarnCoreGlobal.h"

class CxPlugin;

/// A class that a plug-in made known through CxRTTI::registerClass(). Plug-in and meta-object are the
/// plug-in's and end with it.
struct SxRegisteredClass
{
    CxPlugin* plugin;
    QMetaObject const* metaObject;
    QString interfaceName; ///< the host interface it implements, "IxVideoEncoder"
};

/// The registered classes that implement \p interfaceName, all of them when it is empty, in the order
/// of their registration. GUI thread only.
TARNCORE_EXPORT QList<SxRegisteredClass> fx_RegisteredClasses(QString const& interfaceName = QString());

/// Forgets every class of \p plugin. To be called before the plug-in is unloaded, as its meta-objects
/// go with it.
TARNCORE_EXPORT void fx_UnregisterClasses(CxPlugin* plugin);

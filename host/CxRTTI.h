#pragma once

#include <QMetaObject>
#include <QString>

#include "tarnCoreGlobal.h"

class CxPlugin;

/// The host's registry of classes that it can create. One for the process; GUI thread only.
class TARNCORE_EXPORT CxRTTI
{
public:
    static CxRTTI* instance(); ///< never null

    /// Makes a class known: who registers it, its static meta-object (the host creates objects with
    /// `newInstance()`, so it needs an invokable constructor without required arguments) and the
    /// host interface that it implements. False when the class is registered already.
    bool registerClass(CxPlugin* plugin, QMetaObject const& metaObject, QString const& interfaceName);

private:
    CxRTTI() = default;
    Q_DISABLE_COPY(CxRTTI)
};

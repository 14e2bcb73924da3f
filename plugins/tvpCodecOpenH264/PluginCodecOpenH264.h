#pragma once

#include <QObject>

#include "CxPlugin.h"

/// The plug-in's one object: says who it is and registers what the host can create. Keeps no state.
class CxPluginCodecOpenH264 : public QObject, public CxPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quarn.CxPluginCodecOpenH264")
    Q_INTERFACES(CxPlugin)

public:
    bool init() override; ///< registers the creatable classes; always true
    QString copyrightNotice() const override;
    QString name() const override;
    QString author() const override;
    QString description() const override;
    void version(int& major, int& minor, int& build) const override; ///< the host core library's
    using CxPlugin::version;
    QString website() const override;
};

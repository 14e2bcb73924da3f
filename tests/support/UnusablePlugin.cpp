#include <QObject>
#include <QtPlugin>

#ifdef NEEDS_SYMBOL
/// Of a host that is not this one.
struct CxOtherHost
{
    static void start(int way);
};
#endif

#ifdef REFUSES
#include "CxPlugin.h"

/// A plug-in for this host that does not want to work.
class CxRefusingPlugin : public QObject, public CxPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.example.CxRefusingPlugin")
    Q_INTERFACES(CxPlugin)

public:
    bool init() override { return false; }
};
#else
/// A Qt plug-in, but none for this host; with NEEDS_SYMBOL one that does not even load.
class CxUnusablePlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.example.CxOtherPlugin")

public:
#ifdef NEEDS_SYMBOL
    CxUnusablePlugin() { CxOtherHost::start(1); }
#endif
};
#endif

#include "UnusablePlugin.moc"

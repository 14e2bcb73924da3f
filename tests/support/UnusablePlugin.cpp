#include <QObject>
#include <QtPlugin>

#ifdef NEEDS_SYMBOL
/// Of a host that is not this one.
struct CxOtherHost
{
    static void start(int way);
};
#endif

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

#include "UnusablePlugin.moc"

#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

class CxPlugin;

/// Finds and loads plug-ins and creates the classes that they register.
///
/// Libraries stay loaded until the process ends, because objects made here may outlive this one; the
/// plug-ins' `finish()` runs when it goes. One for the process, main thread.
class CxPluginHost
{
public:
    CxPluginHost() = default;
    ~CxPluginHost();
    CxPluginHost(CxPluginHost const&) = delete;
    CxPluginHost& operator=(CxPluginHost const&) = delete;

    /// Loads every plug-in that fx_FindPlugins() finds with \p path.
    /// \return false, with \p error one sentence, when one does not start or there is none.
    bool load(QString const& path, QString& error);

    /// Loads the plug-in library of that name. \return false, with \p error one sentence, when it does not
    /// start.
    bool loadFile(QString const& fileName, QString& error);

    std::vector<CxPlugin*> const& plugins() const { return m_plugins; }
    QStringList const& fileNames() const { return m_fileNames; } ///< of their libraries, in the same order

    /// A new object of the first class registered for \p interfaceName, such as "IxImageDataSaver";
    /// null, with \p error one sentence, when there is none. `qt_metacast(interfaceName)` gives the
    /// interface.
    static std::unique_ptr<QObject> create(char const* interfaceName, QString& error);

private:
    QStringList m_fileNames;
    std::vector<CxPlugin*> m_plugins; ///< the objects belong to Qt's loader
};

/// An object made by CxPluginHost::create() together with the interface it was made for.
template<class Interface>
struct SxCreated
{
    std::unique_ptr<QObject> object; ///< null when creation failed
    Interface* as = nullptr;         ///< part of \ref object
};

/// CxPluginHost::create() with the interface's type: `fx_Create<IxImageDataSaver>("IxImageDataSaver",
/// error)`.
template<class Interface>
SxCreated<Interface> fx_Create(char const* interfaceName, QString& error)
{
    SxCreated<Interface> created;
    created.object = CxPluginHost::create(interfaceName, error);
    if (created.object)
        created.as = static_cast<Interface*>(created.object->qt_metacast(interfaceName));
    return created;
}

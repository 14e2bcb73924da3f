#include <QJsonArray>
#include <QJsonObject>
#include <QMetaClassInfo>
#include <QPluginLoader>

#include "ClassRegistry.h"
#include "Commands.h"
#include "Console.h"
#include "CxPlugin.h"
#include "ExitCode.h"
#include "LicenceNotice.h"
#include "Options.h"
#include "PluginHost.h"
#include "PluginMessages.h"
#include "PluginPlaces.h"

namespace {

#ifdef QT_NO_DEBUG
constexpr bool kIsDebug = false;
#else
constexpr bool kIsDebug = true;
#endif

QVector<SxOption> fx_Options()
{
    QVector<SxOption> const own{
        {"licence", 0, nullptr, QStringLiteral("also the licence notice of each, which hosts must show")}};
    return own + fx_RunOptions(QStringLiteral("what was found, and what does not load, as JSON"));
}

QString fx_Help()
{
    return QStringLiteral("Loads the plug-ins that are found and tells what they provide.\n"
                          "\n"
                          "  minihost plugins                       those of this program\n"
                          "  minihost plugins --plugin-path /usr    those installed there\n"
                          "\n"
                          "Usage: minihost plugins [options]\n"
                          "\n") +
           fx_OptionsHelp(fx_Options()) + QLatin1Char('\n') +
           fx_ExitCodesHelp({kDone, kFailed, kWrongUsage, kOutputFailed});
}

/// What `plugins` tells of a plug-in.
struct SxPluginInfo
{
    QString file;
    CxPlugin const* plugin;
    QString iid;
    bool isDebug;
};

SxPluginInfo fx_PluginInfo(QString const& file, CxPlugin const* plugin)
{
    QJsonObject const metaData = QPluginLoader(file).metaData();
    return {file, plugin, metaData.value(QLatin1String("IID")).toString(),
            metaData.value(QLatin1String("debug")).toBool()};
}

/// The classes that \p plugin registered.
QList<SxRegisteredClass> fx_ClassesOf(CxPlugin const* plugin)
{
    QList<SxRegisteredClass> own;
    for (SxRegisteredClass const& entry : fx_RegisteredClasses()) {
        if (entry.plugin == plugin)
            own.append(entry);
    }
    return own;
}

/// The name that the host shows for a class; empty when it has none.
QString fx_CustomName(QMetaObject const& metaObject)
{
    int const index = metaObject.indexOfClassInfo("CustomName");
    return index < 0 ? QString() : QString::fromUtf8(metaObject.classInfo(index).value());
}

QString fx_Indented(QString const& text)
{
    return QStringLiteral("  ") + QString(text).replace(QLatin1Char('\n'), QStringLiteral("\n  "));
}

QString fx_Text(SxPluginInfo const& info, bool withLicence)
{
    CxPlugin const& plugin = *info.plugin;
    QString text = QStringLiteral("%1: %2\n").arg(info.file, info.iid);
    QStringList about;
    for (QString const& part :
         {plugin.name() + QLatin1Char(' ') + plugin.version(), plugin.author(), plugin.website()}) {
        if (!part.isEmpty())
            about += part;
    }
    text += fx_Indented(about.join(QStringLiteral(", "))) + QLatin1Char('\n');
    if (!plugin.description().isEmpty())
        text += fx_Indented(plugin.description()) + QLatin1Char('\n');
    for (SxRegisteredClass const& entry : fx_ClassesOf(info.plugin))
        text += QStringLiteral("  %1 %2 %3\n")
                    .arg(entry.interfaceName, -18)
                    .arg(QLatin1String(entry.metaObject->className()), -18)
                    .arg(fx_CustomName(*entry.metaObject));
    if (withLicence)
        text += QLatin1Char('\n') + fx_LicenceNotice(plugin);
    return text.trimmed();
}

QJsonObject fx_Json(SxPluginInfo const& info, bool withLicence)
{
    CxPlugin const& plugin = *info.plugin;
    QJsonArray classes;
    for (SxRegisteredClass const& entry : fx_ClassesOf(info.plugin))
        classes.append(
            QJsonObject{{QStringLiteral("class"), QString::fromLatin1(entry.metaObject->className())},
                        {QStringLiteral("interface"), entry.interfaceName},
                        {QStringLiteral("customName"), fx_CustomName(*entry.metaObject)}});
    QJsonObject json{
        {QStringLiteral("file"), info.file},           {QStringLiteral("iid"), info.iid},
        {QStringLiteral("name"), plugin.name()},       {QStringLiteral("author"), plugin.author()},
        {QStringLiteral("website"), plugin.website()}, {QStringLiteral("description"), plugin.description()},
        {QStringLiteral("version"), plugin.version()}, {QStringLiteral("debug"), info.isDebug},
        {QStringLiteral("classes"), classes}};
    if (withLicence)
        json[QStringLiteral("licence")] = fx_LicenceNotice(plugin);
    return json;
}

/// Qt lets the two kinds of builds meet, and what goes wrong then is hard to find.
void fx_WarnOfMix(SxPluginInfo const& info)
{
    QString const kinds[] = {QStringLiteral("a release build"), QStringLiteral("a debug build")};
    if (info.isDebug != kIsDebug)
        Console::warning(
            QStringLiteral("%1 is %2 of the plug-in, and this program %3: they may not fit each other.")
                .arg(info.file, kinds[info.isDebug], kinds[kIsDebug]));
}

int fx_Tell(QStringList const& files, bool asJson, bool withLicence)
{
    CxPluginHost host;
    QJsonArray plugins;
    QJsonArray failures;
    QStringList texts;
    QStringList errors;
    for (QString const& file : files) {
        QString error;
        if (!host.loadFile(file, error)) {
            errors += error;
            failures.append(QJsonObject{{QStringLiteral("file"), file}, {QStringLiteral("error"), error}});
            continue;
        }
        SxPluginInfo const info = fx_PluginInfo(file, host.plugins().back());
        fx_WarnOfMix(info);
        texts += fx_Text(info, withLicence);
        plugins.append(fx_Json(info, withLicence));
    }
    QJsonObject const json{{QStringLiteral("plugins"), plugins}, {QStringLiteral("failures"), failures}};
    if (asJson)
        Console::data(QJsonDocument(json));
    else if (!texts.isEmpty())
        Console::data(texts.join(QStringLiteral("\n\n")));
    for (QString const& error : errors)
        Console::error(error);
    return errors.isEmpty() ? kDone : kFailed;
}

} // namespace

int fx_RunPlugins(QStringList const& arguments)
{
    QCommandLineParser parser;
    fx_AddOptions(parser, fx_Options());
    SxRunOptions run;
    QString error;
    if (!fx_ParseOptions(parser, arguments, run, error))
        return fx_WrongUsage(QStringLiteral("plugins"), error);
    if (run.help) {
        Console::data(fx_Help());
        return kDone;
    }
    if (!parser.positionalArguments().isEmpty())
        return fx_WrongUsage(QStringLiteral("plugins"),
                             QStringLiteral("'%1': --plugin-path says where to look.")
                                 .arg(parser.positionalArguments().first()));
    Console::setQuiet(run.quiet);
    CxPluginMessages const messages(run.verbose);
    QStringList const files = fx_FindPlugins(run.pluginPath, error);
    if (files.isEmpty())
        return fx_Failed(error);
    return fx_Tell(files, run.json, parser.isSet(QStringLiteral("licence")));
}

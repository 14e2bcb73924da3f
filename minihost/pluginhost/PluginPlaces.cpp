#include "PluginPlaces.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <dirent.h>

static QStringList fx_PluginNames(QString const& folder)
{
    return QDir(folder).entryList({QStringLiteral("libtvp*.so")}, QDir::Files, QDir::Name);
}

/// \p folder when it holds plug-ins, else \p other when that exists.
static QString fx_FolderOr(QString const& folder, QString const& other)
{
    bool const isOther = fx_PluginNames(folder).isEmpty() && QFileInfo(other).isDir();
    return isOther ? QDir::cleanPath(other) : folder;
}

static QString fx_WhereToLook(QString const& path)
{
    QString const given = path.isEmpty() ? qEnvironmentVariable("MINIHOST_PLUGIN_PATH") : path;
    if (given.isEmpty()) {
        QDir const programs(QCoreApplication::applicationDirPath());
        return fx_FolderOr(programs.path(), programs.absoluteFilePath(QStringLiteral(PLUGINS_FROM_PROGRAM)));
    }
    return fx_FolderOr(given, QDir(given).filePath(QStringLiteral(PLUGINS_BELOW_PREFIX)));
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

QStringList fx_FindPlugins(QString const& path, QString& error)
{
    QString const place = fx_WhereToLook(path);
    QFileInfo const info(place);
    if (!info.exists()) {
        error = QStringLiteral("%1: there is no such plug-in file or folder.").arg(place);
        return {};
    }
    if (!info.isDir())
        return {info.absoluteFilePath()};

    QStringList files;
    for (QString const& name : fx_PluginNames(place))
        files += QDir(place).absoluteFilePath(name);
    if (files.isEmpty()) {
        QString const cause = fx_WhyUnreadable(place);
        error = cause.isEmpty()
                    ? QStringLiteral("%1: the folder holds no plug-in (libtvp*.so).").arg(place)
                    : QStringLiteral("%1: the folder cannot be searched for plug-ins: %2.").arg(place, cause);
    }
    return files;
}

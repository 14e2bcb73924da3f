#pragma once

#include <QString>

/// Why the plug-in library \p fileName does not load, in words for people and without a full stop: a symbol
/// or a library that it needs, another Qt, a broken file. \p qtError is QPluginLoader::errorString(), and
/// comes back when it is none of these.
QString fx_WhyNotLoaded(QString const& fileName, QString const& qtError);

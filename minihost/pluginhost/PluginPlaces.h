#pragma once

#include <QString>
#include <QStringList>

/// The plug-in libraries that \p path stands for, by their absolute names: a file itself, every libtvp*.so of
/// a folder, or those installed below a prefix, such as /usr. An empty path stands for the environment's
/// MINIHOST_PLUGIN_PATH or, without it, for the program's own folder and then for where plug-ins are
/// installed beside it. None, with \p error one sentence, when there are none.
QStringList fx_FindPlugins(QString const& path, QString& error);

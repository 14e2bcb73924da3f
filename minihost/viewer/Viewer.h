#pragma once

#include <QString>

/// Shows the window until it is closed. Makes the application object itself, so there must be none yet.
///
/// \param pluginPath  as CxPluginHost::load() takes it.
/// \param toOpen  a recording or a source; empty for a window to choose in.
/// \return false, with \p error one sentence, when there can be no window.
bool fx_ShowWindow(QString const& pluginPath, QString const& toOpen, QString& error);

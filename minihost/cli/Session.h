#pragma once

#include "Options.h"
#include "PluginHost.h"
#include "PluginMessages.h"

/// What every command that needs the plug-in opens with: how much is said, the plug-in's messages, the
/// plug-in. Outlives all that is made with it.
class CxSession
{
public:
    explicit CxSession(SxRunOptions const& options);

    /// Loads the plug-in. \return false, with \p error one sentence, when it cannot be had.
    bool load(QString& error) { return m_host.load(m_pluginPath, error); }

private:
    QString m_pluginPath;
    CxPluginMessages m_messages;
    CxPluginHost m_host;
};

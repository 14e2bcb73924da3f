#pragma once

#include <QStringList>

/// The commands. Each takes its name and what follows it and returns the program's exit code.
int fx_RunRecord(QStringList const& arguments);
int fx_RunInfo(QStringList const& arguments);
int fx_RunExport(QStringList const& arguments);
int fx_RunRemux(QStringList const& arguments);
int fx_RunVerify(QStringList const& arguments);
int fx_RunPlugins(QStringList const& arguments);

/// Shows the window; must come before there is an application object.
int fx_RunView(QStringList const& arguments);

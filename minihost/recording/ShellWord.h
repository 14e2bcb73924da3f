#pragma once

#include <QString>

/// A file's name as a shell and this program read it: quoted where it must be, and never like an option.
QString fx_ShellWord(QString const& fileName);

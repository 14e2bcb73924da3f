#pragma once

#include <QString>

/// A file's name as one word of a shell's command line, which no program takes for an option or a protocol.
QString fx_ShellWord(QString const& fileName);

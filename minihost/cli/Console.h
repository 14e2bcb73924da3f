#pragma once

#include <QJsonDocument>
#include <QString>

/// The terminal, or what stands in for it: data on standard output, messages on standard error, each
/// message one sentence. Colour only on a terminal and without NO_COLOR.
namespace Console {

/// Before anything is opened: standard streams that the program was started without (">&-") are taken by
/// something that neither gives nor takes a byte, so that no file of the program's own gets their numbers.
void occupyClosedStreams();

void setQuiet(bool quiet); ///< leaves errors and warnings, hides everything else on standard error

/// Hides what libraries write to standard error on their own, OpenH264's remarks about its settings
/// for one: only what this program says belongs there. Not under the sanitizers, whose reports go there.
void hideLibraryOutput();

void data(QString const& text);       ///< to standard output, a newline added
void data(QJsonDocument const& json); ///< the same, indented
/// Why standard output did not take all that data() gave it, one sentence; empty when it did.
QString dataFailure();
void message(QString const& text); ///< to standard error unless quiet, a newline added
void warning(QString const& sentence);
void error(QString const& sentence);
void errorWithoutMemory(char const* sentence); ///< for when there is none to put an error into words

/// Rewrites one line on standard error, on terminals only; the next message replaces it. An empty
/// text removes it.
void transient(QString const& text);
bool showsTransient(); ///< false when piped, quiet or on a terminal that cannot

} // namespace Console

#include "Console.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <initializer_list>
#include <sys/ioctl.h>
#include <unistd.h>

#if defined(__has_feature)
#define MINIHOST_CLANG_ASAN __has_feature(address_sanitizer)
#else
#define MINIHOST_CLANG_ASAN 0
#endif

namespace {

bool s_quiet = false;
bool s_transientShown = false;
FILE* s_messages = stderr; ///< where messages go
int s_dataError = 0;       ///< errno of the first failure on standard output

bool fx_IsTerminal() { return isatty(fileno(s_messages)) == 1 && qgetenv("TERM") != "dumb"; }

bool fx_HasColour() { return fx_IsTerminal() && qEnvironmentVariableIsEmpty("NO_COLOR"); }

int fx_Columns()
{
    winsize size = {};
    return ioctl(fileno(s_messages), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

/// \return errno, or 0 when all is written
int fx_Write(FILE* stream, QString const& text)
{
    errno = 0;
    bool const isWritten =
        std::fputs(text.toLocal8Bit().constData(), stream) >= 0 && std::fflush(stream) == 0;
    return isWritten ? 0 : errno;
}

void fx_Labelled(char const* colour, QString const& label, QString const& sentence)
{
    Console::transient(QString());
    QString const shown =
        fx_HasColour() ? QStringLiteral("\033[%1m%2\033[0m").arg(QLatin1String(colour), label) : label;
    fx_Write(s_messages, shown + QLatin1Char(' ') + sentence + QLatin1Char('\n'));
}

} // namespace

void Console::occupyClosedStreams()
{
    for (int const stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest free number is taken: this one, since those below it are open by now.
        if (fcntl(stream, F_GETFD) < 0)
            static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

void Console::setQuiet(bool quiet) { s_quiet = quiet; }

void Console::hideLibraryOutput()
{
#if !defined(__SANITIZE_ADDRESS__) && !MINIHOST_CLANG_ASAN
    int const kept = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    FILE* const messages = kept < 0 ? nullptr : fdopen(kept, "w");
    if (!messages)
        return; // without standard error there is nothing to keep clean
    s_messages = messages;
    if (int const nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC); nowhere >= 0) {
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
#endif
}

void Console::data(QString const& text)
{
    transient(QString());
    int const error = fx_Write(stdout, text + QLatin1Char('\n'));
    if (s_dataError == 0)
        s_dataError = error;
}

void Console::data(QJsonDocument const& json)
{
    data(QString::fromUtf8(json.toJson(QJsonDocument::Indented)).trimmed());
}

QString Console::dataFailure()
{
    return s_dataError == 0 ? QString()
                            : QStringLiteral("Standard output: %1.").arg(qt_error_string(s_dataError));
}

void Console::message(QString const& text)
{
    if (s_quiet)
        return;
    transient(QString());
    fx_Write(s_messages, text + QLatin1Char('\n'));
}

void Console::warning(QString const& sentence) { fx_Labelled("33", QStringLiteral("warning:"), sentence); }

void Console::error(QString const& sentence) { fx_Labelled("31", QStringLiteral("error:"), sentence); }

void Console::errorWithoutMemory(char const* sentence)
{
    for (char const* text : {"error: ", sentence, "\n"})
        static_cast<void>(!write(fileno(s_messages), text, std::strlen(text)));
}

void Console::transient(QString const& text)
{
    if (text.isEmpty()) {
        if (s_transientShown)
            fx_Write(s_messages, QStringLiteral("\r\033[K"));
        s_transientShown = false;
        return;
    }
    if (!showsTransient())
        return;
    // A line that wraps could not be rewritten.
    fx_Write(s_messages, QStringLiteral("\r%1\033[K").arg(text.left(fx_Columns() - 1)));
    s_transientShown = true;
}

bool Console::showsTransient() { return !s_quiet && fx_IsTerminal(); }

#include <QCoreApplication>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <langinfo.h>
#include <new>
#include <optional>
#include <unistd.h>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"

struct SxCommand
{
    char const* name;
    char const* summary;
    int (*run)(QStringList const& arguments);
};

static constexpr SxCommand kCommands[] = {
    {"record", "pictures into a raw H.264 file", fx_RunRecord},
    {"info", "what a recording holds: size, frames, duration, bit rate", fx_RunInfo},
    {"export", "frames of a recording as pictures, a contact sheet, a stream, hashes", fx_RunExport},
    {"remux", "a recording as MP4, MOV or Matroska for other programs, nothing coded again", fx_RunRemux},
    {"view", "a window to watch, play and record in", fx_RunView},
    {"verify", "decode recordings and report what cannot be decoded", fx_RunVerify},
    {"plugins", "which plug-ins are found, and what they provide", fx_RunPlugins},
};

static QString fx_Help()
{
    QString commands;
    for (SxCommand const& command : kCommands)
        commands += QStringLiteral("  %1%2\n")
                        .arg(QLatin1String(command.name), -11)
                        .arg(QLatin1String(command.summary));
    return QStringLiteral("Runs the H.264 codec plug-in without its camera viewer.\n"
                          "\n"
                          "  minihost record camera: test.h264    record the built-in test camera\n"
                          "  minihost record clip.mp4 clip.h264   record what a video shows\n"
                          "\n"
                          "Usage: minihost COMMAND [arguments]\n"
                          "\n") +
           commands +
           QStringLiteral("  help C     how to use command C, as C --help\n"
                          "  --version  version of this program\n"
                          "\n") +
           fx_ExitCodesHelp({kDone, kFailed, kWrongUsage, kOutputFailed});
}

static int fx_Dispatch(QStringList arguments)
{
    QString name = arguments.isEmpty() ? QString() : arguments.first();
    if (name == QLatin1String("help") && arguments.size() > 1) {
        name = arguments[1];
        arguments = QStringList{name, QStringLiteral("--help")};
    }
    for (SxCommand const& command : kCommands) {
        if (name == QLatin1String(command.name))
            return command.run(arguments);
    }
    if (name == QLatin1String("--help") || name == QLatin1String("-h") || name == QLatin1String("help")) {
        Console::data(fx_Help());
        return kDone;
    }
    if (name == QLatin1String("--version")) {
        Console::data(QStringLiteral("minihost " MINIHOST_VERSION));
        return kDone;
    }
    Console::error(name.isEmpty()
                       ? QStringLiteral("No command is given. See minihost --help.")
                       : QStringLiteral("There is no command '%1'. See minihost --help.").arg(name));
    return kWrongUsage;
}

/// Without a locale, as in containers, file names are still UTF-8. Qt takes the locale from the environment.
static void fx_UseUtf8()
{
    std::setlocale(LC_CTYPE, "");
    if (qstrcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0)
        qputenv(qEnvironmentVariableIsEmpty("LC_ALL") ? "LC_CTYPE" : "LC_ALL", "C.UTF-8");
}

/// What a command ended with, unless its results did not arrive.
static int fx_SeeResultsOut(int code)
{
    QString const failure = Console::dataFailure();
    if (failure.isEmpty())
        return code;
    fx_Failed(failure, kOutputFailed);
    return code == kDone || code == kNotWhole ? kOutputFailed : code;
}

static int fx_EndWithoutMemory()
{
    Console::errorWithoutMemory("Not enough memory.");
    return kFailed;
}

/// Memory may run out where nothing can be thrown through, in threads of libraries for one.
[[noreturn]] static void fx_OnTerminate()
{
    try {
        if (std::current_exception())
            throw;
    } catch (std::bad_alloc const&) {
        _exit(fx_EndWithoutMemory());
    } catch (...) {
    }
    std::abort();
}

static int fx_Run(int argc, char** argv)
{
    fx_UseUtf8();
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
        // Qt would write to a file of another name, and find none to read.
        if (arguments.last().toLocal8Bit() != argv[i])
            return fx_Failed(QStringLiteral("'%1' is not in this system's encoding: it stands for no file.")
                                 .arg(arguments.last()),
                             kWrongUsage);
    }
    std::optional<QCoreApplication> app;
    if (arguments.value(0) != QLatin1String("view")) // which has one of its own
        app.emplace(argc, argv);
    return fx_SeeResultsOut(fx_Dispatch(arguments));
}

int main(int argc, char** argv)
{
    std::set_terminate(fx_OnTerminate);
    Console::occupyClosedStreams();
    // A write that fails says so itself, and is told with its cause.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        return fx_Run(argc, argv);
    } catch (std::bad_alloc const&) {
        return fx_EndWithoutMemory();
    }
}

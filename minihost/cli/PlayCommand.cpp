#include "PlayCommand.h"

#include <QFileInfo>
#include <new>

#include "Console.h"
#include "ExitCode.h"
#include "Session.h"
#include "ShortMemory.h"

// With that many bytes no picture fails to decode for want of them: the decoder keeps some dozen.
static constexpr quint64 kMemoryToDecode = 256 * 1024 * 1024;

bool fx_ParseSeveralPlayArguments(QCommandLineParser& parser, QStringList const& arguments,
                                  SxPlayArguments& parsed, QString& error)
{
    if (!fx_ParseOptions(parser, arguments, parsed.run, error))
        return false;
    if (parsed.run.help)
        return true;
    parsed.files = parser.positionalArguments();
    if (parsed.files.isEmpty() || parsed.files.contains(QString())) {
        error = parsed.files.isEmpty() ? QStringLiteral("No recording is given.")
                                       : QStringLiteral("A file has no name.");
        return false;
    }
    return true;
}

bool fx_ParsePlayArguments(QCommandLineParser& parser, QStringList const& arguments, SxPlayArguments& parsed,
                           QString& error)
{
    if (!fx_ParseSeveralPlayArguments(parser, arguments, parsed, error))
        return false;
    if (parsed.files.size() > 1)
        error = QStringLiteral("One recording at a time: '%1' is one too many.").arg(parsed.files[1]);
    return error.isEmpty();
}

ExitCode fx_RefusalCode(QString const& file)
{
    // It is mapped as a whole.
    qint64 const size = QFileInfo(file).size();
    return size > 0 && fx_IsMemoryShort(static_cast<quint64>(size)) ? kFailed : kBadInput;
}

void fx_RuleOutShortMemory()
{
    if (fx_IsMemoryShort(kMemoryToDecode))
        throw std::bad_alloc();
}

int fx_RunOnRecording(SxPlayArguments const& arguments,
                      std::function<int(CxRecordingReader& recording)> const& work)
{
    CxSession session(arguments.run);
    if (!arguments.run.verbose)
        Console::hideLibraryOutput();
    QString error;
    if (!session.load(error))
        return fx_Failed(error);
    CxRecordingReader recording; // its objects go before the plug-in finishes
    if (!recording.open(arguments.file(), error))
        return fx_Failed(error, fx_RefusalCode(arguments.file()));
    if (!recording.sidecar().warning.isEmpty())
        Console::warning(recording.sidecar().warning);
    return work(recording);
}

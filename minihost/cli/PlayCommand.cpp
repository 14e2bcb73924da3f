#include "PlayCommand.h"

#include "ExitCode.h"
#include "Session.h"

bool fx_ParsePlayArguments(QCommandLineParser& parser, QStringList const& arguments, SxPlayArguments& parsed,
                           QString& error)
{
    if (!fx_ParseOptions(parser, arguments, parsed.run, error))
        return false;
    if (parsed.run.help)
        return true;
    QStringList const names = parser.positionalArguments();
    if (names.size() != 1 || names.first().isEmpty()) {
        error = names.size() > 1
                    ? QStringLiteral("One recording at a time: '%1' is one too many.").arg(names[1])
                    : QStringLiteral("No recording is given.");
        return false;
    }
    parsed.file = names.first();
    return true;
}

int fx_RunOnRecording(SxPlayArguments const& arguments,
                      std::function<int(CxRecordingReader& recording)> const& work)
{
    CxSession session(arguments.run);
    QString error;
    if (!session.load(error))
        return fx_Failed(error);
    CxRecordingReader recording; // its objects go before the plug-in finishes
    if (!recording.open(arguments.file, error))
        return fx_Failed(error, kBadInput);
    return work(recording);
}

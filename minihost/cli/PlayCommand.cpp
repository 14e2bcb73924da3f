#include "PlayCommand.h"

#include "ExitCode.h"
#include "Session.h"

bool fx_ParseSeveralPlayArguments(QCommandLineParser& parser, QStringList const& arguments,
                                  SxPlayArguments& parsed, QString& error)
{
    if (!fx_ParseOptions(parser, arguments, parsed.run, error))
        return false;
    if (parsed.run.help)
        return true;
    parsed.files = parser.positionalArguments();
    if (parsed.files.isEmpty() || parsed.files.contains(QString())) {
        error = QStringLiteral("No recording is given.");
        return false;
    }
    parsed.file = parsed.files.first();
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

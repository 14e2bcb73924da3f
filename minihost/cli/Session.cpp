#include "Session.h"

#include "Console.h"
#include "FFmpegSource.h"

CxSession::CxSession(SxRunOptions const& options)
    : m_pluginPath(options.pluginPath)
    , m_messages(options.verbose)
{
    Console::setQuiet(options.quiet);
    CxFFmpegSource::setLogShown(options.verbose);
}

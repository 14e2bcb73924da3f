#include "support/Terminal.h"

#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

CxTerminal::CxTerminal(int stream, int columns)
    : m_stream(stream)
{
    termios raw = {};
    cfmakeraw(&raw);
    winsize size = {};
    size.ws_row = 24;
    size.ws_col = static_cast<unsigned short>(columns);
    int keyboard = -1;
    if (openpty(&m_screen, &keyboard, nullptr, &raw, &size) != 0)
        return;
    fcntl(m_screen, F_SETFL, O_NONBLOCK);
    m_kept = dup(m_stream);
    dup2(keyboard, m_stream);
    close(keyboard);
}

CxTerminal::~CxTerminal()
{
    if (!isOpen())
        return;
    dup2(m_kept, m_stream);
    close(m_kept);
    close(m_screen);
}

QByteArray CxTerminal::take()
{
    QByteArray written;
    char bytes[4096];
    for (ssize_t size = 0; (size = read(m_screen, bytes, sizeof bytes)) > 0;)
        written.append(bytes, static_cast<int>(size));
    return written;
}

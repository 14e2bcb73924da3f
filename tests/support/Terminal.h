#pragma once

#include <QByteArray>

/// A terminal of its own, as wide as asked, in the place of one of this process' streams while the object
/// lives. It hands over what is written as it is.
class CxTerminal
{
public:
    CxTerminal(int stream, int columns);
    ~CxTerminal();
    CxTerminal(CxTerminal const&) = delete;
    CxTerminal& operator=(CxTerminal const&) = delete;

    bool isOpen() const { return m_kept >= 0; }

    QByteArray take(); ///< what was written since the last call; up to some 4000 bytes wait

private:
    int m_stream;
    int m_screen = -1; ///< where what is written comes out
    int m_kept = -1;   ///< the stream as it was
};

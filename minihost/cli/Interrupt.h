#pragma once

#include <QString>
#include <atomic>

/// Makes Ctrl-C, a hang-up and a polite kill end the running work cleanly instead of the program; the
/// second one ends the program at once.
///
/// What waits for the system is called back once a second from then on, so that it sees the flag even when
/// the signal came just before it began to wait.
///
/// \return the flag that they set; it lives as long as the program.
std::atomic<bool> const& fx_CatchInterrupts();

/// Tells the error of interrupted work. \return kInterrupted and the signal's number; kFailed without one
int fx_Interrupted(QString const& sentence);
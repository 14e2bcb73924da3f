#pragma once

#include <atomic>

/// Makes Ctrl-C, a hang-up and a polite kill end the running work cleanly instead of the program; the
/// second one ends the program at once. Also keeps a closed pipe from killing it.
///
/// \return the flag that they set; it lives as long as the program.
std::atomic<bool> const& fx_CatchInterrupts();

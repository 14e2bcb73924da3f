#pragma once

#include <thread>

/// Ends what a thread waits for in the system, such as data of a pipe: the call returns with EINTR. What it
/// begins to wait for a moment later goes on, so this is to be repeated until the thread answers. Takes
/// SIGURG for it.
void fx_InterruptThread(std::thread& thread);

#include "ThreadInterrupt.h"

#include <csignal>
#include <pthread.h>

extern "C" {
static void fx_OnWake(int) {}
}

/// Without SA_RESTART, and with a handler: what is ignored interrupts nothing.
static bool fx_HandleWake()
{
    struct sigaction action = {};
    action.sa_handler = fx_OnWake;
    return sigaction(SIGURG, &action, nullptr) == 0;
}

void fx_InterruptThread(std::thread& thread)
{
    static bool const isHandled = fx_HandleWake();
    if (isHandled)
        pthread_kill(thread.native_handle(), SIGURG);
}

#include "Interrupt.h"

#include <csignal>
#include <initializer_list>

static std::atomic<bool> s_interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

extern "C" {
static void fx_OnInterrupt(int) { s_interrupted.store(true); }
}

std::atomic<bool> const& fx_CatchInterrupts()
{
    struct sigaction action = {};
    action.sa_handler = fx_OnInterrupt;
    // No SA_RESTART: a read that waits for a camera or a pipe returns and sees the flag.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (int const signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before = {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) // nohup stays nohup
            sigaction(signal, &action, nullptr);
    }
    std::signal(SIGPIPE, SIG_IGN);
    return s_interrupted;
}

#include "Interrupt.h"

#include <csignal>
#include <initializer_list>
#include <unistd.h>

#include "ExitCode.h"

static std::atomic<bool> s_interrupted{false};
static std::atomic<int> s_signal{0};
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free,
              "a signal handler sets them");

extern "C" {
static void fx_OnInterrupt(int signal)
{
    s_signal.store(signal);
    s_interrupted.store(true);
    alarm(1);
}
static void fx_OnAlarm(int) { alarm(1); }
}

/// No SA_RESTART: a read that waits for a camera or a pipe returns and sees the flag.
static void fx_Handle(int signal, void (*handler)(int), int flags)
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigaction(signal, &action, nullptr);
}

std::atomic<bool> const& fx_CatchInterrupts()
{
    fx_Handle(SIGALRM, fx_OnAlarm, 0);
    for (int const signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before = {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) // nohup stays nohup
            fx_Handle(signal, fx_OnInterrupt, static_cast<int>(SA_RESETHAND));
    }
    return s_interrupted;
}

int fx_Interrupted(QString const& sentence)
{
    int const signal = s_signal.load();
    return fx_Failed(sentence, signal == 0 ? kFailed : static_cast<ExitCode>(kInterrupted + signal));
}

#include "tools/shared/stop_signal.h"

#include <csignal>
#include <initializer_list>

namespace {

volatile sig_atomic_t g_signal = 0;

void Note(int signal) {
    g_signal = signal;
}

}  // namespace

void CatchStopSignals() {
    struct sigaction action = {};
    action.sa_handler = Note;
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before = {};
        sigaction(number, nullptr, &before);
        // What the parent had ignored (nohup) stays ignored.
        if (before.sa_handler != SIG_IGN) sigaction(number, &action, nullptr);
    }
    std::signal(SIGPIPE, SIG_IGN);
}

bool StopRequested() {
    return g_signal != 0;
}

void EndByStopSignal() {
    if (g_signal == 0) return;
    std::signal(g_signal, SIG_DFL);
    raise(g_signal);
}

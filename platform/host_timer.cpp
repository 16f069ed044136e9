// The soft timers of a machine that is no router: one thread that sleeps until the next timer is due and
// calls its callback. The thread is started with the first timer and takes no signals, so those stay with the
// program's own.

#include <errno.h>
#include <pthread.h>
#include <signal.h>
#include <stdint.h>
#include <string.h>
#include <time.h>

#include "platform/log.h"
#include "platform/platform.h"

namespace {

constexpr char kLogSource[] = "platform";

constexpr int kTimers = 32;  // running at once

struct Timer {
    int (*callback)(void*);  // null: the place is free
    void* arg;
    int64_t due_ns;     // on the monotonic clock
    int64_t period_ns;  // 0: once
    int id;
};

// All under g_lock, which is not held while a callback runs: a callback may start timers, its own included.
pthread_mutex_t g_lock = PTHREAD_MUTEX_INITIALIZER;
pthread_cond_t g_changed;
Timer g_timers[kTimers];
bool g_running = false;
bool g_fork_handler = false;

int64_t Now() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

Timer* Earliest() {
    Timer* earliest = nullptr;
    for (Timer& timer : g_timers)
        if (timer.callback != nullptr && (earliest == nullptr || timer.due_ns < earliest->due_ns))
            earliest = &timer;
    return earliest;
}

void* Serve(void*) {
    pthread_mutex_lock(&g_lock);
    for (;;) {
        Timer* timer = Earliest();
        if (timer == nullptr) {
            pthread_cond_wait(&g_changed, &g_lock);
            continue;
        }
        int64_t now = Now();
        if (timer->due_ns > now) {
            timespec due{static_cast<time_t>(timer->due_ns / 1'000'000'000),
                         static_cast<long>(timer->due_ns % 1'000'000'000)};
            pthread_cond_timedwait(&g_changed, &g_lock, &due);
            continue;
        }
        Timer fired = *timer;
        if (fired.period_ns == 0) {
            timer->callback = nullptr;
        } else {
            // Due times lie on a grid from the start; those that passed while the machine or a callback was
            // busy are left out.
            timer->due_ns += fired.period_ns * (1 + (now - fired.due_ns) / fired.period_ns);
        }
        pthread_mutex_unlock(&g_lock);
        fired.callback(fired.arg);
        pthread_mutex_lock(&g_lock);
    }
    return nullptr;
}

// A forked child has no service thread, and no timers: like those of the kernel, they stay with the parent.
void ForgetAfterFork() {
    g_lock = PTHREAD_MUTEX_INITIALIZER;
    memset(g_timers, 0, sizeof g_timers);
    g_running = false;
}

// Starts the service thread. 0, or the error.
int Start() {
    if (!g_fork_handler) {
        int error = pthread_atfork(nullptr, nullptr, ForgetAfterFork);
        if (error != 0) return error;
        g_fork_handler = true;
    }
    pthread_condattr_t clock;
    pthread_condattr_init(&clock);
    pthread_condattr_setclock(&clock, CLOCK_MONOTONIC);
    pthread_cond_init(&g_changed, &clock);
    pthread_condattr_destroy(&clock);

    sigset_t all;
    sigset_t old;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &old);
    pthread_t thread;
    int error = pthread_create(&thread, nullptr, Serve, nullptr);
    pthread_sigmask(SIG_SETMASK, &old, nullptr);
    if (error != 0) return error;
    pthread_detach(thread);
    g_running = true;
    return 0;
}

// The place of timer `id`, or a free one, or null.
Timer* Place(int id) {
    Timer* free = nullptr;
    for (Timer& timer : g_timers) {
        if (timer.callback == nullptr) {
            if (free == nullptr) free = &timer;
        } else if (timer.id == id) {
            return &timer;
        }
    }
    return free;
}

}  // namespace

extern "C" int CreateSoftTimer(int id, int periodic, unsigned period_ms, int (*callback)(void*), void* arg) {
    if (callback == nullptr || period_ms == 0) {
        AT_LOG(LOG_ERR, "soft timer %d was not started: it has no %s", id,
               callback == nullptr ? "callback" : "period");
        return -1;
    }
    pthread_mutex_lock(&g_lock);
    Timer* timer = Place(id);
    int error = timer == nullptr ? ENOSPC : g_running ? 0 : Start();
    if (error == 0) {
        int64_t period_ns = int64_t{period_ms} * 1'000'000;
        *timer = {callback, arg, Now() + period_ns, periodic != 0 ? period_ns : 0, id};
        pthread_cond_signal(&g_changed);
    }
    pthread_mutex_unlock(&g_lock);
    if (timer == nullptr) {
        AT_LOG(LOG_ERR, "soft timer %d was not started: %d are running, and that is the most", id, kTimers);
    } else if (error != 0) {
        AT_LOG(LOG_ERR, "soft timer %d was not started: no thread for the timer service: %s", id,
               strerror(error));
    }
    return error == 0 ? 0 : -1;
}

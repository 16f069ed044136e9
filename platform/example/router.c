/* The smallest platform library that serves the daemon: the configuration store in memory, a thread for each
 * soft timer. A start for a router's own, and what the build with a library of one's own is checked with:
 *
 *     cc -std=c11 -O2 -pthread -I. -c platform/example/router.c -o router.o && ar rcs librouter.a router.o
 *     cmake -B build/router -G Ninja -DAT_PLATFORM=$PWD/librouter.a -DAT_BUILD_CHECKS=OFF
 *
 * What a router's library does beyond this: its store is shared by all processes and outlives them (here
 * every process has its own, empty at its start), takes as many keys as there are, and longer values. */

#define _POSIX_C_SOURCE 200809L

#include <errno.h>
#include <pthread.h>
#include <signal.h>
#include <stdatomic.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "platform/platform.h"

/* ---- configuration store ---- */

enum { KEYS = 128, KEY_SIZE = 64, VALUE_SIZE = 512 };

/* A reader never waits for a writer, which may be stopped in the middle of its work: the next value is
 * written beside the current one. */
struct entry {
    char key[KEY_SIZE];  /* never changes once the entry is counted */
    atomic_uint changes; /* complete ones; the last one stands in value[changes % 2] */
    _Atomic char value[2][VALUE_SIZE];
};

static struct entry entries[KEYS];
static atomic_uint entry_count;
static pthread_mutex_t writing = PTHREAD_MUTEX_INITIALIZER; /* one writer at a time */

static struct entry* find(const char* key) {
    const unsigned count = atomic_load_explicit(&entry_count, memory_order_acquire);
    for (unsigned i = 0; i < count; ++i) {
        if (strcmp(entries[i].key, key) == 0) return &entries[i];
    }
    return NULL;
}

const char* cfg_get(const char* key) {
    static _Thread_local char copy[VALUE_SIZE];
    struct entry* entry = key != NULL ? find(key) : NULL;
    if (entry == NULL) return NULL;
    for (;;) {
        const unsigned before = atomic_load_explicit(&entry->changes, memory_order_acquire);
        const _Atomic char* value = entry->value[before % 2];
        size_t i = 0;
        while ((copy[i] = atomic_load_explicit(&value[i], memory_order_relaxed)) != '\0' &&
               i < VALUE_SIZE - 1)
            ++i;
        copy[i] = '\0';
        /* Only after a complete change can the next one have written where this one read. */
        atomic_thread_fence(memory_order_acquire);
        if (before == atomic_load_explicit(&entry->changes, memory_order_relaxed)) return copy;
    }
}

static void write_value(struct entry* entry, const char* value) {
    const unsigned changes = atomic_load_explicit(&entry->changes, memory_order_relaxed) + 1;
    _Atomic char* to = entry->value[changes % 2];
    /* Whoever reads a byte written here also sees that the value before it is complete. */
    atomic_thread_fence(memory_order_release);
    size_t i = 0;
    do {
        atomic_store_explicit(&to[i], value[i], memory_order_relaxed);
    } while (value[i++] != '\0');
    atomic_store_explicit(&entry->changes, changes, memory_order_release);
}

int cfg_set(const char* key, const char* value) {
    if (key == NULL || value == NULL || strlen(key) >= KEY_SIZE || strlen(value) >= VALUE_SIZE) return -1;
    int result = 0;
    pthread_mutex_lock(&writing);
    struct entry* entry = find(key);
    if (entry != NULL) {
        write_value(entry, value);
    } else {
        const unsigned count = atomic_load_explicit(&entry_count, memory_order_relaxed);
        if (count < KEYS) {
            strcpy(entries[count].key, key);
            write_value(&entries[count], value);
            atomic_store_explicit(&entry_count, count + 1, memory_order_release);
        } else {
            result = -1;
        }
    }
    pthread_mutex_unlock(&writing);
    return result;
}

/* ---- soft timers ---- */

struct timer {
    int periodic;
    unsigned period_ms;
    int (*callback)(void*);
    void* arg;
};

static void* serve(void* arg) {
    struct timer timer = *(struct timer*)arg;
    free(arg);
    struct timespec due;
    clock_gettime(CLOCK_MONOTONIC, &due);
    do {
        /* From one due time to the next, so that the callback's own time does not add up. */
        due.tv_sec += (time_t)(timer.period_ms / 1000);
        due.tv_nsec += (long)(timer.period_ms % 1000) * 1000000;
        if (due.tv_nsec >= 1000000000) {
            due.tv_nsec -= 1000000000;
            ++due.tv_sec;
        }
        while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &due, NULL) == EINTR) {
        }
        timer.callback(timer.arg);
    } while (timer.periodic);
    return NULL;
}

/* The daemon starts one timer, once, and never stops it; so `id` only has a meaning in a service that can
 * replace or stop a timer. */
int CreateSoftTimer(int id, int periodic, unsigned period_ms, int (*callback)(void*), void* arg) {
    (void)id;
    if (callback == NULL || period_ms == 0) return -1;
    struct timer* timer = malloc(sizeof *timer);
    if (timer == NULL) return -1;
    *timer = (struct timer){periodic, period_ms, callback, arg};

    /* Signals stay with the program's own threads. */
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_t thread;
    const int error = pthread_create(&thread, NULL, serve, timer);
    pthread_sigmask(SIG_SETMASK, &before, NULL);
    if (error != 0) {
        free(timer);
        return -1;
    }
    pthread_detach(thread);
    return 0;
}

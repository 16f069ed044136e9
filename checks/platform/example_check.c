/* The example of a platform library: does its store keep and its timers fire as the daemon needs it? */

#include <pthread.h>
#include <signal.h>
#include <stdatomic.h>
#include <stdbool.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

#include "platform/platform.h"

static int failures;

static void Expect(bool condition, const char* what) {
    printf("%s  %s\n", condition ? "ok    " : "FAILED", what);
    if (!condition) ++failures;
}

static bool Holds(const char* key, const char* value) {
    const char* found = cfg_get(key);
    return found != NULL && strcmp(found, value) == 0;
}

/* Waits until *count is at least `wanted`, 10 s at most. */
static bool Reached(atomic_int* count, int wanted) {
    for (int i = 0; i < 10000 && atomic_load(count) < wanted; ++i) {
        nanosleep(&(struct timespec){.tv_nsec = 1000000}, NULL);
    }
    return atomic_load(count) >= wanted;
}

static int Count(void* arg) {
    atomic_fetch_add((atomic_int*)arg, 1);
    return 0;
}

/* A value is all 'a' or all 'b': a reader that sees both saw half of a change. */
static atomic_bool stop;
static atomic_int torn;
static atomic_int reads;

static void ReadOnce(void) {
    const char* value = cfg_get("text");
    const size_t length = strlen(value);
    if (length == 0 || strspn(value, value[0] == 'a' ? "a" : "b") != length) atomic_fetch_add(&torn, 1);
    atomic_fetch_add(&reads, 1);
}

static void* Read(void* arg) {
    while (!atomic_load(&stop))
        ReadOnce();
    return arg;
}

static void CheckStore(void) {
    Expect(cfg_get("port_stat") == NULL, "a missing key");
    Expect(cfg_get(NULL) == NULL, "no key at all");
    Expect(cfg_set("port_stat", "port_close") == 0 && Holds("port_stat", "port_close"), "a value is kept");
    Expect(cfg_set("port_stat", "") == 0 && Holds("port_stat", ""), "a shorter value takes its place");
    Expect(cfg_get("port_sta") == NULL, "the beginning of a key is another key");

    char value[513] = "";
    memset(value, 'x', sizeof value - 1);
    Expect(cfg_set("long", value) != 0 && cfg_get("long") == NULL, "a value without room is refused");
    value[511] = '\0';
    Expect(cfg_set("long", value) == 0 && Holds("long", value), "the longest value");

    char key[32];
    int stored = 0;
    for (int i = 0; i < 1000; ++i) {
        snprintf(key, sizeof key, "key%d", i);
        if (cfg_set(key, "1") != 0) break;
        ++stored;
    }
    Expect(stored > 30 && stored < 1000 && Holds("key0", "1") && cfg_get(key) == NULL,
           "a full store refuses new keys");
    Expect(cfg_set("port_stat", "port_open") == 0 && Holds("port_stat", "port_open"),
           "and still changes old ones");
}

static void CheckReaders(void) {
    char a[300] = "";
    char b[500] = "";
    memset(a, 'a', sizeof a - 1);
    memset(b, 'b', sizeof b - 1);
    Expect(cfg_set("text", a) == 0, "there is room for a text");
    pthread_t reader;
    if (pthread_create(&reader, NULL, Read, NULL) != 0) {
        Expect(false, "a thread for the reader");
        return;
    }
    for (int i = 0; i < 200000; ++i)
        cfg_set("text", i % 2 == 0 ? b : a);
    Expect(Reached(&reads, 1000), "a reader gets on beside a writer");
    atomic_store(&stop, true);
    pthread_join(reader, NULL);
    Expect(atomic_load(&torn) == 0, "a reader sees whole values only");
}

/* Asks on the writer's thread, which is stopped meanwhile, most often in the middle of a value. */
static void Ask(int signal) {
    (void)signal;
    ReadOnce();
}

static void* Write(void* arg) {
    char a[500] = "";
    char b[500] = "";
    memset(a, 'a', sizeof a - 1);
    memset(b, 'b', sizeof b - 1);
    for (int i = 0; !atomic_load(&stop); ++i)
        cfg_set("text", i % 2 == 0 ? b : a);
    return arg;
}

static void CheckAStoppedWriter(void) {
    enum { ROUNDS = 1000 };
    atomic_store(&stop, false);
    atomic_store(&reads, 0);
    sigaction(SIGUSR1, &(struct sigaction){.sa_handler = Ask}, NULL);
    pthread_t writer;
    if (pthread_create(&writer, NULL, Write, NULL) != 0) {
        Expect(false, "a thread for the writer");
        return;
    }
    int round = 0;
    while (round < ROUNDS && pthread_kill(writer, SIGUSR1) == 0 && Reached(&reads, round + 1))
        ++round;
    Expect(round == ROUNDS, "a reader does not wait for a writer that is stopped");
    if (round < ROUNDS) return; /* the writer's thread never ends */
    atomic_store(&stop, true);
    pthread_join(writer, NULL);
    Expect(atomic_load(&torn) == 0, "and sees whole values only");
}

static void CheckTimers(void) {
    static atomic_int once;
    static atomic_int again;
    Expect(CreateSoftTimer(1, 0, 0, Count, &once) != 0, "a timer without a period is refused");
    Expect(CreateSoftTimer(1, 0, 10, NULL, &once) != 0, "a timer without a callback is refused");
    Expect(CreateSoftTimer(1, 0, 10, Count, &once) == 0, "a timer is started");
    Expect(CreateSoftTimer(25, 1, 10, Count, &again) == 0, "a periodic one too");
    Expect(Reached(&again, 5), "a periodic timer fires again and again");
    Expect(Reached(&once, 1) && atomic_load(&once) == 1, "the other one fires once");
}

int main(void) {
    setvbuf(stdout, NULL, _IOLBF, 0);
    CheckReaders();
    CheckAStoppedWriter();
    CheckTimers();
    CheckStore(); /* leaves it full */
    return failures == 0 ? 0 : 1;
}

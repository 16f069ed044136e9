/* Preloaded into the daemon, which never ends by itself: ends it on SIGTERM the way exit() does, so that it
 * writes down which of its lines have run. */

#include <errno.h>
#include <pthread.h>
#include <signal.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>

static void* WaitForTheEnd(void* unused) {
    (void)unused;
    sigset_t end;
    int number = 0;
    sigemptyset(&end);
    sigaddset(&end, SIGTERM);
    sigwait(&end, &number);
    exit(0);
}

/* Every thread that is started later leaves the signal to this one. */
__attribute__((constructor)) static void StartWaiting(void) {
    if (strcmp(program_invocation_short_name, "at-server") != 0) return;
    sigset_t end;
    pthread_t thread;
    sigemptyset(&end);
    sigaddset(&end, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &end, NULL);
    pthread_create(&thread, NULL, WaitForTheEnd, NULL);
}

#include "client/at_client.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/eventfd.h>
#include <sys/msg.h>
#include <time.h>
#include <unistd.h>

#include "client/internal.h"

/* From a random place on, so that the answers to an earlier run of this module have other types. */
static int32_t FirstType(void) {
    uint32_t random = 0;
    const int fd = open("/dev/urandom", O_RDONLY | O_CLOEXEC);
    const ssize_t got = fd >= 0 ? read(fd, &random, sizeof random) : -1;
    if (fd >= 0) close(fd);
    if (got != (ssize_t)sizeof random) {
        struct timespec time;
        clock_gettime(CLOCK_REALTIME, &time);
        random = (uint32_t)getpid() * 2654435761U ^ (uint32_t)time.tv_sec ^ (uint32_t)time.tv_nsec << 2;
    }
    return FIRST_REQUEST_TYPE + (int32_t)(random % (uint32_t)(LAST_REQUEST_TYPE - FIRST_REQUEST_TYPE));
}

static bool GoodOptions(const at_client_options* options) {
    const unsigned known = AT_CLIENT_THREAD | AT_CLIENT_NEED_SERVER | AT_CLIENT_TAKE_ALL;
    if (options == NULL || (options->flags & ~known) != 0) return false;
    if (options->module == AT_MODULE_SERVER) return false;
    switch (options->queue) {
        case AT_CLIENT_QUEUE_OWN:
        case AT_CLIENT_QUEUE_NEW:
            return true;
        case AT_CLIENT_QUEUE_KEPT:
            return options->module != AT_CLIENT_ANY_MODULE;
    }
    return false;
}

static int Prepare(at_client* client) {
    pthread_condattr_t attributes;
    int error = pthread_condattr_init(&attributes);
    if (error != 0) return error;
    error = pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    if (error == 0) error = pthread_cond_init(&client->changed, &attributes);
    pthread_condattr_destroy(&attributes);
    if (error != 0) return error;
    error = pthread_mutex_init(&client->lock, NULL);
    if (error != 0) pthread_cond_destroy(&client->changed);
    return error;
}

static int StartThread(at_client* client) {
    /* Signals are the program's own threads' to handle. */
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before);
    const int error = pthread_create(&client->thread, NULL, at_client_run_thread, client);
    pthread_sigmask(SIG_SETMASK, &before, NULL);
    client->threaded = error == 0;
    return error;
}

static at_client_error Failed(int error) {
    errno = error;
    return AT_CLIENT_FAILED;
}

/* The queue, and what receives from it. */
static at_client_error Start(at_client* client) {
    const unsigned flags = client->options.flags;
    at_client_error error = at_client_find_server(client);
    if (error != AT_CLIENT_OK && (flags & AT_CLIENT_NEED_SERVER) != 0) return error;
    error = at_client_open_queue(client);
    if (error != AT_CLIENT_OK || (flags & AT_CLIENT_THREAD) == 0) return error;
    if (client->options.on_report == NULL) {
        client->fd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
        if (client->fd < 0) return Failed(errno);
    }
    const int fault = StartThread(client);
    return fault == 0 ? AT_CLIENT_OK : Failed(fault);
}

at_client_error at_client_open(const at_client_options* options, at_client** opened) {
    if (opened == NULL) return AT_CLIENT_MISUSE;
    *opened = NULL;
    if (!GoodOptions(options)) return AT_CLIENT_MISUSE;
    at_client* const client = calloc(1, sizeof *client);
    if (client == NULL) return Failed(ENOMEM);
    client->options = *options;
    client->queue = -1;
    client->fd = -1;
    client->next_type = FirstType();
    const int fault = Prepare(client);
    if (fault != 0) {
        free(client);
        return Failed(fault);
    }
    const at_client_error error = Start(client);
    if (error != AT_CLIENT_OK) {
        const int reason = errno;
        at_client_close(client);
        errno = reason;
        return error;
    }
    *opened = client;
    return AT_CLIENT_OK;
}

void at_client_close(at_client* client) {
    if (client == NULL) return;
    at_client_stop(client);
    if (client->threaded) pthread_join(client->thread, NULL);
    if (client->remove_queue)
        msgctl(client->queue, IPC_RMID, NULL);
    else if (client->queue >= 0)
        at_client_forget_wakes(client->queue);
    if (client->fd >= 0) close(client->fd);
    pthread_mutex_destroy(&client->lock);
    pthread_cond_destroy(&client->changed);
    free(client);
}

void at_client_stop(at_client* client) {
    if (client == NULL) return;
    const int error = errno;
    atomic_store(&client->stopping, true);
    if ((client->options.flags & AT_CLIENT_THREAD) != 0 && client->queue >= 0) at_client_wake(client->queue);
    errno = error;
}

int at_client_fd(const at_client* client) {
    return client != NULL ? client->fd : -1;
}

uint16_t at_client_module(const at_client* client) {
    return client != NULL ? client->options.module : AT_CLIENT_ANY_MODULE;
}

void at_client_get_stats(at_client* client, at_client_stats* stats) {
    if (stats == NULL) return;
    memset(stats, 0, sizeof *stats);
    if (client == NULL) return;
    pthread_mutex_lock(&client->lock);
    *stats = client->stats;
    pthread_mutex_unlock(&client->lock);
}

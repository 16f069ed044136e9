#include <errno.h>
#include <signal.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <unistd.h>

#include "client/internal.h"

void at_client_wake(int queue) {
    const wire_message wire = {.mtype = WAKE_TYPE};
    /* When there is no room for it, there is a message to look up for. */
    msgsnd(queue, &wire, 0, IPC_NOWAIT);
}

void at_client_forget_wakes(int queue) {
    wire_message wire;
    while (msgrcv(queue, &wire, sizeof wire.body, WAKE_TYPE, IPC_NOWAIT | MSG_NOERROR) >= 0) {
    }
}

/* A queue that can be used has been read by its module at least once from here on, whoever looks. The
 * kernel's note of the last reader is all that tells whose a queue is. */
static void Claim(int queue) {
    const wire_message wire = {.mtype = WAKE_TYPE};
    if (msgsnd(queue, &wire, 0, IPC_NOWAIT) == 0) at_client_forget_wakes(queue);
}

/* Who last read a queue: alive (this process too), gone, or not known: nobody yet, or somebody out of sight.
 */
enum reader { READER_UNKNOWN, READER_GONE, READER_ALIVE };

static enum reader LastReader(int queue, bool* is_me) {
    struct msqid_ds state;
    *is_me = false;
    if (msgctl(queue, IPC_STAT, &state) != 0 || state.msg_lrpid <= 0) return READER_UNKNOWN;
    *is_me = state.msg_lrpid == getpid();
    return kill(state.msg_lrpid, 0) != 0 && errno == ESRCH ? READER_GONE : READER_ALIVE;
}

/* What is to be kept of a queue before it is removed. */
static void TakeOver(at_client* client, int queue) {
    wire_message wire;
    ssize_t got;
    while (client->report_count < AT_CLIENT_MOST_REPORTS &&
           (got = msgrcv(queue, &wire, sizeof wire.body, 0, IPC_NOWAIT | MSG_NOERROR)) >= 0)
        at_client_sort(client, &wire, (size_t)got);
}

static at_client_error Made(at_client* client, int queue, bool remove) {
    client->queue = queue;
    client->remove_queue = remove;
    Claim(queue);
    return AT_CLIENT_OK;
}

/* What msgget could not do. */
static at_client_error NotMade(void) {
    if (errno == EEXIST) return AT_CLIENT_QUEUE_TAKEN;
    return errno == EACCES ? AT_CLIENT_NO_PERMISSION : AT_CLIENT_NO_QUEUE;
}

/* Makes the queue of this id, which must not exist. */
static at_client_error MakeNew(at_client* client, uint16_t module) {
    const int queue = msgget(module, IPC_CREAT | IPC_EXCL | 0600);
    if (queue < 0) return NotMade();
    client->options.module = module;
    return Made(client, queue, true);
}

/* The same, in place of one that is left over. Of several processes that do this at the same time one wins: a
 * queue is removed by its id, which the new one does not have, and made exclusively. */
static at_client_error MakeOwn(at_client* client, uint16_t module) {
    const at_client_error error = MakeNew(client, module);
    if (error != AT_CLIENT_QUEUE_TAKEN) return error;
    const int old = msgget(module, 0);
    bool is_me;
    if (old < 0 || LastReader(old, &is_me) != READER_GONE) return AT_CLIENT_QUEUE_TAKEN;
    client->options.module = module;
    TakeOver(client, old);
    if (msgctl(old, IPC_RMID, NULL) != 0 && errno == EPERM) return AT_CLIENT_NO_PERMISSION;
    return MakeNew(client, module);
}

static at_client_error MakeKept(at_client* client) {
    const int queue = msgget(client->options.module, IPC_CREAT | 0600);
    if (queue < 0) return NotMade();
    bool is_me;
    if (LastReader(queue, &is_me) == READER_ALIVE && !is_me) return AT_CLIENT_QUEUE_TAKEN;
    return Made(client, queue, false);
}

at_client_error at_client_open_queue(at_client* client) {
    const at_client_queue kind = client->options.queue;
    if (client->options.module != AT_CLIENT_ANY_MODULE) {
        if (kind == AT_CLIENT_QUEUE_KEPT) return MakeKept(client);
        if (kind == AT_CLIENT_QUEUE_NEW) return MakeNew(client, client->options.module);
        return MakeOwn(client, client->options.module);
    }
    /* Process ids share places, and a program that was killed leaves its queue behind. */
    const unsigned count = AT_CLIENT_LAST_ANY - AT_CLIENT_FIRST_ANY + 1;
    const unsigned first = (unsigned)getpid() % count;
    at_client_error error = AT_CLIENT_QUEUE_TAKEN;
    for (unsigned i = 0; i < count && error == AT_CLIENT_QUEUE_TAKEN; ++i) {
        const uint16_t module = (uint16_t)(AT_CLIENT_FIRST_ANY + (first + i) % count);
        error = kind == AT_CLIENT_QUEUE_NEW ? MakeNew(client, module) : MakeOwn(client, module);
    }
    return error;
}

at_client_error at_client_find_server(at_client* client) {
    const int32_t key = client->options.server_key != 0 ? client->options.server_key : AT_MODULE_SERVER;
    /* Asked with the right to write, so that a queue of somebody else's shows at once. */
    client->server = msgget((key_t)key, 0200);
    if (client->server >= 0) return AT_CLIENT_OK;
    if (errno == EACCES) return AT_CLIENT_NO_PERMISSION;
    return errno == ENOENT ? AT_CLIENT_NO_SERVER : AT_CLIENT_FAILED;
}

at_client_error at_client_look_at_server(at_client* client, at_client_server* server) {
    if (client == NULL || server == NULL) return AT_CLIENT_MISUSE;
    memset(server, 0, sizeof *server);
    pthread_mutex_lock(&client->lock);
    at_client_error error = at_client_find_server(client);
    const int queue = client->server;
    pthread_mutex_unlock(&client->lock);
    if (error != AT_CLIENT_OK) return error;
    struct msqid_ds state;
    if (msgctl(queue, IPC_STAT, &state) != 0) {
        if (errno == EACCES) return AT_CLIENT_NO_PERMISSION;
        return errno == EINVAL || errno == EIDRM ? AT_CLIENT_NO_SERVER : AT_CLIENT_FAILED;
    }
    server->waiting = (uint32_t)state.msg_qnum;
    server->reader = state.msg_lrpid;
    server->reader_is_gone = state.msg_lrpid > 0 && kill(state.msg_lrpid, 0) != 0 && errno == ESRCH;
    return AT_CLIENT_OK;
}

#include <errno.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <time.h>
#include <unistd.h>

#include "client/internal.h"
#include "commands/timeouts.h"

enum {
    SHORTEST_NAP_US = 500,
    LONGEST_NAP_US = 10000,
    LONGEST_REPORT_NAP_US = 20000, /* reports hurry less, and are waited for all day */
    MOST_AT_ONCE = 64              /* messages taken in between two looks at the clock */
};

/* ---- time ---- */

static int64_t Now(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (int64_t)time.tv_sec * 1000000000 + time.tv_nsec;
}

static deadline_ns After(int timeout_ms) {
    return Now() + (int64_t)timeout_ms * 1000000;
}

static deadline_ns CommandDeadline(int timeout_ms, uint16_t cmd_id) {
    return After(timeout_ms >= 0 ? timeout_ms : at_client_timeout_ms(cmd_id));
}

static deadline_ns ReportDeadline(int timeout_ms) {
    return timeout_ms >= 0 ? After(timeout_ms) : NO_DEADLINE;
}

int at_client_timeout_ms(uint16_t cmd_id) {
    /* The server counts rounds of 10 ms and what they cost, so its seconds are longer than a clock's. */
    return (int)TimeoutSeconds(cmd_id) * 1250 + 5000;
}

/* ---- sorting ---- */

static void KeepReport(at_client* client, const at_client_message* report) {
    if (client->report_count == AT_CLIENT_MOST_REPORTS) {
        client->first_report = (client->first_report + 1) % AT_CLIENT_MOST_REPORTS;
        --client->report_count;
        ++client->stats.lost;
    }
    client->reports[(client->first_report + client->report_count++) % AT_CLIENT_MOST_REPORTS] = *report;
}

static void TakeReport(at_client* client, at_client_message* report) {
    *report = client->reports[client->first_report];
    client->first_report = (client->first_report + 1) % AT_CLIENT_MOST_REPORTS;
    --client->report_count;
}

/* The open request that this message answers; null when there is none. */
static open_request* Asked(at_client* client, const at_client_message* message, bool dial) {
    open_request* oldest = NULL;
    for (unsigned i = 0; i < AT_CLIENT_MOST_REQUESTS; ++i) {
        open_request* request = &client->requests[i];
        if (request->state != REQUEST_OPEN || request->cmd_id != message->cmd_id ||
            request->cmd_type != message->cmd_type)
            continue;
        if (request->type == message->type) return request;
        /* Of several dials the server tells about the first one first. */
        if (dial && (oldest == NULL || request->type < oldest->type)) oldest = request;
    }
    return oldest;
}

void at_client_sort(at_client* client, const wire_message* wire, size_t length) {
    if (wire->mtype == WAKE_TYPE && length == 0) {
        ++client->wakes;
        return;
    }
    at_client_message message;
    const bool good = at_client_read_message(&message, client->options.module, wire, length);
    const bool told = message.type == REPORT_TYPE;
    const bool dial = told && at_client_is_dial(message.cmd_id, message.cmd_type);
    open_request* request = good && (!told || dial) ? Asked(client, &message, dial) : NULL;
    if (!good) {
        message.kind = AT_CLIENT_FOREIGN;
        ++client->stats.foreign;
    } else if (request != NULL) {
        message.kind = AT_CLIENT_ANSWER;
        ++client->stats.answers;
        request->state = REQUEST_ANSWERED;
        request->answer = message;
        return;
    } else if (told && !dial) {
        message.kind = AT_CLIENT_REPORT;
        ++client->stats.reports;
        KeepReport(client, &message);
        return;
    } else {
        message.kind = AT_CLIENT_STALE;
        ++client->stats.stale;
    }
    if ((client->options.flags & AT_CLIENT_TAKE_ALL) != 0) KeepReport(client, &message);
}

/* ---- receiving, with the lock held ---- */

static void NoteFault(at_client* client, int error) {
    client->fault = error == EIDRM || error == EINVAL ? AT_CLIENT_QUEUE_GONE : AT_CLIENT_FAILED;
    client->fault_errno = error;
}

/* Makes the descriptor readable, or not, as at_client_fd says. */
static void Show(at_client* client) {
    if (client->fd < 0) return;
    bool readable =
        client->report_count != 0 || client->fault != AT_CLIENT_OK || atomic_load(&client->stopping);
    for (unsigned i = 0; i < AT_CLIENT_MOST_REQUESTS; ++i)
        readable = readable || client->requests[i].state == REQUEST_ANSWERED;
    if (readable == client->fd_readable) return;
    client->fd_readable = readable;
    uint64_t count = 1;
    const ssize_t done =
        readable ? write(client->fd, &count, sizeof count) : read(client->fd, &count, sizeof count);
    (void)done; /* neither can fail: the count is 0 or 1 */
}

static void Changed(at_client* client) {
    Show(client);
    pthread_cond_broadcast(&client->changed);
}

/* Takes in what waits in the queue, unless the handle's thread does, up to the answer or the report that the
 * caller wants. */
static void TakeIn(at_client* client, const open_request* wanted, bool want_report) {
    if (client->reading || client->fault != AT_CLIENT_OK) return;
    bool any = false;
    for (unsigned i = 0; i < MOST_AT_ONCE; ++i) {
        if (wanted != NULL && wanted->state == REQUEST_ANSWERED) break;
        if (want_report && client->report_count != 0) break;
        wire_message wire;
        const ssize_t got = msgrcv(client->queue, &wire, sizeof wire.body, 0, IPC_NOWAIT | MSG_NOERROR);
        if (got < 0) {
            if (errno == EINTR) continue;
            if (errno != ENOMSG) {
                NoteFault(client, errno);
                any = true;
            }
            break;
        }
        at_client_sort(client, &wire, (size_t)got);
        any = true;
    }
    if (any) Changed(client);
}

static at_client_error Ended(at_client* client) {
    if (atomic_load(&client->stopping)) return AT_CLIENT_STOPPED;
    if (client->fault != AT_CLIENT_OK) errno = client->fault_errno;
    return client->fault;
}

/* Lets go of the lock until something may have changed. OK: look again. `nap_us` is null when there is
 * nothing that this thread itself would have to look for. */
static at_client_error Wait(at_client* client, deadline_ns deadline, int* nap_us, int longest_nap_us) {
    const at_client_error error = Ended(client);
    if (error != AT_CLIENT_OK) return error;
    const int64_t now = Now();
    if (now >= deadline) return AT_CLIENT_TIMED_OUT;
    deadline_ns until = deadline;
    if (nap_us != NULL) {
        const int64_t nap = (int64_t)*nap_us * 1000;
        if (nap < deadline - now) until = now + nap;
        *nap_us = *nap_us * 2 < longest_nap_us ? *nap_us * 2 : longest_nap_us;
    }
    if (until == NO_DEADLINE) {
        pthread_cond_wait(&client->changed, &client->lock);
        return AT_CLIENT_OK;
    }
    const struct timespec time = {.tv_sec = (time_t)(until / 1000000000),
                                  .tv_nsec = (long)(until % 1000000000)};
    pthread_cond_timedwait(&client->changed, &client->lock, &time);
    return AT_CLIENT_OK;
}

static at_client_error WaitForArrival(at_client* client, deadline_ns deadline, int* nap_us,
                                      int longest_nap_us) {
    return Wait(client, deadline, client->reading ? NULL : nap_us, longest_nap_us);
}

/* ---- asking ---- */

static open_request* FindRequest(at_client* client, int32_t type) {
    for (unsigned i = 0; i < AT_CLIENT_MOST_REQUESTS; ++i)
        if (client->requests[i].state != REQUEST_FREE && client->requests[i].type == type)
            return &client->requests[i];
    return NULL;
}

static void CloseRequest(at_client* client, open_request* request) {
    request->state = REQUEST_FREE;
    Show(client);
}

static int32_t FreshType(at_client* client) {
    do
        client->next_type =
            client->next_type < LAST_REQUEST_TYPE ? client->next_type + 1 : FIRST_REQUEST_TYPE;
    while (FindRequest(client, client->next_type) != NULL);
    return client->next_type;
}

/* Writes to the server's queue; waits while it is full. */
static at_client_error Post(at_client* client, const wire_message* wire, deadline_ns deadline) {
    int nap_us = SHORTEST_NAP_US;
    bool looked_up = false;
    for (;;) {
        if (client->server < 0) {
            const at_client_error error = at_client_find_server(client);
            if (error != AT_CLIENT_OK) return error;
            looked_up = true;
        }
        if (msgsnd(client->server, wire, AT_WIRE_SIZE, IPC_NOWAIT) == 0) return AT_CLIENT_OK;
        switch (errno) {
            case EINTR:
                break;
            case EINVAL:
            case EIDRM:
                /* The queue went away; there may be a new one. */
                if (looked_up) return AT_CLIENT_FAILED;
                client->server = -1;
                break;
            case EACCES:
                return AT_CLIENT_NO_PERMISSION;
            case EAGAIN: {
                /* The server may stand still because this module's queue is full. */
                TakeIn(client, NULL, false);
                const at_client_error error = Wait(client, deadline, &nap_us, LONGEST_NAP_US);
                if (error == AT_CLIENT_TIMED_OUT) return AT_CLIENT_SERVER_FULL;
                if (error != AT_CLIENT_OK) return error;
                looked_up = false;
                break;
            }
            default:
                return AT_CLIENT_FAILED;
        }
    }
}

static bool GoodRequest(const at_client* client, uint8_t cmd_type, const void* paras, size_t paras_size) {
    return client != NULL && cmd_type >= AT_CMD_TYPE_EXEC && cmd_type <= AT_CMD_TYPE_TEST &&
           paras_size <= AT_REQUEST_PARAS_SIZE && (paras != NULL || paras_size == 0);
}

/* Takes in whatever is in the queue by now. The answer to an earlier dial must be out of the way before the
 * next one is open: nothing else tells them apart. */
static void CatchUp(at_client* client, bool dial, deadline_ns deadline) {
    TakeIn(client, NULL, false);
    if (!dial) return;
    /* The handle's thread is through with the rest when it has come to a message sent now. */
    const uint32_t wakes = client->wakes;
    int nap_us = SHORTEST_NAP_US;
    at_client_error error = AT_CLIENT_OK;
    while (client->reading && client->wakes == wakes && error == AT_CLIENT_OK) {
        at_client_wake(client->queue);
        error = Wait(client, deadline, &nap_us, LONGEST_NAP_US);
    }
}

/* With the lock held. */
static at_client_error Send(at_client* client, uint16_t cmd_id, uint8_t cmd_type, const void* paras,
                            size_t paras_size, deadline_ns deadline, int32_t* number) {
    CatchUp(client, at_client_is_dial(cmd_id, cmd_type), deadline);
    const at_client_error ended = Ended(client);
    if (ended != AT_CLIENT_OK) return ended;
    open_request* request = client->requests;
    while (request < client->requests + AT_CLIENT_MOST_REQUESTS && request->state != REQUEST_FREE)
        ++request;
    if (request == client->requests + AT_CLIENT_MOST_REQUESTS) return AT_CLIENT_TOO_MANY;

    request->type = FreshType(client);
    request->cmd_id = cmd_id;
    request->cmd_type = cmd_type;
    request->state = REQUEST_OPEN;
    wire_message wire;
    at_client_write_request(&wire, request->type, client->options.module, cmd_id, cmd_type, paras,
                            paras_size);
    const at_client_error error = Post(client, &wire, deadline);
    if (error != AT_CLIENT_OK) {
        CloseRequest(client, request);
        return error;
    }
    ++client->stats.requests;
    *number = request->type;
    return AT_CLIENT_OK;
}

/* With the lock held. The request stays open after TIMED_OUT only. */
static at_client_error Receive(at_client* client, int32_t number, deadline_ns deadline,
                               at_client_message* answer) {
    open_request* const request = FindRequest(client, number);
    if (request == NULL) return AT_CLIENT_MISUSE;
    int nap_us = SHORTEST_NAP_US;
    for (;;) {
        TakeIn(client, request, false);
        /* Another thread may have taken it, which is against the rules. */
        if (request->state == REQUEST_FREE || request->type != number) return AT_CLIENT_MISUSE;
        if (request->state == REQUEST_ANSWERED) {
            if (answer != NULL) *answer = request->answer;
            CloseRequest(client, request);
            return AT_CLIENT_OK;
        }
        const at_client_error error = WaitForArrival(client, deadline, &nap_us, LONGEST_NAP_US);
        if (error == AT_CLIENT_OK) continue;
        if (error != AT_CLIENT_TIMED_OUT) CloseRequest(client, request);
        return error;
    }
}

at_client_error at_client_send(at_client* client, uint16_t cmd_id, uint8_t cmd_type, const void* paras,
                               size_t paras_size, int timeout_ms, int32_t* request) {
    if (!GoodRequest(client, cmd_type, paras, paras_size) || request == NULL) return AT_CLIENT_MISUSE;
    const deadline_ns deadline = CommandDeadline(timeout_ms, cmd_id);
    pthread_mutex_lock(&client->lock);
    const at_client_error error = Send(client, cmd_id, cmd_type, paras, paras_size, deadline, request);
    pthread_mutex_unlock(&client->lock);
    return error;
}

at_client_error at_client_receive(at_client* client, int32_t request, int timeout_ms,
                                  at_client_message* answer) {
    if (client == NULL) return AT_CLIENT_MISUSE;
    pthread_mutex_lock(&client->lock);
    const open_request* const found = FindRequest(client, request);
    const deadline_ns deadline = CommandDeadline(timeout_ms, found != NULL ? found->cmd_id : 0);
    const at_client_error error = Receive(client, request, deadline, answer);
    pthread_mutex_unlock(&client->lock);
    return error;
}

void at_client_forget(at_client* client, int32_t request) {
    if (client == NULL) return;
    pthread_mutex_lock(&client->lock);
    open_request* const found = FindRequest(client, request);
    if (found != NULL) CloseRequest(client, found);
    pthread_mutex_unlock(&client->lock);
}

at_client_error at_client_ask(at_client* client, uint16_t cmd_id, uint8_t cmd_type, const void* paras,
                              size_t paras_size, int timeout_ms, at_client_message* answer) {
    if (!GoodRequest(client, cmd_type, paras, paras_size)) return AT_CLIENT_MISUSE;
    const deadline_ns deadline = CommandDeadline(timeout_ms, cmd_id);
    int32_t number = 0;
    pthread_mutex_lock(&client->lock);
    at_client_error error = Send(client, cmd_id, cmd_type, paras, paras_size, deadline, &number);
    if (error == AT_CLIENT_OK) {
        error = Receive(client, number, deadline, answer);
        open_request* const unanswered = FindRequest(client, number);
        if (unanswered != NULL) CloseRequest(client, unanswered);
    }
    pthread_mutex_unlock(&client->lock);
    return error;
}

at_client_error at_client_fetch(at_client* client, uint16_t cmd_id, uint8_t cmd_type, const void* paras,
                                size_t paras_size, int timeout_ms, void* record, size_t record_size) {
    if (record == NULL && record_size != 0) return AT_CLIENT_MISUSE;
    if (record != NULL) memset(record, 0, record_size);
    at_client_message answer;
    const at_client_error error =
        at_client_ask(client, cmd_id, cmd_type, paras, paras_size, timeout_ms, &answer);
    if (error != AT_CLIENT_OK) return error;
    if (answer.result != AT_RESULT_OK) return AT_CLIENT_REFUSED;
    return record != NULL ? at_client_record(&answer, record, record_size) : AT_CLIENT_OK;
}

/* ---- reports ---- */

/* Whether reports go from the handle's thread to the callback. */
static bool BelongsToThread(const at_client* client) {
    return (client->options.flags & AT_CLIENT_THREAD) != 0 && client->options.on_report != NULL;
}

at_client_error at_client_next_report(at_client* client, at_client_message* report, int timeout_ms) {
    if (client == NULL || report == NULL || BelongsToThread(client)) return AT_CLIENT_MISUSE;
    const deadline_ns deadline = ReportDeadline(timeout_ms);
    int nap_us = SHORTEST_NAP_US;
    pthread_mutex_lock(&client->lock);
    at_client_error error = AT_CLIENT_OK;
    for (;;) {
        TakeIn(client, NULL, true);
        if (client->report_count != 0) break;
        error = WaitForArrival(client, deadline, &nap_us, LONGEST_REPORT_NAP_US);
        if (error != AT_CLIENT_OK) break;
    }
    if (error == AT_CLIENT_OK) {
        TakeReport(client, report);
        Show(client);
    }
    pthread_mutex_unlock(&client->lock);
    return error;
}

at_client_error at_client_poll(at_client* client, int timeout_ms) {
    if (client == NULL || client->options.on_report == NULL) return AT_CLIENT_MISUSE;
    at_client_message report;
    at_client_error error = at_client_next_report(client, &report, timeout_ms);
    if (error != AT_CLIENT_OK) return error;
    /* No more than can have waited: a storm of reports must not keep the caller. */
    for (unsigned i = 1; error == AT_CLIENT_OK; ++i) {
        client->options.on_report(client, &report, client->options.context);
        if (i == AT_CLIENT_MOST_REPORTS) break;
        error = at_client_next_report(client, &report, 0);
    }
    return AT_CLIENT_OK;
}

/* Hands the reports to the callback, without the lock. Then whoever waits takes in himself. */
static void CallBack(at_client* client) {
    while (client->report_count != 0 && !atomic_load(&client->stopping)) {
        at_client_message report;
        TakeReport(client, &report);
        client->reading = false;
        pthread_cond_broadcast(&client->changed);
        pthread_mutex_unlock(&client->lock);
        client->options.on_report(client, &report, client->options.context);
        pthread_mutex_lock(&client->lock);
    }
}

void* at_client_run_thread(void* argument) {
    at_client* const client = argument;
    pthread_mutex_lock(&client->lock);
    while (client->fault == AT_CLIENT_OK && !atomic_load(&client->stopping)) {
        if (client->options.on_report != NULL && client->report_count != 0) {
            CallBack(client);
            continue;
        }
        client->reading = true;
        pthread_mutex_unlock(&client->lock);
        wire_message wire;
        const ssize_t got = msgrcv(client->queue, &wire, sizeof wire.body, 0, MSG_NOERROR);
        const int error = got < 0 ? errno : 0;
        pthread_mutex_lock(&client->lock);
        if (got >= 0)
            at_client_sort(client, &wire, (size_t)got);
        else if (error != EINTR)
            NoteFault(client, error);
        Changed(client);
    }
    client->reading = false;
    Changed(client);
    pthread_mutex_unlock(&client->lock);
    return NULL;
}

#ifndef AT_CLIENT_INTERNAL_H
#define AT_CLIENT_INTERNAL_H

/* What the files of the client library share. Not for its users, so hidden from whoever links a shared object
 * that it went into; the names keep out of the way of a program's own. */

#include <pthread.h>
#include <stdatomic.h>
#include <stdbool.h>

#include "client/at_client.h"

enum {
    REPORT_TYPE = 1, /* message type of every report */
    FIRST_REQUEST_TYPE = 2,
    WAKE_TYPE = INT32_MAX, /* of messages that a handle sends itself; no request has it */
    LAST_REQUEST_TYPE = WAKE_TYPE - 1
};

/* What the queue calls are given: one byte more than any good message has, so that a longer one, which is
 * taken off cut, can be told from a good one. */
typedef struct {
    long mtype;
    uint8_t body[AT_WIRE_SIZE + 1];
} wire_message;

enum request_state { REQUEST_FREE, REQUEST_OPEN, REQUEST_ANSWERED };

typedef struct {
    enum request_state state;
    int32_t type; /* message type of the request and its answer; the number given to the caller */
    uint16_t cmd_id;
    uint8_t cmd_type;
    at_client_message answer;
} open_request;

/* A point of CLOCK_MONOTONIC in ns; NO_DEADLINE for none. */
typedef int64_t deadline_ns;
#define NO_DEADLINE INT64_MAX

struct at_client {
    /* Set at open, constant until close. */
    at_client_options options;
    int queue;         /* id of the module's queue */
    bool remove_queue; /* at close */
    bool threaded;
    int fd;           /* eventfd, or -1 */
    pthread_t thread; /* when threaded */

    atomic_bool stopping; /* set by at_client_stop, in a signal handler too */

    pthread_mutex_t lock;   /* guards what follows */
    pthread_cond_t changed; /* something arrived, or the handle came to its end */
    at_client_error fault;  /* not OK: the queue cannot be read any more */
    int fault_errno;
    bool reading;   /* the handle's thread takes in what comes; otherwise whoever waits does */
    uint32_t wakes; /* messages of at_client_wake that came */
    int server;     /* id of the server's queue, -1 unknown */
    int32_t next_type;
    open_request requests[AT_CLIENT_MOST_REQUESTS];
    at_client_message reports[AT_CLIENT_MOST_REPORTS]; /* a ring */
    unsigned first_report;
    unsigned report_count;
    bool fd_readable;
    at_client_stats stats;
};

#pragma GCC visibility push(hidden)

/* ---- message.c: one message, without locks or queues ---- */

/* Reads what came off a queue; true when it is one of the server's to this module. */
bool at_client_read_message(at_client_message* message, uint16_t module, const wire_message* wire,
                            size_t length);
/* Writes a request. */
void at_client_write_request(wire_message* wire, int32_t type, uint16_t module, uint16_t cmd_id,
                             uint8_t cmd_type, const void* paras, size_t paras_size);
/* Whether the answer to this request comes with the type of reports. */
bool at_client_is_dial(uint16_t cmd_id, uint8_t cmd_type);

/* ---- queue.c: queues as the kernel has them ---- */

/* Makes or finds the module's queue. What waited in a left-over one is put into client->reports. */
at_client_error at_client_open_queue(at_client* client);
/* Id of the server's queue into client->server. */
at_client_error at_client_find_server(at_client* client);
/* Makes a blocked reader of this queue look up. Safe in signal handlers. */
void at_client_wake(int queue);
/* Takes off what at_client_wake put there and nobody looked up for. */
void at_client_forget_wakes(int queue);

/* ---- exchange.c ---- */

/* One message that came off the queue goes where it belongs. With client->lock held, or before it is needed.
 */
void at_client_sort(at_client* client, const wire_message* wire, size_t length);

/* The handle's thread. */
void* at_client_run_thread(void* client);

#pragma GCC visibility pop

#endif

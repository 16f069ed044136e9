#ifndef AT_CLIENT_H
#define AT_CLIENT_H

/* The AT server for module authors: open a module's queue, ask the server, receive its reports. Usable from
 * C11 and C++20; needs the C library and its threads, nothing else.
 *
 *     at_client* client = NULL;
 *     at_client_options options = {.module = AT_MODULE_SMS};
 *     at_client_error error = at_client_open(&options, &client);
 *     if (error != AT_CLIENT_OK) { puts(at_client_error_text(error)); ... }
 *     AT_CSQ_EXEC_RES_PARA_T signal;
 *     error = at_client_fetch(client, AT_ID_CSQ, AT_CMD_TYPE_EXEC, NULL, 0, AT_CLIENT_PATIENT, &signal,
 *                             sizeof signal);
 *     at_client_close(client);
 *
 * Command ids stand in commands/command_ids.h, records in commands/records_<domain>.h and, of reports, in
 * reports/report_records.h; docs/commands.md and docs/reports.md tell what they mean.
 *
 * How an answer is matched. The server copies the message type of a request into its answer. Every request
 * gets a message type that no other request of this handle has, from a random place on, and an answer counts
 * only when its type, command id and command type are those of a request that is still open. So an answer
 * that comes after its caller gave up is dropped and counted (at_client_stats.stale), also when the same
 * command was asked again in the meantime, and also when an earlier run of this module asked for it. One
 * exception: the server keeps nothing of a dial (command D) but whom to tell, so the answer to a dial comes
 * with the message type of reports and is known by its command alone; see docs/client.md.
 *
 * How it waits. System V queues have no time limit and nothing that poll() could wait for. Without a thread,
 * whoever waits looks at the queue, at once and then after naps that double from 0.5 ms up to 10 ms (20 ms
 * when it is reports that are waited for): nothing ever blocks in the kernel, so every deadline holds, and
 * the process stays free of threads. With AT_CLIENT_THREAD a thread of the handle blocks in the kernel
 * instead: everything arrives at once, an idle module uses no processor time, and there is a descriptor for
 * poll(). The server's queue is written without blocking in either case, with the same naps while it is full.
 *
 * Threads. Every function may be called by several threads at once on one handle, but for at_client_open and
 * at_client_close. Requests of several threads are under way at the same time and each gets its own answer;
 * the server works them off one after the other. Who waits also takes in what is meant for others, so that
 * the queue never fills up behind a waiting caller: the server would stand still until there is room.
 * A handle is of no use in a child after fork(); the queue stays the parent's.
 *
 * Signals. Waits go on when a signal interrupts them. at_client_stop may be called in a signal handler. */

#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

#include "records/message.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A module's connection to the server. One block of memory of about 30 KB, taken at at_client_open and given
 * back at at_client_close; nothing else is allocated. */
typedef struct at_client at_client;

enum {
    AT_CLIENT_ANY_MODULE = 0,     /* a module id of at_client_open's choice */
    AT_CLIENT_FIRST_ANY = 0x6000, /* the ids that it chooses from: none of the router's is among them */
    AT_CLIENT_LAST_ANY = 0x7FFF,
    AT_CLIENT_PATIENT = -1,      /* a timeout_ms: as long as it takes, see there */
    AT_CLIENT_MOST_REQUESTS = 8, /* open at the same time on one handle */
    AT_CLIENT_MOST_REPORTS = 32, /* kept for at_client_next_report, at_client_poll and the callback */
    AT_CLIENT_PARAS_OFFSET = 14  /* of the parameters in at_client_message.body */
};

typedef enum {
    AT_CLIENT_OK = 0,
    AT_CLIENT_TIMED_OUT,     /* nothing came in the time given */
    AT_CLIENT_REFUSED,       /* an answer came, and its result is not AT_RESULT_OK */
    AT_CLIENT_WRONG_SIZE,    /* the record that came is not of the size asked for */
    AT_CLIENT_CUT,           /* the record is larger than a message can carry: only its front came */
    AT_CLIENT_NO_SERVER,     /* there is no queue of the server's: it does not run */
    AT_CLIENT_SERVER_FULL,   /* the server's queue was full for all of the time given; nothing was sent */
    AT_CLIENT_NO_PERMISSION, /* a queue belongs to another user */
    AT_CLIENT_QUEUE_TAKEN,   /* the module has a queue already, and somebody who lives may be using it */
    AT_CLIENT_NO_QUEUE,      /* the kernel makes no queue; errno says why (ENOSPC: too many queues) */
    AT_CLIENT_QUEUE_GONE,    /* the module's queue was removed by somebody; the handle is of no further use */
    AT_CLIENT_TOO_MANY,      /* AT_CLIENT_MOST_REQUESTS are open already */
    AT_CLIENT_STOPPED,       /* at_client_stop was called */
    AT_CLIENT_MISUSE,        /* a call that can never work: see the function */
    AT_CLIENT_FAILED         /* a system call failed in a way that is not foreseen; errno says how */
} at_client_error;

/* What became of the module's queue before at_client_open and becomes of it at at_client_close. */
typedef enum {
    /* Made, and removed at the end. A queue that is left over from a process that has ended (as far as the
     * kernel's note of who last read it tells) is replaced; reports that waited in it are kept. */
    AT_CLIENT_QUEUE_OWN = 0,
    /* Made, and removed at the end. Any queue that exists already is refused. */
    AT_CLIENT_QUEUE_NEW,
    /* The one that exists, or a new one; it stays at the end, and what the server reports meanwhile waits in
     * it, until it is full and stalls the server. For modules that come back at once. Refused while another
     * process lives that read it last. */
    AT_CLIENT_QUEUE_KEPT
} at_client_queue;

enum {
    AT_CLIENT_THREAD = 1,      /* a thread of the handle receives, see "How it waits" */
    AT_CLIENT_NEED_SERVER = 2, /* at_client_open fails when there is no server yet */
    /* Late answers and messages that are not the server's are counted, and handed over like reports too. */
    AT_CLIENT_TAKE_ALL = 4
};

/* What a message is. All but the first two are seen only with AT_CLIENT_TAKE_ALL. */
typedef enum {
    AT_CLIENT_REPORT,
    AT_CLIENT_ANSWER,
    AT_CLIENT_STALE,  /* an answer that nobody waits for */
    AT_CLIENT_FOREIGN /* wrong length, message type, guard word, receiver or message command */
} at_client_kind;

/* An answer or a report. The fields have been read from `body` and checked, unless kind says foreign. */
typedef struct {
    at_client_kind kind;
    int32_t type;     /* message type: of the request that is answered, 1 in reports; 0 out of range */
    uint16_t cmd_id;  /* of the request that is answered, or of the report */
    uint8_t cmd_type; /* AT_CMD_TYPE_... */
    uint8_t result;   /* AT_RESULT_... */
    /* Bytes of the whole record; may exceed what came where it is handed over in a file. */
    uint16_t record_size;
    uint16_t size;   /* bytes of the parameters that came: record_size, at most AT_RESPONSE_PARAS_SIZE */
    uint16_t length; /* bytes of body that came, AT_WIRE_SIZE but for foreign ones; the rest is zero */
    uint8_t body[AT_WIRE_SIZE]; /* what travelled: MSG_BUF behind its lMsgType */
} at_client_message;

/* The parameters of a message: `size` bytes that mean something, AT_RESPONSE_PARAS_SIZE that can be read. Not
 * aligned for integers: see at_client_record. */
static inline const uint8_t* at_client_paras(const at_client_message* message) {
    return message->body + AT_CLIENT_PARAS_OFFSET;
}

/* Called with each report, never with a lock held: it may ask, and call everything but at_client_close and
 * at_client_poll. `message` is valid during the call. With AT_CLIENT_THREAD it runs on the handle's thread
 * (all signals blocked there), and the next report waits until it returns; without, in at_client_poll. */
typedef void (*at_client_report_function)(at_client* client, const at_client_message* message, void* context);

/* All zero is a good default but for the module. */
typedef struct {
    uint16_t module;       /* AT_MODULE_..., and the key of its queue; or AT_CLIENT_ANY_MODULE */
    at_client_queue queue; /* AT_CLIENT_QUEUE_... */
    unsigned flags;        /* AT_CLIENT_THREAD, ... */
    at_client_report_function on_report; /* null: reports wait for at_client_next_report */
    void* context;                       /* given to on_report */
    int32_t server_key;                  /* of the server's queue; 0: AT_MODULE_SERVER */
} at_client_options;

/* Opens a module's queue. `*client` is null unless AT_CLIENT_OK.
 * Errors: QUEUE_TAKEN, NO_QUEUE (errno), NO_PERMISSION, FAILED (errno: no memory, no thread, no descriptor);
 * NO_SERVER with AT_CLIENT_NEED_SERVER; MISUSE: a null pointer, the server's own id, an unknown queue or
 * flag. */
at_client_error at_client_open(const at_client_options* options, at_client** client);

/* Ends the thread, removes the queue (unless it is kept) and frees the handle; null is allowed. No other
 * thread may be in a call with this handle: end them with at_client_stop first. Not in on_report. */
void at_client_close(at_client* client);

/* Ends, for good, every wait of this handle that is under way or still to come with AT_CLIENT_STOPPED: at
 * once with AT_CLIENT_THREAD, otherwise after the nap. For a signal handler or any thread. */
void at_client_stop(at_client* client);

/* Asks, and waits for the answer.
 *   cmd_id, cmd_type   command id, AT_CMD_TYPE_...
 *   paras, paras_size  the command's parameter record, exactly its size (null and 0 without one); the text of
 *                      a dial without its NUL, at most AT_DIAL_NUMBER_SIZE characters: the server cuts the
 *                      rest and dials what is left
 *   timeout_ms         how long it may take in all, from 0 (one look); AT_CLIENT_PATIENT: as long as the
 * server itself waits for the modem and some more, see at_client_timeout_ms answer             where the
 * answer goes, whatever its result; may be null Errors: TIMED_OUT (the modem may still carry the command out;
 * a late answer is dropped), SERVER_FULL, NO_SERVER, NO_PERMISSION, QUEUE_GONE, TOO_MANY, STOPPED, FAILED
 * (errno); MISUSE: null handle, paras_size without paras or above AT_REQUEST_PARAS_SIZE, a cmd_type out of
 * range. */
at_client_error at_client_ask(at_client* client, uint16_t cmd_id, uint8_t cmd_type, const void* paras,
                              size_t paras_size, int timeout_ms, at_client_message* answer);

/* The same for who wants the record and nothing else: AT_CLIENT_OK means that the modem said OK and that the
 * answer's record was of exactly record_size bytes. (With record null and 0, that it said OK.)
 * Further errors: REFUSED, WRONG_SIZE, CUT; see at_client_record for what `record` holds then. */
at_client_error at_client_fetch(at_client* client, uint16_t cmd_id, uint8_t cmd_type, const void* paras,
                                size_t paras_size, int timeout_ms, void* record, size_t record_size);

/* Asking in two steps, for programs that have other things to do meanwhile. at_client_send puts the request
 * on the server's queue, waiting at most timeout_ms while that is full, and writes a number into *request;
 * at_client_receive waits for its answer. After AT_CLIENT_TIMED_OUT the request is still open and can be
 * received again. It ends with any other outcome or with at_client_forget, after which its answer is dropped.
 * Errors: as at_client_ask; MISUSE also for a request that is not open. */
at_client_error at_client_send(at_client* client, uint16_t cmd_id, uint8_t cmd_type, const void* paras,
                               size_t paras_size, int timeout_ms, int32_t* request);
at_client_error at_client_receive(at_client* client, int32_t request, int timeout_ms,
                                  at_client_message* answer);
void at_client_forget(at_client* client, int32_t request);

/* How long AT_CLIENT_PATIENT waits for the answer to this command: longer than the server waits for the
 * modem, so that it is always the server that says so (result AT_RESULT_TIMEOUT). Milliseconds. */
int at_client_timeout_ms(uint16_t cmd_id);

/* The next report, oldest first. timeout_ms: AT_CLIENT_PATIENT waits without end. When more than
 * AT_CLIENT_MOST_REPORTS wait, the oldest go (at_client_stats.lost).
 * Errors: TIMED_OUT, QUEUE_GONE, STOPPED, FAILED (errno); MISUSE: the handle has a callback and a thread. */
at_client_error at_client_next_report(at_client* client, at_client_message* report, int timeout_ms);

/* Hands all reports that wait to the callback, after waiting for the first at most timeout_ms. AT_CLIENT_OK:
 * there was at least one. Errors: as at_client_next_report; MISUSE also without a callback. */
at_client_error at_client_poll(at_client* client, int timeout_ms);

/* A descriptor for poll(): readable while a report waits, an answer to at_client_send is there, or the handle
 * is stopped or its queue gone. Do not read it: take the reports (at_client_next_report with timeout 0 until
 * AT_CLIENT_TIMED_OUT) and the answers. It is the handle's; -1 without AT_CLIENT_THREAD or with a callback.
 */
int at_client_fd(const at_client* client);

/* Copies a message's record into the caller's struct of `size` bytes, which is zeroed first.
 * Errors: WRONG_SIZE: the message carries a record of another size (record all zero). CUT: it says this size,
 * but only AT_RESPONSE_PARAS_SIZE bytes of it can have come (record holds these); docs/commands.md tells the
 * file that holds the rest, if there is one. MISUSE: a null pointer. */
at_client_error at_client_record(const at_client_message* message, void* record, size_t size);

/* Copies a message's parameters as text: up to the first NUL, cut at size - 1 bytes, always terminated. Bytes
 * of the modem as they are: not necessarily printable. */
void at_client_text(const at_client_message* message, char* text, size_t size);

/* The module id that the handle asks as. */
uint16_t at_client_module(const at_client* client);

/* Since at_client_open; each wraps at 2^32. */
typedef struct {
    uint32_t requests; /* put on the server's queue */
    uint32_t answers;  /* that matched an open request */
    uint32_t reports;  /* that came */
    uint32_t lost;     /* of these: dropped because nobody took them in time */
    uint32_t stale;    /* answers that nobody waits for, dropped */
    uint32_t foreign;  /* messages with a wrong length, message type, guard word, receiver or message command,
                          dropped */
} at_client_stats;
void at_client_get_stats(at_client* client, at_client_stats* stats);

/* How the server is doing, for the case that no answer comes. */
typedef struct {
    uint32_t waiting;   /* requests in its queue */
    pid_t reader;       /* the process that last took one; 0 when nobody ever did */
    int reader_is_gone; /* 1: that process has ended */
} at_client_server;
/* Errors: NO_SERVER, NO_PERMISSION, FAILED (errno). */
at_client_error at_client_look_at_server(at_client* client, at_client_server* server);

/* What an error means and what to do, in English, without a line break; never null, not to be freed. */
const char* at_client_error_text(at_client_error error);
/* The same for a result, AT_RESULT_...: "OK", "the modem gave no answer in time", ... With a CMS or CME error
 * the parameters hold the modem's own text, see at_client_text. */
const char* at_client_result_text(uint8_t result);

#ifdef __cplusplus
}
#endif

#endif

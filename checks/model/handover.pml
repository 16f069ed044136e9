/* The hand-over between the request loop and the response thread (records/handover.h), small enough to be searched
 * exhaustively: every interleaving of the two threads, of the modem, and of every mix of requests.
 *
 * A run serves REQUESTS requests, each of any kind:
 *   NORMAL    its line is written and the modem answers or keeps silent;
 *   DIAL      not waited for: put into the record already idle; the modem may answer OK;
 *   NO_LINE   no line could be generated: it goes in flight without a line and without a ticket;
 *   NO_PORT   the write fails: it stays in flight, but the loop is let go;
 *   REFUSED   a receive that fails, or a message with a bad guard word: not handed over, not answered, the loop goes on.
 *
 * What must hold:
 *   once      every request is answered (by the modem's answer or by its time-out) exactly once;
 *   own       what answers it was sent for its own line;
 *   the end   every run ends: the loop is never stuck. A run serves finitely many requests, so one that goes on for
 *             ever can only be a thread that waits, or turns in vain, for something that no longer comes. Assertions do
 *             not see that, because the response thread can always turn once more: it takes the second search of
 *             scripts/check-model, for cycles. No step is labelled as progress, so each fair cycle is an error.
 *
 * Exceptions, each stated behaviour, by name:
 *   overwritten   a NO_LINE or NO_PORT request is not waited for, so the next request may overwrite it unanswered;
 *   cleared       a call event ends the request in flight without an answer (only with -DCALL_EVENTS);
 *   crossed       without identity on the wire nobody can tell whose answer is read: one that comes after the end of
 *                 its request answers the next request in flight, or nobody. It takes one of
 *                   -DCALL_EVENTS   the modem still answers a request that a call event has cleared;
 *                   -DLATE_DIAL_OK  the OK of a dial is read after the next request was handed over;
 *                   -DLATE_ANSWER   the answer of a request is read after its time-out;
 *                 Without them the modem answers in time or never, and "own" holds. With any of them "own" fails, and
 *                 -DCROSSED leaves it out. Everything else must hold all the same.
 *
 * Two variants are wrong on purpose, to show that the searches find it:
 *   -DPLAIN         the obvious protocol: the loop receives straight into the shared record, a flag of 0 and 1,
 *                   "answer, then clear" and "store 0". Requests are lost and crossed;
 *   -DKEEP_TICKET   the end of a request does not give its ticket back. The loop waits for ever.
 */

#ifndef REQUESTS
#define REQUESTS 4
#endif

#define NORMAL 0
#define DIAL 1
#define NO_LINE 2
#define NO_PORT 3
#define REFUSED 4

byte kind[REQUESTS + 1];       /* of request 1.. */
byte answers[REQUESTS + 1];    /* answers and time-outs that reached its requester */
bool overwritten[REQUESTS + 1];
bool cleared[REQUESTS + 1];

/* shared between the threads */
byte ticket;                   /* g_at_processing: 0, or the request's number */
bool slot_full;
byte slot_request;             /* what is in the slot */
bool slot_idle;                /* ... with type -1: a dial */

/* the record, g_at_msg */
byte record;                   /* the request in it, 0 for none */
bool outstanding;              /* its type is not -1 */

/* the modem: what it owes for the last line, and what it has sent. 0 for nothing. */
byte line;                     /* the line that it is working on */
bool silent[REQUESTS + 1];     /* the lines that it has decided not to answer */
byte text;                     /* an answer that can be read: the request it is meant for */
byte got;                      /* the answer that the response thread has read and not yet handled */

bool loop_done;
byte at_rest;                  /* processes that have ended */

inline choose(n) {
    if
    :: kind[n] = NORMAL
    :: kind[n] = DIAL
    :: kind[n] = NO_LINE
    :: kind[n] = NO_PORT
#ifndef PLAIN
    :: kind[n] = REFUSED
#endif
    fi
}

/* What nothing but its time-out can end. */
#define UNANSWERABLE(r) (silent[r] || kind[r] == NO_LINE || kind[r] == NO_PORT)

/* The record goes to another request: the one before must be over, unless that is stated. */
inline replace(r, idle) {
    if
    :: outstanding ->
        assert(kind[record] == NO_LINE || kind[record] == NO_PORT);
        overwritten[record] = true
    :: else
    fi;
    record = r;
    outstanding = !idle
}

inline answer_with(t) {
    /* "t" is the request that the text was meant for; a dial's OK with the dial's record idle answers the dialler */
    if
    :: record == 0 -> skip             /* nobody's: routed as a report */
    :: record != 0 ->
#ifndef CROSSED
        assert(record == t);
#endif
        answers[record]++;
        assert(answers[record] <= 1)
    fi
}

inline time_out() {
    answers[record]++;
    assert(answers[record] <= 1);
    record = 0; outstanding = false
}

active proctype Modem() {
    do
    :: atomic { line != 0 && text == 0 -> text = line; line = 0 }
    :: atomic { line != 0 && text == 0 -> silent[line] = true; line = 0 }
    :: atomic { loop_done && line == 0 -> break }
    od;
    at_rest++
}

#ifndef PLAIN

inline take() {
    if
    :: slot_full ->
        atomic { replace(slot_request, slot_idle) };
        slot_full = false
    :: else
    fi
}

/* Lets the loop go on: compare-and-exchange with the ticket that was loaded. */
inline give_back() {
#ifdef KEEP_TICKET
    skip
#else
    atomic { if :: loaded != 0 && ticket == loaded -> ticket = 0 :: else fi }
#endif
}

active proctype Response() {
    byte loaded;
    do
    :: take();                                  /* start of the round */
        if
        :: text != 0 -> atomic { got = text; text = 0 };
            take();                             /* again after a read that returned data */
            answer_with(got);
            record = 0; outstanding = false; got = 0
        :: text == 0 -> skip                    /* nothing to read yet */
        fi;
#ifdef CALL_EVENTS
        if
        :: record != 0 && outstanding -> cleared[record] = true; record = 0; outstanding = false
        :: skip
        fi;
#endif
        loaded = ticket;                        /* before slot and record are looked at */
        take();
        if
        :: !outstanding -> give_back()
        :: outstanding && UNANSWERABLE(record) -> time_out(); give_back()
#ifdef LATE_ANSWER
        :: outstanding && !UNANSWERABLE(record) -> time_out(); give_back()  /* before the modem has answered */
#endif
        :: outstanding && !UNANSWERABLE(record) -> skip                     /* one more round */
        fi;
        loaded = 0;
        if
        :: loop_done && !outstanding && !slot_full && text == 0 && line == 0 && ticket == 0 -> break
        :: else
        fi
    od;
    at_rest++
}

active proctype Loop() {
    byte n = 1;
    do
    :: n > REQUESTS -> break
    :: else ->
        ticket == 0;                            /* waits for the transaction before */
        choose(n);
        if
        :: kind[n] == REFUSED -> skip           /* nothing of it reaches the other thread */
        :: else ->
            !slot_full;                         /* the slot must be empty */
            slot_request = n; slot_idle = (kind[n] == DIAL);
            slot_full = true;
            if
            :: kind[n] == NORMAL || kind[n] == NO_PORT -> ticket = n
            :: else
            fi;
            if
            :: kind[n] == NORMAL || kind[n] == DIAL ->
                line = n
#ifndef LATE_DIAL_OK
                if
                :: kind[n] == DIAL -> (line == 0 && text == 0 && got == 0)  /* its OK, if any, is handled before */
                :: else
                fi
#endif
            :: kind[n] == NO_PORT -> ticket = 0     /* the write failed */
            :: else
            fi;
        fi;
        n++
    od;
    loop_done = true;
    at_rest++
}

#else /* PLAIN */

active proctype Response() {
    do
    :: if
        :: text != 0 -> atomic { got = text; text = 0 };
            answer_with(got);                   /* answer, */
            record = 0; outstanding = false;    /* then clear: what the loop put there in between is gone */
            got = 0
        :: text == 0 -> skip
        fi;
        if
        :: !outstanding -> ticket = 0           /* store 0: also the flag that the loop has just set */
        :: outstanding && UNANSWERABLE(record) -> time_out();
            ticket = 0
        :: else -> skip
        fi;
        if
        :: loop_done && !outstanding && text == 0 && line == 0 && ticket == 0 -> break
        :: else
        fi
    od;
    at_rest++
}

active proctype Loop() {
    byte n = 1;
    do
    :: n > REQUESTS -> break
    :: else ->
        ticket == 0;
        choose(n);
        atomic { replace(n, false) };           /* received straight into the record */
        ticket = n;
        if
        :: kind[n] == NO_LINE -> ticket = 0
        :: kind[n] == NO_PORT -> ticket = 0
        :: kind[n] == DIAL -> outstanding = false; ticket = 0;
            line = n;
            (line == 0 && text == 0 && got == 0)
        :: kind[n] == NORMAL -> line = n
        fi;
        n++
    od;
    loop_done = true;
    at_rest++
}

#endif

/* When everything has come to rest. A dial is over when it was put aside, a refused message has no answer, and every
 * other request has one. */
active proctype Judge() {
    byte n = 1;
    at_rest == 3;
    do
    :: n > REQUESTS -> break
    :: else ->
        if
        :: kind[n] == DIAL -> assert(answers[n] <= 1)
        :: kind[n] == REFUSED -> assert(answers[n] == 0)
        :: kind[n] != DIAL && (overwritten[n] || cleared[n]) -> assert(answers[n] == 0)
        :: else -> assert(answers[n] == 1)
        fi;
        n++
    od
}

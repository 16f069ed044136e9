#ifndef AT_RECORDS_STATE_H
#define AT_RECORDS_STATE_H

#include <stdint.h>

#include <atomic>

#include "records/payload.h"

// What the threads of the server share. Two threads and the timer service run in it:
//   the request thread (main): receives requests, generates and writes lines;
//   the response thread: reads the modem, answers, reports, times out;
//   the timer service: runs the watchdog once a minute.
// Everything that crosses is a 32-bit atomic (the router's processor has no others without a library) or goes
// through records/handover.h. Everything else has one owner, named here.

// The request in flight; lMsgType is -1 when nothing is outstanding. Owner: response thread.
extern MSG_BUF g_at_msg;

// The last command line sent, its CR included. Owner: response thread (it arrives with the request it belongs
// to).
inline constexpr int kLineSize = 1024;
extern char g_cmd_str[kLineSize];

// Id of the last response that was delivered as an answer, nothing else. Owner: response thread.
extern uint16_t g_last_atcmd;

// The request view of g_at_msg.aucDataBuf.
inline _BK_AT_CMD_T* PendingRequest() {
    return &RequestOf(g_at_msg);
}

// Zeroes the request in flight and marks it idle.
void ClearPendingRequest();

// Not zero while a request is being served: the ticket of that request. Set by the request thread, cleared by
// either.
extern std::atomic<uint32_t> g_at_processing;

// 1 from the dial line until the call's outcome or the hang-up is known. Set by the request thread, cleared
// by the response thread.
extern std::atomic<uint32_t> g_atd_warting;

// times() at the last line that was written. Written by the request thread, and by the response thread for
// follow-up lines (reports/connection.h).
extern std::atomic<uint32_t> g_at_send_time;

// Transaction counters: lines written (as above), answers delivered and reports routed (response thread),
// requests that ended by time-out (response thread). Read by the request thread for the statistics line.
struct AT_STATISTICS_T {
    std::atomic<uint32_t> send;
    std::atomic<uint32_t> received;
    std::atomic<uint32_t> report;
    std::atomic<uint32_t> lost;
};
extern AT_STATISTICS_T g_at_statistics;

// Counters that move only while the modem watchdog is on: lines written, and reads that returned data. The
// second is consumed by the watchdog on the timer service's thread.
struct AT_WATCHDOG_STATISTICS_T {
    std::atomic<uint32_t> written;
    std::atomic<uint32_t> read;
};
extern AT_WATCHDOG_STATISTICS_T AtStatistics;

#endif

#ifndef AT_SERVER_TRANSACTION_H
#define AT_SERVER_TRANSACTION_H

#include <stdint.h>

#include "records/message.h"

// The waiting half of a transaction: the response thread's round, the time-outs, and the answers that the
// server gives in the modem's place. Log lines carry "at_server". The sending half is port/transmit.h.

// Rounds of the response thread (10 ms each at least) that a request with `cmd_id` may take.
uint32_t TimeoutRounds(uint16_t cmd_id);

// One round: takes a request that waits, reads and handles what the modem sent, ends the transaction that is
// over and times out the one that took too long. Response thread only.
void ResponseRound();

// The response thread. Never returns.
void* resolve_at_response_thread(void* unused);

// Answers the request in flight with result 5. 0, or 1 when the answer could not be sent; the request then
// stays in flight and is timed out again.
int SendTimeoutAnswer();

// Refuses the request in flight with result 6 when a call is being set up (`call_state` "call_setup", and the
// request is not the call module's) or a data connection is coming up or going down (`data_state`). True when
// it was refused. Nothing calls it: which keys hold the two states is the router's to say.
bool RefuseWhenBusy(const char* call_state, const char* data_state);

// Logs the counters, and the time since the last line was sent. `queue` is the server's own.
void LogStatistics(int queue);

#endif

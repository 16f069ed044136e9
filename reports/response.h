#ifndef AT_REPORTS_RESPONSE_H
#define AT_REPORTS_RESPONSE_H

#include <stddef.h>
#include <stdint.h>

#include "records/message.h"
#include "reports/routing.h"

// Response delivery: the response thread's step from modem text to answers and reports. Log lines carry
// "response". Everything here belongs to the response thread.

// One polling step: reads what the modem has sent and handles every complete response. 0 when data was read,
// 1 when there was none.
uint32_t on_recieve_at();

// The step behind the read: `received` is NUL-terminated and may be rewritten; at most 102,400 characters.
void ProcessReceived(char* received);

// Drops all buffered text.
void ForgetReceived();

// For a request that timed out: drops unfinished text in which a double quote is open, because it would hide
// every response that follows. True when something was dropped.
bool DropUnfinishedQuote();

#endif

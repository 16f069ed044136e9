#ifndef AT_RECORDS_HANDOVER_H
#define AT_RECORDS_HANDOVER_H

#include <stdint.h>

#include "records/message.h"

// How a request gets from the request thread to the response thread, which alone owns g_at_msg.
//
// The request thread puts the checked request, with the line generated for it, into a slot that is empty or
// full, and only then issues a ticket (g_at_processing) and writes the line. The response thread empties the
// slot at the start of each round and again after each read that returned data: text that answers a line can
// be read only after the line was written, so the request it belongs to is always seen first. To let the loop
// go on, the response thread loads the ticket before it looks at slot and record and clears it only if it is
// still the same: a request that arrives in between has another ticket and keeps it.

// Request thread. Puts a request into the slot; `line` is null when none could be generated. False, with
// nothing done, while the response thread has not yet taken the request before.
bool HandoverPut(const MSG_BUF& request, const char* line);

// Response thread. Makes a waiting request the one in flight (g_at_msg, and g_cmd_str when it has a line). A
// request that was in flight is overwritten. True when there was one.
bool HandoverTake();

// The ticket that follows `last`: 0 means that nothing is being served.
constexpr uint32_t TicketAfter(uint32_t last) {
    return last != UINT32_MAX ? last + 1 : 1;
}

// Request thread. Issues the ticket of the request just put: never 0, different from the last.
uint32_t IssueTicket();

// Response thread. Lets the loop go on, if `ticket`, loaded before slot and record were looked at, is still
// the current one.
void RedeemTicket(uint32_t ticket);

#endif

#ifndef AT_CHECKS_BENCH_END_TO_END_ORDER_H
#define AT_CHECKS_BENCH_END_TO_END_ORDER_H

#include <stdint.h>

#include "records/message.h"

// What the bare program is told in the place of a request: the calls that the daemon makes for one. It
// travels in a message of the size of any other.
struct BareOrder {
    uint32_t bytes;      // that the modem sends
    uint32_t messages;   // sent for them, evenly over what was read
    uint32_t line_size;  // characters of `line`
    char line[64];       // written to the modem
};
static_assert(sizeof(BareOrder) <= AT_WIRE_SIZE);

#endif

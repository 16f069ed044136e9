#include "records/handover.h"

#include <string.h>

#include "records/state.h"

// The slot. `full` says who may touch the rest: the request thread while it is 0, the response thread while
// it is 1.
struct Slot {
    std::atomic<uint32_t> full;
    bool has_line;
    MSG_BUF request;
    char line[kLineSize];
};
static constinit Slot g_slot{};

bool HandoverPut(const MSG_BUF& request, const char* line) {
    if (g_slot.full.load(std::memory_order_acquire) != 0) return false;
    g_slot.request = request;
    g_slot.has_line = line != nullptr;
    if (line != nullptr) {
        const size_t length = strnlen(line, sizeof g_slot.line - 1);
        memcpy(g_slot.line, line, length);
        g_slot.line[length] = '\0';
    }
    g_slot.full.store(1, std::memory_order_release);
    return true;
}

bool HandoverTake() {
    if (g_slot.full.load(std::memory_order_acquire) == 0) return false;
    g_at_msg = g_slot.request;
    if (g_slot.has_line) memcpy(g_cmd_str, g_slot.line, strlen(g_slot.line) + 1);
    g_slot.full.store(0, std::memory_order_release);
    return true;
}

uint32_t IssueTicket() {
    static uint32_t last;  // request thread only
    last = TicketAfter(last);
    g_at_processing.store(last, std::memory_order_release);
    return last;
}

void RedeemTicket(uint32_t ticket) {
    if (ticket != 0) g_at_processing.compare_exchange_strong(ticket, 0, std::memory_order_acq_rel);
}

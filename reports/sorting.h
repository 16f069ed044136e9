#ifndef AT_REPORTS_SORTING_H
#define AT_REPORTS_SORTING_H

#include <stddef.h>
#include <stdint.h>

// Sorting buffered modem text into responses.
//
// A modem speaks at its own time: a report can stand before an answer, inside it, or be cut off in the
// middle, and many reports have no end marker that framing knows. Framing alone would let such a line swallow
// the next answer, or end an answer at a report and take the OK that follows for something else. So the text
// is sorted first, under one principle: a complete report line is a response of its own wherever it stands,
// and an answer runs to its final result. Where that says nothing, framing decides.

// What the sorting has to know of the request in flight.
struct PendingCommand {
    uint16_t id = 0;             // 0: nothing is pending
    const char* name = nullptr;  // the row's name; null when there is none or it is empty
    bool literal = false;  // its lines are taken as reports or forwarded one by one: framing alone decides

    static PendingCommand Current();  // of g_at_msg and the current card mode
};

// Where a line that was taken out as a report stood, for a line that belongs to it and comes later.
struct Continuation {
    const char* at = nullptr;  // what follows the report line; null for none
    bool hex_line = false;     // a line of hexadecimal digits there is the report's PDU
    bool late_ok = false;  // with nothing pending, an OK there ended a late answer that looked like a report
};

enum class Cut {
    nothing,   // no complete response
    framed,    // from the start of the text: an answer, or what framing takes for a response
    report,    // a report line, anywhere
    inside,    // a line inside an answer in progress, which is not part of it
    leftover,  // a line that belongs to a report taken out before: to be dropped
};

// A complete response within the text. `begin` is the start of the text for a framed one.
struct Response {
    Cut cut = Cut::nothing;
    const char* begin = nullptr;
    const char* end = nullptr;
    bool in_answer = false;     // it stands inside an answer that has begun
    Continuation continuation;  // for what follows the response
};

// The earliest complete response in `text` (NUL-terminated).
Response NextResponse(const char* text, const PendingCommand& pending, const Continuation& continuation);

#endif

#ifndef AT_REPORTS_SORTING_H
#define AT_REPORTS_SORTING_H

#include <stddef.h>
#include <stdint.h>

#include "codec/framing.h"

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

    bool operator==(const PendingCommand&) const = default;
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

// What the sorting knows of a text that grows at its end, so that it looks at each byte a bounded number of
// times however many pieces the text comes in. Offsets count from the start of the text. Whoever changes the
// text otherwise says so: by one of the functions below, or with a new object.
class SortingMemory {
  public:
    // `count` characters went from the start of the text, up to a place outside quotes.
    void DropFront(size_t count);
    // The lines from `begin` to `end`, which the last response was, went. `follows` says what continues
    // there.
    void RemoveLines(size_t begin, size_t end, const Continuation& follows);

  private:
    friend class Sorter;

    // The answer's own line, which is looked for ahead of the judging.
    enum class Own { searched, found, none };
    struct OwnLine {
        Own state = Own::searched;
        size_t at = 0;  // where the line stands, or the line to go on with
    };

    // What has been judged: the lines before `line`.
    struct Judged {
        size_t line = 0;
        size_t other = kNowhere;      // a line of another name, when the answer is known to stand behind it
        bool begun_by_name = false;   // the answer's own line has been passed
        bool begun_by_text = false;   // a nameless line has been passed that only an answer can have
        bool named_seen = false;      // a line of another name has been passed
        bool own_known = false;       // the answer's own line was known
        bool follows_report = false;  // what the continuation speaks of has not been reached
    };

    // The two lines read last: the unfinished one, and one that waits for it.
    struct ReadLines {
        size_t line[2] = {kNowhere, kNowhere};
        LineScan scan[2];
        unsigned oldest = 0;
    };

    PendingCommand pending_;
    size_t continues_at_ = kNowhere;
    bool hex_line_ = false;
    bool late_ok_ = false;
    OwnLine own_;
    Judged judged_;
    ReadLines lines_;
};

// The earliest complete response in `text` (NUL-terminated).
Response NextResponse(const char* text, const PendingCommand& pending, const Continuation& continuation);

// The same, going on where the last call stopped. When it returns a response, `memory` stands before it.
Response NextResponse(const char* text, const PendingCommand& pending, const Continuation& continuation,
                      SortingMemory& memory);

#endif

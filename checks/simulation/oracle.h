#ifndef AT_CHECKS_SIMULATION_ORACLE_H
#define AT_CHECKS_SIMULATION_ORACLE_H

#include "checks/simulation/world.h"

// What must be true of the world, and the bookkeeping that tells.

enum class Say : uint8_t { ok, text, number, creg, csca, calls, message, error, cme, cms, busy };

struct Request {
    int serial = 0;  // its message type
    uint16_t module = 0;
    uint16_t command = 0;
    uint8_t type = 0;
    bool dial = false;
    bool no_line = false;      // no line can be generated
    bool port_failed = false;  // its line could not be written
    bool reachable = true;
    Say say = Say::ok;

    bool received = false;
    bool taken = false;
    bool inherited = false;    // overwrote another: goes on with its count
    bool disturbed = false;    // foreign or noisy text was read while it was in flight
    bool answer_read = false;  // the modem's whole answer has been read
    bool overwritten = false;
    bool cleared = false;
    bool unreachable = false;  // an answer to it could not be sent
    bool pdu_taken = false;    // the modem has the text of the message and wants no other
    uint32_t rounds = 0;       // since it is in flight
    int answers = 0;
};

struct Report {
    int serial = 0;
    int kind = 0;
    bool loose = false;  // may be lost: noise or a prompt is in its way
    bool read = false;
    int arrived = 0;
};

// Text of the modem, sent as a whole or in pieces, never with anything between them.
struct Item {
    enum Owner : uint8_t { answer, report, noise } owner;
    int serial;
    std::string text;
    size_t answer_size;  // characters up to the final result; 0 when it is none or not the end
    int64_t ready;
    uint64_t seed;
    std::vector<int> reports_inside{};
    bool cut = false;  // a piece of it was lost: what comes of it is noise
};

struct Bytes {
    std::string text;
    size_t item;
    size_t begin;  // where it stands in the item
    bool last;
};

// What the modules get: the ids of reports and where a serial number stands in them.
struct ReportKind {
    const char* head;
    const char* tail;
    uint16_t module;
    uint16_t id;
    int number_at;       // offset of an i32 serial in the record, or -1
    int text_at;         // offset of a text with the serial, or -1
    bool ends_requests;  // a call event: ends the request in flight without an answer
    bool at_least;       // reported once for each response framed up to it
};
extern const ReportKind kReportKinds[];
extern const int kReportKindCount;

std::string AnswerText(const Request& request);
std::string CheckAnswer(const Request& request, const _BK_AT_RES_T& res);
// Fills the payload of a request of a random command.
void RandomRequest(Random& random, Request& request, MSG_BUF& message);
uint32_t LimitOf(uint16_t command);

#endif

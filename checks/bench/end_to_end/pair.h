#ifndef AT_CHECKS_BENCH_END_TO_END_PAIR_H
#define AT_CHECKS_BENCH_END_TO_END_PAIR_H

#include <optional>
#include <string>

#include "checks/bench/end_to_end/processes.h"
#include "checks/dialogue/world.h"

// A request and what the modem says to it.
struct Shape {
    const char* name;
    uint16_t command;
    uint8_t type;
    std::string record;
    std::string answer;
    int period_ms;  // from one request to the next: both programs are ready again by then
    int requests;   // in one batch
};

// CPU time in nanoseconds, for each request or each second.
struct Cost {
    double daemon, bare;
};

// The real daemon and the bare program, each with a modem of its own, serving the same requests at the same
// time, so that the machine's other load is in both. Throws std::runtime_error when one of them does not do
// as it should.
class Pair {
  public:
    Pair(const std::string& daemon, const std::string& bare, const std::string& log_switch);
    ~Pair();
    Pair(const Pair&) = delete;
    Pair& operator=(const Pair&) = delete;

    // A request that was tried out: what is sent to the daemon and to the bare program, and how many messages
    // come.
    struct Prepared {
        Shape shape;
        std::string request, order;
        size_t messages;
    };
    // Has one request of this shape served, to see how many messages come of it and which line goes to the
    // modem: the bare program will send and write as many bytes.
    Prepared Prepare(const Shape& shape);
    // Serves a batch. Each request has a time of its own, and next to it stands as long a time without one,
    // whose cost is taken off: what is left is what a request adds to the rounds that go on anyway.
    Cost Batch(const Prepared& prepared);
    // Lets `seconds` pass without a request. `bare` is the loop that only sleeps and selects.
    Cost Idle(unsigned seconds);

    // How the daemon logs from here on, and whether a collector listens.
    void LogTo(LogSwitch::Way way, bool collector);
    size_t LoggedLines() const;  // that the collector has got

  private:
    void LetModemsSay(const std::string& answer);
    void Serve(const Prepared& prepared);
    bool NextOfDaemon(Received& received, double seconds) const;

    LogSwitch log_;
    std::optional<LogCollector> collector_;
    Module asking_, call_{AT_MODULE_CALL}, sim_{AT_MODULE_SIM}, sms_{AT_MODULE_SMS}, of_bare_;
    Modem modem_, bare_modem_;
    Process daemon_, idle_, bare_;
};

#endif

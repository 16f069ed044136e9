#ifndef AT_CHECKS_SIMULATION_WORLD_H
#define AT_CHECKS_SIMULATION_WORLD_H

#include <stdint.h>

#include <deque>
#include <map>
#include <queue>
#include <string>
#include <vector>

#include "records/message.h"
#include "records/queue.h"

// A world inside one process in which the daemon's own two threads run against a random modem and random
// modules, in virtual time. The threads are coroutines; every call that leaves the daemon (queue, port, log,
// configuration, clock) and every step of the hand-over may switch from one to the other, as the seed says.
// Nothing sleeps, and the same seed always plays the same world.

// A small generator whose numbers are the same everywhere.
class Random {
  public:
    explicit Random(uint64_t seed) : state_(seed * 2 + 1) { Next(); }
    uint64_t Next() {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return state_ * 0x2545F4914F6CDD1DULL >> 16;
    }
    unsigned Below(unsigned limit) { return static_cast<unsigned>(Next() % limit); }
    bool OneIn(unsigned n) { return Below(n) == 0; }

  private:
    uint64_t state_;
};

// One thing that happens; its own seed decides the details, so that dropping another does not change it.
struct Event {
    enum Kind : uint8_t { request, hostile, report, noise, unplug, stall, remove_queue } kind;
    uint64_t seed;
    int64_t at;  // microseconds
};

// An episode: events that start in a server at rest and are followed until it rests again.
struct Episode {
    uint64_t seed = 0;
    std::vector<Event> events;
};
Episode MakeEpisode(uint64_t seed, unsigned events);

struct Totals {
    uint64_t requests = 0;       // accepted by the server
    uint64_t exact = 0;          // answered with the very record that the modem gave
    uint64_t own_errors = 0;     // answered with the very error that the modem gave
    uint64_t timeouts = 0;       // answered with a time-out after exactly their rounds
    uint64_t inherited = 0;      // answered with a time-out on a count that an overwritten request left
    uint64_t disturbed = 0;      // answered once, but noise or another line's late answer was read meanwhile
    uint64_t dials = 0;          // need no answer
    uint64_t overwritten = 0;    // after a generation or port failure
    uint64_t cleared = 0;        // by a call event, or an OK that was nobody's
    uint64_t unreachable = 0;    // whose requester has no queue
    uint64_t refused = 0;        // hostile messages that were dropped
    uint64_t reports = 0;        // arrived exactly as often as stated
    uint64_t loose_reports = 0;  // arrived at most so often: noise, or a message's prompt was waited for
    uint64_t switches = 0;
    void Add(const Totals& more);
};

struct Outcome {
    bool failed = false;
    std::string fault;
    std::vector<std::string> trace;  // filled when asked for
    Totals totals;
};

// Plays an episode on the state that the episode before it left, which is a server at rest. `obvious` puts
// the plain protocol (a shared record and a flag) in the place of the hand-over.
Outcome Play(const Episode& episode, bool trace, bool obvious);

#endif

#ifndef AT_TOOLS_MODEMSIM_MODEL_CALLS_H
#define AT_TOOLS_MODEMSIM_MODEL_CALLS_H

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "tools/modemsim/model/at_line.h"
#include "tools/modemsim/model/reply.h"

namespace modemsim {

class Modem;

// Voice calls, in both directions, and their course.
class Calls {
  public:
    explicit Calls(Modem& modem);

    bool Active() const;  // somebody is being spoken with, or held

    // Steering: what the other party does. Each gives what is wrong, or an empty text.
    std::string Ring(const std::string& number);
    std::string Answer();
    std::string Busy();
    std::string HangUp();

    void NetworkLost();
    void Restart() { calls_.clear(); }
    void Describe(nlohmann::json& state) const;

  private:
    // In the numbers of +CLCC.
    enum State { kActive = 0, kHeld = 1, kDialling = 2, kAlerting = 3, kRinging = 4, kWaiting = 5 };

    struct Call {
        std::uint64_t serial;
        bool incoming;
        State state;
        std::string number;
        bool joined = false;
    };

    Call* Find(std::uint64_t serial);
    Call* InState(std::initializer_list<State> states);
    std::uint64_t Begin(bool incoming, State state, const std::string& number);
    void End(std::uint64_t serial, const std::string& report);
    void EndAll(std::initializer_list<State> states);
    void Connect(std::uint64_t serial);
    void RingAgain(std::uint64_t serial, int times);
    Reply Dial(const CommandLine& line);
    Reply Take();
    Reply HangUpAll();
    Reply List() const;
    Reply Hold(const CommandLine& line);

    Modem& modem_;
    std::vector<Call> calls_;
    std::uint64_t last_serial_ = 0;
};

}  // namespace modemsim

#endif

#ifndef AT_TOOLS_MODEMSIM_MODEL_NETWORK_H
#define AT_TOOLS_MODEMSIM_MODEL_NETWORK_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "tools/modemsim/model/at_line.h"
#include "tools/modemsim/model/reply.h"

namespace modemsim {

class Modem;

// Radio, operators, registration and signal.
class Network {
  public:
    explicit Network(Modem& modem);

    bool Registered() const { return stat_ == kHome || stat_ == kRoaming; }
    // Something that registration hangs on has changed: leaves the network at once, or finds it after a
    // while.
    void Look();

    // Steering; each gives what is wrong, or an empty text.
    std::string Lose();
    std::string Restore();
    std::string Roam();                  // to the next operator abroad
    std::string SetSignal(int level);    // 0 to 31 or 99, stays
    std::string MoveSignal(Time every);  // a step and a report at these times

    void Restart();
    void Describe(nlohmann::json& state) const;

  private:
    enum Stat { kNone = 0, kHome = 1, kSearching = 2, kRoaming = 5 };
    enum class Signal { PerQuery, Fixed, Walking };

    void SetStat(int stat);
    bool MayRegister() const;
    int FoundStat() const;
    std::string Place(const std::string& name, bool long_form) const;
    Reply Registration(const std::string& name, int& reports, const CommandLine& line);
    Reply Functions(const CommandLine& line);
    Reply Operators(const CommandLine& line);
    Reply Search() const;
    Reply Choose(const CommandLine& line);
    void Step();
    void WalkOn();
    int Level() const;  // 99 without a network
    std::string SignalText(const std::string& name) const;

    Modem& modem_;
    int functions_ = 1;  // AT+CFUN
    bool coverage_ = true;
    int selection_ = 0;  // AT+COPS: 0 automatic, 1 chosen, 2 none
    int name_form_ = 0;  // of AT+COPS?: 0 long, 1 short, 2 digits
    std::size_t operator_ = 0;
    int stat_ = kHome;
    std::uint64_t search_ = 0;  // number of the search under way: an older one finds nothing any more
    std::array<int, 3> reports_ = {2, 2, 2};  // AT+CREG, +CGREG, +CEREG
    int signal_ = 21;
    Signal movement_ = Signal::PerQuery;
    Time walk_every_{0};
    std::uint64_t walk_ = 0;  // number of the walk: an older one stops
    bool asked_ = false;      // for the signal, before
};

}  // namespace modemsim

#endif

#ifndef AT_TOOLS_MODEMSIM_MODEL_MODEM_H
#define AT_TOOLS_MODEMSIM_MODEL_MODEM_H

// A modem with a memory: what the host writes it reads again, calls take their course, the network comes and
// goes. Like the engine it has no clock of its own and no luck but its seed's, so that two runs of one story
// are the same.

#include <cstdint>
#include <functional>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tools/modemsim/model/at_line.h"
#include "tools/modemsim/model/calls.h"
#include "tools/modemsim/model/data.h"
#include "tools/modemsim/model/general.h"
#include "tools/modemsim/model/messages.h"
#include "tools/modemsim/model/network.h"
#include "tools/modemsim/model/phonebook.h"
#include "tools/modemsim/model/reply.h"
#include "tools/modemsim/model/services.h"
#include "tools/modemsim/model/sim.h"
#include "tools/modemsim/model/toolkit.h"
#include "tools/modemsim/model/ussd.h"

namespace modemsim {

class Modem {
  public:
    // Lines that the modem sends unasked, in one go.
    using Report = std::vector<std::string>;
    using Handler = std::function<Reply(const CommandLine& line)>;

    explicit Modem(std::uint64_t seed);
    Modem(const Modem&) = delete;
    Modem& operator=(const Modem&) = delete;

    // ---- for the engine

    // nullopt for a line that this modem does not know.
    std::optional<Reply> Answer(const std::string& line, Time now);
    // When Advance() has something to do; nullopt when nothing will happen by itself.
    std::optional<Time> NextTime() const;
    // Lets happen what is due up to `now`.
    void Advance(Time now);
    // What was reported since the last call.
    std::vector<Report> TakeReports();
    // Switched off and on again: the card, what is stored and what was set up to stay are kept.
    void Restart(Time now);
    void DescribeState(nlohmann::json& state) const;

    // ---- for the parts

    Time Now() const { return now_; }
    void In(Time delay, std::function<void()> action);
    void Say(Report lines) { reports_.push_back(std::move(lines)); }
    std::uint64_t Random(std::uint64_t bound) { return random_() % bound; }
    void On(const std::string& name, Handler handler) { handlers_[name] = std::move(handler); }
    // "YY/MM/DD,hh:mm:ss" of the modem's clock, which begins on 21 November 2026 at 9:00 UTC with every run.
    std::string Clock() const;

  private:
    Time now_{0};
    std::mt19937_64 random_;
    std::multimap<Time, std::function<void()>> events_;
    std::vector<Report> reports_;
    std::map<std::string, Handler> handlers_;

  public:
    // The parts ask each other through the modem. They register their commands, hence stand behind the table.
    General general{*this};
    Sim sim{*this};
    Network network{*this};
    Data data{*this};
    Messages messages{*this};
    Phonebook phonebook{*this};
    Calls calls{*this};
    Services services{*this};
    Ussd ussd{*this};
    Toolkit toolkit{*this};
};

}  // namespace modemsim

#endif

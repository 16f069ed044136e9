#ifndef AT_TOOLS_MODEMSIM_MODEL_USSD_H
#define AT_TOOLS_MODEMSIM_MODEL_USSD_H

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "tools/modemsim/model/at_line.h"
#include "tools/modemsim/model/reply.h"

namespace modemsim {

class Modem;

// The network's USSD service: a balance and a menu, and what it says by itself.
class Ussd {
  public:
    explicit Ussd(Modem& modem);

    std::string Push(const std::string& text);  // by the network; gives what is wrong, or an empty text
    void NetworkLost() { open_.clear(); }
    void Restart() { open_.clear(); }
    void Describe(nlohmann::json& state) const;

  private:
    Reply Dialogue(const CommandLine& line);
    void Say(const std::string& path);

    Modem& modem_;
    std::string open_;         // where in the menu the dialogue stands; empty: there is none
    std::uint64_t turns_ = 0;  // of all dialogues: an older one's end does not end a newer one
};

}  // namespace modemsim

#endif

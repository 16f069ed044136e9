#ifndef AT_TOOLS_MODEMSIM_MODEL_SERVICES_H
#define AT_TOOLS_MODEMSIM_MODEL_SERVICES_H

#include <array>
#include <string>

#include "tools/modemsim/model/at_line.h"
#include "tools/modemsim/model/reply.h"

namespace modemsim {

class Modem;

// What surrounds calls: diverts, waiting, the caller's number, volumes.
class Services {
  public:
    explicit Services(Modem& modem);

    bool ShowsCaller() const { return shows_caller_ != 0; }
    bool CallsWait() const { return waiting_; }
    // Where every call goes, or an empty text.
    std::string DivertsAll() const;

  private:
    struct Divert {
        bool active = false;
        std::string number;
        int seconds = 20;  // without an answer, for that reason only
    };

    Reply Diverts(const CommandLine& line);
    Reply Waiting(const CommandLine& line);

    Modem& modem_;
    int shows_caller_ = 1;
    bool waiting_ = true;
    // By reason: always, busy, no answer, not reachable.
    std::array<Divert, 4> diverts_ = {{{}, {}, {}, {true, "+447700900121"}}};
};

}  // namespace modemsim

#endif

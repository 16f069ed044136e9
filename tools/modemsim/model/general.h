#ifndef AT_TOOLS_MODEMSIM_MODEL_GENERAL_H
#define AT_TOOLS_MODEMSIM_MODEL_GENERAL_H

#include <string>

#include "tools/modemsim/model/reply.h"

namespace modemsim {

class Modem;

// Attention, identity and how errors are told.
class General {
  public:
    explicit General(Modem& modem);

    void Restart() { errors_ = 1; }
    // The end of an answer as the host wants it: errors as ERROR, by number or in words (AT+CMEE).
    std::string ErrorText(const std::string& end) const;

  private:
    int errors_ = 1;  // the argument of AT+CMEE
    std::string character_set_ = "IRA";
};

}  // namespace modemsim

#endif

#ifndef AT_TOOLS_MODEMSIM_REDACT_MESSAGE_H
#define AT_TOOLS_MODEMSIM_REDACT_MESSAGE_H

#include <string>
#include <string_view>

#include "tools/modemsim/stand_ins.h"

namespace modemsim {

// A short message in hexadecimal digits (service centre, then the unit itself) with other numbers and another
// text: lengths, types, references, time stamps, coding and the header of a concatenated text stay. What
// cannot be read as one loses all its digits. As many digits as there were.
std::string RedactMessage(std::string_view digits, StandIns& stand_ins);

}  // namespace modemsim

#endif

#ifndef AT_TOOLS_MODEMSIM_COMMANDS_H
#define AT_TOOLS_MODEMSIM_COMMANDS_H

// The sub-commands of modemsim, each in a file of its own. `argv[0]` is the name to show in its help
// ("modemsim play"), what follows are its own arguments; the return value is the exit status of the program.

#include <string>

namespace modemsim {

inline constexpr int kFailed = 1;  // exit status: something broke on the way
inline constexpr int kMisuse = 2;  // exit status: bad options, scenario or link

// "modemsim: TEXT" on standard error. Gives kMisuse.
int Complain(const std::string& text);

// A modem on a pty: "modemsim SCENARIO", or "modemsim play SCENARIO".
int Play(int argc, char** argv);

}  // namespace modemsim

#endif

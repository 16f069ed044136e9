#ifndef AT_TOOLS_MODEMSIM_RUNNING_H
#define AT_TOOLS_MODEMSIM_RUNNING_H

// What every sub-command that keeps running needs: a clock, an orderly end, a word when it is ready.

#include <string>

#include "tools/modemsim/scenario.h"

namespace modemsim {

// Microseconds since some moment in the past; never goes back.
Time MonotonicTime();

// From here on SIGINT, SIGTERM and SIGHUP no longer end the program but make the descriptor that is returned
// readable, and a reader that is gone is no signal either. Called before a link is made, so that no signal
// can leave it behind. -1 and a reason when that is not possible.
int BlockEndingSignals(std::string& reason);

// Tells whoever waits that the link stands: "ready LINK" on descriptor `fd`, which is closed then, or on
// standard output when it is negative. False and a reason when nobody can be told.
bool SayReady(const std::string& link, int fd, std::string& reason);

}  // namespace modemsim

#endif

#ifndef AT_TOOLS_MODEMSIM_COMMANDS_H
#define AT_TOOLS_MODEMSIM_COMMANDS_H

// The sub-commands of modemsim, each in a file of its own. `argv[0]` is the name to show in its help
// ("modemsim play"), what follows are its own arguments; the return value is the exit status of the program.

#include <span>
#include <string>
#include <string_view>

namespace modemsim {

inline constexpr int kFailed = 1;  // exit status: something broke on the way
inline constexpr int kMisuse = 2;  // exit status: bad options, scenario or link

inline constexpr int kDeviated = 3;  // exit status: the daemon did not do what the recording says
inline constexpr int kIncomplete =
    4;  // exit status: a file or standard output could not be written to its end

struct Subcommand {
    std::string_view name;
    std::string_view about;
    int (*run)(int argc, char** argv);
};
std::span<const Subcommand> Subcommands();

// "modemsim: TEXT" on standard error. Gives kMisuse.
int Complain(const std::string& text);

// A modem on a pty: "modemsim SCENARIO", or "modemsim play SCENARIO".
int Play(int argc, char** argv);

// Between a modem and the daemon: "modemsim record --device DEV FILE".
int Record(int argc, char** argv);

// The modem of a recording: "modemsim replay FILE".
int Replay(int argc, char** argv);

// A recording without private data: "modemsim redact FILE OUT".
int Redact(int argc, char** argv);

// Steers a modem that runs: "modemsim ctl ORDER".
int Ctl(int argc, char** argv);

}  // namespace modemsim

#endif

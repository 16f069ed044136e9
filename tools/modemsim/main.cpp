// modemsim: which of its programs is meant.

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>
#include <string_view>

#include "tools/modemsim/commands.h"

namespace {

using modemsim::Subcommand;

constexpr std::array kSubcommands = {
    Subcommand{"play", "is a modem, as a scenario says; meant without a subcommand", modemsim::Play},
    Subcommand{"ctl", "steers a modem that runs", modemsim::Ctl},
    Subcommand{"record", "writes down what a real modem and the daemon say", modemsim::Record},
    Subcommand{"replay", "is the modem of a recording", modemsim::Replay},
    Subcommand{"redact", "writes a recording anew without what is private", modemsim::Redact},
};

// The exit status, once everything printed has left the program: a script must not take half a list for all
// of it.
int Ended(int status) {
    errno = 0;
    const bool flushed = std::fflush(stdout) == 0;
    if (flushed && std::ferror(stdout) == 0) return status;
    modemsim::Complain("standard output could not be written to its end" +
                       (errno == 0 ? "" : std::string(": ") + std::strerror(errno)) +
                       "; make room there, or send it elsewhere");
    return status == 0 ? modemsim::kIncomplete : status;
}

}  // namespace

std::span<const Subcommand> modemsim::Subcommands() {
    return kSubcommands;
}

int modemsim::Complain(const std::string& text) {
    std::fprintf(stderr, "modemsim: %s\n", text.c_str());
    return kMisuse;
}

int main(int argc, char** argv) {
    for (const Subcommand& subcommand : kSubcommands) {
        if (argc < 2 || subcommand.name != argv[1]) continue;
        std::string name = "modemsim " + std::string(subcommand.name);
        argv[1] = name.data();
        return Ended(subcommand.run(argc - 1, argv + 1));
    }
    // Without the name of a sub-command it is a scenario that is meant.
    std::string name = "modemsim";
    if (argc > 0) argv[0] = name.data();
    return Ended(modemsim::Play(argc, argv));
}

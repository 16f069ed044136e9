// modemsim: which of its programs is meant.

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "tools/modemsim/commands.h"

namespace {

struct Subcommand {
    std::string_view name;
    int (*run)(int argc, char** argv);
};

constexpr std::array kSubcommands = {
    Subcommand{"play", modemsim::Play},      // is a modem
    Subcommand{"ctl", modemsim::Ctl},        // steers one that runs
    Subcommand{"record", modemsim::Record},  // writes down what a real one says
    Subcommand{"replay", modemsim::Replay},  // says it again
    Subcommand{"redact", modemsim::Redact},  // without what is private
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
    return Ended(modemsim::Play(argc, argv));
}

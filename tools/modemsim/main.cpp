// modemsim: which of its programs is meant.

#include <array>
#include <cstdio>
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
        return subcommand.run(argc - 1, argv + 1);
    }
    // Without the name of a sub-command it is a scenario that is meant.
    return modemsim::Play(argc, argv);
}

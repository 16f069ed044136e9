#include "tools/modemsim/command_line.h"

#include "tools/modemsim/commands.h"

namespace modemsim {

void AddReadyOption(CLI::App& app, int& fd) {
    app.add_option(
           "--ready-fd", fd,
           "Write \"ready PATH\" to this descriptor once the link stands, instead of to standard output")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
}

std::optional<int> ReadArguments(CLI::App& app, int argc, char** argv) {
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kMisuse;
    }
    return std::nullopt;
}

}  // namespace modemsim

#ifndef AT_TOOLS_MODEMSIM_COMMAND_LINE_H
#define AT_TOOLS_MODEMSIM_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <optional>

namespace modemsim {

// --ready-fd N, as every sub-command with a link has it.
void AddReadyOption(CLI::App& app, int& fd);

// Reads the arguments. The exit status where that is the end of it: after --help, or when they are not right.
std::optional<int> ReadArguments(CLI::App& app, int argc, char** argv);

}  // namespace modemsim

#endif

#ifndef AT_TOOLS_MODEMSIM_COMMAND_LINE_H
#define AT_TOOLS_MODEMSIM_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <optional>

namespace modemsim {

// --ready-fd N, as every sub-command with a link has it.
void AddReadyOption(CLI::App& app, int& fd);

// Reads the arguments; says what is wrong with them under the name of `app`. The exit status where that is
// the end of it: after --help, or when they are not right.
std::optional<int> ReadArguments(CLI::App& app, int argc, char** argv);

// For a sub-command whose first word ends its options: kMisuse, and it is said, when an unknown one stands in
// front of that word.
std::optional<int> RefuseOptionInFront(const CLI::App& app, int argc, char** argv);

}  // namespace modemsim

#endif

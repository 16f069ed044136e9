#ifndef AT_TOOLS_MODEMSIM_FIND_H
#define AT_TOOLS_MODEMSIM_FIND_H

#include <string>
#include <vector>

namespace modemsim {

// Where shipped scenarios are looked for, in this order: beside the program as installed
// (../share/at-server/scenarios), then in the source tree it was built from.
std::vector<std::string> ScenarioDirectories();

// The file that `name` means: a path as it stands, or the name of a shipped scenario ("default", "silent",
// ...). A name that nobody knows comes back as it is, and then fails to open under it.
std::string FindScenario(const std::string& name);

// The names of the shipped scenarios, sorted.
std::vector<std::string> ShippedScenarios();

}  // namespace modemsim

#endif

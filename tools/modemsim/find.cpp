#include "tools/modemsim/find.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace modemsim {

namespace fs = std::filesystem;

std::vector<std::string> ScenarioDirectories() {
    std::vector<std::string> directories;
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (!error)
        directories.push_back((program.parent_path().parent_path() / "share/at-server/scenarios").string());
    directories.emplace_back(MODEMSIM_SCENARIO_DIR);
    return directories;
}

std::string FindScenario(const std::string& name) {
    std::error_code error;
    if (name.find('/') != std::string::npos || fs::is_regular_file(name, error)) return name;
    for (const std::string& directory : ScenarioDirectories()) {
        const fs::path path = fs::path(directory) / (name.ends_with(".modem") ? name : name + ".modem");
        if (fs::is_regular_file(path, error)) return path.string();
    }
    return name;
}

std::vector<std::string> ShippedScenarios() {
    std::vector<std::string> names;
    for (const std::string& directory : ScenarioDirectories()) {
        std::error_code error;
        for (const fs::directory_entry& entry : fs::directory_iterator(directory, error)) {
            if (entry.path().extension() == ".modem") names.push_back(entry.path().stem().string());
        }
        if (!names.empty()) break;
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace modemsim

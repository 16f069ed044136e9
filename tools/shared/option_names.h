#ifndef AT_TOOLS_SHARED_OPTION_NAMES_H
#define AT_TOOLS_SHARED_OPTION_NAMES_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

// The long options of a program or a subcommand, with their dashes, as suggestions need them.
inline std::vector<std::string> OptionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    return names;
}

#endif

#include "tools/modemsim/command_line.h"

#include <string>
#include <vector>

#include "tools/modemsim/commands.h"
#include "tools/shared/option_names.h"
#include "tools/shared/suggest.h"
#include "tools/shared/text.h"

namespace modemsim {

namespace {

constexpr int kHighestDescriptor = 1'048'575;  // the most that Linux grants a process by default, less one

std::string NoSuchOption(const CLI::App& app, const std::string& typed) {
    const std::string caller = app.get_name();
    return caller + " has no option \"" + Printable(typed) + "\"" +
           DidYouMean(typed.substr(0, typed.find('=')), OptionNames(app)) + "; " + caller +
           " --help tells more";
}

// What is wrong, in words of our own: an unknown option first, for a missing one may be the same one
// misspelt.
std::string WhatIsWrong(const CLI::App& app, const CLI::ParseError& error) {
    const std::string caller = app.get_name();
    std::vector<std::string> extras = app.remaining();
    std::erase(extras, "--");
    for (const std::string& extra : extras)
        if (extra.starts_with('-')) return NoSuchOption(app, extra);
    if (!extras.empty())
        return caller + ": \"" + Printable(extras.front()) + "\" is one word too many; " + caller +
               " --help tells what it takes";
    return caller + ": " + Printable(error.what()) + "; " + caller + " --help tells more";
}

}  // namespace

void AddReadyOption(CLI::App& app, int& fd) {
    app.add_option(
           "--ready-fd", fd,
           "Write \"ready PATH\" to this descriptor once the link stands, instead of to standard output")
        ->type_name("N")
        ->check(CLI::Range(0, kHighestDescriptor).description(""));
}

std::optional<int> ReadArguments(CLI::App& app, int argc, char** argv) {
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app.exit(error);
        return Complain(WhatIsWrong(app, error));
    }
    return std::nullopt;
}

std::optional<int> RefuseOptionInFront(const CLI::App& app, int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string typed = argv[i];
        if (!typed.starts_with('-') || typed == "--") break;
        const std::string name = typed.substr(0, typed.find('='));
        const CLI::Option* const option = app.get_option_no_throw(name);
        if (option == nullptr) return Complain(NoSuchOption(app, typed));
        // Its value is the next argument.
        if (option->get_items_expected_max() > 0 && name == typed) ++i;
    }
    return std::nullopt;
}

}  // namespace modemsim

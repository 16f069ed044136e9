#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/atctl/describe.h"
#include "tools/atctl/find_command.h"
#include "tools/atctl/misuse.h"
#include "tools/atctl/monitor.h"
#include "tools/atctl/send.h"
#include "tools/atctl/stop_signal.h"
#include "tools/atctl/text.h"

namespace {

constexpr char kAbout[] = "Asks the AT server of this machine, as the router's modules do.";

constexpr char kSendNotes[] =
    "The command's suffix is its form: none executes, = sets, ? reads, =? tests. Values stand for the "
    "fields\n"
    "in order, or as name=value; atctl show tells them. A value that begins with - and a letter goes behind "
    "--.\n\n"
    "Examples:\n"
    "  atctl send '+CSQ'            asks for the signal quality\n"
    "  atctl send '+CFUN=' fun=1    switches the radio on\n\n"
    "Exit status: 0 result 1 (OK), 1 any other result, 2 nothing was sent (a wrong call, no server, its "
    "queue\n"
    "is full or not ours), 3 no answer came in time.\n";

constexpr char kMonitorNotes[] =
    "Modules: call, sim, sms, time, toolkit, ussd, data, or numbers. Their queues are the monitor's until "
    "it\n"
    "ends, so it refuses while the module itself runs. One line for each report, at most 20 ms late; lines\n"
    "of different modules may change places within that time.\n\n"
    "Examples:\n"
    "  atctl monitor --timeout 0.1              everything that is reported\n"
    "  atctl monitor sms call --timeout 0.1 --json\n\n"
    "Exit status: 0 the count or, without one, the time is over; 2 nothing can be received (a wrong call, a\n"
    "queue that is not ours), 3 the time ran out before the count.\n";

constexpr char kListNotes[] =
    "Examples:\n"
    "  atctl list\n"
    "  atctl list --json\n";

constexpr char kShowNotes[] =
    "The name may be in any case, and without its sign where only one command fits.\n\n"
    "Examples:\n"
    "  atctl show '+CREG'\n"
    "  atctl show csq --json\n";

// Negative numbers are values; the option parser takes them for options unless they are disguised.
constexpr char kDisguise = '\x01';

std::vector<std::string> Arguments(int argc, char** argv) {
    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i) {
        std::string argument = argv[i];
        if (argument.size() > 1 && argument[0] == '-' && argument[1] >= '0' && argument[1] <= '9')
            argument.insert(argument.begin(), kDisguise);
        arguments.push_back(std::move(argument));
    }
    return arguments;  // last one first, as the parser wants them
}

void Undisguise(std::string& argument) {
    if (!argument.empty() && argument[0] == kDisguise) argument.erase(0, 1);
}

// Empty, or what is wrong.
std::string CheckSeconds(std::string& text) {
    char* end = nullptr;
    const double seconds = strtod(text.c_str(), &end);
    const bool good = !text.empty() && *end == '\0' && seconds >= 0.001 && seconds <= 86400;
    return good ? "" : "\"" + Printable(text) + "\" is not a time from 0.001 to 86400 seconds";
}

constexpr unsigned kMostReports = 1'000'000'000;

// 0 when it is no count.
unsigned ParseCount(const std::string& text) {
    unsigned count = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, count);
    return fault == std::errc() && stop == end && count <= kMostReports ? count : 0;
}

std::string CheckCount(std::string& text) {
    return ParseCount(text) != 0 ? "" : "\"" + Printable(text) + "\" is not a count from 1 to 1000000000";
}

// The first word is a subcommand, or an option.
void CheckSubcommand(const CLI::App& app, int argc, char** argv) {
    if (argc < 2 || *argv[1] == '-') return;
    std::vector<std::string> names;
    for (const CLI::App* subcommand : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(subcommand->get_name());
    if (std::find(names.begin(), names.end(), argv[1]) == names.end())
        throw Misuse("there is no subcommand \"" + Printable(argv[1]) + "\", only " + Join(names, ", "));
}

int Run(int argc, char** argv) {
    CLI::App app(kAbout, "atctl");
    app.set_version_flag("--version", std::string("atctl " AT_VERSION));
    app.require_subcommand(1);
    app.get_formatter()->column_width(28);

    SendOptions options;
    CLI::App* send = app.add_subcommand("send", "Send one request and show its answer");
    send->add_option("COMMAND", options.command, "'+CSQ', '+CREG?', '+COPS=?', '+CFUN=', D, ...")
        ->required()
        ->type_name("");
    send->add_option("FIELD", options.fields, "Values in order, or name=value")->type_name("");
    send->add_flag("--json", options.json, "One JSON object");
    send->add_option("--timeout", options.timeout,
                     "Wait so long for the answer (default: the command's own time and a quarter, and 5 s)")
        ->type_name("SECONDS")
        ->check(CLI::Validator(CheckSeconds, ""));
    send->add_option("--module", options.module,
                     "Ask as this module, with a queue of this key (default: a free one of 0x6000..0x7FFF)")
        ->type_name("ID");
    send->add_flag("--verbose", options.verbose,
                   "The request's record and the answer's header, on standard error");
    send->footer(kSendNotes);

    MonitorOptions monitored;
    CLI::App* monitor = app.add_subcommand("monitor", "Show reports as they come, in place of the modules");
    monitor->add_option("MODULE", monitored.modules, "call, sms, 0x1002, ... (default: all)")->type_name("");
    monitor->add_flag("--json", monitored.json, "One JSON object in each line");
    std::string count;
    monitor->add_option("--count", count, "End after so many reports")
        ->type_name("N")
        ->check(CLI::Validator(CheckCount, ""));
    monitor->add_option("--timeout", monitored.timeout, "End after this time")
        ->type_name("SECONDS")
        ->check(CLI::Validator(CheckSeconds, ""));
    monitor->footer(kMonitorNotes);

    bool json = false;
    std::string name;
    CLI::App* list = app.add_subcommand("list", "List the commands of the server");
    list->add_flag("--json", json, "One JSON array");
    list->footer(kListNotes);

    CLI::App* show = app.add_subcommand("show", "Show everything about one command");
    show->add_option("NAME", name, "'+CREG', csq, ...")->required()->type_name("");
    show->add_flag("--json", json, "One JSON object");
    show->footer(kShowNotes);

    CheckSubcommand(app, argc, argv);
    try {
        app.parse(Arguments(argc, argv));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app.exit(error);
        std::cerr << "atctl: " << Printable(error.what()) << "; atctl --help tells more\n";
        return kExitNotSent;
    }

    const Paint paint = PaintFor(STDOUT_FILENO);
    if (send->parsed()) {
        Undisguise(options.command);
        for (std::string& field : options.fields)
            Undisguise(field);
        CatchStopSignals();
        QueueClient::Setup setup;
        setup.stop = StopRequested;
        const int status = Send(options, setup, {std::cout, std::cerr, paint});
        EndByStopSignal();
        return status;
    }
    if (monitor->parsed()) {
        for (std::string& module : monitored.modules)
            Undisguise(module);
        monitored.count = ParseCount(count);
        CatchStopSignals();
        const int status = Monitor(monitored, {StopRequested, STDOUT_FILENO}, {std::cout, std::cerr, paint});
        EndByStopSignal();
        return status;
    }
    if (list->parsed()) {
        if (json)
            std::cout << ListJson().dump(2) << '\n';
        else
            PrintList(std::cout, paint);
        return kExitGood;
    }
    const Row& row = FindCommand(name);
    if (json)
        std::cout << CommandJson(row).dump(2) << '\n';
    else
        PrintCommand(std::cout, paint, row);
    return kExitGood;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const int status = Run(argc, argv);
        std::cout.flush();
        return status;
    } catch (const Misuse& misuse) {
        std::cerr << "atctl: " << misuse.what() << '\n';
        return kExitNotSent;
    } catch (const std::exception& fault) {
        std::cerr << "atctl: " << fault.what() << '\n';
        return kExitNotSent;
    }
}

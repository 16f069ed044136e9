#include <unistd.h>

#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "tools/atctl/command_line.h"
#include "tools/atctl/describe.h"
#include "tools/atctl/find_command.h"
#include "tools/shared/exit_status.h"
#include "tools/shared/stop_signal.h"
#include "tools/shared/text.h"

namespace {

using Action = CommandLine::Action;

int RunAsking(Action action, const CommandLine& line, const Streams& streams) {
    CatchStopSignals();
    QueueClient::Setup queue;
    queue.stop = StopRequested;
    switch (action) {
        case Action::send:
            return Send(line.send, queue, streams);
        case Action::watch:
            return Watch(line.watch, {queue, STDOUT_FILENO}, streams);
        case Action::bench:
            queue.at_once = true;
            return Bench(line.bench, {queue, IsTerminal(STDERR_FILENO)}, streams);
        default:
            return Monitor(line.monitor, {StopRequested, STDOUT_FILENO}, streams);
    }
}

int PrintCandidates(const CommandLine& line, int argc, char** argv) {
    const std::vector<std::string> words(argv + 2, argv + argc);
    for (const Candidate& candidate : Complete(words, line.Words()))
        std::cout << candidate.word << '\t' << (candidate.more ? "more" : "whole") << '\t' << candidate.about
                  << '\n';
    return kExitGood;
}

int Run(int argc, char** argv) {
    CommandLine line;
    const std::string_view first = argc > 1 ? argv[1] : "";
    // Two that no help shows: what the shells' completions ask, and what somebody may look for.
    if (first == "complete") return PrintCandidates(line, argc, argv);
    if (first == "raw") RefuseRaw({argv + 2, argv + argc});

    // "help send", as other programs have it, is "send --help"; "help" alone is "--help".
    char option[] = "--help";
    if (first == "help" && argc <= 3) {
        argv[1] = argv[argc - 1];
        argv[argc - 1] = option;
    }

    const std::optional<Action> action = line.Parse(argc, argv);
    if (!action.has_value()) return kExitGood;
    const Look look = LookFor(STDOUT_FILENO, line.colour);
    switch (*action) {
        case Action::list: {
            const std::vector<const Row*> rows = CommandsWith(line.name);
            if (line.json)
                std::cout << ListJson(rows).dump(2) << '\n';
            else
                PrintList(std::cout, look, rows);
            return kExitGood;
        }
        case Action::show: {
            const Row& row = FindCommand(line.name);
            if (line.json)
                std::cout << CommandJson(row).dump(2) << '\n';
            else
                PrintCommand(std::cout, look, row);
            return kExitGood;
        }
        default:
            return RunAsking(*action, line, {std::cout, std::cerr, look});
    }
}

int Complain(int status, const char* text) {
    std::cerr << "atctl: " << text << '\n';
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    int status = kExitGood;
    try {
        status = Run(argc, argv);
        if (!std::cout.flush() && !StopRequested())
            status = Complain(kExitBroken, "the output cannot be written");
    } catch (const Failure& failure) {
        status = Complain(failure.Status(), failure.what());
    } catch (const std::exception& fault) {
        status = Complain(kExitBroken, fault.what());
    }
    EndByStopSignal();
    return status;
}

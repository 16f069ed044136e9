#include "tools/atctl/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iostream>

#include "tools/atctl/find_command.h"
#include "tools/atctl/help_notes.h"
#include "tools/shared/exit_status.h"
#include "tools/shared/option_names.h"
#include "tools/shared/suggest.h"
#include "tools/shared/text.h"

namespace {

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

void Undisguise(std::vector<std::string>& arguments) {
    for (std::string& argument : arguments)
        Undisguise(argument);
}

// Checks give an empty text, or what is wrong.
std::string CheckSeconds(std::string& text) {
    Undisguise(text);
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
    Undisguise(text);
    return ParseCount(text) != 0 ? "" : "\"" + Printable(text) + "\" is not a count from 1 to 1000000000";
}

std::string CheckColour(std::string& text) {
    Undisguise(text);
    Colour colour;
    return ParseColour(text, colour) ? "" : "\"" + Printable(text) + "\" is not auto, always or never";
}

}  // namespace

struct CommandLine::Parser {
    CLI::App app{"Asks the AT server of this machine, as the router's modules do.", "atctl"};
    std::vector<std::pair<CLI::App*, Action>> subcommands;
    std::string colour;
    std::string monitor_count;
    std::string watch_count;
    std::string watch_interval;
    std::string bench_count;

    CLI::App* Add(const char* word, const char* about, Action action, const std::string& notes) {
        CLI::App* const subcommand = app.add_subcommand(word, about);
        subcommand->footer(notes + kExitNotes);
        // What is left over is refused in words of our own.
        subcommand->allow_extras();
        subcommands.emplace_back(subcommand, action);
        return subcommand;
    }
    static void AddJson(CLI::App* subcommand, bool& json, const char* about) {
        subcommand->add_flag("--json", json, about);
    }
    void AddColour(CLI::App* subcommand) {
        subcommand->add_option("--color", colour, "Colours: auto (on a terminal), always or never")
            ->type_name("WHEN")
            ->check(CLI::Validator(CheckColour, ""));
    }
    static void AddCount(CLI::App* subcommand, std::string& count, const char* about) {
        subcommand->add_option("--count", count, about)
            ->type_name("N")
            ->check(CLI::Validator(CheckCount, ""));
    }
    static void AddTimeout(CLI::App* subcommand, double& timeout, const char* about) {
        subcommand->add_option("--timeout", timeout, about)
            ->type_name("SECONDS")
            ->check(CLI::Validator(CheckSeconds, ""));
    }
    static void AddModule(CLI::App* subcommand, std::string& module) {
        subcommand
            ->add_option(
                "--module", module,
                "Ask as this module, with a queue of this key (default: a free one of 0x6000..0x7FFF)")
            ->type_name("ID");
    }

    void CheckFirstWord(int argc, char** argv) const;
    void RefuseExtras(const CLI::App& subcommand) const;
};

namespace {

constexpr char kAnswerTime[] =
    "Wait so long for each answer (default: the command's own time and a quarter, and 5 s)";

}  // namespace

CommandLine::CommandLine() : parser_(std::make_unique<Parser>()) {
    Parser& parser = *parser_;
    CLI::App& app = parser.app;
    app.set_version_flag("--version", std::string("atctl " AT_VERSION));
    app.require_subcommand(1);
    app.get_formatter()->column_width(28);
    app.footer(std::string(kMainNotes) + kExitNotes);

    CLI::App* sub = parser.Add("send", "Send one request and show its answer", Action::send, kSendNotes);
    sub->add_option("COMMAND", send.command, "'+CSQ', '+CREG?', '+COPS=?', '+CFUN=', D, ...")
        ->required()
        ->type_name("");
    sub->add_option("FIELD", send.fields, "Values in order, or name=value")->type_name("");
    parser.AddJson(sub, send.json, "One JSON object");
    parser.AddTimeout(sub, send.timeout,
                      "Wait so long for the answer (default: the command's own time and a quarter, and 5 s)");
    parser.AddModule(sub, send.module);
    sub->add_flag("--verbose", send.verbose,
                  "The request's record and the answer's header, on standard error");
    parser.AddColour(sub);

    sub = parser.Add("watch", "Send one request again and again and draw a field of its answers",
                     Action::watch, kWatchNotes);
    sub->add_option("COMMAND", watch.command, "'+CSQ', '+CREG?', ...")->required()->type_name("");
    sub->add_option("SECONDS", parser.watch_interval, "From one request to the next (default: 1)")
        ->type_name("")
        ->check(CLI::Validator(CheckSeconds, ""));
    sub->add_option("FIELD", watch.values, "Values in order, or name=value")->type_name("");
    sub->add_option("--field", watch.field, "The answer's field to draw (default: the first number)")
        ->type_name("NAME");
    parser.AddCount(sub, parser.watch_count, "End after so many requests");
    parser.AddJson(sub, watch.json, "One JSON object in each line");
    parser.AddTimeout(sub, watch.timeout, kAnswerTime);
    parser.AddModule(sub, watch.module);
    parser.AddColour(sub);

    sub = parser.Add("monitor", "Show reports as they come, in place of the modules", Action::monitor,
                     kMonitorNotes);
    sub->add_option("MODULE", monitor.modules, "call, sms, 0x1002, ... (default: all)")->type_name("");
    parser.AddJson(sub, monitor.json, "One JSON object in each line");
    parser.AddCount(sub, parser.monitor_count, "End after so many reports");
    parser.AddTimeout(sub, monitor.timeout, "End after this time");
    parser.AddColour(sub);

    sub = parser.Add("bench", "Measure how long answers take", Action::bench, kBenchNotes);
    sub->add_option("N", parser.bench_count, "Requests (default: 100)")
        ->type_name("")
        ->check(CLI::Validator(CheckCount, ""));
    sub->add_option("--command", bench.command, "What to send, without values (default: AT)")
        ->type_name("COMMAND");
    parser.AddJson(sub, bench.json, "One JSON object");
    parser.AddTimeout(sub, bench.timeout, kAnswerTime);
    parser.AddModule(sub, bench.module);
    parser.AddColour(sub);

    sub = parser.Add("list", "List the commands of the server", Action::list, kListNotes);
    sub->add_option("TEXT", name, "Only those with this text in their name or title")->type_name("");
    parser.AddJson(sub, json, "One JSON array");
    parser.AddColour(sub);

    sub = parser.Add("show", "Show everything about one command", Action::show, kShowNotes);
    sub->add_option("NAME", name, "'+CREG', csq, ...")->required()->type_name("");
    parser.AddJson(sub, json, "One JSON object");
    parser.AddColour(sub);
}

CommandLine::~CommandLine() = default;

// The first word is a subcommand, or an option.
void CommandLine::Parser::CheckFirstWord(int argc, char** argv) const {
    std::vector<std::string> names;
    for (const auto& [subcommand, action] : subcommands)
        names.push_back(subcommand->get_name());
    if (argc < 2) throw Misuse("a subcommand is missing: " + Join(names, ", ") + "; atctl --help tells more");
    const std::string_view word = argv[1];
    if (word.starts_with('-')) {
        const std::vector<std::string> options = OptionNames(app);
        if (word != "-h" && std::find(options.begin(), options.end(), word) == options.end())
            throw Misuse("there is no option \"" + Printable(word) + "\" before the subcommand" +
                         (word.starts_with("--") ? DidYouMean(word, options) : "; atctl --help tells more"));
        return;
    }
    if (std::find(names.begin(), names.end(), word) != names.end()) return;
    // A request without "send", or AT syntax.
    const std::string call = CallInstead(word);
    throw Misuse("there is no subcommand \"" + Printable(word) + "\", only " + Join(names, ", ") +
                 (call.empty() ? DidYouMean(word, names) : "; to send it: " + call));
}

// Unknown options, and more words than the subcommand takes.
void CommandLine::Parser::RefuseExtras(const CLI::App& subcommand) const {
    std::vector<std::string> extras = subcommand.remaining();
    std::erase(extras, "--");
    if (extras.empty()) return;
    Undisguise(extras);
    const std::string caller = "atctl " + subcommand.get_name();
    for (const std::string& extra : extras)
        if (extra.starts_with('-'))
            throw Misuse(caller + " has no option \"" + Printable(extra) + "\"" +
                         DidYouMean(extra.substr(0, extra.find('=')), OptionNames(subcommand)) +
                         (subcommand.get_name() == "send" ? " (a value goes behind --)" : ""));
    throw Misuse(caller + ": \"" + Printable(extras.front()) + "\" is one word too many; " + caller +
                 " --help tells what it takes");
}

std::optional<CommandLine::Action> CommandLine::Parse(int argc, char** argv) {
    Parser& parser = *parser_;
    parser.CheckFirstWord(argc, argv);
    const auto chosen = [&]() -> const std::pair<CLI::App*, Action>* {
        for (const auto& one : parser.subcommands)
            if (argc > 1 && one.first->get_name() == argv[1]) return &one;
        return nullptr;
    }();
    const std::string caller = chosen == nullptr ? "atctl" : "atctl " + chosen->first->get_name();
    try {
        parser.app.parse(Arguments(argc, argv));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            parser.app.exit(error);
            return std::nullopt;
        }
        std::string text = error.what();
        text.erase(std::remove(text.begin(), text.end(), kDisguise), text.end());
        throw Misuse(Printable(text) + "; " + caller + " --help tells more");
    }
    parser.RefuseExtras(*chosen->first);
    if (!parser.colour.empty()) ParseColour(parser.colour, colour);
    Undisguise(send.command);
    Undisguise(send.fields);
    Undisguise(watch.values);
    Undisguise(monitor.modules);
    monitor.count = ParseCount(parser.monitor_count);
    watch.count = ParseCount(parser.watch_count);
    if (!parser.watch_interval.empty()) watch.interval = strtod(parser.watch_interval.c_str(), nullptr);
    if (!parser.bench_count.empty()) bench.count = ParseCount(parser.bench_count);
    return chosen->second;
}

std::vector<SubcommandWords> CommandLine::Words() const {
    std::vector<SubcommandWords> words;
    const auto add = [&](const CLI::App& app, const std::string& called) {
        SubcommandWords one = {called, app.get_description(), {}};
        for (const CLI::Option* option : app.get_options())
            for (const std::string& long_name : option->get_lnames())
                one.options.push_back(
                    {"--" + long_name, option->get_description(), option->get_items_expected_max() > 0});
        words.push_back(std::move(one));
    };
    add(parser_->app, "");
    for (const auto& [subcommand, action] : parser_->subcommands)
        add(*subcommand, subcommand->get_name());
    return words;
}

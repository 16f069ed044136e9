// modemsim play: a modem on a pty that answers as a scenario says.

#include <poll.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/modemsim/command_line.h"
#include "tools/modemsim/commands.h"
#include "tools/modemsim/control.h"
#include "tools/modemsim/engine.h"
#include "tools/modemsim/find.h"
#include "tools/modemsim/pty.h"
#include "tools/modemsim/running.h"
#include "tools/modemsim/scenario.h"
#include "tools/modemsim/trace.h"
#include "tools/shared/suggest.h"
#include "tools/shared/text.h"

namespace modemsim {

namespace {

struct Options {
    std::string scenario = "default";
    std::string link = "/dev/ttyUSB1";
    std::string log;
    std::string control;  // empty: beside the link
    bool no_control = false;
    std::optional<std::uint64_t> seed;
    int ready_fd = -1;
    bool check = false;
    bool list = false;
};

class Simulator {
  public:
    Simulator(Scenario scenario, Trace& trace, ModemPort& port, ControlSocket& control)
        : trace_(trace),
          port_(port),
          control_(control),
          engine_(std::move(scenario), [this](const std::string& text) { trace_.Remark(Now(), text); }) {}

    // Until the modem is unplugged for good, told to quit, or a signal comes in on `signals`. On failure
    // false, with a reason.
    bool Run(int signals, std::string& reason);

  private:
    Time Now() const { return MonotonicTime() - start_; }
    int WaitTime() const;
    bool Read();
    bool Write();
    bool FollowPlug(std::string& reason);
    std::string Obey(const std::string& line);

    const Time start_ = MonotonicTime();
    Trace& trace_;
    ModemPort& port_;
    ControlSocket& control_;
    Engine engine_;
    std::string out_;  // taken from the engine, not yet taken by the pty
    std::size_t sent_ = 0;
    bool quit_ = false;
};

// Milliseconds that poll() may wait for the engine; -1 without end.
int Simulator::WaitTime() const {
    // While the pty takes no more, nothing new is asked for: the pieces would run together.
    if (!out_.empty()) return -1;
    const auto next = engine_.NextTime();
    if (!next) return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*next - Now()).count();
    return left < 0 ? 0 : static_cast<int>(left);
}

bool Simulator::Read() {
    char buffer[16384];
    const ssize_t count = read(port_.Master(), buffer, sizeof buffer);
    if (count > 0) {
        const std::string_view bytes(buffer, static_cast<std::size_t>(count));
        const Time now = Now();
        trace_.ToModem(now, bytes);
        engine_.Receive(bytes, now);
        return true;
    }
    return count < 0 && (errno == EAGAIN || errno == EINTR);
}

bool Simulator::Write() {
    while (true) {
        if (out_.empty()) {
            const Time now = Now();
            auto piece = engine_.Take(now);
            if (!piece) return true;
            trace_.FromModem(now, piece->bytes);
            out_ = std::move(piece->bytes);
            sent_ = 0;
        }
        // Pulled out meanwhile: what it was saying is lost.
        if (!engine_.PluggedIn() || !port_.IsOpen()) {
            out_.clear();
            continue;
        }
        const ssize_t count = write(port_.Master(), out_.data() + sent_, out_.size() - sent_);
        if (count < 0) return errno == EAGAIN || errno == EINTR;
        sent_ += static_cast<std::size_t>(count);
        if (sent_ == out_.size()) out_.clear();
    }
}

// The pty and its link are there when the modem is plugged in.
bool Simulator::FollowPlug(std::string& reason) {
    if (engine_.PluggedIn() == port_.IsOpen()) return true;
    if (engine_.PluggedIn()) return port_.Reopen(reason);
    port_.Close();
    out_.clear();
    return true;
}

// The answer to a line on the control socket.
std::string Simulator::Obey(const std::string& line) {
    nlohmann::ordered_json answer = {{"ok", true}};
    std::string reason;
    const auto order = ReadOrder(line, reason);
    if (order) {
        trace_.Remark(Now(), "control: " + line);
        if (order->kind == Order::Kind::State) {
            nlohmann::json state;
            engine_.DescribeState(state, Now());
            answer["state"] = state;
        } else if (order->kind == Order::Kind::Help) {
            answer["help"] = OrderHelp();
        } else if (order->kind == Order::Kind::Quit) {
            quit_ = true;
        } else {
            reason = engine_.Do(*order, Now());
        }
    }
    if (!reason.empty()) answer = {{"ok", false}, {"error", reason}};
    // A number or text from outside need not be valid UTF-8.
    return answer.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

bool Simulator::Run(int signals, std::string& reason) {
    engine_.Start(Now());
    std::vector<pollfd> watched;
    while (true) {
        const bool written = Write();
        if (!FollowPlug(reason)) return false;
        if (!written) break;
        if (engine_.Unplugged() && out_.empty()) {
            trace_.Remark(Now(), "unplugged");
            return true;
        }
        const short wanted = static_cast<short>(out_.empty() ? POLLIN : POLLIN | POLLOUT);
        watched.assign({{port_.IsOpen() ? port_.Master() : -1, wanted, 0}, {signals, POLLIN, 0}});
        control_.AddTo(watched);
        if (poll(watched.data(), watched.size(), WaitTime()) < 0 && errno != EINTR) break;
        if (watched[1].revents != 0) return true;
        if ((watched[0].revents & (POLLIN | POLLERR | POLLHUP)) != 0 && !Read()) break;
        control_.Serve([this](const std::string& line) { return Obey(line); });
        if (quit_) return true;
    }
    reason = std::string("the pty failed: ") + std::strerror(errno);
    return false;
}

// No file, no shipped scenario: "flakky", or "reply" for a subcommand.
bool IsUnknown(const std::string& name) {
    return name.find('/') == std::string::npos && access(FindScenario(name).c_str(), F_OK) != 0;
}

int RefuseName(const std::string& name) {
    const std::vector<std::string> shipped = ShippedScenarios();
    std::vector<std::string> names = shipped;
    for (const Subcommand& subcommand : Subcommands())
        names.emplace_back(subcommand.name);
    std::string hint = DidYouMean(name, names);
    if (hint.empty()) hint = "; shipped scenarios: " + Join(shipped, ", ");
    return Complain("there is no file, shipped scenario or subcommand \"" + Printable(name) + "\"" + hint +
                    "; modemsim --help tells more");
}

// A line for each, in the help.
std::string SubcommandHelp() {
    constexpr std::size_t kColumn = 10;
    std::string help = "Subcommands (modemsim SUBCOMMAND --help tells more):\n";
    for (const Subcommand& subcommand : Subcommands()) {
        std::string line = "  " + std::string(subcommand.name);
        line.resize(kColumn, ' ');
        help += line + std::string(subcommand.about) + "\n";
    }
    return help;
}

int Start(const Options& options) {
    if (options.list) {
        for (const std::string& name : ShippedScenarios())
            std::printf("%s\n", name.c_str());
        return 0;
    }
    if (IsUnknown(options.scenario)) return RefuseName(options.scenario);
    ParseResult parsed = LoadScenario(FindScenario(options.scenario));
    // Nothing was read at all: it is not the file's text that is wrong.
    if (!parsed.Ok() && parsed.scenario.files.empty()) return Complain(parsed.problems.front().Text());
    for (const Problem& problem : parsed.problems)
        std::fprintf(stderr, "%s\n", problem.Text().c_str());
    if (!parsed.Ok()) return kMisuse;
    if (options.check) {
        std::printf("%s: %zu rules for %zu command lines, %zu reports\n",
                    parsed.scenario.files.front().c_str(), parsed.scenario.RuleCount(),
                    parsed.scenario.groups.size(), parsed.scenario.reports.size());
        return 0;
    }

    Trace trace;
    if (!options.log.empty() && !trace.Open(options.log))
        return Complain(options.log + ": " + std::strerror(errno));

    std::string reason;
    const int signals = BlockEndingSignals(reason);
    if (signals < 0) return Complain(reason);

    ModemPort port;
    ControlSocket control;
    if (!port.Open(options.link, reason)) return Complain(reason);
    const bool placed = !options.control.empty();
    if (!options.no_control && !control.Open(placed ? options.control : ControlPath(options.link), reason)) {
        // Nobody asked for it at this place: the modem is of use without it.
        if (placed) return Complain(reason);
        Complain(reason + "; this modem cannot be steered");
    }
    if (options.seed) parsed.scenario.seed = *options.seed;
    Simulator simulator(std::move(parsed.scenario), trace, port, control);
    if (!SayReady(options.link, options.ready_fd, reason)) return Complain(reason);
    if (simulator.Run(signals, reason)) return 0;
    Complain(reason);
    return kFailed;
}

}  // namespace

int Play(int argc, char** argv) {
    Options options;
    CLI::App app{"A modem on a pty that answers AT commands as a scenario file says (see docs/modemsim.md).",
                 argv[0]};
    app.set_version_flag("--version", "modemsim " AT_VERSION);
    app.add_option("SCENARIO", options.scenario, "A file, or the name of a shipped scenario")
        ->capture_default_str();
    app.add_option("--link", options.link, "Where the modem's port is linked")->capture_default_str();
    app.add_option("--log", options.log, "Write what passes to FILE, or to standard output for -")
        ->type_name("FILE");
    app.add_option("--control", options.control,
                   "Where the control socket stands, instead of beside the link")
        ->type_name("PATH");
    app.add_flag("--no-control", options.no_control, "No control socket");
    app.add_option("--seed", options.seed, "Of everything random, instead of the scenario's")->type_name("N");
    AddReadyOption(app, options.ready_fd);
    app.add_flag("--check", options.check, "Read the scenario, say what it holds, and leave");
    app.add_flag("--list", options.list, "List the shipped scenarios and leave");
    app.footer(
        SubcommandHelp() +
        "\nExit status: 0 after SIGINT, SIGTERM, SIGHUP, the order quit or the scenario's end, 1 when the "
        "pty "
        "failed,\n2 when the options, the scenario, or the place of the link or the control socket are not "
        "right,\n4 when standard output could not be written to its end.");
    // Before its arguments are judged as a scenario's.
    if (argc > 1 && argv[1][0] != '\0' && argv[1][0] != '-' && IsUnknown(argv[1])) return RefuseName(argv[1]);
    if (const auto status = ReadArguments(app, argc, argv)) return *status;
    return Start(options);
}

}  // namespace modemsim

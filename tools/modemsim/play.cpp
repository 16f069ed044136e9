// modemsim play: a modem on a pty that answers as a scenario says.

#include <poll.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "tools/modemsim/commands.h"
#include "tools/modemsim/engine.h"
#include "tools/modemsim/find.h"
#include "tools/modemsim/pty.h"
#include "tools/modemsim/running.h"
#include "tools/modemsim/scenario.h"
#include "tools/modemsim/trace.h"

namespace modemsim {

namespace {

struct Options {
    std::string scenario = "default";
    std::string link = "/dev/ttyUSB1";
    std::string log;
    int ready_fd = -1;
    bool check = false;
    bool list = false;
};

class Simulator {
  public:
    Simulator(Scenario scenario, Trace& trace)
        : trace_(trace),
          engine_(std::move(scenario), [this](const std::string& text) { trace_.Remark(Now(), text); }) {}

    // Until the modem is unplugged or a signal comes in on `signals`. 0, or 1 when the pty failed.
    int Run(int master, int signals);

  private:
    Time Now() const { return MonotonicTime() - start_; }
    int WaitTime() const;
    bool Read(int master);
    bool Write(int master);

    const Time start_ = MonotonicTime();
    Trace& trace_;
    Engine engine_;
    std::string out_;  // taken from the engine, not yet taken by the pty
    std::size_t sent_ = 0;
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

bool Simulator::Read(int master) {
    char buffer[16384];
    const ssize_t count = read(master, buffer, sizeof buffer);
    if (count > 0) {
        const std::string_view bytes(buffer, static_cast<std::size_t>(count));
        const Time now = Now();
        trace_.ToModem(now, bytes);
        engine_.Receive(bytes, now);
        return true;
    }
    return count < 0 && (errno == EAGAIN || errno == EINTR);
}

bool Simulator::Write(int master) {
    while (true) {
        if (out_.empty()) {
            const Time now = Now();
            auto piece = engine_.Take(now);
            if (!piece) return true;
            trace_.FromModem(now, piece->bytes);
            out_ = std::move(piece->bytes);
            sent_ = 0;
        }
        const ssize_t count = write(master, out_.data() + sent_, out_.size() - sent_);
        if (count < 0) return errno == EAGAIN || errno == EINTR;
        sent_ += static_cast<std::size_t>(count);
        if (sent_ == out_.size()) out_.clear();
    }
}

int Simulator::Run(int master, int signals) {
    engine_.Start(Now());
    while (true) {
        if (!Write(master)) return 1;
        if (engine_.Unplugged() && out_.empty()) {
            trace_.Remark(Now(), "unplugged");
            return 0;
        }
        const short wanted = static_cast<short>(out_.empty() ? POLLIN : POLLIN | POLLOUT);
        pollfd watched[] = {{master, wanted, 0}, {signals, POLLIN, 0}};
        if (poll(watched, 2, WaitTime()) < 0 && errno != EINTR) return 1;
        if (watched[1].revents != 0) return 0;
        if ((watched[0].revents & (POLLIN | POLLERR | POLLHUP)) != 0 && !Read(master)) return 1;
    }
}

int Start(const Options& options) {
    if (options.list) {
        for (const std::string& name : ShippedScenarios())
            std::printf("%s\n", name.c_str());
        return 0;
    }
    ParseResult parsed = LoadScenario(FindScenario(options.scenario));
    for (const Problem& problem : parsed.problems)
        std::fprintf(stderr, "%s\n", problem.Text().c_str());
    if (!parsed.Ok()) {
        // Nothing was read at all: the name may have been meant for a shipped one.
        if (parsed.scenario.files.empty()) {
            std::string names;
            for (const std::string& name : ShippedScenarios())
                names += " " + name;
            std::fprintf(stderr, "shipped scenarios:%s\n", names.c_str());
        }
        return kMisuse;
    }
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
    if (!port.Open(options.link, reason)) return Complain(reason);
    Simulator simulator(std::move(parsed.scenario), trace);
    if (!SayReady(options.link, options.ready_fd, reason)) return Complain(reason);
    const int status = simulator.Run(port.Master(), signals);
    if (status != 0) Complain(std::string("the pty failed: ") + std::strerror(errno));
    return status;
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
    app.add_option(
           "--ready-fd", options.ready_fd,
           "Write \"ready PATH\" to this descriptor once the link stands, instead of to standard output")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
    app.add_flag("--check", options.check, "Read the scenario, say what it holds, and leave");
    app.add_flag("--list", options.list, "List the shipped scenarios and leave");
    app.footer(
        "Exit status: 0 after SIGINT, SIGTERM, SIGHUP or the scenario's end, 1 when the pty failed, 2 when "
        "the\n"
        "options, the scenario or the place of the link are not right.");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kMisuse;
    }
    return Start(options);
}

}  // namespace modemsim

// modemsim ctl: steers a modem that runs.

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/modemsim/command_line.h"
#include "tools/modemsim/commands.h"
#include "tools/modemsim/control.h"
#include "tools/modemsim/order.h"

namespace modemsim {

namespace {

constexpr int kNobody = 3;     // exit status: no simulator there, or it does not answer
constexpr int kForbidden = 5;  // exit status: the simulator belongs to another user
constexpr auto kPatience = std::chrono::seconds(5);

// The simulator's line, or an empty text when none came in time.
std::string Exchange(int fd, const std::string& line) {
    const std::string request = line + "\n";
    if (send(fd, request.data(), request.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(request.size()))
        return {};
    std::string answer;
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!answer.ends_with('\n')) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now())
                .count();
        pollfd watched = {fd, POLLIN, 0};
        if (left <= 0 || poll(&watched, 1, static_cast<int>(left)) <= 0) return {};
        char buffer[65536];
        const ssize_t count = read(fd, buffer, sizeof buffer);
        if (count <= 0) return {};
        answer.append(buffer, static_cast<std::size_t>(count));
    }
    return answer;
}

int Show(const std::string& answer) {
    const auto parsed = nlohmann::ordered_json::parse(answer, nullptr, false);
    if (parsed.is_discarded() || !parsed.is_object()) {
        Complain("this is no answer of a modemsim: " + answer);
        return kNobody;
    }
    if (!parsed.value("ok", false)) {
        Complain(parsed.value("error", std::string("refused")));
        return kFailed;
    }
    if (parsed.contains("state")) std::printf("%s\n", parsed["state"].dump(2).c_str());
    return 0;
}

}  // namespace

int Ctl(int argc, char** argv) {
    std::string link = "/dev/ttyUSB1";
    std::string path;
    std::vector<std::string> words;
    CLI::App app{"Steers a modemsim that runs: somebody calls, the network goes, the line misbehaves.",
                 argv[0]};
    app.set_version_flag("--version", "modemsim " AT_VERSION);
    app.add_option("--link", link, "The link of the modem's port; its control socket is LINK.ctl")
        ->capture_default_str();
    app.add_option("--control", path, "The control socket, where it is not LINK.ctl")->type_name("PATH");
    app.add_option("ORDER", words, "What to do, as below")->required();
    // What stands behind the first word belongs to the order, dashes and all.
    app.positionals_at_end();
    app.prefix_command();
    app.footer(
        "Orders:\n" + OrderHelp() +
        "\nExit status: 0 done, 1 the modem cannot do that now, 2 there is no such order, 3 no modemsim "
        "there,\n4 what was printed could not be written to its end, 5 no permission to steer it.");
    if (const auto status = RefuseOptionInFront(app, argc, argv)) return *status;
    if (const auto status = ReadArguments(app, argc, argv)) return *status;
    std::string line;
    for (const std::string& word : words)
        line += (line.empty() ? "" : " ") + word;
    for (const std::string& word : app.remaining())
        line += " " + word;
    if (line.find('\n') != std::string::npos)
        return Complain("an order is one line: leave out the line break");
    std::string reason;
    const auto order = ReadOrder(line, reason);
    if (!order) return Complain(reason);
    if (order->kind == Order::Kind::Help) {
        std::fputs(OrderHelp().c_str(), stdout);
        return 0;
    }
    if (path.empty()) path = ControlPath(link);
    const int fd = ConnectTo(path, reason);
    if (fd == -EACCES || fd == -EPERM) {
        Complain("no permission to steer " + path + "; run as its user");
        return kForbidden;
    }
    if (fd < 0) {
        Complain("no modemsim is steered at " + reason + "; start one, or name its --link or --control");
        return kNobody;
    }
    const std::string answer = Exchange(fd, line);
    close(fd);
    if (answer.empty()) {
        Complain("the modemsim at " + path + " does not answer");
        return kNobody;
    }
    return Show(answer);
}

}  // namespace modemsim

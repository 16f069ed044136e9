// modemsim replay: the modem of a recording, on a pty.

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include "tools/modemsim/command_line.h"
#include "tools/modemsim/commands.h"
#include "tools/modemsim/player.h"
#include "tools/modemsim/port_watch.h"
#include "tools/modemsim/pty.h"
#include "tools/modemsim/running.h"

namespace modemsim {

namespace {

constexpr Time kLongestPause = std::chrono::seconds(1);  // for a daemon that does not read

struct Options {
    std::string file;
    std::string link = "/dev/ttyUSB1";
    double speed = 1;
    double patience = 0;
    bool fast = false;
    bool strict = false;
    bool check = false;
    int ready_fd = -1;
};

class Replayer {
  public:
    Replayer(const Options& options, const Recording& recording)
        : options_(options),
          player_(recording,
                  {.speed = options.fast ? 0 : options.speed,
                   .strict = options.strict,
                   .patience = Time(static_cast<Time::rep>(options.patience * 1e6))},
                  [](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); }) {}
    ~Replayer() { Unplug(); }
    Replayer(const Replayer&) = delete;
    Replayer& operator=(const Replayer&) = delete;

    bool Plug(std::string& reason);
    // Until everything is played, or a signal comes in on `signals`. The exit status.
    int Run(int signals);
    const Player& Played() const { return player_; }

  private:
    void Unplug();
    bool Play();
    bool Write();
    bool TakenUp() const;
    void Listen();
    int WaitTime() const;

    const Options& options_;
    Player player_;
    ModemPort port_;
    PortWatch watch_;
    int far_end_ = -1;  // of the pty, to see what the daemon has not read yet
    std::string out_;
    std::size_t sent_ = 0;
    Time last_sent_{0};
};

bool Replayer::Plug(std::string& reason) {
    if (!port_.Open(options_.link, reason)) return false;
    far_end_ = open(port_.Slave().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (far_end_ >= 0) return watch_.Start(port_.Slave(), reason);
    reason = "cannot open " + port_.Slave() + ": " + std::strerror(errno);
    return false;
}

void Replayer::Unplug() {
    watch_.Stop();
    if (far_end_ >= 0) close(std::exchange(far_end_, -1));
    port_.Close();
    out_.clear();
    sent_ = 0;
}

// The daemon has read what it was sent: the next piece comes by itself, as it did. poll() sees what is on its
// way through the pty, too.
bool Replayer::TakenUp() const {
    pollfd unread = {far_end_, POLLIN, 0};
    return !watch_.IsOpen() || MonotonicTime() > last_sent_ + kLongestPause || poll(&unread, 1, 0) == 0;
}

bool Replayer::Write() {
    while (sent_ < out_.size()) {
        const ssize_t count = write(port_.Master(), out_.data() + sent_, out_.size() - sent_);
        if (count < 0) return errno == EAGAIN || errno == EINTR;
        sent_ += static_cast<std::size_t>(count);
        last_sent_ = MonotonicTime();
    }
    return true;
}

// Does what is due. False when the pty fails.
bool Replayer::Play() {
    while (true) {
        if (!Write()) return false;
        if (sent_ < out_.size() || !TakenUp()) return true;
        auto action = player_.Take(MonotonicTime());
        if (!action) return true;
        std::string reason;
        if (action->kind == Player::Action::Kind::Unplug) {
            Unplug();
        } else if (action->kind == Player::Action::Kind::Plug) {
            if (!Plug(reason)) {
                Complain(reason);
                return false;
            }
        } else if (watch_.IsOpen()) {
            out_ = std::move(action->bytes);
            sent_ = 0;
        }
    }
}

void Replayer::Listen() {
    const auto hear = [this] {
        char buffer[4096];
        ssize_t count = 0;
        while ((count = read(port_.Master(), buffer, sizeof buffer)) > 0)
            player_.Receive({buffer, static_cast<std::size_t>(count)}, MonotonicTime());
    };
    for (const PortWatch::Event event : watch_.Read()) {
        if (event == PortWatch::Event::Open) {
            player_.Opened(MonotonicTime());
            continue;
        }
        hear();
        player_.Closed(MonotonicTime());
    }
    hear();
}

// Milliseconds that poll() may wait; -1 without end.
int Replayer::WaitTime() const {
    if (sent_ < out_.size()) return -1;
    if (!TakenUp()) return 1;
    const auto next = player_.NextTime();
    if (!next) return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*next - MonotonicTime()).count();
    return left < 0 ? 0 : static_cast<int>(left);
}

int Replayer::Run(int signals) {
    player_.Start(MonotonicTime());
    while (true) {
        if (!Play()) {
            Complain("the pty failed");
            return kFailed;
        }
        if (player_.Over() && sent_ == out_.size() && TakenUp()) break;
        const short wanted = static_cast<short>(sent_ < out_.size() ? POLLIN | POLLOUT : POLLIN);
        pollfd watched[] = {
            {port_.Master(), wanted, 0}, {watch_.Descriptor(), POLLIN, 0}, {signals, POLLIN, 0}};
        if (poll(watched, 3, WaitTime()) < 0 && errno != EINTR) {
            Complain(std::string("cannot wait for the daemon: ") + std::strerror(errno));
            return kFailed;
        }
        if (watched[2].revents != 0) {
            player_.Break();
            break;
        }
        if (port_.Master() >= 0) Listen();
    }
    return player_.Deviations() == 0 ? 0 : kDeviated;
}

int Start(const Options& options) {
    const ParsedRecording parsed = LoadRecording(options.file);
    for (const Problem& problem : parsed.problems)
        std::fprintf(stderr, "%s\n", problem.Text().c_str());
    if (!parsed.Ok()) return kMisuse;
    const Recording& recording = parsed.recording;
    Replayer replayer(options, recording);
    if (options.check) {
        const double seconds = static_cast<double>(recording.entries.back().at.count()) / 1e6;
        std::printf("%s: %zu lines of the daemon, %.1f s%s\n", options.file.c_str(),
                    replayer.Played().Lines(), seconds, recording.redacted ? ", redacted" : "");
        return 0;
    }
    std::string reason;
    const int signals = BlockEndingSignals(reason);
    if (signals < 0 || !replayer.Plug(reason) || !SayReady(options.link, options.ready_fd, reason))
        return Complain(reason);
    const int status = replayer.Run(signals);
    std::printf("%s: lines that came: %zu of %zu, deviations: %zu\n", options.file.c_str(),
                replayer.Played().LinesCame(), replayer.Played().Lines(), replayer.Played().Deviations());
    return status;
}

}  // namespace

int Replay(int argc, char** argv) {
    Options options;
    CLI::App app{
        "Plays the modem of a recording to the daemon, and says where the daemon sends something else than "
        "it\n"
        "did then (see docs/recording.md).",
        argv[0]};
    app.set_version_flag("--version", "modemsim " AT_VERSION);
    app.add_option("FILE", options.file, "The recording")->required();
    app.add_option("--link", options.link, "Where the daemon finds it")
        ->capture_default_str()
        ->type_name("PATH");
    auto* const speed = app.add_option("--speed", options.speed, "N times as fast as it was")
                            ->type_name("N")
                            ->check(CLI::Range(0.001, 1e6));
    app.add_flag("--fast", options.fast, "Without any pause")->excludes(speed);
    app.add_flag("--strict", options.strict, "End at the first deviation");
    app.add_option("--patience", options.patience,
                   "Seconds to wait for each line of the daemon's; without it there is no end to it")
        ->type_name("S")
        ->check(CLI::Range(0.001, 1e6));
    app.add_flag("--check", options.check, "Read the recording, say what it holds, and leave");
    AddReadyOption(app, options.ready_fd);
    app.footer(
        "Exit status: 0 when the daemon sent what it sent then, 1 when the pty failed, 2 when the options, "
        "the\n"
        "recording or the place of the link are not right, 3 when the daemon sent something else or too "
        "little.");
    if (const auto status = ReadArguments(app, argc, argv)) return *status;
    return Start(options);
}

}  // namespace modemsim

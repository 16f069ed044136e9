// modemsim record: stands between a modem and the daemon and writes down what passes.

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

#include "tools/modemsim/command_line.h"
#include "tools/modemsim/commands.h"
#include "tools/modemsim/port_watch.h"
#include "tools/modemsim/pty.h"
#include "tools/modemsim/recording_writer.h"
#include "tools/modemsim/running.h"
#include "tools/modemsim/serial.h"

namespace modemsim {

namespace {

constexpr int kTick = 200;  // milliseconds: how often the settings, or a modem that is gone, are looked at
// Where the link leads while the modem is gone: nowhere, and the kernel's own node cannot take its place.
constexpr char kNowhere[] = "modem-is-gone";

struct Options {
    std::string device;
    std::string link = "/dev/ttyUSB1";
    std::string file;
    int ready_fd = -1;
    bool redact = false;
    bool force = false;
};

std::string ErrorText() {
    return std::strerror(errno);
}

// Bytes that were read on one side and are not yet all written on the other.
class Pipe {
  public:
    bool Empty() const { return sent_ == bytes_.size(); }
    void Put(std::string_view bytes) { bytes_.append(bytes); }
    void Drop() { bytes_.clear(), sent_ = 0; }
    // Writes what `fd` takes now. False when it takes nothing any more.
    bool Write(int fd) {
        while (!Empty()) {
            const ssize_t count = write(fd, bytes_.data() + sent_, bytes_.size() - sent_);
            if (count < 0) return errno == EAGAIN || errno == EINTR;
            sent_ += static_cast<std::size_t>(count);
        }
        Drop();
        return true;
    }

  private:
    std::string bytes_;
    std::size_t sent_ = 0;
};

class Recorder {
  public:
    Recorder(const Options& options, RecordingFile& file, std::optional<StandIns::Key> key)
        : options_(options), file_(file) {
        if (key) redactor_.emplace(Redactor(*key));
    }
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    // False and a reason when the device or the link cannot be had.
    bool Open(std::string& reason);
    // Until a signal comes in on `signals`. The exit status.
    int Run(int signals);

  private:
    void Add(Entry::Kind kind, std::string text = {});
    void Write(const Entry& entry);
    bool WriteHead(std::string& reason);
    bool OpenDevice(std::string& reason);
    bool OpenPort(std::string& reason);
    bool Turn(int signals);
    void FromDevice();
    void FromDaemon();
    void Watch();
    void CompareSettings();
    void Lost();
    void LookForDevice();

    const Options& options_;
    RecordingFile& file_;
    std::optional<EntryRedactor> redactor_;
    const Time start_ = MonotonicTime();
    int device_ = -1;
    ModemPort port_;
    PortWatch watch_;
    LineSettings settings_;
    Pipe to_;
    Pipe from_;
    std::string last_failure_;
};

Recorder::~Recorder() {
    if (device_ >= 0) close(device_);
    char target[sizeof kNowhere] = {};
    if (readlink(options_.link.c_str(), target, sizeof target) == sizeof kNowhere - 1 &&
        std::strcmp(target, kNowhere) == 0)
        unlink(options_.link.c_str());
}

void Recorder::Write(const Entry& entry) {
    std::string reason;
    if (!file_.Add(entry, reason))
        Complain(reason + ": the recording ends here, but the modem stays in service");
}

void Recorder::Add(Entry::Kind kind, std::string text) {
    Entry entry{kind, MonotonicTime() - start_, std::move(text), 0};
    if (!redactor_) return Write(entry);
    redactor_->Feed(std::move(entry));
    if (kind == Entry::Kind::End) redactor_->Finish();
    while (auto decided = redactor_->Take())
        Write(*decided);
}

bool Recorder::WriteHead(std::string& reason) {
    const time_t now = time(nullptr);
    tm parts = {};
    gmtime_r(&now, &parts);
    char started[64];
    strftime(started, sizeof started, "started %Y-%m-%dT%H:%M:%SZ", &parts);
    std::string head = std::string(kRecordingHead) + "\nprogram modemsim " AT_VERSION "\ndevice " +
                       options_.device + "\n" + started + "\nsettings " + SettingsText(settings_);
    if (redactor_) head += "\n" + std::string(kRedactedHeader);
    return file_.Add({Entry::Kind::Header, Time(0), head, 0}, reason);
}

bool Recorder::OpenDevice(std::string& reason) {
    device_ = open(options_.device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (device_ < 0) {
        reason = "cannot open " + options_.device + ": " + ErrorText();
        return false;
    }
    termios line = {};
    if (tcgetattr(device_, &line) == 0) {
        Apply(settings_, line);
        if (tcsetattr(device_, TCSANOW, &line) == 0) return true;
    }
    reason = options_.device + " cannot be set up as a modem's line: " + ErrorText();
    close(std::exchange(device_, -1));
    return false;
}

bool Recorder::OpenPort(std::string& reason) {
    if (!port_.Open(options_.link, reason)) return false;
    // What the daemon changes is told by comparison with this.
    termios line = {};
    if (tcgetattr(port_.Master(), &line) == 0) {
        Apply(settings_, line);
        tcsetattr(port_.Master(), TCSANOW, &line);
    }
    return watch_.Start(port_.Slave(), reason);
}

bool Recorder::Open(std::string& reason) {
    if (options_.device == options_.link) {
        reason = "the daemon opens " + options_.link +
                 ", so the modem needs another name: move its node first (docs/recording.md says how)";
        return false;
    }
    if (!OpenDevice(reason)) return false;
    return OpenPort(reason);
}

// The daemon's settings count for the modem's line too, as far as a pty lets them be seen: it always has
// eight data bits and no parity.
void Recorder::CompareSettings() {
    termios line = {};
    if (!watch_.IsOpen() || tcgetattr(port_.Master(), &line) != 0) return;
    const LineSettings wanted = SettingsOf(line);
    if (wanted == settings_) return;
    settings_ = wanted;
    Add(Entry::Kind::Settings, SettingsText(settings_));
    if (device_ < 0 || tcgetattr(device_, &line) != 0) return;
    Apply(settings_, line);
    if (tcsetattr(device_, TCSANOW, &line) != 0)
        Complain(options_.device + " does not take the settings " + SettingsText(settings_) + ": " +
                 ErrorText());
}

void Recorder::FromDaemon() {
    char buffer[4096];
    // One read while it cannot go on to the modem: the rest waits in the port, and so does the daemon.
    while (to_.Empty()) {
        const ssize_t count = read(port_.Master(), buffer, sizeof buffer);
        if (count <= 0) return;
        CompareSettings();
        const std::string_view bytes(buffer, static_cast<std::size_t>(count));
        Add(Entry::Kind::ToModem, std::string(bytes));
        to_.Put(bytes);
        if (!to_.Write(device_)) return Lost();
    }
}

void Recorder::FromDevice() {
    char buffer[4096];
    const ssize_t count = read(device_, buffer, sizeof buffer);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (count <= 0) return Lost();
    const std::string_view bytes(buffer, static_cast<std::size_t>(count));
    Add(Entry::Kind::FromModem, std::string(bytes));
    // A port that nobody has open forgets what comes.
    if (watch_.IsOpen()) from_.Put(bytes);
}

void Recorder::Watch() {
    for (const PortWatch::Event event : watch_.Read()) {
        if (event == PortWatch::Event::Open) {
            Add(Entry::Kind::Open);
            continue;
        }
        FromDaemon();  // what it wrote before
        if (device_ < 0) return;
        Add(Entry::Kind::Close);
        from_.Drop();
        tcflush(port_.Master(), TCOFLUSH);
    }
}

// The daemon sees what it would see without us: its port goes dead, and then there is none.
void Recorder::Lost() {
    Add(Entry::Kind::Gone);
    Complain(options_.device + " is gone, waiting until it is back");
    close(std::exchange(device_, -1));
    watch_.Stop();
    port_.Close();
    to_.Drop();
    from_.Drop();
    if (symlink(kNowhere, options_.link.c_str()) != 0)
        Complain("cannot keep the place " + options_.link + ": " + ErrorText());
}

void Recorder::LookForDevice() {
    std::string reason;
    if (OpenDevice(reason)) {
        if (OpenPort(reason)) {
            std::fprintf(stderr, "modemsim: %s is back\n", options_.device.c_str());
            return Add(Entry::Kind::Back);
        }
        close(std::exchange(device_, -1));
        watch_.Stop();
        port_.Close();
        // Said once, not five times a second.
        if (reason != last_failure_) Complain(reason);
        last_failure_ = reason;
    }
}

// One wait and what came of it. False when a signal ends the recording.
bool Recorder::Turn(int signals) {
    // What cannot be passed on is not read: so it waits where it would without us.
    const short device_wants = static_cast<short>((from_.Empty() ? POLLIN : 0) | (to_.Empty() ? 0 : POLLOUT));
    const short port_wants = static_cast<short>((to_.Empty() ? POLLIN : 0) | (from_.Empty() ? 0 : POLLOUT));
    pollfd watched[] = {{signals, POLLIN, 0},
                        {watch_.Descriptor(), POLLIN, 0},
                        {port_.Master(), port_wants, 0},
                        {device_, device_wants, 0}};
    if (poll(watched, 4, kTick) < 0 && errno != EINTR) {
        Complain("cannot wait for the modem: " + ErrorText());
        return false;
    }
    if (watched[0].revents != 0) return false;
    if (device_ < 0) {
        LookForDevice();
        return true;
    }
    Watch();
    if (device_ >= 0) CompareSettings();
    if (device_ >= 0 && (watched[3].revents & POLLOUT) != 0 && !to_.Write(device_)) Lost();
    if (device_ >= 0) FromDaemon();
    if (device_ >= 0 && (watched[3].revents & (POLLIN | POLLHUP | POLLERR)) != 0) FromDevice();
    if (device_ >= 0) from_.Write(port_.Master());
    return true;
}

int Recorder::Run(int signals) {
    std::string reason;
    if (!WriteHead(reason)) return Complain(reason);
    if (!SayReady(options_.link, options_.ready_fd, reason)) return Complain(reason);
    while (Turn(signals)) {
    }
    Add(Entry::Kind::End);
    return file_.Broken() ? kIncomplete : 0;
}

int Start(const Options& options) {
    std::string reason;
    const int signals = BlockEndingSignals(reason);
    if (signals < 0) return Complain(reason);
    signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is told as a full disk is
    std::optional<StandIns::Key> key;
    if (options.redact) {
        key = StandIns::RandomKey();
        if (!key) return Complain("the system gives no random numbers: nothing is recorded");
    }
    RecordingFile file;
    Recorder recorder(options, file, key);
    if (!recorder.Open(reason) || !file.Create(options.file, options.force, reason)) return Complain(reason);
    return recorder.Run(signals);
}

}  // namespace

int Record(int argc, char** argv) {
    Options options;
    CLI::App app{
        "Stands between a modem and the daemon and writes what passes both ways into a text file\n"
        "(see docs/recording.md). The daemon keeps the modem's name, so the modem needs another one:\n"
        "  mv /dev/ttyUSB1 /dev/modem && modemsim record --device /dev/modem session.rec",
        argv[0]};
    app.set_version_flag("--version", "modemsim " AT_VERSION);
    app.add_option("--device", options.device, "The modem's tty")->required()->type_name("DEV");
    app.add_option("--link", options.link, "Where the daemon finds it")
        ->capture_default_str()
        ->type_name("PATH");
    app.add_option("FILE", options.file, "Where the recording goes")->required();
    app.add_flag("--redact", options.redact,
                 "Let stand-ins take the place of numbers, identities, texts, places");
    app.add_flag("--force", options.force, "Replace FILE if it exists");
    AddReadyOption(app, options.ready_fd);
    app.footer(
        "Exit status: 0 after SIGINT, SIGTERM or SIGHUP, 2 when the options, the device, the file or the "
        "place\n"
        "of the link are not right, 4 when the file could not be written to its end (the disk is full).");
    if (const auto status = ReadArguments(app, argc, argv)) return *status;
    return Start(options);
}

}  // namespace modemsim

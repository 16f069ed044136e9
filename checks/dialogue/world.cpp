#include "checks/dialogue/world.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>

#include "checks/dialogue/target.h"

namespace {

constexpr char kLogSocket[] = "/dev/log";

struct Wire {
    long type;
    char body[8192];
};

void Require(bool good, const char* what) {
    if (!good) throw std::runtime_error(std::string(what) + ": " + strerror(errno));
}

}  // namespace

bool WaitUntil(const std::function<bool()>& condition, double seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) return condition();
        usleep(500);
    }
    return true;
}

Modem::Modem(Answer answer, const char* device) : answer_(std::move(answer)), device_(device) {
    Plug();
}

void Modem::Plug() {
    struct stat existing;
    if (lstat(device_, &existing) == 0) {
        if (!S_ISLNK(existing.st_mode))
            throw std::runtime_error(std::string(device_) + " is a real device: not in a sandbox?");
        unlink(device_);
    }
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    Require(master_ >= 0 && unlockpt(master_) == 0, "pty");
    // A daemon that does not read must not hold Say() for ever.
    Require(fcntl(master_, F_SETFL, O_NONBLOCK) == 0, "pty");
    char name[64];
    Require(ptsname_r(master_, name, sizeof name) == 0, "ptsname");
    slave_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    Require(slave_ >= 0, name);
    termios raw{};
    tcgetattr(slave_, &raw);
    cfmakeraw(&raw);
    tcsetattr(slave_, TCSANOW, &raw);
    Require(symlink(name, device_) == 0, device_);
    stop_ = false;
    deaf_ = false;
    thread_ = std::thread([this] { Run(); });
}

Modem::~Modem() {
    Unplug();
}

void Modem::Unplug() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
    std::lock_guard<std::mutex> hold(saying_);
    if (slave_ >= 0) close(slave_);
    if (master_ >= 0) close(master_);
    slave_ = master_ = -1;
    unlink(device_);
}

void Modem::StopReading() {
    deaf_ = true;
}

void Modem::StartReading() {
    deaf_ = false;
}

void Modem::Run() {
    std::string line;
    while (!stop_) {
        pollfd wait{master_, POLLIN, 0};
        if (deaf_) {
            usleep(1000);
            continue;
        }
        if (poll(&wait, 1, 1) <= 0) continue;
        char buffer[4096];
        const ssize_t got = read(master_, buffer, sizeof buffer);
        if (got > 0) {
            std::lock_guard<std::mutex> hold(lock_);
            bytes_.append(buffer, static_cast<size_t>(got));
        }
        for (ssize_t i = 0; i < got; ++i) {
            if (buffer[i] != '\r' && buffer[i] != '\x1a') {
                line += buffer[i];
                continue;
            }
            Answer answer;
            {
                std::lock_guard<std::mutex> hold(lock_);
                lines_.push_back(line);
                answer = answer_;
            }
            Say(answer(line));
            line.clear();
        }
    }
}

void Modem::Say(const std::string& text) {
    std::lock_guard<std::mutex> hold(saying_);
    size_t sent = 0;
    while (sent < text.size() && !stop_) {
        const ssize_t count = write(master_, text.data() + sent, text.size() - sent);
        if (count < 0 && errno == EAGAIN) {
            usleep(500);
            continue;
        }
        if (count <= 0) break;
        sent += static_cast<size_t>(count);
    }
}

void Modem::SetAnswer(Answer answer) {
    std::lock_guard<std::mutex> hold(lock_);
    answer_ = std::move(answer);
}

std::vector<std::string> Modem::Lines() const {
    std::lock_guard<std::mutex> hold(lock_);
    return lines_;
}

std::string Modem::Bytes() const {
    std::lock_guard<std::mutex> hold(lock_);
    return bytes_;
}

void Modem::ForgetLines() {
    std::lock_guard<std::mutex> hold(lock_);
    lines_.clear();
    bytes_.clear();
}

bool Modem::WaitForLine(const std::string& line, double seconds) const {
    return WaitUntil(
        [&] {
            for (const std::string& seen : Lines())
                if (seen == line) return true;
            return false;
        },
        seconds);
}

LogCollector::LogCollector() {
    struct stat existing;
    if (lstat(kLogSocket, &existing) == 0) unlink(kLogSocket);
    socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strncpy(address.sun_path, kLogSocket, sizeof address.sun_path - 1);
    Require(bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, kLogSocket);
    const int room = 4 << 20;
    setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &room, sizeof room);
    thread_ = std::thread([this] { Run(); });
}

LogCollector::~LogCollector() {
    stop_ = true;
    thread_.join();
    close(socket_);
    unlink(kLogSocket);
}

void LogCollector::Run() {
    std::string buffer(1 << 20, '\0');
    while (!stop_) {
        pollfd wait{socket_, POLLIN, 0};
        if (poll(&wait, 1, 1) <= 0) continue;
        const ssize_t got = recv(socket_, buffer.data(), buffer.size(), 0);
        if (got <= 0) continue;
        // "<13>Nov 21 13:24:15 at-server[7]: at_server, 42 text"
        const std::string all(buffer.data(), static_cast<size_t>(got));
        Line line{all[0] == '<' ? atoi(all.c_str() + 1) & 7 : -1, all, ""};
        size_t header = all.find("]: ");
        size_t comma = header == std::string::npos ? header : all.find(", ", header);
        size_t blank = comma == std::string::npos ? comma : all.find(' ', comma + 2);
        if (blank != std::string::npos) {
            line.module = all.substr(header + 3, comma - header - 3);
            line.text = all.substr(blank + 1);
        }
        line.at = std::chrono::steady_clock::now();
        std::lock_guard<std::mutex> hold(lock_);
        lines_.push_back(std::move(line));
    }
}

std::vector<LogCollector::Line> LogCollector::Lines() const {
    std::lock_guard<std::mutex> hold(lock_);
    return lines_;
}

void LogCollector::Forget() {
    std::lock_guard<std::mutex> hold(lock_);
    lines_.clear();
}

int LogCollector::Count(const std::string& part) const {
    std::lock_guard<std::mutex> hold(lock_);
    int count = 0;
    for (const Line& line : lines_)
        count += line.text.find(part) != std::string::npos ? 1 : 0;
    return count;
}

bool LogCollector::WaitFor(const std::string& part, double seconds, int count) const {
    return WaitUntil([&] { return Count(part) >= count; }, seconds);
}

int32_t Received::I32(size_t offset) const {
    return GetInteger<int32_t>(paras, offset);
}
std::string Received::Text(size_t offset) const {
    return std::string(paras.c_str() + offset);
}

int ServerQueue() {
    return msgget(AT_MODULE_SERVER, 0);
}

static bool SendTo(int queue, const std::string& bytes, long message_type, int flags) {
    Wire wire;
    wire.type = message_type;
    memcpy(wire.body, bytes.data(), bytes.size());
    return msgsnd(queue, &wire, bytes.size(), flags) == 0;
}

void SendRaw(const std::string& bytes, long message_type) {
    Require(SendTo(ServerQueue(), bytes, message_type, 0), "msgsnd");
}

bool TrySendRaw(const std::string& bytes, long message_type) {
    const bool sent = SendTo(ServerQueue(), bytes, message_type, IPC_NOWAIT);
    Require(sent || errno == EAGAIN, "msgsnd");
    return sent;
}

Module::Module(uint16_t id) : id_(id) {
    const int old = msgget(id, 0);
    if (old >= 0) msgctl(old, IPC_RMID, nullptr);
    queue_ = msgget(id, IPC_CREAT | 0600);
    Require(queue_ >= 0, "msgget");
}

Module::~Module() {
    msgctl(queue_, IPC_RMID, nullptr);
}

std::string Module::Request(uint16_t cmd, uint8_t type, const std::string& record) const {
    // Offsets count from behind the message type.
    std::string bytes(AT_WIRE_SIZE, '\0');
    PutInteger<uint16_t>(bytes, 0, AT_MODULE_SERVER);
    PutInteger<uint16_t>(bytes, 2, id_);
    PutInteger<uint16_t>(bytes, 8, cmd);
    PutInteger<uint8_t>(bytes, 10, type);
    PutInteger<uint16_t>(bytes, 14, static_cast<uint16_t>(record.size()));
    memcpy(bytes.data() + 16, record.data(), record.size());
    PutInteger<uint32_t>(bytes, 648, AT_MESSAGE_MAGIC);
    return bytes;
}

void Module::Ask(uint16_t cmd, uint8_t type, const std::string& record, long message_type) const {
    SendRaw(Request(cmd, type, record), message_type);
}

bool Module::Receive(Received& received, double seconds) const {
    Wire wire;
    ssize_t got = -1;
    WaitUntil([&] { return (got = msgrcv(queue_, &wire, sizeof wire.body, 0, IPC_NOWAIT)) >= 0; }, seconds);
    if (got < 0) return false;
    const std::string bytes(wire.body, AT_WIRE_SIZE);
    if (got != AT_WIRE_SIZE) throw std::runtime_error("a message of the wrong size arrived");
    received.type = wire.type;
    received.target = GetInteger<uint16_t>(bytes, 0);
    received.source = GetInteger<uint16_t>(bytes, 2);
    received.command = GetInteger<uint16_t>(bytes, 4);
    received.data_len = GetInteger<uint16_t>(bytes, 6);
    received.id = GetInteger<uint16_t>(bytes, 8);
    received.cmd_type = GetInteger<uint8_t>(bytes, 10);
    received.result = GetInteger<uint8_t>(bytes, 11);
    received.para_len = GetInteger<uint16_t>(bytes, 12);
    received.paras = bytes.substr(14, AT_RESPONSE_PARAS_SIZE);
    received.magic = GetInteger<uint32_t>(bytes, 648);
    return true;
}

Received Module::Exchange(uint16_t cmd, uint8_t type, const std::string& record, double seconds) const {
    Ask(cmd, type, record);
    Received received;
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (std::chrono::steady_clock::now() < end)
        if (Receive(received, 0.05) && received.id == cmd && received.type == 7) return received;
    return Received();
}

std::string I32(std::initializer_list<int32_t> values) {
    std::string bytes;
    for (int32_t value : values) {
        bytes.resize(bytes.size() + sizeof value);
        PutInteger(bytes, bytes.size() - sizeof value, value);
    }
    return bytes;
}

std::string Text(const std::string& text, size_t size) {
    std::string bytes = text;
    bytes.resize(size, '\0');
    return bytes;
}

Daemon::Daemon() {
    Start();
}

void Daemon::Start() {
    status_ = -1;
    std::vector<std::string> words = TargetCommand("AT_SERVER");
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    // The library of an orderly end stands beside one that is preloaded already.
    std::string libraries;
    for (const char* name : {"ORDERLY_END", "LD_PRELOAD"}) {
        const char* library = getenv(name);
        if (library != nullptr) libraries += (libraries.empty() ? "" : ":") + std::string(library);
    }
    pid_ = fork();
    if (pid_ == 0) {
        setpgid(0, 0);
        if (!libraries.empty()) setenv("LD_PRELOAD", libraries.c_str(), 1);
        if (chdir("/") == 0) execvp(argv[0], argv.data());
        _exit(127);
    }
    Require(pid_ > 0, "fork");
    setpgid(pid_, pid_);
}

void Daemon::Kill() {
    if (!Running()) return;
    if (getenv("ORDERLY_END") != nullptr) {
        kill(pid_, SIGTERM);
        WaitForExit(5);
        if (!Running()) return;
    }
    kill(-pid_, SIGKILL);
    WaitForExit(10);
}

Daemon::~Daemon() {
    Kill();
    const int queue = ServerQueue();
    if (queue >= 0) msgctl(queue, IPC_RMID, nullptr);
}

bool Daemon::Running() {
    if (status_ != -1) return false;
    int status = 0;
    if (waitpid(pid_, &status, WNOHANG) != pid_) return true;
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return false;
}

int Daemon::WaitForExit(double seconds) {
    WaitUntil([this] { return !Running(); }, seconds);
    return status_;
}

World::World(Modem::Answer answer) : modem(std::move(answer)) {
    if (!log.WaitFor("AT response thread  is running ...", 10))
        throw std::runtime_error("the daemon did not start");
}

std::string PlainAnswer(const std::string& line) {
    struct Entry {
        const char* line;
        const char* answer;
    };
    static constexpr Entry kAnswers[] = {
        {"AT", "\r\nOK\r\n"},
        {"AT+CSQ", "\r\n+CSQ: 20,99\r\n\r\nOK\r\n"},
        {"AT+CGSN", "\r\n356938035643809\r\n\r\nOK\r\n"},
        {"AT+CIMI", "\r\n001010123456789\r\n\r\nOK\r\n"},
        {"AT+CFUN?", "\r\n+CFUN: 1\r\n\r\nOK\r\n"},
        {"AT+CPIN?", "\r\n+CPIN: READY\r\n\r\nOK\r\n"},
        {"AT+CREG?", "\r\n+CREG: 2,1,\"1A2B\",\"00C3D4E5\"\r\n\r\nOK\r\n"},
        {"AT+CMGF?", "\r\n+CMGF: 0\r\n\r\nOK\r\n"},
        {"AT+CMGF=0", "\r\nOK\r\n"},
        {"AT+CLVL?", "\r\n+CLVL: 3\r\n\r\nOK\r\n"},
        {"AT+CHUP", "\r\nOK\r\n"},
        {"ATA", "\r\nOK\r\n"},
    };
    for (const Entry& entry : kAnswers)
        if (line == entry.line) return entry.answer;
    if (line.rfind("ATD", 0) == 0) return "\r\nOK\r\n";
    return "\r\nERROR\r\n";
}

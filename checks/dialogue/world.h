#ifndef AT_CHECKS_DIALOGUE_WORLD_H
#define AT_CHECKS_DIALOGUE_WORLD_H

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "records/message.h"

// What surrounds the real daemon in the dialogue checks: a modem on a pty, the system log's socket, modules
// with queues. Everything stands at the daemon's fixed paths, so these checks run inside scripts/sandbox
// only.

// How long to wait, in seconds, for what will come. Much longer than it takes: when every processor is busy,
// the kernel itself has been seen to keep a pty's bytes back for five seconds.
constexpr double kPatience = 30;

// Calls `condition` until it is true or `seconds` have passed; its last value.
bool WaitUntil(const std::function<bool()>& condition, double seconds = kPatience);

// The modem: a raw pty linked at the daemon's device, or at `device`. Each line that arrives (up to a CR, or
// up to 0x1A) is answered with what `answer` returns; nothing is sent for an empty text.
class Modem {
  public:
    using Answer = std::function<std::string(const std::string& line)>;

    explicit Modem(Answer answer, const char* device = "/dev/ttyUSB1");
    ~Modem();
    Modem(const Modem&) = delete;
    Modem& operator=(const Modem&) = delete;

    // Writes whole texts: what two threads say does not mix.
    void Say(const std::string& text);
    void SetAnswer(Answer answer);
    std::vector<std::string> Lines() const;  // everything received, CR or 0x1A cut off
    std::string Bytes() const;               // everything received, as it came
    void ForgetLines();
    bool WaitForLine(const std::string& line, double seconds = kPatience) const;
    void StopReading();   // what is written to the port stays in it
    void StartReading();  // again; what waited is read first
    void Unplug();        // the pty is closed, the link goes
    void Plug();          // a new pty at the same link, as after Unplug()

  private:
    void Run();

    mutable std::mutex lock_;
    std::mutex saying_;
    Answer answer_;
    const char* device_;
    std::vector<std::string> lines_;
    std::string bytes_;
    int master_ = -1;
    int slave_ = -1;
    std::atomic<bool> deaf_{false};
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

// The socket behind syslog().
class LogCollector {
  public:
    LogCollector();
    ~LogCollector();
    LogCollector(const LogCollector&) = delete;
    LogCollector& operator=(const LogCollector&) = delete;

    struct Line {
        int level;
        std::string text;  // without the header and "module, line "
        std::string module;
        std::chrono::steady_clock::time_point at{};  // when it came
    };
    std::vector<Line> Lines() const;
    void Forget();  // everything collected
    int Count(const std::string& part) const;
    bool WaitFor(const std::string& part, double seconds = kPatience, int count = 1) const;

  private:
    void Run();

    mutable std::mutex lock_;
    std::vector<Line> lines_;
    int socket_ = -1;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

// What a module received.
struct Received {
    long type = 0;
    uint16_t target = 0;
    uint16_t source = 0;
    uint16_t command = 0;
    uint16_t data_len = 0;
    uint16_t id = 0;
    uint8_t cmd_type = 0;
    uint8_t result = 0;
    uint16_t para_len = 0;
    std::string paras;  // all 634 bytes
    uint32_t magic = 0;

    int32_t I32(size_t offset) const;
    std::string Text(size_t offset = 0) const;  // up to the NUL
};

// A module of the router: a queue of its own (removed at the end), and requests to the server's.
class Module {
  public:
    explicit Module(uint16_t id);
    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    uint16_t Id() const { return id_; }
    int Queue() const { return queue_; }

    // The 652 bytes of a request, ready for change by a check.
    std::string Request(uint16_t cmd, uint8_t type, const std::string& record = {}) const;
    void Ask(uint16_t cmd, uint8_t type, const std::string& record = {}, long message_type = 7) const;
    // False when nothing came in time.
    bool Receive(Received& received, double seconds = kPatience) const;
    // Asks and waits for the answer to that command.
    Received Exchange(uint16_t cmd, uint8_t type, const std::string& record = {},
                      double seconds = kPatience) const;

  private:
    uint16_t id_;
    int queue_;
};

// Puts bytes on the server's queue as they are, in a message of their size; waits while it is full.
void SendRaw(const std::string& bytes, long message_type = 7);
// The same without waiting: false when the queue is full.
bool TrySendRaw(const std::string& bytes, long message_type = 7);
int ServerQueue();  // id, -1 while there is none

std::string I32(std::initializer_list<int32_t> values);  // records of integers
std::string Text(const std::string& text, size_t size);  // zero-padded

// The daemon under check (see target.h), as a child process.
class Daemon {
  public:
    Daemon();
    ~Daemon();
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    pid_t Pid() const { return pid_; }
    bool Running();
    int WaitForExit(double seconds);  // exit status, -1 while it runs
    void Kill();                      // with SIGKILL; its queue stays
    void Start();                     // again, after its end

  private:
    pid_t pid_ = -1;
    int status_ = -1;
};

// A running daemon with everything around it: ready to take requests.
struct World {
    LogCollector log;
    Modem modem;
    Daemon daemon;

    explicit World(Modem::Answer answer);
};

// What a registered modem with a SIM answers to the lines the checks send; "ERROR" to others.
std::string PlainAnswer(const std::string& line);

#endif

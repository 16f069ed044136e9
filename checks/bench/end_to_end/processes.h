#ifndef AT_CHECKS_BENCH_END_TO_END_PROCESSES_H
#define AT_CHECKS_BENCH_END_TO_END_PROCESSES_H

#include <stdint.h>
#include <sys/types.h>
#include <time.h>

#include <string>
#include <vector>

// The processes that are measured, and the clocks.

uint64_t MonotonicNs();
void SleepUntil(uint64_t monotonic_ns);

// A program that runs as long as this lives. Throws std::runtime_error when it cannot be started.
class Process {
  public:
    explicit Process(const std::vector<std::string>& command);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    // The CPU time of all its threads so far.
    uint64_t CpuNs() const;

  private:
    pid_t pid_ = -1;
    clockid_t clock_ = 0;
};

// What becomes of the log calls of the processes that are started while this lives: see log_switch.c.
class LogSwitch {
  public:
    enum Way : uint32_t { pass, drop, mask };

    explicit LogSwitch(const std::string& library);
    ~LogSwitch();
    LogSwitch(const LogSwitch&) = delete;
    LogSwitch& operator=(const LogSwitch&) = delete;

    void Set(Way way);
    void Release();  // what is started from here on is not switched

  private:
    std::string path_;
    uint32_t* way_ = nullptr;
};

#endif

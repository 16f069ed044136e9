#include "checks/bench/end_to_end/processes.h"

#include <errno.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

namespace {

uint64_t Nanoseconds(clockid_t clock) {
    timespec now{};
    if (clock_gettime(clock, &now) != 0) throw std::runtime_error("a measured process has ended");
    return static_cast<uint64_t>(now.tv_sec) * 1'000'000'000 + static_cast<uint64_t>(now.tv_nsec);
}

void Require(bool good, const std::string& what) {
    if (!good) throw std::runtime_error(what + ": " + strerror(errno));
}

}  // namespace

uint64_t MonotonicNs() {
    return Nanoseconds(CLOCK_MONOTONIC);
}

void SleepUntil(uint64_t monotonic_ns) {
    const timespec when{static_cast<time_t>(monotonic_ns / 1'000'000'000),
                        static_cast<long>(monotonic_ns % 1'000'000'000)};
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &when, nullptr) == EINTR) {
    }
}

Process::Process(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    pid_ = fork();
    Require(pid_ >= 0, "fork");
    if (pid_ == 0) {
        if (chdir("/") == 0) execv(arguments[0], arguments.data());
        _exit(127);
    }
    Require(clock_getcpuclockid(pid_, &clock_) == 0, "clock_getcpuclockid");
}

Process::~Process() {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
}

uint64_t Process::CpuNs() const {
    return Nanoseconds(clock_);
}

LogSwitch::LogSwitch(const std::string& library) : path_("/tmp/log_switch_XXXXXX") {
    const int file = mkstemp(path_.data());
    Require(file >= 0 && ftruncate(file, sizeof *way_) == 0, path_);
    void* mapped = mmap(nullptr, sizeof *way_, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    Require(mapped != MAP_FAILED, "mmap");
    close(file);
    way_ = static_cast<uint32_t*>(mapped);
    setenv("LOG_SWITCH", path_.c_str(), 1);
    setenv("LD_PRELOAD", library.c_str(), 1);
}

LogSwitch::~LogSwitch() {
    Release();
    munmap(way_, sizeof *way_);
    unlink(path_.c_str());
}

void LogSwitch::Set(Way way) {
    __atomic_store_n(way_, way, __ATOMIC_RELAXED);
}

void LogSwitch::Release() {
    unsetenv("LD_PRELOAD");
    unsetenv("LOG_SWITCH");
}

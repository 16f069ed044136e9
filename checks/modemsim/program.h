#ifndef AT_CHECKS_MODEMSIM_PROGRAM_H
#define AT_CHECKS_MODEMSIM_PROGRAM_H

// The program as a user starts it, and the host at the other end of its pty.

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace modemsim {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
inline constexpr auto kBound = std::chrono::seconds(20);  // of every wait; a loaded machine may need a while

class Directory {
  public:
    Directory() {
        char name[] = "/tmp/modemsim-check-XXXXXX";
        path_ = mkdtemp(name) == nullptr ? fs::path() : fs::path(name);
    }
    ~Directory() {
        std::error_code error;
        if (!path_.empty()) fs::remove_all(path_, error);
    }
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;

    std::string File(const std::string& name) const { return (path_ / name).string(); }
    std::string Write(const std::string& name, const std::string& text) const {
        std::ofstream(File(name), std::ios::binary) << text;
        return File(name);
    }

  private:
    fs::path path_;
};

inline std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline bool LinkStands(const std::string& path) {
    struct stat info = {};
    return lstat(path.c_str(), &info) == 0;
}

// Waits until `fd` has something to read. False when the bound is reached.
inline bool Readable(int fd, Clock::time_point end) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    pollfd watched = {fd, POLLIN, 0};
    return left > 0 && poll(&watched, 1, static_cast<int>(left)) > 0;
}

// Reads until the text ends with `ending`, the other side is gone, or the bound is reached.
inline std::string ReadUntil(int fd, const std::string& ending) {
    std::string text;
    const auto end = Clock::now() + kBound;
    while (!text.ends_with(ending) && Readable(fd, end)) {
        char buffer[4096];
        const ssize_t count = read(fd, buffer, sizeof buffer);
        if (count <= 0) break;
        text.append(buffer, static_cast<std::size_t>(count));
    }
    return text;
}

class Program {
  public:
    // With `ready_fd` the child finds the descriptor's number as it is here. `prepare` is called in the
    // child, with its standard output and error in place.
    explicit Program(std::vector<std::string> arguments, int ready_fd = -1, void (*prepare)() = nullptr) {
        int out[2];
        int err[2];
        if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0) abort();
        arguments.insert(arguments.begin(), MODEMSIM_PROGRAM);
        std::vector<char*> pointers;
        for (std::string& argument : arguments)
            pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        pid_ = fork();
        if (pid_ == 0) {
            dup2(out[1], STDOUT_FILENO);
            dup2(err[1], STDERR_FILENO);
            if (ready_fd >= 0) fcntl(ready_fd, F_SETFD, 0);
            if (prepare != nullptr) prepare();
            execv(pointers[0], pointers.data());
            _exit(127);
        }
        close(out[1]);
        close(err[1]);
        out_ = out[0];
        err_ = err[0];
    }
    ~Program() {
        if (pid_ > 0) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
        close(out_);
        close(err_);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    std::string OutLine() { return ReadUntil(out_, "\n"); }
    std::string Out() { return ReadUntil(out_, std::string("\0", 1)); }
    std::string Err() { return ReadUntil(err_, std::string("\0", 1)); }
    void Signal(int number) { kill(pid_, number); }

    // The exit status, 128 and more for a signal, -1 when the bound is reached.
    int Status() {
        const auto end = Clock::now() + kBound;
        while (Clock::now() < end) {
            int status = 0;
            if (waitpid(pid_, &status, WNOHANG) == pid_) {
                pid_ = -1;
                return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            }
            poll(nullptr, 0, 2);
        }
        return -1;
    }

  private:
    pid_t pid_ = -1;
    int out_ = -1;
    int err_ = -1;
};

// For Program's `prepare`: standard output is a full disk.
inline void FillOutput() {
    dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
}

// What modemsim says then.
inline constexpr char kFullOutput[] =
    "modemsim: standard output could not be written to its end: No space left on device; make room there, or "
    "send it elsewhere\n";

// The host's end of the modem.
class Host {
  public:
    explicit Host(const std::string& link) : fd_(open(link.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
    ~Host() { close(fd_); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    int Fd() const { return fd_; }
    void Send(const std::string& text) const {
        ASSERT_EQ(write(fd_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    std::string Ask(const std::string& text, const std::string& ending) const {
        Send(text);
        return ReadUntil(fd_, ending);
    }
    // Waits until the modem says something or goes. While a hang-up is under way reading fails, afterwards it
    // ends.
    bool IsHungUp() const {
        char c = 0;
        const auto got = read(fd_, &c, 1);
        return got == 0 || (got == -1 && errno == EIO);
    }

  private:
    int fd_;
};

}  // namespace modemsim

#endif

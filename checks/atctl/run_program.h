#ifndef AT_CHECKS_ATCTL_RUN_PROGRAM_H
#define AT_CHECKS_ATCTL_RUN_PROGRAM_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "checks/atctl/support.h"

// The program that ATCTL names, run as users run it, in a world with queues of its own.

struct Outcome {
    int status = -1;  // exit status, or 128 + the signal
    std::string out;
    std::string err;
};

struct Child {
    pid_t pid = -1;
    int out = -1;
    int err = -1;
};

using Prepare = std::function<void()>;

inline Child Start(
    std::vector<std::string> arguments, const Prepare& prepare = [] {}, int terminal = -1) {
    int out[2] = {-1, -1};
    int err[2] = {-1, -1};
    if (pipe(out) != 0 || pipe(err) != 0) abort();
    arguments.insert(arguments.begin(), "atctl");
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(terminal >= 0 ? terminal : out[1], STDOUT_FILENO);
        dup2(err[1], STDERR_FILENO);
        for (const int end : {out[0], out[1], err[0], err[1]})
            close(end);
        prepare();
        execv(getenv("ATCTL"), argv.data());
        _exit(127);
    }
    close(out[1]);
    close(err[1]);
    return {pid, out[0], err[0]};
}

inline Outcome Finish(const Child& child) {
    Outcome outcome;
    pollfd ends[2] = {{child.out, POLLIN, 0}, {child.err, POLLIN, 0}};
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while ((ends[0].fd >= 0 || ends[1].fd >= 0) && std::chrono::steady_clock::now() < limit) {
        poll(ends, 2, 100);
        for (int i = 0; i < 2; ++i) {
            if (ends[i].fd < 0 || ends[i].revents == 0) continue;
            char text[4096];
            const ssize_t got = read(ends[i].fd, text, sizeof text);
            if (got > 0)
                (i == 0 ? outcome.out : outcome.err).append(text, static_cast<size_t>(got));
            else
                ends[i].fd = -1;
        }
    }
    if (ends[0].fd >= 0 || ends[1].fd >= 0) kill(child.pid, SIGKILL);
    close(child.out);
    close(child.err);
    int status = 0;
    waitpid(child.pid, &status, 0);
    outcome.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return outcome;
}

inline Outcome Atctl(
    std::vector<std::string> arguments, const Prepare& prepare = [] {}) {
    return Finish(Start(std::move(arguments), prepare));
}

inline size_t Lines(const std::string& text) {
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

inline int Queues() {
    msginfo info = {};
    msgctl(0, MSG_INFO, reinterpret_cast<msqid_ds*>(&info));
    return info.msgpool;
}

class Program : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_NE(getenv("ATCTL"), nullptr) << "ATCTL names the program under check";
        ASSERT_EQ(msgget(AT_MODULE_SERVER, 0), -1) << "these checks need a world with queues of their own";
    }
    void TearDown() override { EXPECT_EQ(Queues(), 0); }
};

#endif

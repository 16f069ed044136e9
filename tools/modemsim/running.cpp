#include "tools/modemsim/running.h"

#include <signal.h>
#include <sys/signalfd.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace modemsim {

Time MonotonicTime() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::chrono::seconds(now.tv_sec) + Time(now.tv_nsec / 1000);
}

int BlockEndingSignals(std::string& reason) {
    sigset_t ending;
    sigemptyset(&ending);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&ending, number);
    sigprocmask(SIG_BLOCK, &ending, nullptr);
    signal(SIGPIPE, SIG_IGN);
    const int signals = signalfd(-1, &ending, SFD_CLOEXEC | SFD_NONBLOCK);
    if (signals < 0) reason = std::string("cannot wait for signals: ") + std::strerror(errno);
    return signals;
}

bool SayReady(const std::string& link, int fd, std::string& reason) {
    const std::string line = "ready " + link + "\n";
    bool ok = false;
    if (fd < 0) {
        ok = std::fputs(line.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    } else {
        ok = write(fd, line.data(), line.size()) == static_cast<ssize_t>(line.size());
        close(fd);
    }
    if (!ok) reason = std::string("cannot say that the modem is ready: ") + std::strerror(errno);
    return ok;
}

}  // namespace modemsim

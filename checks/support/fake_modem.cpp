#include "checks/support/fake_modem.h"

#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "port/com.h"

FakeModem::FakeModem() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends) != 0) abort();
    g_iFdCom = ends[0];
    modem_ = ends[1];
}

FakeModem::~FakeModem() {
    Unplug();
    close(modem_);
}

void FakeModem::Say(const std::string& text) const {
    if (write(modem_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) abort();
}

std::string FakeModem::Heard() const {
    std::string heard(4096, '\0');
    const ssize_t length = read(modem_, heard.data(), heard.size());
    heard.resize(length > 0 ? static_cast<size_t>(length) : 0);
    return heard;
}

void FakeModem::Unplug() {
    if (g_iFdCom >= 0) close(g_iFdCom);
    g_iFdCom = -1;
}

FakeDevice& Device() {
    static FakeDevice device;
    return device;
}

// The linker takes these before the C library's own.
extern "C" int open(const char* path, int flags, ...) {
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    if (strcmp(path, "/dev/ttyUSB1") == 0) {
        Device().flags = flags;
        if (++Device().openings <= Device().absent_openings || !Device().present) {
            errno = ENOENT;
            return -1;
        }
        path = "/dev/null";
    }
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

extern "C" int select(int count, fd_set* readable, fd_set* writable, fd_set* failed, timeval* wait) {
    if (Device().refuse_long_waits && wait != nullptr && wait->tv_usec >= 1'000'000) {
        ++Device().refused_waits;
        errno = EINVAL;
        return -1;
    }
    if (Device().skip_waits && count == 0 && wait != nullptr) {
        const long milliseconds = static_cast<long>(wait->tv_sec * 1000 + wait->tv_usec / 1000);
        if (Device().waited_ms == 0) Device().first_wait_ms = milliseconds;
        Device().waited_ms += milliseconds;
        return 0;
    }
    timespec limit{};
    if (wait != nullptr) {
        limit.tv_sec = wait->tv_sec + wait->tv_usec / 1'000'000;
        limit.tv_nsec = wait->tv_usec % 1'000'000 * 1000;
    }
    return pselect(count, readable, writable, failed, wait != nullptr ? &limit : nullptr, nullptr);
}

extern "C" unsigned sleep(unsigned seconds) {
    if (Device().skip_waits) {
        Device().waited_ms += static_cast<long>(seconds) * 1000;
        return 0;
    }
    timespec left{static_cast<time_t>(seconds), 0};
    return nanosleep(&left, &left) == 0 ? 0 : static_cast<unsigned>(left.tv_sec);
}

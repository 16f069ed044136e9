#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <syslog.h>

#include "commands/list_file.h"

// What the measured paths call beyond themselves, at next to no cost: the log, the queues and the list
// files. The linker takes these before the C library's and the daemon's own.

extern "C" void syslog(int, const char*, ...) {}
extern "C" __attribute__((format(printf, 3, 4))) void __syslog_chk(int, int, const char*, ...) {}

extern "C" int msgget(key_t, int) noexcept {
    return 1;
}
extern "C" int msgsnd(int, const void*, size_t, int) {
    return 0;
}
extern "C" ssize_t msgrcv(int, void*, size_t, long, int) {
    errno = ENOMSG;
    return -1;
}
extern "C" int msgctl(int, int, msqid_ds*) noexcept {
    return 0;
}

int OpenListFile(const char*) {
    static const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    return fcntl(null, F_DUPFD_CLOEXEC, 0);
}

/* Preloaded into the daemon: lets every change of the files below /etc_rw and of /etc/cusd fail with the
 * error number that stands in a file, as a file system does that has gone read-only under a running program.
 */

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

static const char kControlFile[] = "/tmp/disk_error";

static volatile int32_t* g_error; /* 0 while all is well */

__attribute__((constructor)) static void OpenControl(void) {
    const int file = open(kControlFile, O_RDWR | O_CLOEXEC);
    if (file < 0) return;
    void* mapped = mmap(NULL, sizeof *g_error, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (mapped != MAP_FAILED) g_error = mapped;
}

static int IsBroken(const char* path) {
    if (g_error == NULL || *g_error == 0) return 0;
    if (strncmp(path, "/etc_rw/", 8) != 0 && strcmp(path, "/etc/cusd") != 0) return 0;
    errno = *g_error;
    return 1;
}

static int IsBrokenFile(int file) {
    char link[64];
    char path[512];
    if (g_error == NULL || *g_error == 0) return 0;
    snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const ssize_t length = readlink(link, path, sizeof path - 1);
    if (length < 0) return 0;
    path[length] = '\0';
    return IsBroken(path);
}

#define NEXT(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

#define OPEN(name)                                                                  \
    int name(const char* path, int flags, ...) {                                    \
        va_list arguments;                                                          \
        va_start(arguments, flags);                                                 \
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0; \
        va_end(arguments);                                                          \
        if ((flags & O_ACCMODE) != O_RDONLY && IsBroken(path)) return -1;           \
        return NEXT(name)(path, flags, mode);                                       \
    }
OPEN(open)
OPEN(open64)

ssize_t write(int file, const void* data, size_t size) {
    return IsBrokenFile(file) ? -1 : NEXT(write)(file, data, size);
}

ssize_t writev(int file, const struct iovec* parts, int count) {
    return IsBrokenFile(file) ? -1 : NEXT(writev)(file, parts, count);
}

ssize_t pwrite(int file, const void* data, size_t size, off_t at) {
    return IsBrokenFile(file) ? -1 : NEXT(pwrite)(file, data, size, at);
}

ssize_t pwrite64(int file, const void* data, size_t size, off64_t at) {
    return IsBrokenFile(file) ? -1 : NEXT(pwrite64)(file, data, size, at);
}

ssize_t pwritev(int file, const struct iovec* parts, int count, off_t at) {
    return IsBrokenFile(file) ? -1 : NEXT(pwritev)(file, parts, count, at);
}

ssize_t pwritev64(int file, const struct iovec* parts, int count, off64_t at) {
    return IsBrokenFile(file) ? -1 : NEXT(pwritev64)(file, parts, count, at);
}

#include "commands/list_file.h"

#include <errno.h>
#include <unistd.h>

ssize_t WriteListFile(const char* path, const void* record, size_t size) {
    const int file = OpenListFile(path);
    if (file < 0) return -1;
    size_t done = 0;
    while (done < size) {
        const ssize_t now = write(file, static_cast<const char*>(record) + done, size - done);
        if (now < 0 && errno == EINTR) continue;
        if (now <= 0) break;
        done += static_cast<size_t>(now);
    }
    close(file);
    return static_cast<ssize_t>(done);
}

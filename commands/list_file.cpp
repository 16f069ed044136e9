#include "commands/list_file.h"

#include <errno.h>
#include <stdlib.h>
#include <unistd.h>

#include "platform/log.h"

static constexpr char kLogSource[] = "atdecode";

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

bool BackUpList(const char* path, const char* name, const void* record, size_t size) {
    const ssize_t written = WriteListFile(path, record, size);
    if (written < 0) {
        AT_LOG(LOG_ERR, "fopen( %s , 'w+') error!", path);
        exit(1);
    }
    const bool whole = static_cast<size_t>(written) == size;
    if (whole)
        AT_LOG(LOG_INFO, "write to %s file OK, len=%d!", name, static_cast<int>(written));
    else
        AT_LOG(LOG_ERR, "write to %s file faild, len=%d!", name, static_cast<int>(written));
    return whole;
}

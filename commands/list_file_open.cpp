#include <fcntl.h>

#include "commands/list_file.h"

int OpenListFile(const char* path) {
    return open(path, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
}

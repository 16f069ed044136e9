#include "checks/support/modem_pipe.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include "port/com.h"

ModemPipe::ModemPipe() : before_(g_iFdCom) {
    int ends[2];
    if (pipe2(ends, O_NONBLOCK | O_CLOEXEC) != 0) {
        perror("pipe2");
        abort();
    }
    read_end_ = ends[0];
    write_end_ = ends[1];
    g_iFdCom = write_end_;
}

ModemPipe::~ModemPipe() {
    g_iFdCom = before_;
    close(read_end_);
    close(write_end_);
}

std::string ModemPipe::Written() {
    std::string all;
    char buffer[4096];
    for (ssize_t got; (got = read(read_end_, buffer, sizeof buffer)) > 0;)
        all.append(buffer, static_cast<size_t>(got));
    return all;
}

void ModemPipe::Break() {
    g_iFdCom = -1;
}

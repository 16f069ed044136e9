#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/select.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>

#include "checks/bench/end_to_end/order.h"

// What a request costs at the least: the calls of the daemon on its port and its queues and its sleeps, and
// nothing between them. No text is looked at; what is to be written and sent is told in the request.
//
//     bare idle DEVICE           sleeps 10 ms and selects for 200 us, for ever
//     bare serve DEVICE KEY OUT  serves the orders on the queue KEY; its messages go to the queue OUT

namespace {

struct Wire {
    long type;
    char body[AT_WIRE_SIZE];
};

int g_port = -1;
key_t g_out;
// Written by the thread that receives while `g_processing` is 0, read by the other one while it is 1.
BareOrder g_order;
std::atomic<uint32_t> g_processing;
char g_read[102'400];

bool Readable() {
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(g_port, &readable);
    timeval wait{.tv_sec = 0, .tv_usec = 200};
    return select(g_port + 1, &readable, nullptr, nullptr, &wait) != 0;
}

void Sleep10ms() {
    timeval wait{.tv_sec = 0, .tv_usec = 10'000};
    select(0, nullptr, nullptr, nullptr, &wait);
}

void Send() {
    static Wire wire{.type = 7, .body = {}};
    if (msgsnd(msgget(g_out, 0), &wire, sizeof wire.body, 0) != 0) abort();
}

void* Respond(void* /*unused*/) {
    uint64_t got = 0;
    uint64_t sent = 0;
    for (;;) {
        Sleep10ms();
        if (!Readable()) continue;
        const ssize_t length = read(g_port, g_read, sizeof g_read);
        if (length <= 0) continue;
        got += static_cast<uint64_t>(length);
        for (; sent * g_order.bytes < got * g_order.messages && sent < g_order.messages; ++sent)
            Send();
        if (got < g_order.bytes) continue;
        got = sent = 0;
        g_processing.store(0, std::memory_order_release);
    }
    return nullptr;
}

[[noreturn]] void Serve(key_t key) {
    const int queue = msgget(key, IPC_CREAT | 0600);
    pthread_t thread;
    if (queue < 0 || pthread_create(&thread, nullptr, Respond, nullptr) != 0) abort();
    for (;;) {
        while (g_processing.load(std::memory_order_acquire) != 0)
            usleep(50'000);
        msqid_ds state{};
        msgctl(queue, IPC_STAT, &state);
        Wire wire;
        if (msgrcv(queue, &wire, sizeof wire.body, 0, 0) < 0) {
            if (errno == EINTR) continue;
            _exit(0);  // the queue was taken away
        }
        memcpy(&g_order, wire.body, sizeof g_order);
        g_processing.store(1, std::memory_order_release);
        if (write(g_port, g_order.line, g_order.line_size) < 0) abort();
    }
}

}  // namespace

int main(int count, char** arguments) {
    const bool idle = count == 3 && strcmp(arguments[1], "idle") == 0;
    if (!idle && !(count == 5 && strcmp(arguments[1], "serve") == 0)) {
        fprintf(stderr, "usage: bare idle DEVICE | bare serve DEVICE KEY OUT\n");
        return 2;
    }
    g_port = open(arguments[2], O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (g_port < 0) {
        perror(arguments[2]);
        return 1;
    }
    if (!idle) {
        g_out = static_cast<key_t>(strtol(arguments[4], nullptr, 0));
        Serve(static_cast<key_t>(strtol(arguments[3], nullptr, 0)));
    }
    for (;;) {
        Sleep10ms();
        Readable();
    }
}

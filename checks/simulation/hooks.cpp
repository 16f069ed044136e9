// What the linker puts in the place of the C library and the platform, and around the steps of the hand-over.

#include <errno.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/select.h>
#include <sys/syscall.h>
#include <sys/times.h>
#include <syslog.h>
#include <termios.h>
#include <unistd.h>

#include "checks/simulation/play.h"
#include "commands/list_file.h"
#include "platform/platform.h"
#include "records/handover.h"
#include "records/payload.h"
#include "records/state.h"
#include "reports/routing.h"

int OpenListFile(const char*) {
    return kListFile;
}

extern "C" {

const char* cfg_get(const char* key) {
    return strcmp(key, "data_card_mode") == 0 ? "KVX_LTE" : nullptr;
}
int cfg_set(const char*, const char*) {
    g_world->MaySwitch();
    return 0;
}
int CreateSoftTimer(int, int, unsigned, int (*)(void*), void*) {
    return 0;
}
int system(const char*) {
    return 0;
}
void syslog(int, const char*, ...) {}
void __syslog_chk(int, int, const char*, ...) {}
clock_t times(struct tms*) {
    return static_cast<clock_t>(g_world->now() / 10'000);
}
int usleep(useconds_t microseconds) {
    g_world->Sleep(microseconds);
    return 0;
}
int select(int count, fd_set*, fd_set*, fd_set*, struct timeval* wait) {
    if (count == 0) {
        g_world->Sleep(wait->tv_sec * 1'000'000 + wait->tv_usec);
        return 0;
    }
    g_world->MaySwitch();
    return g_world->PortReadable() ? 1 : 0;
}
ssize_t read(int fd, void* buffer, size_t size) {
    if (fd == kPort) return g_world->ReadPort(static_cast<char*>(buffer), size);
    return syscall(SYS_read, fd, buffer, size);
}
ssize_t write(int fd, const void* buffer, size_t size) {
    if (fd == kPort) return g_world->WritePort(static_cast<const char*>(buffer), size);
    if (fd == kListFile) return static_cast<ssize_t>(size);
    return syscall(SYS_write, fd, buffer, size);
}
int close(int fd) {
    return fd == kListFile ? 0 : static_cast<int>(syscall(SYS_close, fd));
}
int tcflush(int, int) {
    return 0;
}
int msgget(key_t key, int) {
    return g_world->QueueOf(key);
}
int msgsnd(int id, const void* message, size_t size, int) {
    return g_world->SendMessage(id, *static_cast<const QueueMessage*>(message), size);
}
ssize_t msgrcv(int, void* message, size_t size, long, int flags) {
    return g_world->ReceiveMessage(static_cast<QueueMessage*>(message), size, flags);
}
int msgctl(int id, int, struct msqid_ds* state) {
    state->msg_qnum = g_world->QueueLength(id);
    return 0;
}

// ---- around the daemon's own steps (-Wl,--wrap) ----

bool __real__Z11HandoverPutRK7MSG_BUFPKc(const MSG_BUF& request, const char* line);
bool __wrap__Z11HandoverPutRK7MSG_BUFPKc(const MSG_BUF& request, const char* line) {
    g_world->MaySwitch();
    if (g_world->obvious()) {
        g_at_msg = request;
        if (line != nullptr) strcpy(g_cmd_str, line);
        g_world->RequestPut(request, line != nullptr);
        g_world->RequestTaken();
        g_world->MaySwitch();
        return true;
    }
    const bool done = __real__Z11HandoverPutRK7MSG_BUFPKc(request, line);
    if (done) g_world->RequestPut(request, line != nullptr);
    g_world->MaySwitch();
    return done;
}

bool __real__Z12HandoverTakev();
bool __wrap__Z12HandoverTakev() {
    g_world->MaySwitch();
    const bool taken = !g_world->obvious() && __real__Z12HandoverTakev();
    if (taken) g_world->RequestTaken();
    g_world->TakeDone();
    g_world->MaySwitch();
    return taken;
}

uint32_t __real__Z11IssueTicketv();
uint32_t __wrap__Z11IssueTicketv() {
    g_world->MaySwitch();
    const uint32_t ticket = __real__Z11IssueTicketv();
    g_world->MaySwitch();
    return ticket;
}

void __real__Z12RedeemTicketj(uint32_t ticket);
void __wrap__Z12RedeemTicketj(uint32_t ticket) {
    g_world->Redeemed();
    g_world->MaySwitch();
    if (g_world->obvious())
        g_at_processing.store(0);
    else
        __real__Z12RedeemTicketj(ticket);
    g_world->MaySwitch();
}

void __real__Z19ClearPendingRequestv();
void __wrap__Z19ClearPendingRequestv() {
    g_world->MaySwitch();
    g_world->Cleared();
    __real__Z19ClearPendingRequestv();
    g_world->MaySwitch();
}

uint32_t __real__Z13on_recieve_atv();
uint32_t __wrap__Z13on_recieve_atv() {
    const uint32_t result = __real__Z13on_recieve_atv();
    g_world->RoundRead();
    g_world->MaySwitch();
    return result;
}

void __real__Z11RouteReportP7MSG_BUFRK12RouteContext(MSG_BUF* message, const RouteContext& context);
void __wrap__Z11RouteReportP7MSG_BUFRK12RouteContext(MSG_BUF* message, const RouteContext& context) {
    g_world->routed = reinterpret_cast<const char*>(ResponseOf(*message).aucParas);
    __real__Z11RouteReportP7MSG_BUFRK12RouteContext(message, context);
    g_world->routed = nullptr;
}

}  // extern "C"

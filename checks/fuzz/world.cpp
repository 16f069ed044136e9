// What the bodies run in: queues that take everything, a port that swallows everything, and a log that reads
// every argument.

#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <syslog.h>

#include "checks/fuzz/targets.h"
#include "commands/list_file.h"
#include "platform/platform.h"
#include "port/com.h"
#include "records/payload.h"
#include "records/queue.h"
#include "records/state.h"
#include "reports/response.h"

unsigned g_messages_sent;

static const char* g_card = "KVX_LTE";

void Require(bool holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "does not hold: %s\n", what);
    abort();
}

void Rest(bool module_card) {
    if (g_iFdCom == -1) g_iFdCom = open("/dev/null", O_WRONLY);
    g_card = module_card ? "KVX_LTE" : "OTHER";
    g_messages_sent = 0;
    g_last_atcmd = 0;
    ClearPendingRequest();
}

std::string TextOf(const uint8_t* data, size_t size, size_t header) {
    const char* text = reinterpret_cast<const char*>(data) + header;
    return std::string(text, strnlen(text, size - header));
}

int OpenListFile(const char*) {
    return open("/dev/null", O_WRONLY);
}

extern "C" {

const char* cfg_get(const char* key) {
    if (strcmp(key, "data_card_mode") == 0) return g_card;
    return strcmp(key, "bandmode") == 0 ? "2" : nullptr;
}
int cfg_set(const char* key, const char* value) {
    Require(strlen(key) < 64 && strlen(value) < 1024, "keys and values of the store are terminated");
    return 0;
}
int CreateSoftTimer(int, int, unsigned, int (*)(void*), void*) {
    return 0;
}
int system(const char*) {
    return 0;
}

__attribute__((format(printf, 2, 3))) void syslog(int, const char* format, ...) {
    static char line[4096];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
}
__attribute__((format(printf, 3, 4))) void __syslog_chk(int, int, const char* format, ...) {
    static char line[4096];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
}

int msgget(key_t key, int flags) {
    Require(key != IPC_PRIVATE && (flags & IPC_CREAT) == 0, "no queue is made for a message");
    return key;
}
int msgsnd(int id, const void* message, size_t size, int) {
    Require(size == AT_WIRE_SIZE, "messages have their size");
    QueueMessage wire;
    memcpy(&wire, message, sizeof wire);
    MSG_BUF record{};
    Require(FromWire(wire, record), "messages have a type");
    Require(record.usTargetModuleID == id, "messages go to their target");
    Require(record.ulMagic == AT_MESSAGE_MAGIC && record.usMsgCmd == AT_MESSAGE_COMMAND,
            "messages are marked");
    Require(ResponseOf(record).ucResult != 0, "no message leaves with result 0");
    ++g_messages_sent;
    return 0;
}

}  // extern "C"

#include "server/request.h"

#include <errno.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/times.h>
#include <unistd.h>

#include "codec/atcode.h"
#include "platform/config.h"
#include "platform/log.h"
#include "port/transmit.h"
#include "records/handover.h"
#include "records/payload.h"
#include "records/queue.h"
#include "records/state.h"
#include "server/transaction.h"
#include "server/watchdog.h"

static constexpr char kLogSource[] = "at_server";

static constexpr int kErrorGuardWord = 42497;
static constexpr int kErrorReceive = 42501;
static constexpr int kErrorEmptyMessage = 42503;
static constexpr int kErrorNoLine = 42504;

static constexpr unsigned kPollUs = 50'000;
static constexpr unsigned kSlotPollUs = 1'000;

static constexpr uint16_t kWatchDogCommand = 0x062E;  // +ZDOGREF
static constexpr int kWatchDogTimer = 25;
static constexpr unsigned kWatchDogPeriodMs = 60'000;

uint32_t g_dogref_count;

int ReceiveRequest(int queue, MSG_BUF& request) {
    request = MSG_BUF{};
    QueueMessage wire{};
    AT_LOG(LOG_NOTICE, "Listening message queue...");
    const ssize_t received = msgrcv(queue, &wire, sizeof wire.body, 0, 0);
    const int error = received == -1 ? errno : 0;
    if (received > 0 && FromWire(wire, request)) {
        AT_LOG(LOG_INFO, "Receive a message");
        return static_cast<int>(received);
    }
    AT_LOG(LOG_ERR, "[error]: Receive message error!error code:%d", kErrorReceive);
    if (error == E2BIG)
        // It would stay at the head of the queue and make every receive fail.
        msgrcv(queue, &wire, sizeof wire.body, 0, MSG_NOERROR | IPC_NOWAIT);
    else if (error != 0)
        usleep(kPollUs);
    return -1;
}

int CheckRequest(const MSG_BUF& request, const uint8_t* data) {
    if (data == nullptr) {
        AT_LOG(LOG_ERR, "[error]: Receive a 0 length message. error code :%d", kErrorEmptyMessage);
        return -1;
    }
    if (request.ulMagic != AT_MESSAGE_MAGIC) {
        AT_LOG(LOG_ERR, "[error]: slop over. error code :%d", kErrorGuardWord);
        return -1;
    }
    return 0;
}

// The second +ZDOGREF request starts the watchdog if it is switched on by then; no other one ever does.
static void StartWatchDog(uint16_t cmd_id) {
    if (cmd_id != kWatchDogCommand || ++g_dogref_count != 2) return;
    if (!ConfigIs("WatchDog_Setting_Option", "on") || ConfigIs("led_modem_updating", "1")) return;
    AT_LOG(LOG_INFO, "\n==========>>>>TIMER_AT_STATE_DETECT<<<<===========\n");
    if (CreateSoftTimer(kWatchDogTimer, 1, kWatchDogPeriodMs, DetectAtTimer, nullptr) != 0)
        AT_LOG(LOG_ERR,
               "[error]:Soft timer %d was not started! There is no modem watchdog until the server is "
               "started again.",
               kWatchDogTimer);
}

static void HandOver(const MSG_BUF& request, const char* line) {
    while (!HandoverPut(request, line))
        usleep(kSlotPollUs);
}

void ServeRequest(const MSG_BUF& request) {
    const _BK_AT_CMD_T* command = &RequestOf(request);
    char line[kLineSize];
    if (Bk_Generate_At_Cmd_Line(line, command) != 0) {
        AT_LOG(LOG_ERR, "[error]:Parse AT Message error!error code:%d", kErrorNoLine);
        // It goes in flight all the same: unless the next request overwrites it, its time-out answers it.
        HandOver(request, nullptr);
        return;
    }
    StartWatchDog(command->usCmdID);
    AT_LOG(LOG_INFO, "Parse AT Message : %s\n", line);
    if (strstr(line, "AT+CMGR") != nullptr) cfg_set("sms_cmgr_send", "1");

    if (strncmp(line, "ATD", 3) == 0) {
        // A dial is not waited for and not timed: its outcome comes as reports, and the next request may
        // follow at once.
        MSG_BUF idle = request;
        idle.lMsgType = -1;
        g_atd_warting.store(1, std::memory_order_relaxed);
        HandOver(idle, line);
    } else {
        HandOver(request, line);
        IssueTicket();
    }
    AT_LOG(LOG_INFO, "Send AT---------------->>>>%s\n", line);
    send_resolve_at(line);
}

void RequestLoop(int queue) {
    g_at_send_time.store(static_cast<uint32_t>(times(nullptr)), std::memory_order_relaxed);
    for (;;) {
        while (g_at_processing.load(std::memory_order_acquire) != 0)
            usleep(kPollUs);
        LogStatistics(queue);
        MSG_BUF request;
        if (ReceiveRequest(queue, request) == -1) {
            AT_LOG(LOG_INFO, "message recieve error!");
            continue;
        }
        AT_LOG(LOG_NOTICE, "Receive a message from module 0x%0x ", request.usSourceModuleID);
        AT_LOG(LOG_NOTICE, "Receive a message from module g_at_msg.lMsgType=%d ", request.lMsgType);
        if (CheckRequest(request, request.aucDataBuf) != 0) {
            AT_LOG(LOG_ERR, "message check error!");
            continue;
        }
        ServeRequest(request);
    }
}

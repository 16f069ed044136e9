#include "server/transaction.h"

#include <string.h>
#include <sys/times.h>

#include "commands/timeouts.h"
#include "platform/log.h"
#include "records/handover.h"
#include "records/payload.h"
#include "records/queue.h"
#include "records/state.h"
#include "reports/response.h"
#include "text/atpublic.h"

static constexpr char kLogSource[] = "at_server";

static constexpr int kErrorAnswerNotSent = 42506;
static constexpr uint16_t kOwnAnswerDataLen = 0x0208;
static constexpr uint16_t kOwnAnswerParaLen = 512;
static constexpr uint32_t kRoundsPerSecond = 100;

uint32_t TimeoutRounds(uint16_t cmd_id) {
    return TimeoutSeconds(cmd_id) * kRoundsPerSecond;
}

// An answer to the request in flight, without parameters.
static MSG_BUF BuildAnswer(uint8_t result) {
    MSG_BUF answer{};
    answer.lMsgType = g_at_msg.lMsgType;
    answer.usTargetModuleID = g_at_msg.usSourceModuleID;
    answer.usSourceModuleID = g_at_msg.usTargetModuleID;
    answer.usMsgCmd = AT_MESSAGE_COMMAND;
    answer.usDataLen = kOwnAnswerDataLen;
    answer.ulMagic = AT_MESSAGE_MAGIC;
    _BK_AT_RES_T* res = &ResponseOf(answer);
    res->usCmdID = PendingRequest()->usCmdID;
    res->ucCmdType = PendingRequest()->ucCmdType;
    res->ucResult = result;
    res->usParaLen = kOwnAnswerParaLen;
    return answer;
}

// Sends an answer of the server's own and ends the transaction with it. 0, or 1 when it could not be sent.
static int SendOwnAnswer(MSG_BUF& answer) {
    if (send_msg_buf(&answer) != 0) {
        AT_LOG(LOG_ERR, "ERROR: send_msg_buf send msg failed, error code %d!", kErrorAnswerNotSent);
        return 1;
    }
    AT_LOG(LOG_NOTICE, "send_msg_buf send msg_response OK!\n");
    ClearPendingRequest();
    return 0;
}

int SendTimeoutAnswer() {
    AT_LOG(LOG_WARNING, "Waiting for AT response time out!!\n");
    AT_LOG(LOG_INFO, "Waiting for AT response g_at_msg.aucDataBuf=%.*s\n",
           static_cast<int>(sizeof g_at_msg.aucDataBuf), reinterpret_cast<const char*>(g_at_msg.aucDataBuf));
    MSG_BUF answer = BuildAnswer(AT_RESULT_TIMEOUT);
    const _BK_AT_RES_T* res = &ResponseOf(answer);
    AT_LOG(LOG_INFO, "Waiting for AT response tAtRes->usCmdID=0x%04x\n", res->usCmdID);
    AT_LOG(LOG_INFO, "Waiting for AT response g_at_msg.aucDataBuf=%d\n", res->ucCmdType);
    AT_LOG(LOG_INFO, "Waiting for AT response tAtRes->ucResult =%d\n", res->ucResult);
    return SendOwnAnswer(answer);
}

bool RefuseWhenBusy(const char* call_state, const char* data_state) {
    if (call_state == nullptr || data_state == nullptr) {
        AT_LOG(LOG_ERR, "why NULL value happened??");
        return false;
    }
    const bool call_setup = strcmp(call_state, "call_setup") == 0;
    const bool connecting = strcmp(data_state, "ppp_connecting") == 0;
    const bool disconnecting = strcmp(data_state, "ppp_disconnecting") == 0;
    const bool call_is_in_the_way = call_setup && g_at_msg.usSourceModuleID != AT_MODULE_CALL;
    if (!call_is_in_the_way && !connecting && !disconnecting) return false;

    const char* reason = "";
    if (call_setup) {
        AT_LOG(LOG_NOTICE, "cscall is busy...,please wait!");
        reason = "call_setup";
    }
    if (connecting) {
        AT_LOG(LOG_NOTICE, "ppp_connecting...,please wait!");
        reason = "ppp_connecting";
    }
    if (disconnecting) {
        AT_LOG(LOG_NOTICE, "ppp_disconnecting...,please wait!");
        reason = "ppp_disconnecting";
    }
    MSG_BUF answer = BuildAnswer(AT_RESULT_BUSY);
    memcpy(ResponseOf(answer).aucParas, reason, strlen(reason) + 1);
    SendOwnAnswer(answer);
    return true;
}

void LogStatistics(int queue) {
    const auto counter = [](const std::atomic<uint32_t>& value) {
        return static_cast<int>(value.load(std::memory_order_relaxed));
    };
    AT_LOG(LOG_NOTICE, "AT Command statistics:[send/received/report/lost/-msgNum-] (%d/%d/%d/%d/%d)\n",
           counter(g_at_statistics.send), counter(g_at_statistics.received), counter(g_at_statistics.report),
           counter(g_at_statistics.lost), QueueDepth(queue));
    const uint32_t used =
        static_cast<uint32_t>(times(nullptr)) - g_at_send_time.load(std::memory_order_relaxed);
    AT_LOG(LOG_WARNING, "Resolve AT OK!....time used (%d)", static_cast<int>(used));
}

void ResponseRound() {
    static uint32_t rounds;  // rounds that the request in flight has taken

    HandoverTake();
    on_recieve_at();

    // The ticket is loaded before slot and record are looked at: see records/handover.h.
    const uint32_t ticket = g_at_processing.load(std::memory_order_acquire);
    HandoverTake();
    if (g_at_msg.lMsgType == -1) {
        if (rounds != 0) AT_LOG(LOG_WARNING, "AT RESOLVE COMPLETE!");
        rounds = 0;
        RedeemTicket(ticket);
        return;
    }

    ++rounds;
    // A request that overwrote another goes on with its count, which may already be past the new limit.
    const uint32_t limit = TimeoutRounds(PendingRequest()->usCmdID);
    if (rounds % limit != 0) return;
    AT_LOG(LOG_WARNING, "Waiting for AT response time out(timeout=%d)!!discard...\n",
           static_cast<int>(limit));
    g_at_statistics.lost.fetch_add(1, std::memory_order_relaxed);
    SendTimeoutAnswer();
    DropUnfinishedQuote();
    rounds = 0;
    RedeemTicket(ticket);
}

void* resolve_at_response_thread(void* /*unused*/) {
    kvx_sleep(1000);
    AT_LOG(LOG_INFO, "AT response thread  is running ...");
    for (;;) {
        kvx_sleep(10);
        ResponseRound();
    }
    return nullptr;
}

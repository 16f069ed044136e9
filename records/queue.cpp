#include "records/queue.h"

#include <errno.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>

#include "platform/log.h"
#include "records/payload.h"
#include "records/state.h"

static constexpr char kLogSource[] = "at_server";

static constexpr uint16_t kHangUpCommand = 0x0403;

static_assert(sizeof(MSG_BUF) - offsetof(MSG_BUF, usTargetModuleID) == AT_WIRE_SIZE);

void ToWire(const MSG_BUF& record, QueueMessage& wire) {
    wire.mtype = record.lMsgType;
    memcpy(wire.body, &record.usTargetModuleID, sizeof wire.body);
}

bool FromWire(const QueueMessage& wire, MSG_BUF& record) {
    if (wire.mtype <= 0 || wire.mtype > INT32_MAX) return false;
    record.lMsgType = static_cast<int32_t>(wire.mtype);
    memcpy(&record.usTargetModuleID, wire.body, sizeof wire.body);
    return true;
}

int send_msg_buf(MSG_BUF* msg) {
    if (msg == nullptr) {
        AT_LOG(LOG_ERR, "send_msg_buf:: para is NULL!\n");
        return 1;
    }
    // Key 0 is IPC_PRIVATE: asking for it would make a new queue at every call instead of finding none.
    const int queue = msg->usTargetModuleID != 0 ? msgget(msg->usTargetModuleID, 0) : -1;
    if (queue == -1) {
        AT_LOG(LOG_ERR, "send_msg_buf ::get target msg id 0x%04x failed!\n", msg->usTargetModuleID);
        return 1;
    }

    _BK_AT_RES_T* res = &ResponseOf(*msg);
    if (res->ucResult == 0) res->ucResult = AT_RESULT_OK;
    if (res->usCmdID == kHangUpCommand) g_atd_warting.store(0, std::memory_order_relaxed);

    AT_LOG(LOG_DEBUG,
           "tagMSG_BUF : lMsgType=0x%0x, "
           "usTargetModuleID=0x%0x,usSourceModuleID=0x%0x,usMsgCmd=0x%0x,usDataLen=0x%0x, "
           "aucDataBuf=0x%0x, ulMagic=0x%0x \n",
           static_cast<unsigned>(msg->lMsgType), msg->usTargetModuleID, msg->usSourceModuleID, msg->usMsgCmd,
           msg->usDataLen, static_cast<unsigned>(reinterpret_cast<uintptr_t>(msg->aucDataBuf)), msg->ulMagic);
    AT_LOG(LOG_DEBUG,
           "_BK_AT_RES_T : usCmdID=0x%0x,ucCmdType=0x%0x,ucResult=0x%0x,usParaLen=0x%0x,aucParas=%.*s \n",
           res->usCmdID, res->ucCmdType, res->ucResult, res->usParaLen,
           static_cast<int>(sizeof res->aucParas), reinterpret_cast<const char*>(res->aucParas));

    QueueMessage wire;
    ToWire(*msg, wire);
    if (msgsnd(queue, &wire, AT_WIRE_SIZE, 0) < 0) {
        AT_LOG(LOG_ERR, "ERROR: send_msg_buf:: send msg failed, error code %ld!\n", static_cast<long>(errno));
        return 1;
    }
    return 0;
}

int QueueDepth(int queue_id) {
    msqid_ds state{};
    return msgctl(queue_id, IPC_STAT, &state) == 0 ? static_cast<int>(state.msg_qnum) : -1;
}

#include "checks/bench/samples.h"
#include "records/payload.h"
#include "records/state.h"

void Pend(uint16_t id, uint8_t type) {
    ClearPendingRequest();
    g_at_msg.lMsgType = 7;
    g_at_msg.usTargetModuleID = AT_MODULE_SERVER;
    g_at_msg.usSourceModuleID = 0x2345;
    PendingRequest()->usCmdID = id;
    PendingRequest()->ucCmdType = type;
    g_at_msg.ulMagic = AT_MESSAGE_MAGIC;
}

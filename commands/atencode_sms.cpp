#include "commands/atencode.h"
#include "commands/row_codec.h"
#include "commands/rows_sms.h"
#include "platform/log.h"
#include "platform/platform.h"

static constexpr char kLogSource[] = "atencode";

// By hand: other modules look at the store to learn that a message is on its way.
int Make_Cmgs_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd) {
    if (pCmdLine == nullptr || pCmd == nullptr || pCmd->ucCmdType != AT_CMD_TYPE_SET) return 0;
    const int wanted = EncodeByRow<kSmsRows, 0x0108>(pCmdLine, pCmd);
    if (wanted != 0) return wanted;
    cfg_set("sending_sms", "1");
    AT_LOG(LOG_INFO, "========Make_Cmgs_Cmd sending sms start========");
    return 0;
}

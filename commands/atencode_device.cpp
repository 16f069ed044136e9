#include "commands/atencode.h"
#include "commands/row_codec.h"
#include "commands/rows_device.h"
#include "platform/log.h"

static constexpr char kLogSource[] = "atencode";

// By hand: a call without a request is noted.
int Make_ZEMCI_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd) {
    if (pCmdLine == nullptr || pCmd == nullptr) {
        AT_LOG(LOG_INFO, "Make_ZEMCI_Cmd input para is NULL");
        return 0;
    }
    return EncodeByRow<kDeviceRows, 0x062A>(pCmdLine, pCmd);
}

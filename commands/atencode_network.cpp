#include "commands/atencode.h"
#include "commands/row_codec.h"
#include "commands/rows_network.h"
#include "platform/log.h"
#include "platform/platform.h"

static constexpr char kLogSource[] = "atencode";

// By hand: an operator search blocks the modem for minutes, so its start is noted where the user interface
// sees it.
int Make_COPS_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd) {
    if (pCmdLine == nullptr || pCmd == nullptr) return 0;
    if (pCmd->ucCmdType == AT_CMD_TYPE_TEST) {
        cfg_set("manual_searching_netwrok", "1");
        AT_LOG(LOG_INFO, "========Make_COPS_Cmd manual search network start========\n");
        return 0;
    }
    return EncodeByRow<kNetworkRows, 0x0517>(pCmdLine, pCmd);
}

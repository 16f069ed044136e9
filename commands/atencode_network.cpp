#include "commands/atencode.h"

#include <string.h>

#include "commands/row_codec.h"
#include "commands/rows_network.h"
#include "commands/rows_radio.h"
#include "platform/config.h"
#include "platform/log.h"
#include "platform/platform.h"

static constexpr char kLogSource[] = "atencode";

static constexpr uint16_t kZroamId = 0x0617;

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

// By hand: which band mode the modem runs in decides whether it takes the second text.
int Make_ZLOCKF_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd) {
    if (pCmdLine == nullptr || pCmd == nullptr) return 0;
    if (!ConfigIs("bandmode", "4")) return EncodeByRow<kRadioRows, 0x0619>(pCmdLine, pCmd);
    _BK_AT_CMD_T band_alone = *pCmd;
    memset(band_alone.aucParas + offsetof(AT_ZLOCKF_SET_PARA_T, text), 0, sizeof(AT_ZLOCKF_SET_PARA_T::text));
    return EncodeByRow<kRadioRows, 0x0619>(pCmdLine, &band_alone);
}

// By hand: it serves every id but its own. Through the table AT+ZROAM is thus always sent without parameters,
// and has to stay so.
int Make_Zroam_cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd) {
    if (pCmdLine == nullptr || pCmd == nullptr) return 0;
    if (pCmd->usCmdID == kZroamId) {
        AT_LOG(LOG_ERR, "Make_Zroam_cmd error");
        return 0;
    }
    if (pCmd->ucCmdType != AT_CMD_TYPE_SET && pCmd->ucCmdType != AT_CMD_TYPE_READ) return 0;
    if (pCmd->usParaLen != sizeof(AT_ZROAM_SET_PARA_T)) return sizeof(AT_ZROAM_SET_PARA_T);
    constexpr FieldRef roam[] = {AT_FIELD_REF(AT_ZROAM_SET_PARA_T, roam)};
    PrintRecord(pCmdLine->strCmdParas, "%s", roam, pCmd->aucParas);
    return 0;
}

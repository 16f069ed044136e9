#include <string.h>

#include "commands/atencode.h"
#include "commands/row_codec.h"
#include "commands/rows_calls.h"
#include "platform/log.h"

static constexpr char kLogSource[] = "atencode";

// By hand: what was asked for is logged, too, also when it is refused.
int Make_ZVOCLOOPBK_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd) {
    if (pCmdLine == nullptr || pCmd == nullptr || pCmd->ucCmdType != AT_CMD_TYPE_SET) return 0;
    const int given =
        pCmd->usParaLen < sizeof pCmd->aucParas ? pCmd->usParaLen : static_cast<int>(sizeof pCmd->aucParas);
    AT_LOG(LOG_INFO, "pCmd->usParaLen= %d pCmd->aucParas= %.*s ", pCmd->usParaLen, given,
           reinterpret_cast<const char*>(pCmd->aucParas));
    return EncodeByRow<kCallsRows, 0x0411>(pCmdLine, pCmd);
}

// By hand: modules leave the type of the number open or set it wrongly, so it is told from the number.
int Make_CCFC_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd) {
    constexpr int32_t international = 145;
    constexpr int32_t unknown = 129;
    if (pCmdLine == nullptr || pCmd == nullptr) return 0;
    _BK_AT_CMD_T typed = *pCmd;
    const bool plus = typed.aucParas[offsetof(AT_CCFC_SET_PARA_T, number)] == '+';
    memcpy(typed.aucParas + offsetof(AT_CCFC_SET_PARA_T, type), plus ? &international : &unknown,
           sizeof international);
    return EncodeByRow<kCallsRows, 0x052B>(pCmdLine, &typed);
}

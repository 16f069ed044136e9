#include <string.h>

#include "commands/atencode.h"
#include "commands/row_codec.h"
#include "commands/rows_toolkit.h"
#include "platform/log.h"

static constexpr char kLogSource[] = "atencode";

// By hand: the fields are logged one by one.
int Make_ZUTR_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd) {
    if (pCmdLine == nullptr || pCmd == nullptr || pCmd->ucCmdType != AT_CMD_TYPE_SET) return 0;
    const int wanted = EncodeByRow<kToolkitRows, 0x0631>(pCmdLine, pCmd);
    if (wanted != 0) return wanted;
    AT_ZUTR_SET_PARA_T tPara;
    memcpy(&tPara, pCmd->aucParas, sizeof tPara);
    AT_LOG(LOG_INFO,
           "Make_ZUTR_Cmd enter  tPara.cmdtype=%d,tPara.cmdqualifier=%d,tPara.cmdnum=%d,tPara.result=%d,"
           "tPara.addresult=%.*s,tPara.codemode=%d,tPara.inputtxtn=%.*s",
           tPara.cmdtype, tPara.cmdqualifier, tPara.cmdnum, tPara.result,
           static_cast<int>(sizeof tPara.addresult), tPara.addresult, tPara.codemode,
           static_cast<int>(sizeof tPara.inputtxtn), tPara.inputtxtn);
    return 0;
}

#include <stdio.h>
#include <string.h>

#include "codec/atcode.h"

// The suffix of each command type, by ucCmdType.
static constexpr char kSuffixes[][3] = {"", "", "=", "?", "=?"};

int Bk_Generate_At_Cmd_Line(char* pOut, const _BK_AT_CMD_T* pCmd) {
    if (pOut == nullptr || pCmd == nullptr) return 0;

    int row = 0;
    if (Bk_Find_Cmd_By_Id(pCmd->usCmdID, &row) != 0) return 1;
    const AT_CMD_ITEM_T& item = g_astAtCmdTable[row];
    if (pCmd->ucCmdType < AT_CMD_TYPE_EXEC || pCmd->ucCmdType > AT_CMD_TYPE_TEST) return 1;
    if (item.pfnMakeCmd == nullptr) return 1;

    AT_CMD_LINE_T line{};
    static_assert(sizeof item.acCmdName >= sizeof line.strCmdName);
    memcpy(line.strAtHead, "AT", sizeof "AT");
    memcpy(line.strCmdName, item.acCmdName, sizeof line.strCmdName - 1);
    memcpy(line.strCmdType, kSuffixes[pCmd->ucCmdType], sizeof line.strCmdType);
    item.pfnMakeCmd(&line, pCmd);

    snprintf(pOut, 1024, "%s%s%s%.*s\r", line.strAtHead, line.strCmdName, line.strCmdType, kParaTextSize - 1,
             line.strCmdParas);
    return 0;
}

#include <string.h>

#include "codec/atcode.h"
#include "records/state.h"

// The suffix of each command type, by ucCmdType.
static constexpr char kSuffixes[][3] = {"", "", "=", "?", "=?"};

// Puts a part of the line at `end`; returns where the line ends then.
template <size_t size>
static char* Append(char* end, const char (&part)[size]) {
    const size_t length = strnlen(part, size - 1);
    memcpy(end, part, length);
    return end + length;
}

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

    static_assert(sizeof line < kLineSize);
    char* end = Append(pOut, line.strAtHead);
    end = Append(end, line.strCmdName);
    end = Append(end, line.strCmdType);
    end = Append(end, line.strCmdParas);
    memcpy(end, "\r", sizeof "\r");
    return 0;
}

#include <string.h>

#include "codec/atcode.h"
#include "platform/config.h"
#include "platform/log.h"
#include "records/payload.h"
#include "records/state.h"
#include "text/atpublic.h"

static constexpr char kLogSource[] = "atcode";

// The scanned response. Owner: response thread.
static AT_RES_LINE_T g_res_line;

static bool IsFinal(uint8_t result) {
    // 5 is the server's own time-out, and 11 leaves the command waiting.
    return (result >= AT_RESULT_OK && result <= AT_RESULT_CME_ERROR) ||
           (result >= AT_RESULT_BUSY && result <= 10);
}

// Addresses an answer to the module of the request in flight, as that module addressed the server.
static void AddressBack(MSG_BUF& message) {
    message.usTargetModuleID = g_at_msg.usSourceModuleID;
    message.usSourceModuleID = g_at_msg.usTargetModuleID;
}

// The response's text becomes the parameters, whole in its length, cut in what is carried.
static void CarryText(_BK_AT_RES_T& res, const char* text) {
    const size_t length = strlen(text);
    res.usParaLen = static_cast<uint16_t>(length);
    const size_t carried = length < sizeof res.aucParas ? length : sizeof res.aucParas - 1;
    memcpy(res.aucParas, text, carried);
    res.aucParas[carried] = '\0';
}

static int ParseUnnamed(MSG_BUF& message, int& is_last, const _BK_AT_CMD_T& pending) {
    _BK_AT_RES_T& res = ResponseOf(message);
    const bool final_result = IsFinal(g_res_line.Result);
    if (!final_result && g_res_line.strResParas[0] == '\0') return -1;

    CarryText(res, g_res_line.strResParas);
    if (!final_result) {
        is_last = 0;
        return 0;
    }
    is_last = 1;
    AddressBack(message);
    res.usCmdID = pending.usCmdID;
    res.ucCmdType = pending.ucCmdType;
    res.ucResult = g_res_line.Result;
    if (g_res_line.Result == AT_RESULT_OK) {
        int row = 0;
        if (Bk_Find_Cmd_By_Id(pending.usCmdID, &row) != 0) return -1;
        g_astAtCmdTable[row].pfnParseRes(&res, &g_res_line);
    }
    return 0;
}

static int ParseNamed(MSG_BUF& message, int& is_last, const _BK_AT_CMD_T& pending) {
    int row = 0;
    if (Bk_Find_Cmd_By_Name(&row, g_res_line.strCmdName) != 0) return -1;
    const AT_CMD_ITEM_T& item = g_astAtCmdTable[row];

    _BK_AT_RES_T& res = ResponseOf(message);
    is_last = item.usCmdID == pending.usCmdID ? 1 : 0;
    AddressBack(message);
    res.usCmdID = item.usCmdID;
    res.ucCmdType = pending.ucCmdType;
    res.ucResult = g_res_line.Result;
    AT_LOG(LOG_DEBUG, "the atResLine is %s", g_res_line.strResParas);
    item.pfnParseRes(&res, &g_res_line);
    return 0;
}

int Bk_Parse_At_Res_Message(MSG_BUF* pMsg, int* pnIsLast, const char* pText, const _BK_AT_CMD_T* pPending) {
    if (pMsg == nullptr || pnIsLast == nullptr || pText == nullptr || pPending == nullptr) return -1;

    g_res_line.Result = 0;
    g_res_line.strCmdName[0] = '\0';
    g_res_line.strResParas[0] = '\0';
    if (IsModuleCardMode())
        Bk_PreParse_At_Res_Lines(&g_res_line, pText);
    else
        Bk_PreParse_At_Res_Generic(&g_res_line, pText);

    return g_res_line.strCmdName[0] == '\0' ? ParseUnnamed(*pMsg, *pnIsLast, *pPending)
                                            : ParseNamed(*pMsg, *pnIsLast, *pPending);
}

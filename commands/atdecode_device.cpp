#include <string.h>

#include "commands/atdecode.h"
#include "commands/row_codec.h"
#include "commands/rows_device.h"
#include "platform/log.h"
#include "platform/platform.h"

static constexpr char kLogSource[] = "atdecode";

// By hand: the text of a cell may hold commas, and whether there is a cell at all is kept for the user
// interface.
int Parse_ZCELLINFO_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr || pRes->ucCmdType != AT_CMD_TYPE_READ) return 0;
    if (pRes->ucResult != AT_RESULT_OK) {
        AT_LOG(LOG_ERR, "error in ProcAtZCELLINFORes read!");
        return 0;
    }
    const char* text = pResLine->strResParas;
    const char* first = strchr(text, ',');
    if (first == nullptr) {
        cfg_set("Zcell_result", "NULL");
        return 0;
    }
    cfg_set("Zcell_result", "");

    DecodeByRow<kDeviceRows, 0x061A>(pRes, pResLine);
    AT_ZCELLINFO_READ_RES_PARA_T tPara;
    memcpy(&tPara, pRes->aucParas, sizeof tPara);
    const char* second = strchr(first + 1, ',');
    const char* last = strrchr(text, ',');
    if (second == nullptr || last == second) {
        AT_LOG(LOG_INFO, "tPara is %d,%d,%s\n", tPara.value1, tPara.value2, tPara.cell);
        return 0;
    }
    AT_LOG(LOG_INFO, "LTE is in");
    size_t length = static_cast<size_t>(last - second - 1);
    if (length > sizeof tPara.cell - 1) length = sizeof tPara.cell - 1;
    memcpy(tPara.cell, second + 1, length);  // over what was scanned: its rest stays
    memcpy(pRes->aucParas, &tPara, sizeof tPara);
    AT_LOG(LOG_INFO, "tPara is %d,%d,%s,%d\n", tPara.value1, tPara.value2, tPara.cell, tPara.value3);
    return 0;
}

// By hand: a measurement is logged and leaves the response alone, whatever it answers.
int Parse_ZEMCI_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    AT_LOG(LOG_INFO, "ZEMCI is %s\n", pResLine->strResParas);
    return 0;
}

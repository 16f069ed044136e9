#include <string.h>

#include "commands/atdecode.h"
#include "commands/row_codec.h"
#include "commands/rows_sim.h"
#include "platform/log.h"
#include "text/atpublic.h"

static constexpr char kLogSource[] = "atdecode";

// By hand: what is more than a result is noted as an error before it is read.
int Parse_CLCK_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr || pRes->ucCmdType != AT_CMD_TYPE_SET) return 0;
    const char* text = pResLine->strResParas;
    if (!IsOnlyAResult(text))
        AT_LOG(LOG_ERR, "Parse_Clck_Res: strResParas %s, len %d.", text, static_cast<int>(strlen(text)));
    DecodeByRow<kSimRows, 0x0511>(pRes, pResLine);
    return 0;
}

// By hand: the numbers stand behind a text that differs with the state of the SIM.
int Parse_CPIN_V_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    if (pRes->ucCmdType == AT_CMD_TYPE_READ) {
        char* text = pResLine->strResParas;
        AT_LOG(LOG_INFO, "=====pResLine->strResParas=%s", text);
        const char* numbers = Find_Sub_Str(text, "READY");
        if (numbers != nullptr) {
            numbers += sizeof "READY" - 1;
        } else {
            numbers = strchr(text, ',');
            if (numbers == nullptr) {
                AT_LOG(LOG_INFO, "Invalid strResParas %s", text);
                return 0;
            }
            ++numbers;
        }
        memmove(text, numbers, strlen(numbers) + 1);  // to where there is room for normalising
    }
    DecodeByRow<kSimRows, 0x060E>(pRes, pResLine);
    return 0;
}

// By hand: nothing is decoded. The report carries its text, which is put into the response once the line has
// been decoded, so that until then the line has it.
int Parse_ZICCID_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) {
        AT_LOG(LOG_INFO, "Parse_ZICCID_Res input para is null");
        return 0;
    }
    if (pRes->aucParas[0] != 0)
        AT_LOG(LOG_INFO, "ziccid is %.*s", static_cast<int>(sizeof pRes->aucParas),
               reinterpret_cast<const char*>(pRes->aucParas));
    else
        AT_LOG(LOG_INFO, "ziccid is %s", pResLine->strResParas);
    return 0;
}

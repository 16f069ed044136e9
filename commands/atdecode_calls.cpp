#include <string.h>

#include "commands/atdecode.h"
#include "commands/row_codec.h"
#include "commands/rows_calls.h"
#include "commands/work_area.h"
#include "platform/log.h"

static constexpr char kLogSource[] = "atdecode";

// By hand: two log lines. What a read is answered with is left unread; its record is zeros.
int Parse_CCWA_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (!DecodeByRow<kCallsRows, 0x052C>(pRes, pResLine) || pRes->ucCmdType != AT_CMD_TYPE_SET) return 0;
    AT_CCWA_SET_RES_PARA_T tPara;
    memcpy(&tPara, pRes->aucParas, sizeof tPara);
    AT_LOG(LOG_INFO, "tPara.wait_status=%d", tPara.wait_status);
    AT_LOG(LOG_INFO, "tPara.type=%d", tPara.type);
    return 0;
}

// By hand: only logs. The call module gets the line itself.
int Parse_RINGBACK_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    AT_LOG(LOG_INFO, "ringback is %s", pResLine->strResParas);
    return 0;
}

// By hand: the same list goes into the message for a read and into a file for an execute.
int Parse_CLCC_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    const bool read = pRes->ucCmdType == AT_CMD_TYPE_READ;
    if (!read && pRes->ucCmdType != AT_CMD_TYPE_EXEC) return 0;
    constexpr size_t size = sizeof(AT_CLCC_READ_RES_PARA_T);
    const auto fields = FieldsOfRow<kCallsRows, 0x0518, 0>();

    memset(g_list_record, 0, size);
    const int count = SplitLines(pResLine->strResParas, static_cast<int>(kClccReadRes.entry_count));
    for (int i = 0; i < count; ++i)
        ScanLine(g_paras_list.strParasLine[i], kClccFormat, fields,
                 g_list_record + kClccReadRes.entry_offset + static_cast<size_t>(i) * sizeof(AT_CLCC_CALL_T));
    PutInteger(g_list_record, 0, count);
    pRes->usParaLen = size;
    if (read)
        memcpy(pRes->aucParas, g_list_record, sizeof pRes->aucParas);  // all that a message can carry
    else if (count != 0 && WriteListFile(kCallListFile, g_list_record, size) < 0)
        AT_LOG(LOG_ERR, "Parse_CLCC_Rsp open file failed.");
    return 0;
}

// By hand: the text of the network may hold anything, quotes and commas included, so only its outermost marks
// count; the record goes into a file.
int Parse_CUSD_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr || pRes->ucCmdType != AT_CMD_TYPE_SET) return 0;
    AT_LOG(LOG_INFO, "===>>Parse_CUSD_Res<<===");
    const char* text = pResLine->strResParas;
    if (strcmp(text, "OK") == 0) {
        AT_LOG(LOG_INFO, "Parse_CUSD_Res::pRes->aucParas=%.*s", static_cast<int>(sizeof pRes->aucParas),
               reinterpret_cast<const char*>(pRes->aucParas));
        return 0;
    }

    AT_CUSD_SET_RES_PARA_T tPara;
    memset(&tPara, 0, sizeof tPara);
    constexpr FieldRef mode[] = {AT_FIELD_REF(AT_CUSD_SET_RES_PARA_T, mode)};
    constexpr FieldRef type[] = {AT_FIELD_REF(AT_CUSD_SET_RES_PARA_T, type)};
    ScanRecord(text, "%d", mode, &tPara);
    if (strchr(text, ',') != nullptr) {
        const char* open = strchr(text, '"');
        const char* close = strrchr(text, '"');
        if (open == nullptr || close == open) return 0;
        size_t length = static_cast<size_t>(close - open - 1);
        if (length > sizeof tPara.str - 1) length = sizeof tPara.str - 1;
        memcpy(tPara.str, open + 1, length);
        char scheme[3] = {};  // the two characters behind the comma, a blank among them counts
        const char* last = strrchr(text, ',') + 1;
        memcpy(scheme, last, strnlen(last, sizeof scheme - 1));
        ScanRecord(scheme, "%d", type, &tPara);
    }
    AT_LOG(LOG_INFO, "Parse_CUSD_Res::tPara.mode=%d, tPara.str=%s,  tPara.type=%d", tPara.mode, tPara.str,
           tPara.type);
    pRes->usParaLen = sizeof tPara;
    if (WriteListFile(kUssdFile, &tPara, sizeof tPara) < 0)
        AT_LOG(LOG_CRIT, "Parse_CUSD_Res open file failed.");
    return 0;
}

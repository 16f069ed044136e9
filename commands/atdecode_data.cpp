#include <stdlib.h>
#include <string.h>

#include "commands/atdecode.h"
#include "commands/row_codec.h"
#include "commands/rows_data.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "text/atpublic.h"

static constexpr char kLogSource[] = "atdecode";

namespace {

constexpr uint16_t kContextListSize = 3564;  // announced, though the list stays with the modem

void LogAddresses(const AT_ZGIPDNS_RES_PARA_T& tPara) {
    AT_LOG(LOG_INFO,
           "ZGIPONS====>tPara.cid1=%d,tPara.cid_num=%d,tPara.gateway=%s,tPara.PDP_addr=%s,tPara.PDP_type=%s,"
           "tPara.primary_dns=%s,tPara.secondary_dns=%s \n",
           tPara.cid1, tPara.cid_num, tPara.gateway, tPara.PDP_addr, tPara.PDP_type, tPara.primary_dns,
           tPara.secondary_dns);
}

}  // namespace

// By hand: all that modules want of the contexts is the number of the last one, and that goes into the
// configuration store: one character, whatever follows it.
int Parse_CGDCONT_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    if (pRes->ucCmdType != AT_CMD_TYPE_READ) {
        DecodeByRow<kDataRows, 0x0303>(pRes, pResLine);
        return 0;
    }
    PreProc_Res_ParaLineEx(pResLine->strResParas);
    AT_LOG(LOG_INFO, "Parse_Cgdcont_Res pResLine->strResParas=%s\n", pResLine->strResParas);
    const char* last = nullptr;
    for (const char* next = pResLine->strResParas; (next = Find_Sub_Str(next, ";")) != nullptr; ++next)
        last = next;
    if (last != nullptr) {
        const char number[] = {last[1], '\0'};
        cfg_set("apn_profile_num", number);
        AT_LOG(LOG_EMERG, "tPara.count=%d,apn_profile_num=%s\n", atoi(number), number);
    }
    pRes->usParaLen = kContextListSize;
    return 0;
}

// By hand: the number travels as text.
int Parse_CGATT_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    if (pRes->ucCmdType != AT_CMD_TYPE_READ) {
        DecodeByRow<kDataRows, 0x0612>(pRes, pResLine);
        return 0;
    }
    constexpr FieldRef state[] = {{0, sizeof(int32_t), FieldType::i32}};
    int32_t number = 0;
    ScanRecord(pResLine->strResParas, "%d", state, &number);
    AT_CGATT_READ_RES_PARA_T tPara;
    memset(&tPara, 0, sizeof tPara);
    PrintRecord(tPara.state, "%d", state, &number);
    memcpy(pRes->aucParas, &tPara, sizeof tPara);
    pRes->usParaLen = sizeof number;
    return 0;
}

// By hand: logged as it was read and as it was restored.
int Parse_ZGIPDNS_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    constexpr auto format = FormatOfRow<kDataRows, 0x0627, 0>();
    const auto fields = FieldsOfRow<kDataRows, 0x0627, 0>();
    AT_ZGIPDNS_RES_PARA_T tPara;
    memset(&tPara, 0, sizeof tPara);
    PreProc_Res_ParaLine(pResLine->strResParas);
    ScanRecord(pResLine->strResParas, format, fields, &tPara);
    LogAddresses(tPara);
    for (const FieldRef& field : fields)
        RestoreField(&tPara, field);
    memcpy(pRes->aucParas, &tPara, sizeof tPara);
    pRes->usParaLen = sizeof tPara;
    LogAddresses(tPara);
    return 0;
}

// By hand: an answer without parameters leaves the response alone.
int Parse_ZSET_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr || pRes->ucCmdType != AT_CMD_TYPE_SET) return 0;
    if (strcmp(pResLine->strResParas, "OK") == 0)
        AT_LOG(LOG_INFO, "Parse_ZSET_Res pResLine->strResParas=%s", pResLine->strResParas);
    else
        DecodeByRow<kDataRows, 0x061C>(pRes, pResLine);
    return 0;
}

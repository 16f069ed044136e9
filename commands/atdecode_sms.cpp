#include <string.h>

#include "commands/atdecode.h"
#include "commands/row_codec.h"
#include "commands/rows_sms.h"
#include "commands/work_area.h"
#include "platform/log.h"
#include "platform/platform.h"

static constexpr char kLogSource[] = "atdecode";

// By hand: the message is out, which other modules learn from the store.
int Parse_Cmgs_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (!DecodeByRow<kSmsRows, 0x0108>(pRes, pResLine)) return 0;
    cfg_set("sending_sms", "0");
    AT_LOG(LOG_INFO, "========Parse_Cmgs_Res sending sms end========");
    return 0;
}

// By hand: which of the first two fields are missing can only be seen before or in the normalised text, and
// the record is larger than a message.
int Parse_Cmgr_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr || pRes->ucCmdType != AT_CMD_TYPE_SET) return 0;
    constexpr int32_t unknown_status = 5;  // the modem's own are 0 to 4
    constexpr size_t carried = kSmsRows[IndexOfId<kSmsRows>(0x0107)].decode.answers[0].carried;
    constexpr auto format = FormatOfRow<kSmsRows, 0x0107, 0>();
    const auto fields = FieldsOfRow<kSmsRows, 0x0107, 0>();  // stat, alpha, length, pdu
    const FieldRef fields_without_alpha[] = {fields[0], fields[2], fields[3]};

    char* text = pResLine->strResParas;
    const char* first = strchr(text, ',');
    if (first == nullptr) return 0;
    const bool no_alpha = first[1] == ',';
    PreProc_Res_ParaLine(text);
    AT_LOG(LOG_INFO, "pResLine->strResParas=%s", text);

    AT_CMGR_SET_RES_PARA_T tPara;
    memset(&tPara, 0, sizeof tPara);
    if (text[0] == ' ') {
        tPara.stat = unknown_status;
        if (no_alpha) {
            AT_LOG(LOG_INFO, "tPara.stat = 5,P2==P1+1");
            ScanRecord(text, "  %d %700s", std::span(fields_without_alpha).subspan(1), &tPara);
        } else {
            AT_LOG(LOG_INFO, "tPara.stat = 5,else");
            ScanRecord(text, "%32s %d %700s", fields.subspan(1), &tPara);
        }
    } else if (no_alpha) {
        ScanRecord(text, "%d  %d %700s", fields_without_alpha, &tPara);
    } else {
        ScanRecord(text, format, fields, &tPara);
    }
    Restore_String_Para(tPara.alpha);
    Restore_String_Para(tPara.pdu);
    pRes->usParaLen = sizeof tPara;
    static_assert(sizeof tPara > carried && carried <= sizeof pRes->aucParas);
    memcpy(pRes->aucParas, &tPara, carried);
    AT_LOG(LOG_INFO, "tPara.stat=%d", tPara.stat);
    AT_LOG(LOG_INFO, "tPara.alpha=%s", tPara.alpha);
    AT_LOG(LOG_INFO, "tPara.length=%d", tPara.length);
    AT_LOG(LOG_INFO, "tPara.pdu=%s", tPara.pdu);
    AT_LOG(LOG_INFO, "Parse_Cmgr_Rsp----");
    return 0;
}

// By hand: whether the name of the other party stands between the second and the third comma can only be seen
// before normalising, and the list goes into a file.
int Parse_Cmgl_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr || pRes->ucCmdType != AT_CMD_TYPE_SET) return 0;
    constexpr size_t size = sizeof(AT_CMGL_SET_RES_PARA_T);
    constexpr auto format = FormatOfRow<kSmsRows, 0x0106, 0>();
    const auto fields = FieldsOfRow<kSmsRows, 0x0106, 0>();
    const FieldRef fields_without_name[] = {fields[0], fields[1], fields[3], fields[4]};

    static_assert(size <= kListRecordSize);
    memset(g_list_record, 0, size);
    const int count = SplitLines(pResLine->strResParas, static_cast<int>(kCmglSetRes.entry_count));
    AT_LOG(LOG_INFO, "tParasList.nCount=%d", count);
    for (int i = 0; i < count; ++i) {
        char* line = g_paras_list.strParasLine[i];
        uint8_t* message =
            g_list_record + kCmglSetRes.entry_offset + static_cast<size_t>(i) * sizeof(AT_CMGL_MESSAGE_T);
        const char* first = strchr(line, ',');
        const char* second = first != nullptr ? strchr(first + 1, ',') : nullptr;
        if (second == nullptr) return 0;
        if (second[1] == ',') {
            AT_LOG(LOG_INFO, "the Reserved is null");
            ScanLine(line, "%d %d %d %355s", fields_without_name, message);
        } else {
            AT_LOG(LOG_INFO, "the Reserved is not null");
            ScanLine(line, format, fields, message);
        }
        AT_LOG(LOG_INFO, "tPara.smslist[i].pdu=%s",
               reinterpret_cast<const char*>(message + offsetof(AT_CMGL_MESSAGE_T, pdu)));
    }
    PutInteger(g_list_record, 0, count);
    pRes->usParaLen = size;
    pRes->aucParas[0] = 0;
    if (BackUpList(kSmsListFile, "smsbak", g_list_record, size))
        AT_LOG(LOG_INFO, "BakSms OK!");
    else
        AT_LOG(LOG_ERR, "BakSms faild!");
    return 0;
}

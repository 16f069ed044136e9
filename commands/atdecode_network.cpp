#include <string.h>

#include "commands/atdecode.h"
#include "commands/row_codec.h"
#include "commands/rows_network.h"
#include "commands/rows_radio.h"
#include "commands/work_area.h"
#include "platform/config.h"
#include "platform/log.h"
#include "platform/platform.h"

static constexpr char kLogSource[] = "atdecode";

namespace {

constexpr FieldRef kSlots2g[] = {AT_FIELD_REF(AT_ZRSSI_EXEC_RES_PARA_T, slot0)};
constexpr FieldRef kSlots3g[] = {AT_FIELD_REF(AT_ZRSSI_EXEC_RES_PARA_T, slot1),
                                 AT_FIELD_REF(AT_ZRSSI_EXEC_RES_PARA_T, slot2)};
constexpr FieldRef kSlotsWcdma[] = {AT_FIELD_REF(AT_ZRSSI_EXEC_RES_PARA_T, slot0),
                                    AT_FIELD_REF(AT_ZRSSI_EXEC_RES_PARA_T, slot2),
                                    AT_FIELD_REF(AT_ZRSSI_EXEC_RES_PARA_T, slot1)};
constexpr FieldRef kSlots4g[] = {
    AT_FIELD_REF(AT_ZRSSI_EXEC_RES_PARA_T, slot3), AT_FIELD_REF(AT_ZRSSI_EXEC_RES_PARA_T, slot4),
    AT_FIELD_REF(AT_ZRSSI_EXEC_RES_PARA_T, slot0), AT_FIELD_REF(AT_ZRSSI_EXEC_RES_PARA_T, slot6)};

int CountCommas(const char* text) {
    int count = 0;
    while ((text = strchr(text, ',')) != nullptr)
        ++count, ++text;
    return count;
}

// The whole part of a value that the modem sent as a fraction, for the log; 0 when no integer can hold it.
int Whole(float value) {
    return value > -2147483648.0F && value < 2147483648.0F ? static_cast<int>(value) : 0;
}

// The list of a search goes into its file; the message says only that it is there.
void ParseOperatorSearch(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    constexpr size_t size = sizeof(AT_COPS_TEST_RES_PARA_T);
    constexpr auto format = FormatOfRow<kNetworkRows, 0x0517, 2>();
    const auto fields = FieldsOfRow<kNetworkRows, 0x0517, 2>();

    cfg_set("manual_searching_netwrok", "0");
    AT_LOG(LOG_INFO, "========Parse_COPS_Res manual search network end========\n");
    PreProc_Res_ParaLineEx(pResLine->strResParas);
    PreProcCopsRes_Res_ParaLine(pResLine->strResParas);
    const int count = SplitLines(pResLine->strResParas, kParaLineMax);

    static_assert(size <= kListRecordSize);
    memset(g_list_record, 0, size);
    PutInteger(g_list_record, 0, count);
    for (int i = 0; i < count; ++i)
        ScanLine(
            g_paras_list.strParasLine[i], format, fields,
            g_list_record + kCopsTestRes.entry_offset + static_cast<size_t>(i) * sizeof(AT_COPS_OPERATOR_T));
    pRes->usParaLen = size;
    if (WriteListFile(kOperatorListFile, g_list_record, size) < 0)
        AT_LOG(LOG_CRIT, "Parse_Cops_Res open file failed.");
}

}  // namespace

// By hand: a search answer is a list of parenthesised groups, ends the search noted by the encoder and goes
// into a file.
int Parse_COPS_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    if (pRes->ucCmdType == AT_CMD_TYPE_TEST)
        ParseOperatorSearch(pRes, pResLine);
    else
        DecodeByRow<kNetworkRows, 0x0517>(pRes, pResLine);
    return 0;
}

// By hand: the location counts only when reports with it are on; what else the modem sends behind stat is
// dropped.
int Parse_CREG_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (!DecodeByRow<kNetworkRows, 0x052D>(pRes, pResLine)) return 0;
    AT_CREG_READ_RES_PARA_T record;
    memcpy(&record, pRes->aucParas, sizeof record);
    if (record.n != 2)
        memset(pRes->aucParas + offsetof(AT_CREG_READ_RES_PARA_T, lac), 0,
               sizeof record.lac + sizeof record.ci);
    return 0;
}

// By hand: the number of values tells the radio technology, and that tells where each of them goes. How many
// there were is kept for the user interface.
int Parse_ZRSSI_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    if (pRes->ucCmdType != AT_CMD_TYPE_EXEC && pRes->ucCmdType != AT_CMD_TYPE_READ) return 0;
    AT_ZRSSI_EXEC_RES_PARA_T tPara;
    memset(&tPara, 0, sizeof tPara);
    cfg_set("zrssi_count", "0");
    const char* text = pResLine->strResParas;
    switch (CountCommas(text)) {
        case 0:
            ScanRecord(text, "%d", kSlots2g, &tPara);
            AT_LOG(LOG_INFO, "tPara is 2G:%d %d\n", tPara.slot0, tPara.slot1);
            cfg_set("zrssi_count", "1");
            break;
        case 1:
            ScanRecord(text, "%d,%d", kSlots3g, &tPara);
            AT_LOG(LOG_INFO, "tPara is 3G:%d %d\n", tPara.slot1, tPara.slot2);
            cfg_set("zrssi_count", "2");
            break;
        case 2:
            ScanRecord(text, "%d,%d,%d", kSlotsWcdma, &tPara);
            AT_LOG(LOG_INFO, "tPara is KVX_WCDMA:%d,%d,%d\n", tPara.slot0, tPara.slot2, tPara.slot1);
            cfg_set("zrssi_count", "3");
            break;
        case 3:
            ScanRecord(text, "%d,%d,%d,%f", kSlots4g, &tPara);
            AT_LOG(LOG_INFO, "tPara is 4G:%d,%d,%d,%d\n", tPara.slot3, tPara.slot4, tPara.slot0,
                   Whole(tPara.slot6));
            cfg_set("zrssi_count", "4");
            break;
        default:
            AT_LOG(LOG_ERR, "AT+ZRSSI returns error\n");
            break;
    }
    memcpy(pRes->aucParas, &tPara, sizeof tPara);
    pRes->usParaLen = sizeof tPara;
    return 0;
}

// By hand: in band mode 2 the line of a lock goes out as a report, and its answer carries nothing.
int Parse_ZLOCKBAND_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    if (pRes->ucCmdType == AT_CMD_TYPE_SET && ConfigIs("bandmode", "2")) return 0;
    DecodeByRow<kRadioRows, 0x0618>(pRes, pResLine);
    return 0;
}

// By hand: an answer to a type that carries no setting is noted.
int Parse_ZROAM_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    if (!DecodeByRow<kNetworkRows, 0x0617>(pRes, pResLine)) AT_LOG(LOG_ERR, "Invalid zroam res");
    return 0;
}

#include <string.h>

#include "commands/atdecode.h"
#include "commands/row_codec.h"
#include "commands/rows_network.h"
#include "commands/work_area.h"
#include "platform/log.h"
#include "platform/platform.h"

static constexpr char kLogSource[] = "atdecode";

namespace {

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

#include <string.h>

#include "commands/atdecode.h"
#include "commands/row_codec.h"
#include "commands/rows_calls.h"
#include "commands/work_area.h"
#include "platform/log.h"

static constexpr char kLogSource[] = "atdecode";

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

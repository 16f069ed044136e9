#include <stdlib.h>
#include <string.h>

#include "commands/atdecode.h"
#include "commands/row_codec.h"
#include "commands/rows_sms.h"
#include "commands/work_area.h"
#include "platform/log.h"

static constexpr char kLogSource[] = "atdecode";

namespace {

// The list is worthless without its file, and a router whose configuration directory cannot be written needs
// its supervisor: not to open it ends the process.
bool BakSms(const void* record, size_t size) {
    const ssize_t written = WriteListFile(kSmsListFile, record, size);
    if (written < 0) {
        AT_LOG(LOG_ERR, "fopen( /etc_rw/config/smsbak , 'w+') error!");
        exit(1);
    }
    const bool whole = static_cast<size_t>(written) == size;
    if (whole)
        AT_LOG(LOG_INFO, "write to smsbak file OK, len=%d!", static_cast<int>(written));
    else
        AT_LOG(LOG_ERR, "write to smsbak file faild, len=%d!", static_cast<int>(written));
    return whole;
}

}  // namespace

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
    if (BakSms(g_list_record, size))
        AT_LOG(LOG_INFO, "BakSms OK!");
    else
        AT_LOG(LOG_ERR, "BakSms faild!");
    return 0;
}

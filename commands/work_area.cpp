#include "commands/work_area.h"

#include <string.h>

#include "commands/generic.h"

AT_PARAS_LIST_T g_paras_list;
uint8_t g_list_record[kListRecordSize];

int SplitLines(const char* text, int most) {
    g_paras_list.nCount = 0;  // lines are terminated; what an earlier answer left behind them does no harm
    PreProc_Res_ParaList(&g_paras_list, text);
    return g_paras_list.nCount < most ? g_paras_list.nCount : most;
}

void ScanLine(char* line, const char* format, std::span<const FieldRef> fields, void* record) {
    PreProc_Res_ParaLine(line);
    ScanRecord(line, format, fields, record);
    for (const FieldRef& field : fields)
        RestoreField(record, field);
}

void PutInteger(void* record, size_t offset, int32_t value) {
    memcpy(static_cast<char*>(record) + offset, &value, sizeof value);
}

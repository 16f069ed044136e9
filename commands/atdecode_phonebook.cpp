#include <string.h>

#include "commands/atdecode.h"
#include "commands/row_codec.h"
#include "commands/rows_phonebook.h"
#include "commands/work_area.h"
#include "platform/log.h"

static constexpr char kLogSource[] = "atdecode";

namespace {

// Copies a field of a comma-separated text, cut; returns where the next one begins.
template <size_t N>
const char* TakeField(const char* text, char (&field)[N]) {
    const size_t length = strcspn(text, ",");
    const size_t kept = length < N ? length : N - 1;
    memcpy(field, text, kept);
    field[kept] = '\0';
    return text[length] == ',' ? text + length + 1 : text + length;
}

// A range of entries goes into the file; the message says only that it is there.
template <uint16_t Id, const Record& List>
int ParseEntries(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    if (pRes->ucCmdType != AT_CMD_TYPE_SET) {
        DecodeByRow<kPhonebookRows, Id>(pRes, pResLine);
        return 0;
    }
    constexpr auto format = FormatOfRow<kPhonebookRows, Id, 0>();
    const auto fields = FieldsOfRow<kPhonebookRows, Id, 0>();

    static_assert(List.size <= kListRecordSize && List.entry_count <= kParaLineMax);
    memset(g_list_record, 0, List.size);
    AT_LOG(LOG_INFO, "pResLine->strResParas---->>>>%s", pResLine->strResParas);
    const int count = SplitLines(pResLine->strResParas, static_cast<int>(List.entry_count));
    AT_LOG(LOG_INFO, " tParasList.nCount---->>>>%d", count);
    for (int i = 0; i < count; ++i)
        ScanLine(g_paras_list.strParasLine[i], format, fields,
                 g_list_record + List.entry_offset + static_cast<size_t>(i) * List.entry->size);
    PutInteger(g_list_record, 0, count);
    pRes->usParaLen = static_cast<uint16_t>(List.size);
    pRes->aucParas[0] = 0;
    if (BackUpList(kPhonebookFile, "Phonebak", g_list_record, List.size))
        AT_LOG(LOG_INFO, "BakPhoneBook OK!");
    else
        AT_LOG(LOG_ERR, "BakPhoneBook faild!");
    return 0;
}

}  // namespace

// By hand: three short texts, each cut by itself, that go out under whatever length the answer has.
int Parse_CPBS_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    if (pRes->ucCmdType == AT_CMD_TYPE_SET) pRes->usParaLen = 0;
    if (pRes->ucCmdType != AT_CMD_TYPE_READ || pResLine->Result != AT_RESULT_OK) return 0;
    AT_CPBS_READ_RES_PARA_T tPara;
    memset(&tPara, 0, sizeof tPara);
    const char* text = TakeField(pResLine->strResParas, tPara.storage);
    text = TakeField(text, tPara.usedEntries);
    TakeField(text, tPara.totalEntries);
    memcpy(pRes->aucParas, &tPara, sizeof tPara);
    AT_LOG(LOG_INFO, "Parse_Cpbs_Rsp tPara.usedEntries is %s tPara.totalEntries is %s.", tPara.usedEntries,
           tPara.totalEntries);
    return 0;
}

// By hand, both: the list goes into a file.
int Parse_CPBR_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    return ParseEntries<0x0202, kCpbrSetRes>(pRes, pResLine);
}
int Parse_ZCPBR_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    return ParseEntries<0x0206, kZcpbrSetRes>(pRes, pResLine);
}

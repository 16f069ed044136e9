#include "commands/atdecode.h"

#include <string.h>

#include "commands/generic.h"
#include "platform/log.h"
#include "text/atpublic.h"

static constexpr char kLogSource[] = "atdecode";

namespace {

constexpr size_t kLogTextSize = 1024;

const AnswerSpec* AnswerFor(uint8_t type, const DecodeSpec& spec) {
    // A request of a type that there is not is refused, but stays pending: what is served under every type,
    // reports that come meanwhile, is served then, too.
    const unsigned bit = type < 8 ? 1U << type : 1U;
    for (size_t i = 0; i < spec.answer_count; ++i)
        if ((spec.answers[i].types & bit) != 0) return &spec.answers[i];
    return nullptr;
}

void CopyText(uint8_t* record, const FieldRef& field, const char* text) {
    memcpy(record + field.offset, text, strnlen(text, field.size - size_t{1}));
}

}  // namespace

bool IsOnlyAResult(const char* text) {
    return strcmp(text, "OK") == 0 || strcmp(text, "retry operation") == 0 ||
           strcmp(text, "network rejected request") == 0;
}

void LogWithText(const char* source, int line, const char* format, const char* text) {
    const char* hole = strstr(format, "%s");
    if (hole == nullptr) {
        syslog(LOG_INFO, "%s, %d %s", source, line, format);
        return;
    }
    syslog(LOG_INFO, "%s, %d %.*s%s%s", source, line, static_cast<int>(hole - format), format, text,
           hole + 2);
}

void RestoreField(void* record, const FieldRef& field) {
    char* at = static_cast<char*>(record) + field.offset;
    if (field.type == FieldType::text) {
        Restore_String_Para(at);
        return;
    }
    if (field.type != FieldType::bytes) return;
    char word[65];
    if (field.size >= sizeof word) return;
    memcpy(word, at, field.size);
    word[field.size] = '\0';
    Restore_String_Para(word);
    memcpy(at, word, field.size);
}

bool DecodeBySpec(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine, const DecodeSpec& spec) {
    if (pRes == nullptr || pResLine == nullptr) return false;
    const AnswerSpec* answer = AnswerFor(pRes->ucCmdType, spec);
    if (answer == nullptr || answer->size > sizeof pRes->aucParas) return false;
    if (answer->result_test && IsOnlyAResult(pResLine->strResParas)) {
        // "OK" is an answer without a record; the failure texts are none at all.
        if (strcmp(pResLine->strResParas, "OK") == 0) pRes->usParaLen = 2;
        return false;
    }
    if (answer->from == From::normalised) PreProc_Res_ParaLine(pResLine->strResParas);
    if (answer->log_text != nullptr)
        LogWithText(kLogSource, __LINE__, answer->log_text, pResLine->strResParas);
    memset(pRes->aucParas, 0, answer->size);
    const FieldRef* fields = spec.fields + answer->first_field;
    if (answer->from == From::whole) {
        CopyText(pRes->aucParas, *fields, pResLine->strResParas);
    } else {
        ScanRecord(pResLine->strResParas, answer->format, {fields, answer->fields}, pRes->aucParas);
        if (answer->from == From::normalised)
            for (size_t i = 0; i < answer->fields; ++i)
                RestoreField(pRes->aucParas, fields[i]);
    }
    pRes->usParaLen = answer->length;
    if (answer->log != nullptr) {
        char text[kLogTextSize];
        PrintRecord(text, answer->log, {spec.fields + answer->first_log_arg, answer->log_args},
                    pRes->aucParas);
        AT_LOG(LOG_INFO, "%s", text);
    }
    return true;
}

int Parse_None_Res(_BK_AT_RES_T*, AT_RES_LINE_T*) {
    return 0;
}

int Parse_Text_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    if (pRes == nullptr || pResLine == nullptr) return 0;
    const size_t length = strnlen(pResLine->strResParas, sizeof pRes->aucParas - 1);
    memcpy(pRes->aucParas, pResLine->strResParas, length);
    pRes->aucParas[length] = '\0';
    pRes->usParaLen = static_cast<uint16_t>(length);
    return 0;
}

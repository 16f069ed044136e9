#include "commands/atencode.h"

#include <string.h>

#include "commands/generic.h"
#include "platform/log.h"

static constexpr char kLogSource[] = "atencode";

namespace {

constexpr int kDialNumberMax = AT_DIAL_NUMBER_SIZE;

bool Holds(const Condition& condition, const uint8_t* record) {
    const FieldRef& field = condition.field;
    const uint8_t* at = record + field.offset;
    int32_t value = *at;  // of a text: not 0 when there is one
    if (field.type == FieldType::i32) memcpy(&value, at, sizeof value);
    switch (condition.test) {
        case Test::present:
            return value != 0;
        case Test::absent:
            return value == 0;
        case Test::equals:
            return value == condition.value;
        default:
            return value >= condition.value;
    }
}

bool Chosen(const FormSpec& form, const EncodeSpec& spec, const uint8_t* record) {
    for (size_t i = 0; i < form.conditions; ++i)
        if (!Holds(spec.conditions[form.first_condition + i], record)) return false;
    return true;
}

}  // namespace

int EncodeBySpec(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd, const EncodeSpec& spec) {
    if (pCmdLine == nullptr || pCmd == nullptr) return 0;
    if (pCmd->ucCmdType != AT_CMD_TYPE_SET) return 0;
    if (pCmd->usParaLen != spec.record_size || spec.record_size > sizeof pCmd->aucParas)
        return spec.record_size;
    for (size_t i = 0; i < spec.form_count; ++i) {
        const FormSpec& form = spec.forms[i];
        if (!Chosen(form, spec, pCmd->aucParas)) continue;
        PrintRecord(pCmdLine->strCmdParas, form.format, {spec.args + form.first_arg, form.args},
                    pCmd->aucParas);
        if (spec.log != nullptr) LogWithText(kLogSource, __LINE__, spec.log, pCmdLine->strCmdParas);
        break;
    }
    return 0;
}

int Make_None_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd) {
    if (pCmdLine == nullptr || pCmd == nullptr) AT_LOG(LOG_INFO, "pCmdLine or pCmd is null!");
    return 0;
}

int Make_Dial_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd) {
    if (pCmdLine == nullptr || pCmd == nullptr) return 0;
    if (pCmd->ucCmdType != AT_CMD_TYPE_EXEC) return 0;
    const size_t given = pCmd->usParaLen < kDialNumberMax ? pCmd->usParaLen : kDialNumberMax;
    const char* number = reinterpret_cast<const char*>(pCmd->aucParas);
    const size_t length = strnlen(number, given);
    for (size_t i = 0; i < length; ++i)
        AT_LOG(LOG_INFO, "call_num  buf= %c", number[i]);
    memcpy(pCmdLine->strCmdParas, number, length);
    pCmdLine->strCmdParas[length] = ';';
    pCmdLine->strCmdParas[length + 1] = '\0';
    return 0;
}

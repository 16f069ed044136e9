#ifndef AT_COMMANDS_ROW_CODEC_H
#define AT_COMMANDS_ROW_CODEC_H

#include <array>

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/generic.h"

// From a row to its two functions. What is left of the row in the daemon is its EncodeSpec and its
// DecodeSpec; names, titles and meanings stay with the compiler.

template <const auto& Rows, size_t Index>
struct RowCodec {
    static constexpr const Row& Source() { return Rows[Index]; }

    // ---- Encoder ----
    static constexpr size_t FormCount() {
        size_t count = 0;
        while (count < kMaxForms && Source().encode.forms[count].format != nullptr)
            ++count;
        return count;
    }
    static constexpr size_t EncodeArgCount() {
        size_t count = 0;
        for (const Form& form : Source().encode.forms)
            count += ArgCount(form.format, form.args);
        return count;
    }
    static constexpr size_t ConditionCount() {
        size_t count = 0;
        for (const Form& form : Source().encode.forms)
            for (const When& when : form.when)
                count += when.field != nullptr;
        return count;
    }
    static constexpr auto EncodeArgs() {
        std::array<FieldRef, EncodeArgCount()> refs = {};
        size_t next = 0;
        for (const Form& form : Source().encode.forms)
            for (size_t i = 0; i < ArgCount(form.format, form.args); ++i)
                refs[next++] = ArgRef(*Source().encode.record, form.args, i);
        return refs;
    }
    static constexpr auto Conditions() {
        std::array<Condition, ConditionCount()> conditions = {};
        size_t next = 0;
        for (const Form& form : Source().encode.forms)
            for (const When& when : form.when)
                if (when.field != nullptr)
                    conditions[next++] = {FieldNamed(*Source().encode.record, when.field).Ref(), when.test,
                                          when.value};
        return conditions;
    }
    static constexpr auto Forms() {
        std::array<FormSpec, FormCount()> forms = {};
        size_t arg = 0;
        size_t condition = 0;
        for (size_t i = 0; i < FormCount(); ++i) {
            const Form& form = Source().encode.forms[i];
            const size_t args = ArgCount(form.format, form.args);
            size_t conditions = 0;
            for (const When& when : form.when)
                conditions += when.field != nullptr;
            forms[i] = {form.format, static_cast<uint8_t>(arg), static_cast<uint8_t>(args),
                        static_cast<uint8_t>(condition), static_cast<uint8_t>(conditions)};
            arg += args;
            condition += conditions;
        }
        return forms;
    }

    static constexpr auto kForms = Forms();
    static constexpr auto kEncodeArgs = EncodeArgs();
    static constexpr auto kConditions = Conditions();
    static constexpr EncodeSpec kEncode = {
        kForms.data(),
        kEncodeArgs.data(),
        kConditions.data(),
        Source().encode.log,
        Source().encode.record == nullptr ? uint16_t{0} : static_cast<uint16_t>(Source().encode.record->size),
        static_cast<uint8_t>(FormCount())};

    static int Make(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd) {
        return EncodeBySpec(pCmdLine, pCmd, kEncode);
    }

    static constexpr Encoder EncodeFunction() {
        switch (Source().encode.kind) {
            case EncodeKind::absent:
                return nullptr;
            case EncodeKind::record:
            case EncodeKind::copy:
                return &Make;
            case EncodeKind::dial:
                return &Make_Dial_Cmd;
            case EncodeKind::custom:
                return Source().encode.function;
            default:
                return &Make_None_Cmd;
        }
    }

    // ---- Decoder ----
    static constexpr size_t AnswerCount() {
        size_t count = 0;
        while (count < 3 && Source().decode.answers[count].types != 0)
            ++count;
        return count;
    }
    static constexpr const Record& Scanned(const Answer& answer) {
        return answer.record->entry != nullptr ? *answer.record->entry : *answer.record;
    }
    static constexpr size_t DecodeFieldCount() {
        size_t count = 0;
        for (const Answer& answer : Source().decode.answers)
            count += ArgCount(answer.format, answer.args) + ArgCount(answer.log.format, answer.log.args) +
                     (answer.from == From::whole ? 1 : 0);
        return count;
    }
    static constexpr auto DecodeFields() {
        std::array<FieldRef, DecodeFieldCount()> refs = {};
        size_t next = 0;
        for (const Answer& answer : Source().decode.answers) {
            for (size_t i = 0; i < ArgCount(answer.format, answer.args); ++i)
                refs[next++] = ArgRef(Scanned(answer), answer.args, i);
            if (answer.from == From::whole) refs[next++] = answer.record->fields[0].Ref();
            for (size_t i = 0; i < ArgCount(answer.log.format, answer.log.args); ++i)
                refs[next++] = ArgRef(*answer.record, answer.log.args, i);
        }
        return refs;
    }
    static constexpr auto Answers() {
        std::array<AnswerSpec, AnswerCount()> specs = {};
        size_t next = 0;
        for (size_t i = 0; i < AnswerCount(); ++i) {
            const Answer& answer = Source().decode.answers[i];
            const size_t fields = answer.from == From::whole ? 1 : ArgCount(answer.format, answer.args);
            const size_t log_args = ArgCount(answer.log.format, answer.log.args);
            const auto size =
                answer.record == nullptr ? uint16_t{0} : static_cast<uint16_t>(answer.record->size);
            specs[i] = {answer.format,
                        answer.log_text,
                        answer.log.format,
                        size,
                        answer.length != 0 ? answer.length : size,
                        static_cast<uint8_t>(next),
                        static_cast<uint8_t>(fields),
                        static_cast<uint8_t>(next + fields),
                        static_cast<uint8_t>(log_args),
                        answer.types,
                        answer.from,
                        answer.result_test};
            next += fields + log_args;
        }
        return specs;
    }

    static constexpr auto kAnswers = Answers();
    static constexpr auto kDecodeFields = DecodeFields();
    static constexpr DecodeSpec kDecode = {kAnswers.data(), kDecodeFields.data(),
                                           static_cast<uint8_t>(AnswerCount())};

    static int Parse(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
        DecodeBySpec(pRes, pResLine, kDecode);
        return 0;
    }

    static int ParseText(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
        if (pRes == nullptr || pRes->ucCmdType >= 8) return 0;
        if ((Source().decode.answers[0].types >> pRes->ucCmdType & 1) == 0) return 0;
        return Parse_Text_Res(pRes, pResLine);
    }

    static constexpr Decoder DecodeFunction() {
        switch (Source().decode.kind) {
            case DecodeKind::answers:
                return &Parse;
            case DecodeKind::text:
                return Source().decode.answers[0].types == 0 ? &Parse_Text_Res : &ParseText;
            case DecodeKind::custom:
                return Source().decode.function;
            default:
                return &Parse_None_Res;
        }
    }
};

void NoRowOfThisListHasTheId();

template <const auto& Rows>
consteval size_t IndexOfId(uint16_t id) {
    for (size_t i = 0; i < std::size(Rows); ++i)
        if (Rows[i].id == id) return i;
    NoRowOfThisListHasTheId();
    return 0;
}

// For functions written by hand: what their own row says, done the generic way.
template <const auto& Rows, uint16_t Id>
int EncodeByRow(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd) {
    return EncodeBySpec(pCmdLine, pCmd, RowCodec<Rows, IndexOfId<Rows>(Id)>::kEncode);
}
template <const auto& Rows, uint16_t Id>
bool DecodeByRow(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    return DecodeBySpec(pRes, pResLine, RowCodec<Rows, IndexOfId<Rows>(Id)>::kDecode);
}
// The fields that answer `Answer` of the row scans (of a list: of one entry).
template <const auto& Rows, uint16_t Id, size_t Answer>
std::span<const FieldRef> FieldsOfRow() {
    using Codec = RowCodec<Rows, IndexOfId<Rows>(Id)>;
    constexpr AnswerSpec spec = Codec::kAnswers[Answer];
    return {Codec::kDecodeFields.data() + spec.first_field, spec.fields};
}
template <const auto& Rows, uint16_t Id, size_t Answer>
constexpr const char* FormatOfRow() {
    return RowCodec<Rows, IndexOfId<Rows>(Id)>::kAnswers[Answer].format;
}

#endif

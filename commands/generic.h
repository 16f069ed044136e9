#ifndef AT_COMMANDS_GENERIC_H
#define AT_COMMANDS_GENERIC_H

#include "commands/row.h"

// The encoder and the decoder that serve all rows, and what they keep of a row at run time: formats, offsets
// and sizes. commands/row_codec.h makes it of the rows.

struct Condition {
    FieldRef field;
    Test test;
    int32_t value;
};

struct FormSpec {
    const char* format;
    uint8_t first_arg, args;              // in EncodeSpec::args
    uint8_t first_condition, conditions;  // in EncodeSpec::conditions
};

struct EncodeSpec {
    const FormSpec* forms;
    const FieldRef* args;
    const Condition* conditions;
    const char* log;
    uint16_t record_size;
    uint8_t form_count;
};

// SET with a record of exactly spec.record_size bytes: prints the first form whose conditions hold; anything
// else leaves the parameter text empty. Returns the record size when the request's length differs from it,
// else 0.
int EncodeBySpec(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd, const EncodeSpec& spec);

struct AnswerSpec {
    const char* format;
    const char* log_text;
    const char* log;
    uint16_t size;                    // bytes of the record
    uint16_t length;                  // usParaLen
    uint8_t first_field, fields;      // in DecodeSpec::fields
    uint8_t first_log_arg, log_args;  // in DecodeSpec::fields
    Types types;
    From from;
    bool result_test;
};

struct DecodeSpec {
    const AnswerSpec* answers;
    const FieldRef* fields;
    uint8_t answer_count;
};

// Decodes by the first answer that serves the type. Returns true when the parameters were written.
bool DecodeBySpec(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine, const DecodeSpec& spec);

// True for the texts that stand in the place of a record: "OK" and the two failure texts of facility
// commands.
bool IsOnlyAResult(const char* text);

// Logs `format`, whose one "%s" is `text`, at information level. `source` is the module.
void LogWithText(const char* source, int line, const char* format, const char* text);

// Puts back, in one field of a record, what normalising hid.
void RestoreField(void* record, const FieldRef& field);

#endif

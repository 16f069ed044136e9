#include "checks/support/plain_rows.h"

#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <memory>
#include <string>

#include "codec/atcode.h"
#include "commands/catalog.h"
#include "commands/generic.h"
#include "text/atpublic.h"

// The formats are those of the rows, which the compiler has held against their fields already.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

template <typename T>
T Get(const uint8_t* record, const FieldRef& field) {
    T value;
    memcpy(&value, record + field.offset, sizeof value);
    return value;
}

bool Holds(const When& when, const Record& record, const uint8_t* bytes) {
    const FieldRef field = FieldNamed(record, when.field).Ref();
    const int32_t value = field.type == FieldType::i32 ? Get<int32_t>(bytes, field) : bytes[field.offset];
    if (when.test == Test::present || when.test == Test::absent)
        return (value != 0) == (when.test == Test::present);
    return when.test == Test::equals ? value == when.value : value >= when.value;
}

// A format cut behind each of its conversions: the C library is called with one argument at a time, since
// their number and kinds are known from the row only.
std::string NextPiece(const char*& format, Conversion& conversion) {
    const char* const begin = format;
    conversion = {};
    while (*format != '\0' && conversion.kind == 0) {
        if (*format != '%')
            ++format;
        else
            format = ReadConversion(format, conversion);
        if (conversion.kind == '%') conversion = {};
    }
    return std::string(begin, format);
}

std::string Print(const Form& form, const Record& record, const uint8_t* bytes) {
    char text[2048] = {};
    size_t used = 0;
    size_t next = 0;
    for (const char* format = form.format; *format != '\0';) {
        Conversion conversion;
        std::string piece = NextPiece(format, conversion);
        char* const out = text + used;
        const size_t room = sizeof text - used;
        const FieldRef field = conversion.kind == 0 ? FieldRef{} : ArgRef(record, form.args, next++);
        int length = 0;
        switch (conversion.kind) {
            case 0:
                length = snprintf(out, room, piece.c_str(), 0);
                break;
            case 'd':
            case 'x':
                length = snprintf(out, room, piece.c_str(), Get<int32_t>(bytes, field));
                break;
            case 'l':
                length = snprintf(out, room, piece.c_str(),
                                  static_cast<unsigned long long>(Get<uint64_t>(bytes, field)));
                break;
            default: {
                const std::string word(
                    reinterpret_cast<const char*>(bytes) + field.offset,
                    strnlen(reinterpret_cast<const char*>(bytes) + field.offset, field.size));
                if (conversion.kind == 'c')
                    length = snprintf(out, room, piece.c_str(), word.empty() ? 0 : word[0]);
                else
                    length = snprintf(out, room, piece.c_str(), word.c_str());
            }
        }
        used += static_cast<size_t>(length);
    }
    return std::string(text, std::min<size_t>(used, kParaTextSize - 1));
}

// What one conversion of the C library can read.
union Cell {
    long decimal;
    unsigned long long hexadecimal;
    float real;
    char text[1024];
};

void Store(const Conversion& conversion, const Cell& cell, const FieldRef& field, uint8_t* bytes) {
    uint8_t* const at = bytes + field.offset;
    if (conversion.kind == 'd') {
        const auto value = static_cast<int32_t>(std::clamp<long>(cell.decimal, INT32_MIN, INT32_MAX));
        memcpy(at, &value, sizeof value);
    } else if (conversion.kind == 'x') {
        const auto negated = 0 - cell.hexadecimal;
        const bool fits = cell.hexadecimal <= UINT32_MAX || negated <= UINT32_MAX;
        const auto value = fits ? static_cast<uint32_t>(cell.hexadecimal) : UINT32_MAX;
        memcpy(at, &value, sizeof value);
    } else if (conversion.kind == 'l') {
        memcpy(at, &cell.hexadecimal, sizeof cell.hexadecimal);
    } else if (conversion.kind == 'f') {
        memcpy(at, &cell.real, sizeof cell.real);
    } else if (conversion.kind == 'c') {
        memcpy(at, cell.text, conversion.width == 0 ? 1 : conversion.width);
    } else {
        const size_t length = strlen(cell.text);
        memcpy(at, cell.text, length + (length < field.size ? 1 : 0));
    }
}

void Scan(const char* text, const Answer& answer, uint8_t* bytes) {
    size_t next = 0;
    for (const char* format = answer.format; *format != '\0';) {
        Conversion conversion;
        std::string piece = NextPiece(format, conversion);
        // Wide enough that a number too large can be told and is held at the end of its range.
        if (conversion.kind == 'd') piece.insert(piece.size() - 1, "l");
        if (conversion.kind == 'x') piece.insert(piece.size() - 1, "ll");
        Cell cell{};
        int taken = -1;
        piece += "%n";
        const int count = conversion.kind == 0 ? sscanf(text, piece.c_str(), &taken)
                                               : sscanf(text, piece.c_str(), &cell, &taken);
        if (taken < 0 || (conversion.kind != 0 && count != 1)) return;
        if (conversion.kind != 0) Store(conversion, cell, ArgRef(*answer.record, answer.args, next++), bytes);
        text += taken;
    }
}

// Returns the length of what was copied, its NUL not counted.
size_t CopyCut(char* out, size_t size, const char* text) {
    const size_t length = std::min(strlen(text), size - 1);
    memcpy(out, text, length);
    out[length] = '\0';
    return length;
}

const Answer* AnswerFor(const Row& row, uint8_t type) {
    for (const Answer& answer : row.decode.answers)
        if (type < 8 && (answer.types >> type & 1) != 0) return &answer;
    return nullptr;
}

}  // namespace

bool PlainEncode(const Row& row, AT_CMD_LINE_T& line, const _BK_AT_CMD_T& request) {
    memset(line.strCmdParas, 0, sizeof line.strCmdParas);
    if (row.encode.kind == EncodeKind::none) return true;
    if (row.encode.kind != EncodeKind::record && row.encode.kind != EncodeKind::copy) return false;
    const Record& record = *row.encode.record;
    if (request.ucCmdType != AT_CMD_TYPE_SET || request.usParaLen != record.size) return true;
    for (const Form& form : row.encode.forms) {
        if (form.format == nullptr) break;
        bool holds = true;
        for (const When& when : form.when)
            holds = holds && (when.field == nullptr || Holds(when, record, request.aucParas));
        if (!holds) continue;
        strcpy(line.strCmdParas, Print(form, record, request.aucParas).c_str());
        break;
    }
    return true;
}

int PlainGenerate(char* out, const _BK_AT_CMD_T& request) {
    static const char* const kSuffixes[] = {"", "", "=", "?", "=?"};
    for (const Row& row : kCatalog) {
        if (row.id != request.usCmdID) continue;
        if (request.ucCmdType < AT_CMD_TYPE_EXEC || request.ucCmdType > AT_CMD_TYPE_TEST) return 1;
        if (row.encode.kind == EncodeKind::absent) return 1;
        AT_CMD_LINE_T line;
        memset(&line, 0, sizeof line);
        if (!PlainEncode(row, line, request)) return 1;
        snprintf(out, 1024, "AT%s%s%s\r", row.name, kSuffixes[request.ucCmdType], line.strCmdParas);
        return 0;
    }
    return 1;
}

bool PlainDecode(const Row& row, _BK_AT_RES_T& response, AT_RES_LINE_T& line) {
    if (row.decode.kind == DecodeKind::none) return true;
    const bool text_alone = row.decode.kind == DecodeKind::text;
    if (!text_alone && row.decode.kind != DecodeKind::answers) return false;
    const Answer* const answer = AnswerFor(row, response.ucCmdType);
    const bool every_type = text_alone && row.decode.answers[0].types == 0;
    if (answer == nullptr && !every_type) return true;

    // A copy of the text in a work area of its own, since normalising lengthens it.
    const auto work = std::make_unique<AT_RES_LINE_T>();
    memset(work.get(), 0, sizeof *work);
    char* const text = work->strResParas;
    strcpy(text, line.strResParas);
    char* const paras = reinterpret_cast<char*>(response.aucParas);
    if (text_alone) {
        response.usParaLen = static_cast<uint16_t>(CopyCut(paras, sizeof response.aucParas, text));
        return true;
    }
    const Record none{};
    const Record& record = answer->record != nullptr ? *answer->record : none;
    if (record.size > sizeof response.aucParas) return true;
    if (answer->result_test && strcmp(text, "OK") == 0) response.usParaLen = 2;
    for (const char* only : {"OK", "retry operation", "network rejected request"})
        if (answer->result_test && strcmp(text, only) == 0) return true;

    memset(paras, 0, sizeof response.aucParas);
    if (answer->from == From::normalised) PreProc_Res_ParaLine(text);
    if (answer->from == From::whole)
        CopyCut(paras + record.fields[0].offset, record.fields[0].size, text);
    else if (answer->format != nullptr)
        Scan(text, *answer, response.aucParas);
    if (answer->from == From::normalised)
        for (size_t i = 0; i < ArgCount(answer->format, answer->args); ++i)
            RestoreField(paras, ArgRef(record, answer->args, i));
    response.usParaLen = answer->length != 0 ? answer->length : static_cast<uint16_t>(record.size);
    return true;
}

#ifndef AT_COMMANDS_ROW_H
#define AT_COMMANDS_ROW_H

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>

#include <array>

#include "commands/contract.h"
#include "text/scan.h"

// How a command is written down: a record as a plain struct (commands/records_*.h), its fields as a Record,
// and one Row in its domain's list (commands/rows_*.h). All of it is known to the compiler: the daemon keeps
// only formats, offsets and sizes (commands/row_codec.h), tools read all of it (commands/catalog.h).

// ---- Records
// -------------------------------------------------------------------------------------------------------

// A pointer that may be left out. Asked by its flag: whether the address of a variable is null is no constant
// expression for every compiler and every sanitizer.
template <typename Pointer>
struct Optional {
    Pointer pointer = nullptr;
    bool given = false;

    constexpr Optional() = default;
    constexpr Optional(Pointer p) : pointer(p), given(true) {}
    constexpr operator Pointer() const { return pointer; }
    constexpr auto& operator*() const { return *pointer; }
    constexpr Pointer operator->() const { return pointer; }
    friend constexpr bool operator==(const Optional& optional, decltype(nullptr)) { return !optional.given; }
};

struct Field {
    const char* name = nullptr;
    FieldType type = FieldType::i32;
    uint16_t offset = 0;  // bytes from the start of the record
    uint16_t size = 0;    // bytes, a text's NUL included
    const char* meaning = "";

    constexpr FieldRef Ref() const { return {offset, size, type}; }
};

inline constexpr size_t kMaxFields = 10;

struct Record {
    const char* name = nullptr;  // of the struct
    uint32_t size = 0;           // bytes
    size_t count = 0;
    Field fields[kMaxFields] = {};
    // A list: behind its fields stand `entry_count` records of this kind, from `entry_offset` on.
    Optional<const Record*> entry = {};
    uint32_t entry_offset = 0;
    uint32_t entry_count = 0;
};

// Reached only when a row is wrong: not constant, so that the compiler stops and shows the call.
void ThisOffsetIsNotWhereTheStructHasTheField();
void ThisSizeIsNotTheSizeOfTheStruct();
inline void TheRecordHasNoFieldOfThisName() {
    abort();
}

consteval Field MakeField(const char* name, FieldType type, size_t typed, size_t real, size_t size,
                          const char* meaning) {
    if (typed != real) ThisOffsetIsNotWhereTheStructHasTheField();
    return {name, type, static_cast<uint16_t>(typed), static_cast<uint16_t>(size), meaning};
}

template <size_t N>
consteval Record MakeRecord(const char* name, size_t typed, size_t real, const Field (&fields)[N]) {
    static_assert(N <= kMaxFields, "kMaxFields is too small for this record");
    if (typed != real) ThisSizeIsNotTheSizeOfTheStruct();
    Record record;
    record.name = name;
    record.size = static_cast<uint32_t>(typed);
    record.count = N;
    for (size_t i = 0; i < N; ++i)
        record.fields[i] = fields[i];
    return record;
}

consteval Record MakeList(Record record, const Record& entry, size_t offset, size_t count) {
    record.entry = &entry;
    record.entry_offset = static_cast<uint32_t>(offset);
    record.entry_count = static_cast<uint32_t>(count);
    return record;
}

// A record and its fields. The size and the offsets are typed by hand and compared with what the compiler
// made of the struct: two independent statements of a layout that other programs rely on.
//     inline constexpr Record kCmgdSetPara = AT_RECORD(AT_CMGD_SET_PARA_T, 8, AT_FIELD(index, 0, "..."),
//     ...);
#define AT_RECORD(Struct, bytes, ...)                                       \
    [] {                                                                    \
        using AtStruct = Struct;                                            \
        return MakeRecord(#Struct, bytes, sizeof(AtStruct), {__VA_ARGS__}); \
    }()
#define AT_FIELD(member, at, meaning)                                                             \
    MakeField(#member, FieldTypeOf<decltype(AtStruct::member)>(), at, offsetof(AtStruct, member), \
              sizeof(AtStruct::member), meaning)
// A text that may fill its array and then has no NUL.
#define AT_BYTES(member, at, meaning) \
    MakeField(#member, FieldType::bytes, at, offsetof(AtStruct, member), sizeof(AtStruct::member), meaning)

constexpr bool SameText(const char* a, const char* b) {
    while (*a != '\0' && *a == *b)
        ++a, ++b;
    return *a == *b;
}

constexpr const Field& FieldNamed(const Record& record, const char* name) {
    for (size_t i = 0; i < record.count; ++i)
        if (SameText(record.fields[i].name, name)) return record.fields[i];
    TheRecordHasNoFieldOfThisName();
    return record.fields[0];
}

// ---- Requests
// ------------------------------------------------------------------------------------------------------

inline constexpr size_t kMaxArgs = kMaxFields;
inline constexpr size_t kMaxForms = 6;
inline constexpr size_t kMaxConditions = 6;

// Names of fields, in the order of a format's conversions. Left empty: the record's first fields, in order.
struct Args {
    const char* names[kMaxArgs] = {};
};

enum class Test : uint8_t {
    present,
    absent,
    equals,
    at_least
};  // present: a non-empty text, an integer that is not 0

struct When {
    const char* field = nullptr;
    Test test = Test::present;
    int32_t value = 0;
};

struct Form {
    Optional<const char*> format = {};
    Args args = {};
    When when[kMaxConditions] = {};  // all of them
};

enum class EncodeKind : uint8_t {
    pending,  // not written yet: the line goes out without parameters
    absent,   // only reported by the modem, never sent
    none,     // takes no parameters
    record,   // SET with a record of exactly the stated size: the first form whose conditions hold is printed
    copy,     // the same with one text that is finished AT syntax
    dial,     // EXEC with the number as text
    custom,   // written by hand; `record` and `forms` tell what it does
};

struct EncodeSide {
    EncodeKind kind = EncodeKind::pending;
    Optional<const Record*> record = {};
    Form forms[kMaxForms] = {};
    Optional<const char*> log = {};  // behind a printed line; "%s" is the parameter text
    bool may_be_cut = false;  // the longest record makes more than 511 characters, and the rest is dropped
    Optional<Encoder> function = {};
};

// ---- Answers and reports
// -------------------------------------------------------------------------------------------

using Types = uint8_t;  // one bit for each command type
inline constexpr Types kExec = 1 << AT_CMD_TYPE_EXEC;
inline constexpr Types kSet = 1 << AT_CMD_TYPE_SET;
inline constexpr Types kRead = 1 << AT_CMD_TYPE_READ;
inline constexpr Types kTest = 1 << AT_CMD_TYPE_TEST;
inline constexpr Types kEveryType =
    0xff;  // reports are decoded under the type of whatever is pending, 0 included

enum class From : uint8_t {
    raw,         // the parameter text as it stands
    normalised,  // through PreProc_Res_ParaLine; the texts are restored afterwards
    whole,       // not scanned: the text is copied into the record's first field, cut
};

struct Log {
    Optional<const char*> format = {};
    Args args = {};  // fields of the decoded record
};

// What one set of types is answered with. Without a record: length 0, or a stated one that tells of bytes
// which do not travel. With a record but no format: zeros.
struct Answer {
    Types types = 0;
    Optional<const Record*> record = {};
    From from = From::raw;
    Optional<const char*> format = {};
    Args args = {};
    bool result_test = false;  // "OK": length 2; "retry operation", "network rejected request": nothing
    uint16_t length = 0;       // usParaLen where it is not the record's size
    bool told_as_0 = false;    // the record travels, but usParaLen does not count it; for people alone
    uint16_t carried = 0;      // bytes that travel where the record is larger than a message
    Optional<const char*> log_text = {};  // before scanning; "%s" is the text that is scanned
    Log log = {};                         // behind decoding
    Optional<const char*> file = {};      // the record travels in this file, not in the message
    const char* note = "";                // what else people have to know of it
};

enum class DecodeKind : uint8_t {
    pending,  // not written yet: changes nothing
    none,     // the result says everything
    answers,  // the first of `answers` that serves the type
    text,     // every type, or those of answers[0]: the whole text, its length without the NUL
    custom,   // written by hand; `answers` tell what it does
};

struct DecodeSide {
    DecodeKind kind = DecodeKind::pending;
    Answer answers[3] = {};
    Optional<Decoder> function = {};
};

// ---- Rows
// ----------------------------------------------------------------------------------------------------------

struct Row {
    int position = 0;  // in the search order, from 1
    uint16_t id = 0;
    const char* name = nullptr;
    const char* title = "";  // a few words for people
    const char* note = "";   // what else they have to know of it
    EncodeSide encode = {};
    DecodeSide decode = {};
};

// The commonest sides of a row.
inline constexpr EncodeSide kNoParameters = {.kind = EncodeKind::none};
inline constexpr EncodeSide kReportOnly = {.kind = EncodeKind::absent};
inline constexpr DecodeSide kResultOnly = {.kind = DecodeKind::none};
inline constexpr DecodeSide kWholeText = {.kind = DecodeKind::text};

// The size of a format's argument list, and the fields it names.
constexpr size_t ArgCount(const Optional<const char*>& format, const Args& args) {
    if (format == nullptr) return 0;
    if (args.names[0] == nullptr) return static_cast<size_t>(CountConversions(format));
    size_t count = 0;
    while (count < kMaxArgs && args.names[count] != nullptr)
        ++count;
    return count;
}

constexpr FieldRef ArgRef(const Record& record, const Args& args, size_t index) {
    if (args.names[0] != nullptr) return FieldNamed(record, args.names[index]).Ref();
    if (index >= record.count) TheRecordHasNoFieldOfThisName();
    return record.fields[index].Ref();
}

#endif

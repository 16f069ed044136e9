#ifndef AT_TOOLS_ATCTL_ANSWER_H
#define AT_TOOLS_ATCTL_ANSWER_H

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "commands/row.h"
#include "records/message.h"

// From the parameters of an answer to fields with names.

using FieldValue = std::variant<int32_t, uint64_t, float, std::string>;

struct Value {
    const Field* field;
    FieldValue value;
};

// What a file held, or why it could not be had.
struct FileContent {
    std::vector<uint8_t> bytes;
    std::string fault;
};
using FileReader = std::function<FileContent(const char* path, size_t size)>;

// Reads a file that was written since `not_before`, `size` bytes of it. Answers that are larger than a
// message travel in files, and an old file holds an earlier answer.
FileContent ReadAnswerFile(const char* path, size_t size, const timespec& not_before);

struct Decoded {
    uint8_t type = 0;
    uint8_t result = 0;
    uint16_t para_len = 0;
    const Record* record = nullptr;  // what the fields were read by; null when there were none
    std::vector<Value> fields;       // those that arrived whole
    std::vector<std::vector<Value>> entries;
    size_t entries_told = 0;   // which may be more than arrived
    std::string text;          // of an answer that is text
    std::vector<uint8_t> raw;  // of an answer that is neither
    const char* file = nullptr;
    std::string file_fault;
};

// The answer that a command's form has; null when it has none of its own.
const Answer* AnswerOf(const Row& row, uint8_t type);

// Tolerates everything: short records, lengths beyond the message, lists that tell more than they hold.
Decoded Decode(const Row& row, const _BK_AT_RES_T& answer, const FileReader& read_file);

// The fields of a record of which `bytes` are there; a text may be cut, other fields are whole or missing.
std::vector<Value> DecodeFields(const Record& record, std::span<const uint8_t> bytes);

#endif

#include "tools/atctl/answer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

namespace {

template <typename T>
T Get(const uint8_t* at) {
    T value;
    memcpy(&value, at, sizeof value);
    return value;
}

std::string TextAt(std::span<const uint8_t> bytes) {
    const auto end = std::find(bytes.begin(), bytes.end(), uint8_t{0});
    return {bytes.begin(), end};
}

// Without control characters but white space: what a modem says, rather than integers.
bool IsText(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x20 || byte == '\t' || byte == '\r' || byte == '\n';
    });
}

// Bytes of the record that the message carries, as far as they are meant.
size_t BytesThere(const Answer& answer, const _BK_AT_RES_T& res) {
    const size_t whole = std::min<size_t>(answer.record->size, AT_RESPONSE_PARAS_SIZE);
    size_t there = std::min<size_t>(res.usParaLen, whole);
    // Some answers tell a length that is not their record's.
    if (answer.length != 0 && res.usParaLen == answer.length) there = whole;
    // A decoder may leave the length alone though it fills the record.
    if (res.usParaLen == 0 &&
        std::any_of(res.aucParas, res.aucParas + whole, [](uint8_t byte) { return byte != 0; }))
        there = whole;
    if (answer.carried != 0) there = std::min<size_t>(there, answer.carried);
    return there;
}

void TakeText(const _BK_AT_RES_T& res, Decoded& decoded) {
    const size_t length = std::min<size_t>(res.usParaLen, AT_RESPONSE_PARAS_SIZE);
    const std::span<const uint8_t> bytes(res.aucParas, length);
    std::string text = TextAt(bytes);
    const bool padded = std::all_of(bytes.begin() + static_cast<ptrdiff_t>(text.size()), bytes.end(),
                                    [](uint8_t byte) { return byte == 0; });
    if (padded && IsText(text))
        decoded.text = std::move(text);
    else
        decoded.raw.assign(bytes.begin(), bytes.end());
}

void TakeRecord(const Record& record, std::span<const uint8_t> bytes, Decoded& decoded) {
    decoded.record = &record;
    decoded.fields = DecodeFields(record, bytes);
    if (record.entry == nullptr) return;
    decoded.entries_told = record.entry_count;
    for (const Value& value : decoded.fields)
        if (SameText(value.field->name, "count") && std::holds_alternative<int32_t>(value.value))
            decoded.entries_told = static_cast<size_t>(
                std::clamp<int64_t>(std::get<int32_t>(value.value), 0, record.entry_count));
    for (size_t i = 0; i < decoded.entries_told; ++i) {
        const size_t at = record.entry_offset + i * record.entry->size;
        if (at + record.entry->size > bytes.size()) break;
        decoded.entries.push_back(DecodeFields(*record.entry, bytes.subspan(at, record.entry->size)));
    }
}

// True when the parameters are what the modem said and not the record: errors, and results without a line of
// the command's own.
bool IsInWords(const Answer& answer, const _BK_AT_RES_T& res) {
    const size_t length = std::min<size_t>(res.usParaLen, AT_RESPONSE_PARAS_SIZE);
    const std::string text = TextAt({res.aucParas, length});
    const bool fills = !text.empty() && text.size() == length && IsText(text);
    // More text than there is record is a line that the server passed on unread.
    if (res.ucResult == AT_RESULT_OK)
        return fills && ((text == "OK" && answer.record->size != length) || length > answer.record->size);
    return fills || res.usParaLen == 0;
}

}  // namespace

const Answer* AnswerOf(const Row& row, uint8_t type) {
    switch (row.decode.kind) {
        case DecodeKind::answers:
        case DecodeKind::custom:
            for (const Answer& answer : row.decode.answers)
                if ((answer.types & (1U << type)) != 0) return &answer;
            return nullptr;
        default:
            return nullptr;
    }
}

std::vector<Value> DecodeFields(const Record& record, std::span<const uint8_t> bytes) {
    std::vector<Value> values;
    for (size_t i = 0; i < record.count; ++i) {
        const Field& field = record.fields[i];
        const bool is_text = field.type == FieldType::text || field.type == FieldType::bytes;
        const size_t needed = field.offset + (is_text ? size_t{1} : size_t{field.size});
        if (needed > bytes.size()) continue;
        const uint8_t* const at = bytes.data() + field.offset;
        switch (field.type) {
            case FieldType::i32:
                values.push_back({&field, Get<int32_t>(at)});
                break;
            case FieldType::u64:
                values.push_back({&field, Get<uint64_t>(at)});
                break;
            case FieldType::f32:
                values.push_back({&field, Get<float>(at)});
                break;
            default:
                values.push_back(
                    {&field, TextAt(bytes.subspan(
                                 field.offset, std::min<size_t>(field.size, bytes.size() - field.offset)))});
        }
    }
    return values;
}

Decoded Decode(const Row& row, const _BK_AT_RES_T& res, const FileReader& read_file) {
    Decoded decoded;
    decoded.type = res.ucCmdType;
    decoded.result = res.ucResult;
    decoded.para_len = res.usParaLen;
    const Answer* answer = AnswerOf(row, res.ucCmdType);
    const bool servers_own = res.ucResult == AT_RESULT_TIMEOUT || res.ucResult == AT_RESULT_BUSY;
    if (answer == nullptr || answer->record == nullptr || servers_own || IsInWords(*answer, res)) {
        TakeText(res, decoded);
        return decoded;
    }
    if (answer->file == nullptr) {
        TakeRecord(*answer->record, {res.aucParas, BytesThere(*answer, res)}, decoded);
        return decoded;
    }
    // The message only tells that the record is in its file.
    if (res.usParaLen != (answer->length != 0 ? answer->length : answer->record->size)) {
        TakeText(res, decoded);
        return decoded;
    }
    decoded.file = answer->file;
    decoded.record = answer->record;
    const FileContent content = read_file(answer->file, answer->record->size);
    decoded.file_fault = content.fault;
    if (content.fault.empty()) TakeRecord(*answer->record, content.bytes, decoded);
    return decoded;
}

FileContent ReadAnswerFile(const char* path, size_t size, const timespec& not_before) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return {{}, strerror(errno)};
    FileContent content;
    struct stat status = {};
    if (fstat(file, &status) != 0) {
        content.fault = strerror(errno);
    } else if (std::pair(status.st_mtim.tv_sec, status.st_mtim.tv_nsec) <
               std::pair(not_before.tv_sec, not_before.tv_nsec)) {
        content.fault =
            "it is older than this request: the list is empty now, or the server could not write it";
    } else {
        content.bytes.resize(size);
        size_t done = 0;
        while (done < size) {
            const ssize_t got = read(file, content.bytes.data() + done, size - done);
            if (got < 0 && errno == EINTR) continue;
            if (got < 0) content.fault = strerror(errno);
            if (got <= 0) break;
            done += static_cast<size_t>(got);
        }
        if (done < size && content.fault.empty())
            content.fault =
                "it holds " + std::to_string(done) + " bytes where " + std::to_string(size) + " belong";
        content.bytes.resize(done);
    }
    close(file);
    return content;
}

#include "tools/atctl/request.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

#include "tools/shared/exit_status.h"
#include "tools/shared/suggest.h"
#include "tools/shared/text.h"

namespace {

std::string ShellCall(const Row& row, uint8_t type) {
    return "atctl send " + ShellWord(CallName({&row, type}));
}

std::vector<std::string> FieldNames(const Record& record) {
    std::vector<std::string> names;
    for (size_t i = 0; i < record.count; ++i)
        names.emplace_back(record.fields[i].name);
    return names;
}

bool Prints(const Form& form, const Record& record, const Field& field) {
    for (size_t i = 0; i < ArgCount(form.format, form.args); ++i)
        if (ArgRef(record, form.args, i).offset == field.offset) return true;
    return false;
}

bool IsIdentifier(std::string_view text) {
    const auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    return !text.empty() && letter(text[0]) &&
           std::all_of(text.begin(), text.end(), [&](char c) { return letter(c) || (c >= '0' && c <= '9'); });
}

// A decimal number, or a hexadecimal one behind "0x". Whether it was a number at all, and in range.
enum class Parsed { fine, no_number, out_of_range };
template <typename T>
Parsed ParseInteger(std::string_view text, T& value) {
    const bool minus = text.starts_with('-');
    if (minus || text.starts_with('+')) text.remove_prefix(1);
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        base = 16;
        text.remove_prefix(2);
    }
    uint64_t magnitude = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, magnitude, base);
    if (fault == std::errc::invalid_argument || stop != end) return Parsed::no_number;
    constexpr auto most = static_cast<uint64_t>(std::numeric_limits<T>::max());
    const uint64_t limit = !minus ? most : std::is_signed_v<T> ? most + 1 : 0;
    if (fault == std::errc::result_out_of_range || magnitude > limit) return Parsed::out_of_range;
    value = static_cast<T>(minus ? uint64_t{0} - magnitude : magnitude);
    return Parsed::fine;
}

void CheckCharacters(const std::string& where, std::string_view text) {
    for (const char c : text)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
            throw Misuse(where + " holds the control character " + Printable(std::string_view(&c, 1)) +
                         ", which would break the line to the modem");
}

template <typename T>
void PutInteger(const std::string& where, const std::string& text, uint8_t* at) {
    T value = 0;
    switch (ParseInteger(text, value)) {
        case Parsed::no_number:
            throw Misuse(where + " is a number, not \"" + Printable(text) + "\"");
        case Parsed::out_of_range:
            throw Misuse(where + " is " + std::to_string(std::numeric_limits<T>::min()) + " to " +
                         std::to_string(std::numeric_limits<T>::max()) + "; " + Printable(text) +
                         " is out of range");
        case Parsed::fine:
            memcpy(at, &value, sizeof value);
    }
}

void PutField(const Call& call, const Field& field, const std::string& text, std::vector<uint8_t>& record) {
    const std::string where = CallName(call) + ": " + field.name;
    uint8_t* const at = record.data() + field.offset;
    switch (field.type) {
        case FieldType::i32:
            return PutInteger<int32_t>(where, text, at);
        case FieldType::u64:
            return PutInteger<uint64_t>(where, text, at);
        case FieldType::f32: {
            float value = 0;
            const auto [stop, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
            if (fault != std::errc() || stop != text.data() + text.size() || !std::isfinite(value))
                throw Misuse(where + " is a number, not \"" + Printable(text) + "\"");
            memcpy(at, &value, sizeof value);
            return;
        }
        case FieldType::text:
        case FieldType::bytes:
            CheckCharacters(where, text);
            if (text.size() > Capacity(field))
                throw Misuse(where + " holds at most " + Number(Capacity(field), "byte", "bytes") +
                             "; the text has " + std::to_string(text.size()));
            memcpy(at, text.data(), text.size());
    }
}

std::vector<uint8_t> BuildNumber(const Call& call, std::span<const std::string> arguments) {
    const std::string name = CallName(call);
    if (arguments.size() != 1)
        throw Misuse(name + " takes one telephone number; " + std::to_string(arguments.size()) +
                     " arguments were given, such as: " + ShellCall(*call.row, call.type) + " 5550123");
    std::string_view number = arguments[0];
    if (number.starts_with(std::string(kNumberField) + "="))
        number.remove_prefix(sizeof kNumberField);  // its NUL counts for the "="
    const std::string where = name + ": the number";
    CheckCharacters(where, number);
    if (number.empty()) throw Misuse(where + " is empty");
    if (number.find(';') != std::string_view::npos)
        throw Misuse(where + " stands without \";\", which the server adds");
    if (number.size() > kLongestNumber)
        throw Misuse(where + " has at most " + std::to_string(kLongestNumber) + " characters; this one has " +
                     std::to_string(number.size()));
    return {number.begin(), number.end()};
}

[[noreturn]] void RefuseArguments(const Call& call) {
    const std::string name = CallName(call);
    for (const uint8_t type : kTypes)
        if (RequestRecord(*call.row, type) != nullptr || TakesNumber(*call.row, type))
            throw Misuse(name + " takes no fields; its " + TypeName(type) +
                         " form does: " + ShellCall(*call.row, type) + " ...");
    throw Misuse(name + " takes no fields, in none of its forms");
}

// The fields in the order of the arguments.
std::vector<std::pair<const Field*, std::string>> Assign(const Call& call, const Record& record,
                                                         std::span<const std::string> arguments) {
    const std::string name = CallName(call);
    const std::string names = Join(FieldNames(record), " ");
    std::vector<std::pair<const Field*, std::string>> given;
    bool by_name = false;
    for (const std::string& argument : arguments) {
        const size_t equals = argument.find('=');
        const std::string word = argument.substr(0, equals);
        const Field* field = nullptr;
        if (equals != std::string::npos)
            for (size_t i = 0; i < record.count; ++i)
                if (word == record.fields[i].name) field = &record.fields[i];
        if (field != nullptr) {
            by_name = true;
            const bool twice = std::any_of(given.begin(), given.end(),
                                           [&](const auto& other) { return other.first == field; });
            if (twice) throw Misuse(name + ": " + word + " is given twice");
            given.emplace_back(field, argument.substr(equals + 1));
            continue;
        }
        const bool looks_named = equals != std::string::npos && IsIdentifier(word);
        if (looks_named)
            throw Misuse(name + " has no field \"" + word + "\"; its fields are " + names +
                         " (a text with \"=\" in it needs its field's name in front)" +
                         DidYouMean(word, FieldNames(record)));
        if (by_name)
            throw Misuse(name + ": \"" + Printable(argument) +
                         "\" stands behind a field given by name; values in order come first");
        if (given.size() == record.count)
            throw Misuse(name + " takes " + Number(record.count, "field", "fields") + " (" + names + "); " +
                         std::to_string(arguments.size()) + " were given");
        given.emplace_back(&record.fields[given.size()], argument);
    }
    return given;
}

}  // namespace

const Record* RequestRecord(const Row& row, uint8_t type) {
    if (type != AT_CMD_TYPE_SET) return nullptr;
    switch (row.encode.kind) {
        case EncodeKind::record:
        case EncodeKind::copy:
        case EncodeKind::custom:
            return row.encode.record;
        default:
            return nullptr;
    }
}

bool TakesNumber(const Row& row, uint8_t type) {
    return row.encode.kind == EncodeKind::dial && type == AT_CMD_TYPE_EXEC;
}

bool Required(const Row& row, const Field& field) {
    size_t forms = 0;
    size_t printing = 0;
    for (const Form& form : row.encode.forms) {
        if (form.format == nullptr) continue;
        ++forms;
        if (Prints(form, *row.encode.record, field)) ++printing;
    }
    return printing == 0 || printing == forms;
}

size_t Capacity(const Field& field) {
    return field.type == FieldType::text ? field.size - size_t{1} : field.size;
}

std::vector<uint8_t> BuildRequest(const Call& call, std::span<const std::string> arguments) {
    if (call.row->encode.kind == EncodeKind::absent)
        throw Misuse(CommandName(*call.row) + " is only reported by the modem; nobody can send it");
    if (TakesNumber(*call.row, call.type)) return BuildNumber(call, arguments);
    const Record* record = RequestRecord(*call.row, call.type);
    if (record == nullptr) {
        if (!arguments.empty()) RefuseArguments(call);
        return {};
    }
    std::vector<uint8_t> bytes(record->size);
    const auto given = Assign(call, *record, arguments);
    std::vector<std::string> missing;
    for (size_t i = 0; i < record->count; ++i) {
        const Field& field = record->fields[i];
        const bool found =
            std::any_of(given.begin(), given.end(), [&](const auto& one) { return one.first == &field; });
        if (!found && (Required(*call.row, field) || given.empty())) missing.emplace_back(field.name);
    }
    if (!missing.empty())
        throw Misuse(CallName(call) + " takes " + Number(record->count, "field", "fields") + " (" +
                     Join(FieldNames(*record), " ") + "); " + Join(missing, ", ") +
                     (missing.size() == 1 ? " is missing" : " are missing"));
    for (const auto& [field, text] : given)
        PutField(call, *field, text, bytes);
    return bytes;
}

#include "tools/atctl/print_answer.h"

#include <charconv>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

#include "tools/atctl/error_words.h"
#include "tools/atctl/find_command.h"

using Json = nlohmann::ordered_json;

namespace {

std::string PlainText(const Value& value) {
    return std::visit(
        [](const auto& plain) -> std::string {
            using T = std::decay_t<decltype(plain)>;
            if constexpr (std::is_same_v<T, std::string>)
                return Printable(plain);
            else if constexpr (std::is_same_v<T, float>) {
                char text[32];
                const auto end = std::to_chars(text, text + sizeof text, plain).ptr;
                return {text, end};
            } else
                return std::to_string(plain);
        },
        value.value);
}

// "of oper: 0 long name, 1 short name": the words behind one number. Empty when the meaning is not such a
// list, or does not have the number.
std::string_view WordsOf(std::string_view meaning, int32_t number) {
    const std::string digits = std::to_string(number) + " ";
    size_t begin = 0;
    if (const size_t colon = meaning.find(": "); colon != std::string_view::npos) begin = colon + 2;
    while (begin < meaning.size()) {
        size_t end = begin;
        // An item runs to the next comma with a number behind it.
        do {
            end = meaning.find(", ", end == begin ? begin : end + 1);
            if (end == std::string_view::npos) end = meaning.size();
        } while (end < meaning.size() && (meaning[end + 2] < '0' || meaning[end + 2] > '9'));
        std::string_view item = meaning.substr(begin, end - begin);
        if (item.starts_with(digits) && !item.substr(digits.size()).starts_with("to "))
            return item.substr(digits.size());
        begin = end + 2;
    }
    return {};
}

std::string_view WordsOf(const Value& value) {
    const auto* number = std::get_if<int32_t>(&value.value);
    return number == nullptr ? std::string_view() : WordsOf(value.field->meaning, *number);
}

void PrintEntries(std::ostream& out, const Decoded& decoded) {
    if (decoded.entries.empty()) return;
    Table table(2);
    std::vector<std::string> head;
    const Record& entry = *decoded.record->entry;
    for (size_t i = 0; i < entry.count; ++i)
        head.emplace_back(entry.fields[i].name);
    table.Row(std::move(head));
    for (const auto& values : decoded.entries) {
        std::vector<std::string> cells;
        for (const Value& value : values)
            cells.push_back(ValueText(value));
        table.Row(std::move(cells));
    }
    table.Print(out);
}

Json FieldsJson(const std::vector<Value>& values) {
    Json fields = Json::object();
    for (const Value& value : values)
        std::visit(
            [&](const auto& plain) {
                if constexpr (std::is_same_v<std::decay_t<decltype(plain)>, std::string>)
                    fields[value.field->name] = Printable(plain, Controls::keep);
                else
                    fields[value.field->name] = plain;
            },
            value.value);
    return fields;
}

}  // namespace

std::string HexText(const std::vector<uint8_t>& bytes) {
    std::string text;
    for (const uint8_t byte : bytes) {
        constexpr char kDigits[] = "0123456789abcdef";
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

std::string MeaningOf(const Value& value) {
    const std::string_view words = WordsOf(value);
    return std::string(words.empty() ? std::string_view(value.field->meaning) : words);
}

std::string ValueText(const Value& value) {
    std::string text = PlainText(value);
    if (const std::string_view words = WordsOf(value); !words.empty())
        text.append(" (").append(words).append(")");
    return text;
}

void PrintFields(std::ostream& out, const std::vector<Value>& values) {
    Table table(2);
    for (const Value& value : values) {
        const std::string meaning = MeaningOf(value);
        table.Row({value.field->name, PlainText(value), meaning.empty() ? "" : "(" + meaning + ")"});
    }
    table.Print(out);
}

void PrintAnswer(std::ostream& out, const Paint& paint, const Row& row, const Decoded& decoded) {
    const bool good = decoded.result == AT_RESULT_OK;
    const std::string name = CallName({&row, decoded.type});
    out << paint.Bold(name);
    if (*row.title != '\0') out << "  " << row.title;
    const std::string words = ResultWords(decoded.result);
    out << ": " << (good ? paint.Good(words) : paint.Bad(words)) << '\n';

    // That it went well is said already.
    if (!decoded.text.empty() && !(good && decoded.text == "OK")) {
        Table table(2);
        const std::string_view meaning = ErrorWords(decoded.result, decoded.text);
        table.Row({"text", Printable(decoded.text),
                   meaning.empty() ? "" : std::string("(").append(meaning).append(")")});
        table.Print(out);
    }
    if (!decoded.raw.empty()) {
        out << "  " << decoded.raw.size() << " bytes without a description:\n";
        PrintHex(out, decoded.raw);
    }
    PrintFields(out, decoded.fields);
    PrintEntries(out, decoded);
    if (decoded.entries.size() < decoded.entries_told && decoded.file_fault.empty())
        out << "  " << decoded.entries.size() << " of " << decoded.entries_told
            << " entries fit the message\n";
    if (!decoded.file_fault.empty())
        out << "  the answer is in the file " << decoded.file
            << ", which cannot be used: " << decoded.file_fault << '\n';
}

void AddContentJson(Json& json, const Decoded& decoded) {
    if (decoded.record != nullptr) {
        json["fields"] = FieldsJson(decoded.fields);
        if (decoded.record->entry != nullptr) {
            json["entries"] = Json::array();
            for (const auto& entry : decoded.entries)
                json["entries"].push_back(FieldsJson(entry));
        }
    }
    json["text"] = Printable(decoded.text, Controls::keep);
    if (const std::string_view meaning = ErrorWords(decoded.result, decoded.text); !meaning.empty())
        json["text_meaning"] = meaning;
    if (!decoded.raw.empty()) json["raw"] = HexText(decoded.raw);
    if (decoded.file != nullptr) json["file"] = decoded.file;
    if (!decoded.file_fault.empty()) json["file_error"] = decoded.file_fault;
    json["para_len"] = decoded.para_len;
}

Json AnswerJson(const Row& row, const Decoded& decoded) {
    Json json;
    json["command"] = row.name;
    json["type"] = TypeName(decoded.type);
    json["id"] = row.id;
    json["result"] = decoded.result;
    json["result_text"] = ResultWords(decoded.result);
    AddContentJson(json, decoded);
    return json;
}

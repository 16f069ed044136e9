#include "tools/atctl/print_answer.h"

#include <charconv>
#include <nlohmann/json.hpp>
#include <string_view>

#include "client/at_client.h"
#include "tools/atctl/error_words.h"
#include "tools/atctl/find_command.h"
#include "tools/atctl/meaning.h"
#include "tools/shared/table.h"
#include "tools/shared/text.h"

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

void PrintEntries(std::ostream& out, const Look& look, const Decoded& decoded) {
    if (decoded.entries.empty()) return;
    Table table(2);
    std::vector<std::string> head;
    const Record& entry = *decoded.record->entry;
    for (size_t i = 0; i < entry.count; ++i)
        head.emplace_back(entry.fields[i].name);
    table.Head(std::move(head));
    for (const auto& values : decoded.entries) {
        std::vector<std::string> cells;
        for (const Value& value : values)
            cells.push_back(ValueText(value));
        table.Row(std::move(cells));
    }
    if (look.width == 0 || table.Width() <= look.width) return table.Print(out, look);
    // Too wide to be read as a table: each entry for itself.
    for (size_t i = 0; i < decoded.entries.size(); ++i) {
        out << look.Bold("  entry " + std::to_string(i + 1)) << '\n';
        PrintFields(out, look, decoded.entries[i]);
    }
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

std::string ValueText(const Value& value) {
    std::string text = PlainText(value);
    if (const std::string_view words = WordsOf(value); !words.empty())
        text.append(" (").append(words).append(")");
    return text;
}

void PrintFields(std::ostream& out, const Look& look, const std::vector<Value>& values) {
    Table table(2);
    Table narrow(2);
    for (const Value& value : values) {
        const std::string meaning = MeaningOf(value);
        const std::string words = meaning.empty() ? "" : "(" + meaning + ")";
        const std::string text = PlainText(value);
        table.Row({value.field->name, text, words});
        narrow.Row({value.field->name, text.empty() ? words : text + "  " + words});
    }
    // A long value would push all the words aside.
    const bool fits = look.width == 0 || table.WidthBeforeLast() + kLeastRoom <= look.width;
    (fits ? table : narrow).Print(out, look);
}

void PrintAnswer(std::ostream& out, const Look& look, const Row& row, const Decoded& decoded) {
    const bool good = decoded.result == AT_RESULT_OK;
    const std::string name = CallName({&row, decoded.type});
    out << look.Bold(name);
    if (*row.title != '\0') out << "  " << row.title;
    const std::string words = at_client_result_text(decoded.result);
    out << ": " << (good ? look.Good(words) : look.Bad(words)) << '\n';

    // That it went well is said already.
    if (!decoded.text.empty() && !(good && decoded.text == "OK")) {
        Table table(2);
        const std::string_view meaning = ErrorWords(decoded.result, decoded.text);
        table.Row({"text", Printable(decoded.text),
                   meaning.empty() ? "" : std::string("(").append(meaning).append(")")});
        table.Print(out, look);
    }
    if (!decoded.raw.empty()) {
        out << "  " << decoded.raw.size() << " bytes without a description:\n";
        PrintHex(out, decoded.raw);
    }
    PrintFields(out, look, decoded.fields);
    PrintEntries(out, look, decoded);
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
    json["result_text"] = at_client_result_text(decoded.result);
    AddContentJson(json, decoded);
    return json;
}

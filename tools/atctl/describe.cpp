#include "tools/atctl/describe.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "commands/timeouts.h"
#include "reports/report_catalog.h"
#include "tools/atctl/answer.h"
#include "tools/atctl/find_command.h"
#include "tools/atctl/module_name.h"
#include "tools/atctl/request.h"
#include "tools/shared/table.h"
#include "tools/shared/text.h"

using Json = nlohmann::ordered_json;

namespace {

bool ReportOnly(const Row& row) {
    return row.encode.kind == EncodeKind::absent;
}

std::string TypeText(FieldType type) {
    switch (type) {
        case FieldType::i32:
            return "integer";
        case FieldType::u64:
            return "64-bit integer";
        case FieldType::f32:
            return "float";
        case FieldType::text:
            return "text";
        default:
            return "bytes";
    }
}

// Bytes that an answer tells; the whole record where it is in a file.
size_t AnswerLength(const Answer& answer) {
    if (answer.told_as_0) return 0;
    if (answer.length != 0) return answer.length;
    return answer.record == nullptr ? 0 : answer.record->size;
}

// Bytes that a form gives to those who read it.
size_t BytesGiven(const Answer& answer) {
    return answer.told_as_0 ? answer.record->size : AnswerLength(answer);
}

// The forms that are answered with the modem's text.
Types TextTypes(const Row& row) {
    if (row.decode.kind != DecodeKind::text) return 0;
    return row.decode.answers[0].types != 0 ? row.decode.answers[0].types : kEveryType;
}

bool GivesText(const Row& row, uint8_t type) {
    return (TextTypes(row) & (1U << type)) != 0;
}

// The line with the fields' names in the place of the values.
std::string LineText(const Row& row, const Form& form) {
    std::string line = std::string("AT") + row.name + "=";
    size_t next = 0;
    for (const char* at = form.format; *at != '\0';) {
        if (*at != '%') {
            line += *at++;
            continue;
        }
        Conversion conversion;
        at = ReadConversion(at, conversion);
        if (conversion.kind == '%') {
            line += '%';
            continue;
        }
        const FieldRef ref = ArgRef(*row.encode.record, form.args, next++);
        for (size_t i = 0; i < row.encode.record->count; ++i)
            if (row.encode.record->fields[i].offset == ref.offset)
                line.append("<").append(row.encode.record->fields[i].name).append(">");
        if (conversion.kind == 'x' || conversion.kind == 'l') line += " in hexadecimal";
    }
    return line;
}

std::string ConditionText(const Form& form) {
    std::vector<std::string> parts;
    for (const When& when : form.when) {
        if (when.field == nullptr) continue;
        const std::string field = when.field;
        switch (when.test) {
            case Test::present:
                parts.push_back(field + " is given");
                break;
            case Test::absent:
                parts.push_back(field + " is not given");
                break;
            case Test::equals:
                parts.push_back(field + " is " + std::to_string(when.value));
                break;
            case Test::at_least:
                parts.push_back(field + " is " + std::to_string(when.value) + " or more");
                break;
        }
    }
    return Join(parts, " and ");
}

// What a form takes and gives, in a few characters: "30 > 24", "> text", "number".
std::string Cell(const Row& row, uint8_t type) {
    if (ReportOnly(row)) return "";
    std::string cell;
    if (const Record* record = RequestRecord(row, type)) cell = std::to_string(record->size);
    if (TakesNumber(row, type)) cell = "number";
    std::string gives;
    if (GivesText(row, type)) gives = "text";
    if (const Answer* answer = AnswerOf(row, type); answer != nullptr && answer->record != nullptr)
        gives = answer->file != nullptr ? "file" : std::to_string(BytesGiven(*answer));
    if (!gives.empty()) cell += (cell.empty() ? "> " : " > ") + gives;
    return cell.empty() ? "-" : cell;
}

// The same in words.
std::string Exchange(const Row& row, uint8_t type) {
    std::vector<std::string> parts;
    if (const Record* record = RequestRecord(row, type))
        parts.push_back("takes " + Number(record->size, "byte", "bytes"));
    if (TakesNumber(row, type)) parts.emplace_back("takes a telephone number");
    const Answer* answer = AnswerOf(row, type);
    if (GivesText(row, type)) parts.emplace_back("gives text");
    if (answer != nullptr && answer->file != nullptr)
        parts.emplace_back("gives a file");
    else if (answer != nullptr && answer->record != nullptr)
        parts.push_back("gives " + Number(BytesGiven(*answer), "byte", "bytes") +
                        (answer->told_as_0 ? ", told as 0" : ""));
    else if (answer != nullptr && answer->length != 0)
        parts.push_back("tells " + Number(answer->length, "byte", "bytes") + " that do not travel");
    return Join(parts, ", ");
}

void PrintRecord(std::ostream& out, const Look& look, const Record& record, const Row* request_of) {
    Table table(4);
    table.Head({"offset", "size", "type", "name", "meaning"});
    for (size_t i = 0; i < record.count; ++i) {
        const Field& field = record.fields[i];
        std::string meaning = field.meaning;
        if (request_of != nullptr && !Required(*request_of, field))
            meaning += meaning.empty() ? "may be left out" : " (may be left out)";
        table.Row({std::to_string(field.offset), std::to_string(field.size), TypeText(field.type), field.name,
                   meaning});
    }
    table.Print(out, look);
    if (record.entry == nullptr) return;
    out << "    then from offset " << record.entry_offset << " up to " << record.entry_count << " times "
        << record.entry->name << ", " << record.entry->size << " bytes each:\n";
    PrintRecord(out, look, *record.entry, nullptr);
}

// The modules that get a report under this id, by name. There may be none: some lines are read into a record
// that is dropped then.
std::vector<std::string> ReportedTo(const Row& row) {
    std::vector<std::string> names;
    for (const ReportInfo* report : kReports) {
        const std::string name = NameOfModule(report->module);
        if (report->id == row.id && std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    }
    return names;
}

// What people have to know of an answer beside its record.
std::string NoteOn(const Answer& answer) {
    std::vector<std::string> notes;
    if (answer.result_test)
        notes.emplace_back(
            "after OK alone, which ends every set but a query, the answer is that text, 2 bytes");
    if (*answer.note != '\0') notes.emplace_back(answer.note);
    return Join(notes, "; ");
}

std::vector<std::string> TypeNames(Types types) {
    std::vector<std::string> names;
    for (const uint8_t type : kTypes)
        if ((types & (1U << type)) != 0) names.emplace_back(TypeName(type));
    return names;
}

std::string TypesText(Types types) {
    const std::vector<std::string> names = TypeNames(types);
    return names.size() == std::size(kTypes) ? "every form" : Join(names, ", ");
}

void PrintNote(std::ostream& out, const Look& look, const std::string& note) {
    if (note.empty()) return;
    Table table(2);
    table.Row({"note", note});
    table.Print(out, look);
}

void PrintAnswers(std::ostream& out, const Look& look, const Row& row) {
    const bool own = row.decode.kind == DecodeKind::answers || row.decode.kind == DecodeKind::custom;
    const char* const what = ReportOnly(row) ? "report" : "answer";
    const auto head = [&](Types types) {
        out << "\n" << what;
        if (!ReportOnly(row)) out << " to " << TypesText(types);
    };
    if (row.decode.kind == DecodeKind::text) {
        head(TextTypes(row));
        out << ": the modem's text\n";
    }
    if (row.decode.kind == DecodeKind::none && !ReportOnly(row))
        out << "\nanswer: the result; after OK alone with that text, 2 bytes\n";
    if (!own) return;
    for (const Answer& answer : row.decode.answers) {
        if (answer.types == 0) continue;
        head(answer.types);
        if (answer.record == nullptr) {
            if (answer.length == 0)
                out << ": the result alone\n";
            else
                out << ": the result, told as " << Number(answer.length, "byte", "bytes")
                    << " that do not travel\n";
            PrintNote(out, look, NoteOn(answer));
            continue;
        }
        out << ": " << answer.record->name << ", " << Number(answer.record->size, "byte", "bytes");
        if (AnswerLength(answer) != answer.record->size) out << ", told as " << AnswerLength(answer);
        if (answer.carried != 0) out << ", the first " << answer.carried << " in the message";
        if (answer.file != nullptr) out << ", in the file " << answer.file;
        if (ReportOnly(row) && ReportedTo(row).empty())
            out << ": what the server makes of the line, which no module receives";
        out << "\n";
        PrintNote(out, look, NoteOn(answer));
        PrintRecord(out, look, *answer.record, nullptr);
    }
}

void PrintForms(std::ostream& out, const Look& look, const Row& row) {
    Table table(2);
    for (const Form& form : row.encode.forms) {
        if (form.format == nullptr) continue;
        const std::string when = ConditionText(form);
        table.Row({LineText(row, form), when.empty() ? "" : "when " + when});
    }
    const bool one = row.encode.forms[1].format == nullptr;
    out << (one ? "\nline\n" : "\nline, the first that fits\n");
    table.Print(out, look);
}

Json FieldsJson(const Record& record, const Row* request_of) {
    Json fields = Json::array();
    for (size_t i = 0; i < record.count; ++i) {
        const Field& field = record.fields[i];
        Json one = {{"name", field.name},
                    {"offset", field.offset},
                    {"size", field.size},
                    {"type", TypeText(field.type)},
                    {"meaning", field.meaning}};
        if (request_of != nullptr) one["required"] = Required(*request_of, field);
        fields.push_back(std::move(one));
    }
    return fields;
}

Json TypesJson(const Row& row) {
    Json types = Json::object();
    for (const uint8_t type : kTypes) {
        Json one = Json::object();
        const Record* record = RequestRecord(row, type);
        one["request"] = record == nullptr ? 0 : record->size;
        if (TakesNumber(row, type)) {
            one["number"] = true;
            one["longest"] = kLongestNumber;
        }
        const Answer* answer = AnswerOf(row, type);
        one["answer"] = answer == nullptr ? 0 : AnswerLength(*answer);
        if (GivesText(row, type)) one["text"] = true;
        if (answer != nullptr && answer->file != nullptr) one["file"] = answer->file;
        types[TypeName(type)] = std::move(one);
    }
    return types;
}

Json HeadJson(const Row& row) {
    return {{"id", row.id},
            {"name", row.name},
            {"title", row.title},
            {"position", row.position},
            {"report_only", ReportOnly(row)}};
}

}  // namespace

Json RecordJson(const Record& record, const Row* request_of) {
    Json json = {{"record", record.name}, {"size", record.size}, {"fields", FieldsJson(record, request_of)}};
    if (record.entry != nullptr)
        json["entries"] = {{"record", record.entry->name},
                           {"offset", record.entry_offset},
                           {"count", record.entry_count},
                           {"size", record.entry->size},
                           {"fields", FieldsJson(*record.entry, nullptr)}};
    return json;
}

void PrintList(std::ostream& out, const Look& look, std::span<const Row* const> rows) {
    constexpr size_t kId = 6;
    constexpr size_t kName = 16;
    constexpr size_t kTitle = 32;
    constexpr size_t kCell = 9;
    constexpr size_t kForms = 4 * (kCell + 1);
    const bool terminal = look.width != 0;
    // Names and titles that are longer than their columns push the rest of their line aside in a file, which
    // has a line for each command, and are continued below on a terminal.
    const bool forms = !terminal || look.width >= kId + 1 + kName + 1 + kTitle + kForms;
    size_t title_width = kTitle;
    if (terminal && !forms) title_width = std::max(look.width, kId + kName + 16) - kId - kName - 2;
    const auto pad = [](std::string text, size_t width) {
        text.resize(std::max(text.size(), width), ' ');
        return text + " ";
    };
    const auto print = [&](std::string line, const std::string& last, const auto& style) {
        line += last;
        line.erase(line.find_last_not_of(' ') + 1);
        out << style(line) << "\n";
    };
    const auto plain = [](const std::string& text) { return text; };
    std::string head = pad("ID", kId) + pad("NAME", kName) + pad("TITLE", title_width);
    if (forms) head += pad("EXECUTE", kCell) + pad("SET", kCell) + pad("READ", kCell) + "TEST";
    print(head, "", [&](const std::string& text) { return look.Bold(text); });
    for (const Row* row : rows) {
        const std::string name = CommandName(*row);
        std::string line = pad(HexNumber(row->id), kId);
        if (terminal && name.size() > kName) {
            print(line, name, plain);
            line = pad("", kId) + pad("", kName);
        } else {
            line += pad(name, kName);
        }
        std::vector<std::string> titles = {row->title};
        if (terminal) titles = Wrap(row->title, title_width);
        std::string cells;
        if (forms && ReportOnly(*row))
            cells = "report only";
        else if (forms)
            for (const uint8_t type : kTypes)
                cells += pad(Cell(*row, type), kCell);
        for (const std::string& title : titles) {
            print(line + pad(title, title_width), cells, plain);
            line = pad("", kId) + pad("", kName);
            cells.clear();
        }
    }
    if (terminal && forms)
        out << look.Dim(
                   "Under each form: bytes of the request > bytes of the answer (number: a telephone "
                   "number,\n"
                   "text: the modem's own words, file: a list in a file, -: nothing but the result).")
            << "\n";
}

Json ListJson(std::span<const Row* const> rows) {
    Json list = Json::array();
    for (const Row* row : rows) {
        Json one = HeadJson(*row);
        if (!ReportOnly(*row)) one["types"] = TypesJson(*row);
        list.push_back(std::move(one));
    }
    return list;
}

void PrintCommand(std::ostream& out, const Look& look, const Row& row) {
    out << look.Bold(CommandName(row));
    if (*row.title != '\0') out << "  " << row.title;
    out << "\n";
    Table head(2);
    head.Row({"id", HexNumber(row.id)});
    head.Row({"position", std::to_string(row.position) + " of " + std::to_string(Commands().size()) +
                              " in the search order"});
    if (ReportOnly(row)) {
        head.Row({"sent", "never; the modem reports it"});
        const std::vector<std::string> modules = ReportedTo(row);
        head.Row({"reported", modules.empty() ? "to no module" : "to the module " + Join(modules, ", ")});
    } else {
        head.Row({"time-out", std::to_string(TimeoutSeconds(row.id)) + " s"});
        for (const uint8_t type : kTypes) {
            head.Row({TypeName(type), std::string("AT") + row.name + Suffix(type), Exchange(row, type)});
        }
        head.Row({"example", ExampleCall(row)});
    }
    if (*row.note != '\0') head.Row({"note", row.note});
    head.Print(out, look);

    for (const uint8_t type : kTypes) {
        if (TakesNumber(row, type))
            out << "\nrequest with " << TypeName(type) << ": a telephone number, 1 to " << kLongestNumber
                << " characters; the server adds \";\"\n";
        const Record* record = RequestRecord(row, type);
        if (record == nullptr) continue;
        out << "\nrequest with " << TypeName(type) << ": " << record->name << ", "
            << Number(record->size, "byte", "bytes") << "\n";
        PrintRecord(out, look, *record, &row);
        if (row.encode.forms[0].format != nullptr) PrintForms(out, look, row);
    }
    PrintAnswers(out, look, row);
}

Json CommandJson(const Row& row) {
    Json json = HeadJson(row);
    if (!ReportOnly(row)) {
        json["timeout"] = TimeoutSeconds(row.id);
        json["types"] = TypesJson(row);
        json["example"] = ExampleCall(row);
    } else {
        json["reported_to"] = ReportedTo(row);
    }
    if (*row.note != '\0') json["note"] = row.note;
    if (const Record* record = RequestRecord(row, AT_CMD_TYPE_SET)) {
        json["request"] = RecordJson(*record, &row);
        json["request"]["lines"] = Json::array();
        for (const Form& form : row.encode.forms)
            if (form.format != nullptr)
                json["request"]["lines"].push_back(
                    {{"format", form.format}, {"line", LineText(row, form)}, {"when", ConditionText(form)}});
    }
    json["answers"] = Json::array();
    if (row.decode.kind == DecodeKind::text)
        json["answers"].push_back({{"types", TypeNames(TextTypes(row))}, {"text", true}});
    for (const Answer& answer : row.decode.answers) {
        if (answer.types == 0 || row.decode.kind == DecodeKind::text) continue;
        Json one = {{"types", TypeNames(answer.types)}, {"length", AnswerLength(answer)}};
        if (answer.carried != 0) one["carried"] = answer.carried;
        if (answer.file != nullptr) one["file"] = answer.file;
        if (const std::string note = NoteOn(answer); !note.empty()) one["note"] = note;
        if (answer.record != nullptr) one.update(RecordJson(*answer.record, nullptr));
        json["answers"].push_back(std::move(one));
    }
    return json;
}

std::string ExampleCall(const Row& row) {
    if (ReportOnly(row)) return {};
    const auto call = [&](uint8_t type) { return "atctl send " + ShellWord(CallName({&row, type})); };
    for (const uint8_t type : kTypes) {
        if (TakesNumber(row, type)) return call(type) + " 5550123";
        const Record* record = RequestRecord(row, type);
        if (record == nullptr) continue;
        std::string text = call(type);
        bool in_order = true;
        size_t given = 0;
        const auto add = [&](const Field& field) {
            const bool is_text = field.type == FieldType::text || field.type == FieldType::bytes;
            const std::string value = is_text ? std::string(field.name).substr(0, Capacity(field)) : "1";
            text += " " + (in_order ? ShellWord(value) : std::string(field.name) + "=" + ShellWord(value));
            ++given;
        };
        for (size_t i = 0; i < record->count; ++i) {
            if (Required(row, record->fields[i]))
                add(record->fields[i]);
            else
                in_order = false;
        }
        if (given == 0)
            for (size_t i = 0; i < record->count; ++i)
                add(record->fields[i]);
        return text;
    }
    // The form that is answered with something.
    for (const uint8_t type : kTypes)
        if (const Answer* answer = AnswerOf(row, type); answer != nullptr && answer->record != nullptr)
            return call(type);
    return call(AT_CMD_TYPE_EXEC);
}

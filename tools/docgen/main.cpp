#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <string_view>

#include "reports/report_catalog.h"
#include "tools/atctl/describe.h"
#include "tools/atctl/find_command.h"
#include "tools/atctl/module_name.h"
#include "tools/shared/text.h"

// Writes the references as Markdown: of all commands, which is what `atctl show --json` tells of each, and of
// all reports, which is what the server's catalogue of them says.

using Json = nlohmann::ordered_json;

namespace {

// A bar would end the cell of a table.
std::string Cell(std::string_view text) {
    std::string cell;
    for (const char c : text) {
        if (c == '|') cell += '\\';
        cell += c;
    }
    return cell;
}

void Fields(std::ostream& out, const Json& fields, bool request) {
    out << "\n| offset | size | type | name | meaning |\n|---|---|---|---|---|\n";
    for (const Json& field : fields) {
        std::string meaning = field["meaning"];
        if (request && !field["required"].get<bool>()) meaning += " (may be left out)";
        out << "| " << field["offset"] << " | " << field["size"] << " | " << field["type"].get<std::string>()
            << " | `" << field["name"].get<std::string>() << "` | " << Cell(meaning) << " |\n";
    }
}

void RecordOf(std::ostream& out, const Json& record, bool request) {
    Fields(out, record["fields"], request);
    if (!record.contains("entries")) return;
    const Json& entries = record["entries"];
    out << "\nFrom offset " << entries["offset"] << " on up to " << entries["count"] << " times `"
        << entries["record"].get<std::string>() << "`, " << entries["size"] << " bytes each:\n";
    Fields(out, entries["fields"], false);
}

std::string Bytes(const Json& count) {
    return Number(count.get<size_t>(), "byte", "bytes");
}

// As a sentence.
void Note(std::ostream& out, const Json& of) {
    if (!of.contains("note")) return;
    std::string note = of["note"];
    note[0] = static_cast<char>(toupper(static_cast<unsigned char>(note[0])));
    out << "\n" << Cell(note) << ".\n";
}

void Command(std::ostream& out, const Row& row) {
    const Json command = CommandJson(row);
    out << "\n## `" << CommandName(row) << "`" << (*row.title == '\0' ? "" : " ") << row.title << "\n\n"
        << HexNumber(row.id) << ", row " << row.position << ".";
    const bool report = command["report_only"];
    const bool received = report && !command["reported_to"].empty();
    if (received)
        out << " Only reported by the modem, never sent; goes to the module `"
            << Join(command["reported_to"].get<std::vector<std::string>>(), "`, `") << "`.\n";
    else if (report)
        out << " Only reported by the modem, never sent; no module receives it under this id.\n";
    else
        out << " Time-out " << command["timeout"] << " s. Example: `" << command["example"].get<std::string>()
            << "`\n";

    Note(out, command);
    if (command.contains("request")) {
        const Json& request = command["request"];
        out << "\n**Request with set**: `" << request["record"].get<std::string>() << "`, "
            << Bytes(request["size"]) << ".\n";
        RecordOf(out, request, true);
        for (const Json& line : request["lines"]) {
            out << "\n- `" << line["line"].get<std::string>() << "`";
            if (const std::string when = line["when"]; !when.empty()) out << " when " << when;
        }
        if (!request["lines"].empty()) out << "\n";
    }
    if (!report && command["types"]["execute"].contains("number"))
        out << "\n**Request with execute**: a telephone number, 1 to "
            << command["types"]["execute"]["longest"]
            << " characters without a NUL; of a longer one the rest is\ncut, and a different number is "
               "dialled. "
               "The server adds `;`.\n";
    for (const Json& answer : command["answers"]) {
        out << "\n**" << (report ? "Report" : "Answer");
        if (!report) {
            std::vector<std::string> types = answer["types"];
            out << " to " << (types.size() == std::size(kTypes) ? "every form" : Join(types, ", "));
        }
        out << "**: ";
        if (!answer.contains("record")) {
            if (answer.contains("text"))
                out << "the modem's text.\n";
            else if (answer["length"] == 0)
                out << "the result alone.\n";
            else
                out << "the result, told as " << Bytes(answer["length"]) << " that do not travel.\n";
            Note(out, answer);
            continue;
        }
        out << "`" << answer["record"].get<std::string>() << "`, " << Bytes(answer["size"]);
        if (answer["length"] != answer["size"]) out << ", told as " << answer["length"];
        if (answer.contains("carried")) out << ", the first " << answer["carried"] << " in the message";
        if (answer.contains("file")) out << ", in the file `" << answer["file"].get<std::string>() << "`";
        if (report && !received) out << ": what the server makes of the line, which no module receives";
        out << ".\n";
        Note(out, answer);
        RecordOf(out, answer, false);
    }
}

void CommandReference(std::ostream& out) {
    out << "# Commands\n\n"
           "Generated from the rows of the command table; `docgen commands docs/commands.md` writes it "
           "anew.\n\n"
           "Integers are in host byte order. A text ends with a NUL, bytes may fill their array. An empty "
           "text or "
           "a zero\nmeans \"not given\".\n\n"
           "A form whose request is not named takes nothing. An answer that is not named is not read: after "
           "the modem's bare OK\n`usParaLen` is 2 and `aucParas` holds the text `OK`; when the modem said a "
           "line of the command's own name, `usParaLen`\nis 0. It is 0 as well where the answer is the "
           "result "
           "alone. A record that is read from a bare OK has zeros for numbers.\n\n"
           "| id | name | title |\n|---|---|---|\n";
    for (const Row& row : Commands())
        out << "| " << HexNumber(row.id) << " | `" << Cell(CommandName(row)) << "` | " << Cell(row.title)
            << " |\n";
    for (const Row& row : Commands())
        Command(out, row);
}

std::string NameOfType(uint8_t type) {
    switch (type) {
        case AT_CMD_TYPE_EXEC:
            return "execute";
        case AT_CMD_TYPE_SET:
            return "set";
        default:
            return "";
    }
}

void OneReport(std::ostream& out, const ReportInfo& report) {
    const std::string type = NameOfType(report.type);
    out << "\n### `" << report.name << "` " << report.title << "\n\nCommand " << HexNumber(report.id)
        << ", type " << int{report.type} << (type.empty() ? "" : " (" + type + ")") << ". ";
    const auto note = [&] {
        if (*report.note != '\0') out << "\n" << report.note << "\n";
    };
    if (report.record == nullptr) {
        out << "Text.\n";
        note();
        return;
    }
    const Json record = RecordJson(*report.record, nullptr);
    out << "`" << record["record"].get<std::string>() << "`, " << Bytes(record["size"]);
    if (report.file != nullptr) out << ", in the file `" << report.file << "`";
    out << ".\n";
    RecordOf(out, record, false);
    note();
}

void ReportReference(std::ostream& out) {
    out << "# Reports\n\n"
           "Generated from the catalogue of reports; `docgen reports docs/reports.md` writes it anew.\n\n"
           "What the modem says without being asked goes to the queue of one module. Such a message looks "
           "like "
           "an answer that\nnobody asked for: message type 1, `usDataLen` 518, result 1 (4 when USSD "
           "failed), "
           "command and type as listed here.\nIntegers are in host byte order, a text ends with a NUL. Where "
           "no record is named, `aucParas` is text of\n`usParaLen` characters, as the modem said it; that of "
           "toolkit events is what follows their name.\n\n"
           "A module that has no queue misses its reports: each is dropped with a line in the log. `atctl "
           "monitor` shows them in\nplace of the modules.\n";
    for (const ModuleName& module : ReportedModules()) {
        out << "\n## To the module `" << module.name << "`, queue " << HexNumber(module.id) << "\n";
        for (const ReportInfo* report : kReports)
            if (report->module == module.id) OneReport(out, *report);
    }
}

// A command's or a report's name as part of a C name. Lines of the modem's debugger have the word that they
// begin with.
std::string PlainName(const std::string& name) {
    const bool debug = name.starts_with("!=");
    std::string plain = debug ? "DEBUG_" : "";
    for (const char c : name.substr(std::min(name.find_first_not_of("+^$%!=\""), name.size()))) {
        if (c == '"' || (debug && c == ' ')) break;
        plain += isalnum(static_cast<unsigned char>(c)) ? static_cast<char>(toupper(c)) : '_';
    }
    return plain;
}

void CommandIds(std::ostream& out) {
    struct Meaning {
        std::string name;
        std::string_view title;
    };
    // A command may have two rows, of which the second is never found; and most reports have no row.
    std::map<uint16_t, Meaning> ids;
    for (const Row& row : Commands())
        ids.insert({row.id, {CommandName(row), row.title}});
    for (const ReportInfo* report : kReports)
        ids.insert({report->id, {report->name, report->title}});
    std::map<std::string, int> uses;
    for (const auto& [id, meaning] : ids)
        ++uses[PlainName(meaning.name)];

    out << "#ifndef AT_COMMANDS_COMMAND_IDS_H\n#define AT_COMMANDS_COMMAND_IDS_H\n\n"
           "/* The ids of all commands and reports, for usCmdID. Usable from C11 and C++.\n"
           " * Generated from the command table and the catalogue of reports;\n * `docgen ids "
           "commands/command_ids.h` writes it anew. */\n\n/* clang-format off */\nenum {\n";
    for (const auto& [id, meaning] : ids) {
        // Two names that differ in their first sign alone are told apart by it.
        const std::string plain = PlainName(meaning.name);
        const char* const sign = uses[plain] > 1 && meaning.name[0] == '^' ? "CARET_" : "";
        out << "    AT_ID_" << std::left << std::setw(24) << sign + plain << " = " << HexNumber(id)
            << (id == ids.rbegin()->first ? " " : ",") << " /* " << meaning.name;
        if (!meaning.title.empty()) out << ": " << meaning.title;
        out << " */\n";
    }
    out << "};\n/* clang-format on */\n\n#endif\n";
}

struct Page {
    std::string_view name;
    void (*write)(std::ostream& out);
};
constexpr Page kPages[] = {{"commands", CommandReference}, {"reports", ReportReference}, {"ids", CommandIds}};

}  // namespace

int main(int argc, char** argv) {
    const bool check = argc == 4 && std::string_view(argv[1]) == "--check";
    const std::string_view name = argc > 2 ? argv[check ? 2 : 1] : "";
    const auto* const page = std::ranges::find(kPages, name, &Page::name);
    if (argc != (check ? 4 : 3) || page == std::end(kPages)) {
        std::cerr << "Usage: docgen PAGE FILE          writes a reference; PAGE is commands, reports or ids\n"
                     "       docgen --check PAGE FILE  ends with 1 when FILE is not what would be written\n";
        return 2;
    }
    const char* const path = argv[argc - 1];
    std::ostringstream made;
    page->write(made);
    if (check) {
        std::ifstream file(path, std::ios::binary);
        std::ostringstream there;
        there << file.rdbuf();
        if (there.str() == made.str()) return 0;
        std::cerr << "docgen: " << path << " is out of date; docgen " << name << " " << path
                  << " writes it anew\n";
        return 1;
    }
    std::ofstream file(path, std::ios::binary);
    file << made.str();
    if (!file.flush()) {
        std::perror(path);
        return 2;
    }
    return 0;
}

#include <cstdio>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <string_view>

#include "tools/atctl/describe.h"
#include "tools/atctl/find_command.h"
#include "tools/atctl/text.h"

// Writes the reference of all commands, which is what `atctl show --json` tells of each, as Markdown.

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

void Command(std::ostream& out, const Row& row) {
    const Json command = CommandJson(row);
    out << "\n## `" << CommandName(row) << "`" << (*row.title == '\0' ? "" : " ") << row.title << "\n\n"
        << HexNumber(row.id) << ", row " << row.position << ".";
    const bool report = command["report_only"];
    if (report)
        out << " Only reported by the modem, never sent.\n";
    else
        out << " Time-out " << command["timeout"] << " s. Example: `" << command["example"].get<std::string>()
            << "`\n";

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
        out << "\n**Request with execute**: a telephone number.\n";
    if (row.decode.kind == DecodeKind::text)
        out << "\n**" << (report ? "Report" : "Answer") << "**: the modem's text.\n";
    for (const Json& answer : command["answers"]) {
        out << "\n**" << (report ? "Report" : "Answer");
        if (!report) {
            std::vector<std::string> types = answer["types"];
            out << " to " << (types.size() == std::size(kTypes) ? "every form" : Join(types, ", "));
        }
        out << "**: ";
        if (!answer.contains("record")) {
            out << "the result alone.\n";
            continue;
        }
        out << "`" << answer["record"].get<std::string>() << "`, " << Bytes(answer["size"]);
        if (answer["length"] != answer["size"]) out << ", told as " << answer["length"];
        if (answer.contains("carried")) out << ", the first " << answer["carried"] << " in the message";
        if (answer.contains("file")) out << ", in the file `" << answer["file"].get<std::string>() << "`";
        out << ".\n";
        RecordOf(out, answer, false);
    }
}

void Reference(std::ostream& out) {
    out << "# Commands\n\n"
           "Generated from the rows of the command table; `docgen docs/commands.md` writes it anew.\n\n"
           "Integers are in host byte order. A text ends with a NUL, bytes may fill their array. An empty "
           "text or "
           "a zero\nmeans \"not given\". A form that is not named takes nothing and is answered with the "
           "result "
           "alone.\n\n"
           "| id | name | title |\n|---|---|---|\n";
    for (const Row& row : Commands())
        out << "| " << HexNumber(row.id) << " | `" << Cell(CommandName(row)) << "` | " << Cell(row.title)
            << " |\n";
    for (const Row& row : Commands())
        Command(out, row);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string option = argc > 1 ? argv[1] : "";
    const bool check = option == "--check";
    if (argc != (check ? 3 : 2) || (!check && option.starts_with("-"))) {
        std::cerr << "Usage: docgen FILE          writes the command reference\n"
                     "       docgen --check FILE  ends with 1 when it is not what would be written\n";
        return 2;
    }
    const char* const path = argv[argc - 1];
    std::ostringstream made;
    Reference(made);
    if (check) {
        std::ifstream file(path, std::ios::binary);
        std::ostringstream there;
        there << file.rdbuf();
        if (there.str() == made.str()) return 0;
        std::cerr << "docgen: " << path << " is out of date; docgen " << path << " writes it anew\n";
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

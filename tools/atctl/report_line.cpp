#include "tools/atctl/report_line.h"

#include <algorithm>
#include <cstring>
#include <nlohmann/json.hpp>

#include "client/at_client.h"
#include "records/message.h"
#include "records/report.h"
#include "tools/atctl/error_words.h"
#include "tools/atctl/find_command.h"
#include "tools/atctl/module_name.h"
#include "tools/atctl/print_answer.h"
#include "tools/shared/text.h"

using Json = nlohmann::ordered_json;

namespace {

constexpr long kReportType = 1;

// The report's record as a command's answer, which is what decodes it.
Row AsCommand(const ReportInfo& report, const _BK_AT_RES_T& res) {
    Row row;
    row.id = report.id;
    row.name = report.name;
    row.decode.kind = DecodeKind::answers;
    Answer& answer = row.decode.answers[0];
    answer.types = kEveryType;
    // A report that is only sometimes a record is text when its length is another.
    const bool is_record = report.record != nullptr && res.usParaLen == report.record->size;
    if (is_record) answer.record = report.record;
    if (is_record) answer.file = report.file;
    return row;
}

const Row* CommandOf(uint16_t id) {
    const auto commands = Commands();
    const auto found =
        std::find_if(commands.begin(), commands.end(), [id](const Row& row) { return row.id == id; });
    return found == commands.end() ? nullptr : &*found;
}

const char* KindName(Arrival::Kind kind) {
    switch (kind) {
        case Arrival::Kind::report:
            return "report";
        case Arrival::Kind::answer:
            return "answer";
        case Arrival::Kind::unknown:
            return "unknown";
        case Arrival::Kind::foreign:
            break;
    }
    return "foreign";
}

}  // namespace

std::string ClockTime(const timespec& time) {
    tm parts = {};
    localtime_r(&time.tv_sec, &parts);
    char text[32];
    snprintf(text, sizeof text, "%02d:%02d:%02d.%03ld", parts.tm_hour, parts.tm_min, parts.tm_sec,
             time.tv_nsec / 1'000'000);
    return text;
}

std::string UtcTime(const timespec& time) {
    tm parts = {};
    gmtime_r(&time.tv_sec, &parts);
    char date[32];
    strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &parts);
    char text[48];
    snprintf(text, sizeof text, "%s.%03ldZ", date, time.tv_nsec / 1'000'000);
    return text;
}

std::string ContentText(const Decoded& content) {
    std::string line;
    for (const Value& value : content.fields) {
        // An empty text is a field that the modem did not tell.
        const auto* text = std::get_if<std::string>(&value.value);
        if (text != nullptr && text->empty()) continue;
        line.append("  ").append(value.field->name).append(" ").append(ValueText(value));
    }
    if (content.record != nullptr && content.record->entry != nullptr)
        line += "  entries " + std::to_string(content.entries.size());
    // Lines of the modem come with their line breaks, which say nothing here.
    std::string text = content.text;
    while (!text.empty() && (text.back() == '\r' || text.back() == '\n'))
        text.pop_back();
    if (!text.empty()) {
        line += "  \"" + Printable(text) + "\"";
        if (const std::string_view meaning = ErrorWords(content.result, content.text); !meaning.empty())
            line.append(" (").append(meaning).append(")");
    }
    if (!content.raw.empty()) line += "  bytes " + HexText(content.raw);
    if (!content.file_fault.empty())
        line.append("  in the file ").append(content.file).append(", which cannot be used: ") +=
            content.file_fault;
    return line;
}

std::string AnswerLine(const Row& row, const Decoded& content, const Look& look) {
    const std::string result = at_client_result_text(content.result);
    const std::string line = look.Bold(CallName({&row, content.type})) + ": " +
                             (content.result == AT_RESULT_OK ? look.Good(result) : look.Bad(result));
    // That it went well is said already.
    return line + (content.text == "OK" ? "" : ContentText(content));
}

Arrival ReadArrival(const timespec& time, uint16_t module, long type, std::span<const uint8_t> body,
                    const FileReader& read_file) {
    Arrival arrival;
    arrival.time = time;
    arrival.module = module;

    MSG_BUF message = {};
    const size_t length = std::min(body.size(), size_t{AT_WIRE_SIZE});
    memcpy(reinterpret_cast<uint8_t*>(&message) + offsetof(MSG_BUF, usTargetModuleID), body.data(), length);
    if (length < AT_WIRE_SIZE || message.ulMagic != AT_MESSAGE_MAGIC) {
        arrival.content.raw.assign(body.begin(), body.end());
        return arrival;
    }
    _BK_AT_RES_T res;
    static_assert(sizeof res == sizeof message.aucDataBuf);
    memcpy(&res, message.aucDataBuf, sizeof res);
    arrival.id = res.usCmdID;

    // Reports have a type and a length word that no answer has but by chance.
    const bool reported = type == kReportType && message.usDataLen == kReportDataLen;
    arrival.report = reported ? FindReport(module, res.usCmdID, res.ucCmdType) : nullptr;
    if (arrival.report != nullptr) {
        arrival.kind = Arrival::Kind::report;
        arrival.content = Decode(AsCommand(*arrival.report, res), res, read_file);
        return arrival;
    }
    const bool asked = res.ucCmdType >= AT_CMD_TYPE_EXEC && res.ucCmdType <= AT_CMD_TYPE_TEST;
    arrival.command = !reported && asked ? CommandOf(res.usCmdID) : nullptr;
    arrival.kind = arrival.command != nullptr ? Arrival::Kind::answer : Arrival::Kind::unknown;
    arrival.content = Decode(arrival.command != nullptr ? *arrival.command : Row(), res, read_file);
    return arrival;
}

std::string ArrivalLine(const Arrival& arrival, const Look& look) {
    std::string module = NameOfModule(arrival.module);
    module.resize(std::max(module.size(), sizeof "toolkit" - 1), ' ');
    std::string line = ClockTime(arrival.time) + "  " + module + "  ";
    const Decoded& content = arrival.content;
    const std::string result = at_client_result_text(content.result);
    switch (arrival.kind) {
        case Arrival::Kind::report:
            line += look.Bold(arrival.report->title);
            if (content.result != AT_RESULT_OK) line += ": " + look.Bad(result);
            break;
        case Arrival::Kind::answer:
            return line + "answer to " + AnswerLine(*arrival.command, content, look);
        case Arrival::Kind::unknown:
            line += "unknown report " + HexNumber(arrival.id) + " type " + std::to_string(content.type);
            break;
        case Arrival::Kind::foreign:
            line += "not a message of the server, " + Number(content.raw.size(), "byte", "bytes");
            break;
    }
    return line + ContentText(content);
}

Json ArrivalJson(const Arrival& arrival) {
    Json json;
    json["time"] = UtcTime(arrival.time);
    json["module"] = NameOfModule(arrival.module);
    json["module_id"] = arrival.module;
    json["kind"] = KindName(arrival.kind);
    if (arrival.kind == Arrival::Kind::foreign) {
        json["raw"] = HexText(arrival.content.raw);
        return json;
    }
    if (arrival.report != nullptr) {
        json["name"] = arrival.report->name;
        json["title"] = arrival.report->title;
    }
    if (arrival.command != nullptr) json["name"] = CallName({arrival.command, arrival.content.type});
    json["id"] = arrival.id;
    json["type"] = arrival.content.type;
    json["result"] = arrival.content.result;
    json["result_text"] = at_client_result_text(arrival.content.result);
    AddContentJson(json, arrival.content);
    return json;
}

#ifndef AT_TOOLS_ATCTL_REPORT_LINE_H
#define AT_TOOLS_ATCTL_REPORT_LINE_H

#include <sys/types.h>

#include <ctime>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>

#include "commands/row.h"
#include "reports/report_catalog.h"
#include "tools/atctl/answer.h"
#include "tools/shared/terminal.h"

// One message that came to a module, as one line.

struct Arrival {
    enum class Kind {
        report,   // of the catalogue
        answer,   // to a request that this module, or somebody in its name, sent
        unknown,  // the server's, but neither
        foreign   // without the server's guard word, or too short for a message
    };
    timespec time = {};  // of day
    uint16_t module = 0;
    Kind kind = Kind::foreign;
    const ReportInfo* report = nullptr;  // of a report
    const Row* command = nullptr;        // of an answer
    uint16_t id = 0;
    Decoded content;
};

// What travelled behind the message type, as it came from the module's queue.
Arrival ReadArrival(const timespec& time, uint16_t module, long type, std::span<const uint8_t> body,
                    const FileReader& read_file);

std::string ClockTime(const timespec& time);  // "12:30:01.250", local
std::string UtcTime(const timespec& time);    // "2024-05-01T10:30:01.250Z"

// "  rssi 20  ber 0": what an answer or a report holds, in one line behind whatever says what it is.
std::string ContentText(const Decoded& content);

// "+CSQ: OK  rssi 20  ber 0"
std::string AnswerLine(const Row& row, const Decoded& content, const Look& look);

// "12:30:01.250  sms      new message  memory SM  index 3", in local time, without a line break.
std::string ArrivalLine(const Arrival& arrival, const Look& look);

// {time, module, module_id, kind, name and title or command, id, type, result, ..., fields or text or raw}
nlohmann::ordered_json ArrivalJson(const Arrival& arrival);

#endif

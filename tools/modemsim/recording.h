#ifndef AT_TOOLS_MODEMSIM_RECORDING_H
#define AT_TOOLS_MODEMSIM_RECORDING_H

// What passed between a modem and the daemon, as a text file. docs/recording.md describes the form:
//
//     modem recording 1
//     program modemsim 1.0.0
//     device /dev/modem
//     started 2026-11-21T16:40:02Z
//     settings 115200 8N1 rtscts
//          0.000000 -- open
//          0.412001 -> AT+CSQ\r
//          0.430118 <- \r\n+CSQ: 20,99\r\n
//          7.001933 -- close

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/modemsim/scenario.h"

namespace modemsim {

// Limits of a recording. Each is named in the message that refuses what exceeds it.
inline constexpr std::size_t kMaxRecordingBytes = std::size_t{256} << 20;  // one file
inline constexpr std::size_t kMaxRecordingLine = std::size_t{64} << 10;    // characters of one line of it
inline constexpr Time kMaxRecordingTime = std::chrono::hours(24 * 366);    // since the start

// One line of a recording.
struct Entry {
    enum class Kind {
        ToModem,    // bytes the daemon sent, as one read gave them
        FromModem,  // bytes the modem sent, as one read gave them
        Open,       // the daemon opened its port
        Close,      // the daemon closed it
        Gone,       // the modem vanished
        Back,       // and is there again
        Settings,   // the daemon set its port up otherwise
        End,        // the recorder was ended in an orderly way
        Comment,    // a line of the file that says nothing to a program
        Header,     // a line of its head
    };
    Kind kind = Kind::Comment;
    Time at{0};        // since the start
    std::string text;  // the bytes, the settings; of a comment or header the line as it stands
    std::size_t line = 0;

    bool Bytes() const { return kind == Kind::ToModem || kind == Kind::FromModem; }
};

struct Recording {
    std::string name;  // of the file, for messages
    bool redacted = false;
    std::vector<Entry> entries;  // every line of the file
};

struct ParsedRecording {
    Recording recording;            // complete only when there are no problems
    std::vector<Problem> problems;  // in the order found, at most kMaxProblems

    bool Ok() const { return problems.empty(); }
};

// Parses `text`; `name` is only for messages.
ParsedRecording ParseRecording(const std::string& name, std::string_view text);

// Reads and parses the file at `path`.
ParsedRecording LoadRecording(const std::string& path);

// The line of the file that says `entry`, line break included.
std::string FormatEntry(const Entry& entry);

// The first line of every recording, and the line that marks one without private data.
inline constexpr std::string_view kRecordingHead = "modem recording 1";
inline constexpr std::string_view kRedactedHeader = "redacted";

}  // namespace modemsim

#endif

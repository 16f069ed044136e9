#ifndef AT_TOOLS_MODEMSIM_SCENARIO_H
#define AT_TOOLS_MODEMSIM_SCENARIO_H

// A scenario says what the simulated modem answers, how fast, and what it reports by itself. docs/modemsim.md
// describes the text form; here is what the parser makes of it.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/modemsim/order.h"
#include "tools/modemsim/pattern.h"
#include "tools/modemsim/timing.h"

namespace modemsim {

// Limits of a scenario. Each is named in the message that refuses what exceeds it.
inline constexpr std::size_t kMaxScenarioBytes = std::size_t{4} << 20;  // one file
inline constexpr std::size_t kMaxScenarioLine = 4096;                   // characters of one line of it
inline constexpr std::size_t kMaxIncludeDepth = 8;
inline constexpr std::size_t kMaxFiles = 64;            // of a scenario, included ones counted each time
inline constexpr std::size_t kMaxPattern = 1024;        // characters of a command line in a rule
inline constexpr std::size_t kMaxRules = 4096;          // of a scenario
inline constexpr std::size_t kMaxReports = 512;         // of a scenario
inline constexpr std::uint64_t kMaxRepeat = 1'000'000;  // of "repeat" and "times"
inline constexpr std::uint64_t kMaxPace = 100'000'000;  // bytes per second
inline constexpr std::uint64_t kMaxSeed = 1'000'000'000;
inline constexpr std::size_t kMaxProblems = 20;  // reported of one scenario

struct Step {
    enum class Kind { Text, Wait, Pieces, Echo, Prompt, Unplug, Order, Modem };
    Kind kind = Kind::Text;
    std::string text;            // Text: the bytes as they go to the line
    Time wait{0};                // Wait
    Pieces pieces;               // Pieces: holds from here to the end of the answer
    bool on = false;             // Echo: holds from here on for every line
    modemsim::Order order = {};  // Order
};

// A place in a scenario. `file` is an index into Scenario::files.
struct Place {
    std::size_t file = 0;
    std::size_t line = 0;
};

struct Rule {
    Place place;
    std::vector<Step> steps;  // empty: silence
};

// All answers to one command line, used in turn; the last one repeats.
struct RuleGroup {
    Pattern pattern;
    std::vector<Rule> rules;  // at least one
};

struct Report {
    Place place;
    Time delay{0};                 // before the first time
    Time every{0};                 // 0: once
    std::uint64_t times = 0;       // with `every`: how often in all, 0 without end
    std::optional<Pattern> after;  // counted from the end of this line's answer; without it from the start
    std::vector<Pattern> until;    // lines that end it
    std::vector<Step> steps;
};

struct Scenario {
    bool echo = false;
    Time latency{0};                   // from the end of a line to its answer
    std::uint64_t pace = 0;            // bytes per second, 0: as fast as it goes
    Pieces pieces;                     // of every answer and report
    bool use_modem = false;            // lines without a rule go to the modem with a memory
    std::uint64_t seed = 1;            // of everything random
    std::vector<Order> orders;         // done at the start
    bool clock_at_first_line = false;  // reports count from the first command line, not from the start
    std::vector<RuleGroup> groups;
    std::vector<Report> reports;
    std::vector<std::string> files;  // the file itself, then what it includes

    std::size_t RuleCount() const;
    std::string Describe(const Place& place) const;  // "default.modem:12"
};

struct Problem {
    std::string file;
    std::size_t line = 0;
    std::string reason;

    std::string Text() const;  // "FILE:LINE: reason", without ":LINE" when it concerns the whole file
};

struct ParseResult {
    Scenario scenario;              // complete only when there are no problems
    std::vector<Problem> problems;  // in the order found, at most kMaxProblems

    bool Ok() const { return problems.empty(); }
};

// Gives the content of the file at `path`, or nullopt and a reason.
using FileReader = std::function<std::optional<std::string>(const std::string& path, std::string& reason)>;

// Reads a regular file of at most `max` bytes; nullopt and a reason without the path.
std::optional<std::string> ReadRegularFile(const std::string& path, std::size_t max, std::string& reason);

// Reads a regular file of at most kMaxScenarioBytes.
std::optional<std::string> ReadScenarioFile(const std::string& path, std::string& reason);

// Parses `text`; `name` is its path, which included files are relative to.
ParseResult ParseScenario(const std::string& name, std::string_view text,
                          const FileReader& reader = ReadScenarioFile);

// Reads and parses the file at `path`.
ParseResult LoadScenario(const std::string& path);

// True when a line has a line break of its own in front wherever it stands: a result code, and in a report
// also what begins with a report's sign.
bool HasOwnBreak(std::string_view line, bool in_report);

// True for the lines that end an answer or stand alone, and so have a line break of their own in front: OK,
// ERROR, +CME ERROR: 10, NO CARRIER, CONNECT 150000000, RING and their like.
bool IsResultCode(std::string_view line);

}  // namespace modemsim

#endif

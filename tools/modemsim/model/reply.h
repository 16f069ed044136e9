#ifndef AT_TOOLS_MODEMSIM_MODEL_REPLY_H
#define AT_TOOLS_MODEMSIM_MODEL_REPLY_H

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/modemsim/timing.h"

namespace modemsim {

// Codes of +CME ERROR, as far as this modem gives them.
enum class Cme {
    NotAllowed = 3,
    NotSupported = 4,
    NoSim = 10,
    PinRequired = 11,
    PukRequired = 12,
    SimFailure = 13,
    WrongPassword = 16,
    Puk2Required = 18,
    MemoryFull = 20,
    InvalidIndex = 21,
    NoNetwork = 30,
    NotAllowedNetwork = 32,
    NotSubscribed = 33,
    WrongParameters = 50,
};

// Codes of +CMS ERROR.
enum class Cms {
    WrongPduParameter = 304,
    WrongTextParameter = 305,
    NoSim = 310,
    PinRequired = 311,
    SimFailure = 313,
    PukRequired = 316,
    InvalidIndex = 321,
    MemoryFull = 322,
    NoNetwork = 331,
};

// What the modem answers to one line.
struct Reply {
    std::vector<std::string> lines = {};
    std::string end = "OK";            // the result behind the lines
    Time wait{0};                      // before the first of them
    std::optional<bool> echo = {};     // switches it from here on
    std::function<void()> after = {};  // done once the answer is on the line
    std::function<Reply(const std::string& text)> prompt =
        {};  // set: asks for a text instead, and this answers it

    static Reply Error() { return {.end = "ERROR"}; }
    static Reply Error(Cme code) { return {.end = "+CME ERROR: " + std::to_string(static_cast<int>(code))}; }
    static Reply Error(Cms code) { return {.end = "+CMS ERROR: " + std::to_string(static_cast<int>(code))}; }
    static Reply Ok(Time wait = Time(0)) { return {.wait = wait}; }
    static Reply Line(std::string line) { return {.lines = {std::move(line)}}; }

    bool IsOk() const { return end == "OK"; }
};

}  // namespace modemsim

#endif

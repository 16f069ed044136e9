#ifndef AT_TOOLS_MODEMSIM_MODEL_AT_LINE_H
#define AT_TOOLS_MODEMSIM_MODEL_AT_LINE_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace modemsim {

// A command line taken apart: AT+CPBR=1,"x" is "+CPBR", Set, {"1", "x"}; ATD121; is "D", Execute, text
// "121;".
struct CommandLine {
    enum class Form { Execute, Set, Read, Test };

    std::string name;  // in upper case; empty for AT alone
    Form form = Form::Execute;
    std::string text;               // what stands behind "=", or behind the letter of a basic command
    std::vector<std::string> args;  // of `text`, parted at commas outside quotes, without quotes and blanks

    // Empty when it was not given.
    const std::string& Text(std::size_t i) const;
    // nullopt when it was not given or is no number.
    std::optional<int> Number(std::size_t i) const;
    // The number, or `otherwise` when it was not given; nullopt when something else stands there.
    std::optional<int> NumberOr(std::size_t i, int otherwise) const;
};

// nullopt when the line does not begin with AT.
std::optional<CommandLine> ReadCommandLine(std::string_view line);

}  // namespace modemsim

#endif

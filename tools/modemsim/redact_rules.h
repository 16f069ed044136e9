#ifndef AT_TOOLS_MODEMSIM_REDACT_RULES_H
#define AT_TOOLS_MODEMSIM_REDACT_RULES_H

#include <string_view>

namespace modemsim {

// What is private in the parameters of a command, and in those of a line of its name from the modem: one
// letter for each parameter, the last one for all that follow.
//
//     k  nothing
//     d  what stands in quotation marks, but for well-known words and times; outside them long runs of
//     digits,
//        long hexadecimal runs, addresses of the internet
//     n  as d, and any number of four digits and more
//     s  all of it: a code, a password
//     c  a cell or an area: what stands in quotation marks, or four hexadecimal digits and more
//     h  hexadecimal data
//     p  a short message in hexadecimal digits
//     t  a text, in quotation marks or not, of four characters and more
//     w  from the first quotation mark to the last one of the line: a text that may hold such marks itself
struct RedactRule {
    std::string_view name;
    std::string_view request;
    std::string_view answer;
};

// The rule for `name`, such as "+CPIN", in capitals; "d" for both where there is none.
const RedactRule& FindRedactRule(std::string_view name);

// True for what may stand in quotation marks and tells nothing of anybody: storages, technologies, states of
// messages, dates with a time.
bool IsWellKnown(std::string_view quoted);

}  // namespace modemsim

#endif

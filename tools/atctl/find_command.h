#ifndef AT_TOOLS_ATCTL_FIND_COMMAND_H
#define AT_TOOLS_ATCTL_FIND_COMMAND_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "commands/row.h"

// The command table as people address it. Where nothing can be found, Misuse says what was meant perhaps.

// One command in one of its forms.
struct Call {
    const Row* row;
    uint8_t type;  // AT_CMD_TYPE_...
};

// The whole table, in search order.
std::span<const Row> Commands();

// Those that have the text in their name or title, in any case; all of them for "". Misuse when there is
// none.
std::vector<const Row*> CommandsWith(std::string_view text);

inline constexpr uint8_t kTypes[] = {AT_CMD_TYPE_EXEC, AT_CMD_TYPE_SET, AT_CMD_TYPE_READ, AT_CMD_TYPE_TEST};
// The name that people use: "AT" for the command that has none.
std::string CommandName(const Row& row);
std::string CallName(const Call& call);  // with its suffix

const char* TypeName(uint8_t type);  // "execute", "set", "read", "test"
const char* Suffix(uint8_t type);    // "", "=", "?", "=?"

// The command of this name, in any case, with or without its first sign ("csq" is "+CSQ") where only one
// fits.
const Row& FindCommand(std::string_view name);

// The command of a name with the suffix of a form: "+CSQ", "+CFUN=", "+CREG?", "+COPS=?".
Call FindCall(std::string_view text);

// The call of `atctl send` for a command, or for AT syntax with or without its "AT"; empty when it begins
// with no command.
std::string CallInstead(std::string_view text);

// Refuses to send AT syntax, with what to type instead.
[[noreturn]] void RefuseRaw(const std::vector<std::string>& words);

#endif

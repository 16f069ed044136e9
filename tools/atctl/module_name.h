#ifndef AT_TOOLS_ATCTL_MODULE_NAME_H
#define AT_TOOLS_ATCTL_MODULE_NAME_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// The router's modules as people name them.

struct ModuleName {
    uint16_t id;  // AT_MODULE_..., and the key of its queue
    const char* name;
};

// Those that the server reports to, by id.
std::span<const ModuleName> ReportedModules();

// "sms", or "0x6001" for a module without a name.
std::string NameOfModule(uint16_t id);

// A number from 1 to 0xFFFF, hexadecimal with 0x, else decimal; 0 when it is none.
uint16_t ModuleFromNumber(std::string_view text);

// A name in any case, or a number that is not the server's. Misuse says what the names are.
uint16_t ModuleFromText(std::string_view text);

#endif

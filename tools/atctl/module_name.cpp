#include "tools/atctl/module_name.h"

#include <charconv>
#include <vector>

#include "records/message.h"
#include "tools/shared/exit_status.h"
#include "tools/shared/suggest.h"
#include "tools/shared/text.h"

namespace {

constexpr ModuleName kModules[] = {
    {AT_MODULE_CALL, "call"}, {AT_MODULE_SIM, "sim"},         {AT_MODULE_SMS, "sms"},
    {AT_MODULE_TIME, "time"}, {AT_MODULE_TOOLKIT, "toolkit"}, {AT_MODULE_USSD, "ussd"},
    {AT_MODULE_DATA, "data"},
};

}  // namespace

std::span<const ModuleName> ReportedModules() {
    return kModules;
}

std::string NameOfModule(uint16_t id) {
    for (const ModuleName& module : kModules)
        if (module.id == id) return module.name;
    return HexNumber(id);
}

uint16_t ModuleFromNumber(std::string_view text) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const char* const begin = text.data() + (hexadecimal ? 2 : 0);
    const char* const end = text.data() + text.size();
    unsigned id = 0;
    const auto [stop, fault] = std::from_chars(begin, end, id, hexadecimal ? 16 : 10);
    const bool good = fault == std::errc() && stop == end && id <= 0xFFFF;
    return good ? static_cast<uint16_t>(id) : uint16_t{0};
}

uint16_t ModuleFromText(std::string_view text) {
    std::vector<std::string> names;
    for (const ModuleName& module : kModules) {
        if (Lower(text) == module.name) return module.id;
        names.emplace_back(module.name);
    }
    const uint16_t id = ModuleFromNumber(text);
    if (id == 0 || id == AT_MODULE_SERVER)
        throw Misuse("there is no module \"" + Printable(text) + "\", only " + Join(names, ", ") +
                     " and numbers from 1 to 0xFFFF but the server's" + DidYouMean(text, names));
    return id;
}

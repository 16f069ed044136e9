#include "tools/modemsim/model/general.h"

#include <array>
#include <string_view>
#include <utility>

#include "tools/modemsim/model/modem.h"

namespace modemsim {

namespace {

// The range of identities set aside for tests.
constexpr std::string_view kImei = "001015012345671";
constexpr std::string_view kVersion = "TM4100_V2.14.0";

constexpr std::array<std::pair<std::string_view, std::string_view>, 14> kWords = {{
    {"+CME ERROR: 3", "operation not allowed"},
    {"+CME ERROR: 4", "operation not supported"},
    {"+CME ERROR: 10", "SIM not inserted"},
    {"+CME ERROR: 11", "SIM PIN required"},
    {"+CME ERROR: 12", "SIM PUK required"},
    {"+CME ERROR: 13", "SIM failure"},
    {"+CME ERROR: 16", "incorrect password"},
    {"+CME ERROR: 18", "SIM PUK2 required"},
    {"+CME ERROR: 20", "memory full"},
    {"+CME ERROR: 21", "invalid index"},
    {"+CME ERROR: 30", "no network service"},
    {"+CME ERROR: 32", "network not allowed - emergency calls only"},
    {"+CME ERROR: 33", "requested service option not subscribed"},
    {"+CME ERROR: 50", "incorrect parameters"},
}};

}  // namespace

General::General(Modem& modem) {
    using Form = CommandLine::Form;
    const auto text = [&](const std::string& name, std::string_view value) {
        modem.On(name, [value](const CommandLine& line) {
            return line.form == Form::Execute ? Reply::Line(std::string(value)) : Reply::Error();
        });
    };
    for (const char* name : {"", "Z", "&F", "!"})
        modem.On(name, [](const CommandLine&) { return Reply::Ok(); });
    modem.On("E", [](const CommandLine& line) {
        if (line.text != "" && line.text != "0" && line.text != "1") return Reply::Error();
        Reply reply;
        reply.echo = line.text == "1";
        return reply;
    });
    modem.On("I", [](const CommandLine&) {
        return Reply{.lines = {"Manufacturer: Testmodems Ltd", "Model: TM4100",
                               "Revision: " + std::string(kVersion), "IMEI: " + std::string(kImei)}};
    });
    text("+CGMI", "Testmodems Ltd");
    text("+CGMM", "TM4100");
    text("+CGMR", kVersion);
    text("+GMR", kVersion);
    text("+CGSN", kImei);
    text("+GSN", kImei);
    modem.On("+CMEE", [this](const CommandLine& line) {
        if (line.form == Form::Read) return Reply::Line("+CMEE: " + std::to_string(errors_));
        const auto errors = line.Number(0);
        if (line.form != Form::Set || !errors || *errors > 2) return Reply::Error();
        errors_ = *errors;
        return Reply::Ok();
    });
    modem.On("+CSCS", [this](const CommandLine& line) {
        if (line.form == Form::Read) return Reply::Line("+CSCS: \"" + character_set_ + "\"");
        if (line.form != Form::Set) return Reply::Error();
        character_set_ = line.Text(0);
        return Reply::Ok();
    });
}

std::string General::ErrorText(const std::string& end) const {
    if (!end.starts_with("+CME ERROR: ") || errors_ == 1) return end;
    if (errors_ == 0) return "ERROR";
    for (const auto& [code, words] : kWords) {
        if (end == code) return "+CME ERROR: " + std::string(words);
    }
    return end;
}

}  // namespace modemsim

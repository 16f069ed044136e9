#ifndef AT_CHECKS_MODEMSIM_TEST_MODEM_H
#define AT_CHECKS_MODEMSIM_TEST_MODEM_H

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "checks/modemsim/virtual_modem.h"

namespace modemsim {

inline const std::string kOk = "\r\nOK\r\n";

// Under a plain scenario, with what the checks need again and again.
class TestModem : public VirtualModem {
  public:
    explicit TestModem(const std::string& script = "use modem\n") : VirtualModem(Parsed(script)) {}

    // What the modem answers to one line, without line breaks around it. Reports that come before are put by.
    std::string Answer(const std::string& line) {
        reports_ += Ask("", 0);
        Core().Receive(line + "\r", Now());
        return Bare(Next());
    }
    // Everything else that came, or comes in the seconds after.
    std::string After(int seconds) { return std::exchange(reports_, {}) + Ask("", seconds * 1000); }

    // Empty when it was done.
    std::string Order(const std::string& text) {
        std::string reason;
        const auto order = ReadOrder(text, reason);
        if (!order) return "no order: " + reason;
        return Core().Do(*order, Now());
    }
    nlohmann::json State() {
        nlohmann::json state;
        Core().DescribeState(state, Now());
        return state;
    }

  private:
    static Scenario Parsed(const std::string& script) {
        ParseResult result = ParseScenario("test.modem", script);
        for (const Problem& problem : result.problems)
            ADD_FAILURE() << problem.Text();
        return result.scenario;
    }
    static std::string Bare(std::string text) {
        if (text.starts_with("\r\n")) text.erase(0, 2);
        if (text.ends_with("\r\n")) text.erase(text.size() - 2);
        return text;
    }

    std::string reports_;
};

// An answer of these lines and OK, as Answer() gives it.
inline std::string Lines(std::initializer_list<std::string> lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text + kOk.substr(0, kOk.size() - 2);
}

}  // namespace modemsim

#endif

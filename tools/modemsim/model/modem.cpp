#include "tools/modemsim/model/modem.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <nlohmann/json.hpp>
#include <utility>

namespace modemsim {

Modem::Modem(std::uint64_t seed) : random_(seed) {}

void Modem::In(Time delay, std::function<void()> action) {
    events_.emplace(now_ + delay, std::move(action));
}

std::optional<Reply> Modem::Answer(const std::string& line, Time now) {
    Advance(now);
    const auto command = ReadCommandLine(line);
    if (!command) return std::nullopt;
    const auto handler = handlers_.find(command->name);
    if (handler == handlers_.end()) return std::nullopt;
    Reply reply = handler->second(*command);
    reply.end = general.ErrorText(reply.end);
    if (reply.prompt) {
        reply.prompt = [this, take = std::move(reply.prompt)](const std::string& text) {
            Reply taken = take(text);
            taken.end = general.ErrorText(taken.end);
            return taken;
        };
    }
    return reply;
}

std::optional<Time> Modem::NextTime() const {
    if (events_.empty()) return std::nullopt;
    return events_.begin()->first;
}

void Modem::Advance(Time now) {
    while (!events_.empty() && events_.begin()->first <= now) {
        now_ = std::max(now_, events_.begin()->first);
        const auto action = std::move(events_.begin()->second);
        events_.erase(events_.begin());
        action();
    }
    now_ = std::max(now_, now);
}

std::vector<Modem::Report> Modem::TakeReports() {
    return std::exchange(reports_, {});
}

void Modem::Restart(Time now) {
    now_ = std::max(now_, now);
    events_.clear();
    reports_.clear();
    general.Restart();
    sim.Restart();
    calls.Restart();
    data.Restart();
    ussd.Restart();
    toolkit.Restart();
    network.Restart();
}

std::string Modem::Clock() const {
    constexpr std::time_t kBegin = 1'795'251'600;  // 2026-11-21 09:00:00 UTC
    const auto passed = std::chrono::duration_cast<std::chrono::seconds>(now_).count();
    const std::time_t now = kBegin + static_cast<std::time_t>(passed);
    std::tm parts = {};
    gmtime_r(&now, &parts);
    std::array<char, 32> text = {};
    std::strftime(text.data(), text.size(), "%Y/%m/%d,%H:%M:%S", &parts);
    return text.data() + 2;
}

void Modem::DescribeState(nlohmann::json& state) const {
    state["clock"] = Clock();
    sim.Describe(state["sim"]);
    network.Describe(state["network"]);
    data.Describe(state["contexts"]);
    messages.Describe(state["messages"]);
    phonebook.Describe(state["phonebook"]);
    calls.Describe(state["calls"]);
    ussd.Describe(state["ussd"]);
    toolkit.Describe(state["toolkit"]);
}

}  // namespace modemsim

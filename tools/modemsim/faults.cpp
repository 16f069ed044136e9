#include "tools/modemsim/faults.h"

#include <array>
#include <chrono>
#include <nlohmann/json.hpp>

namespace modemsim {

namespace {

long long Milliseconds(Time time) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

}  // namespace

void Faults::Do(const Order& order, Time now) {
    using Kind = Order::Kind;
    switch (order.kind) {
        case Kind::Delay:
            delay_ = order.time;
            break;
        case Kind::Split:
            split_ = order.pieces;
            break;
        case Kind::Glue:
            glue_ = order.time;
            break;
        case Kind::Late:
            late_ = order.time;
            break;
        case Kind::Mute:
            muted_ = true;
            muted_until_.reset();
            if (order.time.count() != 0) muted_until_ = now + order.time;
            break;
        case Kind::Garbage:
            garbage_ = order.count;
            break;
        case Kind::FaultsOff:
            delay_ = glue_ = late_ = Time(0);
            split_.reset();
            muted_ = false;
            garbage_ = 0;
            break;
        default:
            break;
    }
}

std::string Faults::Noise() {
    constexpr unsigned kValues = 255;  // a byte of 0 would end what a host takes for text
    std::string noise;
    for (std::uint64_t i = 0; i < garbage_; ++i)
        noise += static_cast<char>(1 + random_() % kValues);
    return noise;
}

void Faults::Describe(nlohmann::json& state, Time now) const {
    state = nlohmann::json::object();
    if (delay_.count() != 0) state["delay_ms"] = Milliseconds(delay_);
    if (split_) state["split"] = split_->sizes;
    if (glue_.count() != 0) state["glue_ms"] = Milliseconds(glue_);
    if (late_.count() != 0) state["late_ms"] = Milliseconds(late_);
    if (Muted(now)) state["mute"] = true;
    if (garbage_ != 0) state["garbage"] = garbage_;
}

std::vector<Step> StormSteps(std::uint64_t count, Time every) {
    constexpr std::array<const char*, 6> kReports = {
        "^RSSI:21",     "+CREG: 1,\"1A2B\",\"00C3D4E5\"",
        "^HRSSILVL:21", "+ZNITZ: 26,11,21,9,0,0,0,0",
        "^MODE:17",     "+ZEMCI: C3D4E5,1,1A2B,145,1300,3,-95,0,0,0,-8"};
    std::vector<Step> steps;
    for (std::uint64_t i = 0; i < count; ++i) {
        Step report;
        report.text = "\r\n" + std::string(kReports.at(static_cast<size_t>(i % kReports.size()))) + "\r\n";
        steps.push_back(report);
        Step pause;
        pause.kind = Step::Kind::Wait;
        pause.wait = every;
        if (every.count() != 0) steps.push_back(pause);
    }
    return steps;
}

}  // namespace modemsim

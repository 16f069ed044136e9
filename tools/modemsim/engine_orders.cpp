// What the engine does when it is told to from outside.

#include <nlohmann/json.hpp>
#include <utility>

#include "tools/modemsim/engine.h"

namespace modemsim {

using Kind = Order::Kind;

// An order of the scenario: nobody waits for the answer, so what is wrong is noted.
void Engine::Perform(const Order& order, Time at) {
    const std::string reason = Do(order, at);
    if (!reason.empty()) Say("not done: " + reason);
}

std::string Engine::Do(const Order& order, Time now) {
    Step step;
    switch (order.kind) {
        case Kind::Raw:
            step.text = "\r\n" + order.text + "\r\n";
            Send({step}, now);
            return {};
        case Kind::Send:
            step.text = order.text;
            Send({step}, now);
            return {};
        case Kind::Storm:
            Send(StormSteps(order.count, order.time), now);
            return {};
        case Kind::Unplug:
            return Unplug(now, order.time);
        case Kind::Replug:
            return Replug(now);
        case Kind::Echo:
            echo_ = order.on;
            return {};
        case Kind::FaultsOff:
            echo_ = scenario_.echo;
            faults_.Do(order, now);
            return {};
        case Kind::Delay:
        case Kind::Split:
        case Kind::Glue:
        case Kind::Late:
        case Kind::Mute:
        case Kind::Garbage:
            faults_.Do(order, now);
            return {};
        default:
            break;
    }
    if (modem_ == nullptr) return "this scenario has no modem with a memory behind it ('use modem')";
    modem_->Advance(now);
    std::string reason = DoWithModem(order, now);
    TakeReports(now);
    return reason;
}

std::string Engine::DoWithModem(const Order& order, Time) {
    constexpr Time kSteps = std::chrono::seconds(5);  // of a moving signal, when no time is given
    if (!plugged_) return "the modem is not plugged in; 'replug' comes first";
    switch (order.kind) {
        case Kind::Ring:
            return modem_->calls.Ring(order.number);
        case Kind::Answer:
            return modem_->calls.Answer();
        case Kind::Busy:
            return modem_->calls.Busy();
        case Kind::HangUp:
            return modem_->calls.HangUp();
        case Kind::Message:
            return modem_->messages.Deliver(order.number, order.text);
        case Kind::Ussd:
            return modem_->ussd.Push(order.text);
        case Kind::LoseNetwork:
            return modem_->network.Lose();
        case Kind::RestoreNetwork:
            return modem_->network.Restore();
        case Kind::Roam:
            return modem_->network.Roam();
        case Kind::PullSim:
            return modem_->sim.Pull();
        case Kind::InsertSim:
            return modem_->sim.Insert();
        case Kind::LockSim:
            return modem_->sim.Lock();
        case Kind::SetSignal:
            return modem_->network.SetSignal(static_cast<int>(order.count));
        case Kind::MoveSignal:
            return modem_->network.MoveSignal(order.time.count() == 0 ? kSteps : order.time);
        case Kind::DropData:
            return modem_->data.Drop();
        default:
            return "this is not an order for the modem";
    }
}

std::string Engine::Unplug(Time now, Time back_after) {
    if (!plugged_) return "the modem is unplugged already; 'replug' plugs it in";
    Say("unplugged");
    plugged_ = false;
    if (back_after.count() != 0) replug_at_ = now + back_after;
    // What it was about to say is lost; a scenario's reports go on, so that they can plug it in again.
    std::erase_if(jobs_, [](const Job& job) { return !job.report; });
    answering_ = false;
    lines_.clear();
    input_.clear();
    wire_.clear();
    glued_.clear();
    wire_free_ = now;
    if (modem_ != nullptr) modem_->Restart(now);
    return {};
}

std::string Engine::Replug(Time now) {
    replug_at_.reset();
    if (plugged_) return "the modem is plugged in";
    Say("plugged in");
    plugged_ = true;
    echo_ = scenario_.echo;
    if (modem_ != nullptr) modem_->Restart(now);
    return {};
}

void Engine::DescribeState(nlohmann::json& state, Time now) const {
    state["plugged_in"] = plugged_;
    state["echo"] = echo_;
    state["scenario"] = scenario_.files.empty() ? "" : scenario_.files.front();
    state["seed"] = scenario_.seed;
    state["milliseconds"] = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    faults_.Describe(state["faults"], now);
    if (modem_ != nullptr) modem_->DescribeState(state);
}

}  // namespace modemsim

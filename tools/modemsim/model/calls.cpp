#include "tools/modemsim/model/calls.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "tools/modemsim/model/modem.h"
#include "tools/modemsim/model/number.h"

namespace modemsim {

namespace {

using Form = CommandLine::Form;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr char kBusyNumber[] = "07700900999";
constexpr char kNobodyThere[] = "07700900998";
constexpr int kRings = 10;  // then the caller gives up
constexpr char kEnded[] = "HANGUP: 16";
constexpr char kDropped[] = "VOICE NO CARRIER: 16";

std::string Quoted(const std::string& number) {
    return "\"" + number + "\"," + std::to_string(TypeOfNumber(number));
}

}  // namespace

Calls::Calls(Modem& modem) : modem_(modem) {
    modem.On("D", [this](const CommandLine& line) { return Dial(line); });
    modem.On("A", [this](const CommandLine&) { return Take(); });
    for (const char* name : {"H", "+CHUP", "+CHV", "+ZCHUPD"})
        modem.On(name, [this](const CommandLine&) { return HangUpAll(); });
    modem.On("+CLCC",
             [this](const CommandLine& line) { return line.form == Form::Set ? Reply::Error() : List(); });
    modem.On("+CHLD", [this](const CommandLine& line) { return Hold(line); });
    modem.On("+VTS", [this](const CommandLine& line) {
        if (line.form != Form::Set) return Reply::Error();
        return InState({kActive}) != nullptr ? Reply::Ok() : Reply::Error(Cme::NotAllowed);
    });
}

Calls::Call* Calls::Find(std::uint64_t serial) {
    const auto call =
        std::find_if(calls_.begin(), calls_.end(), [&](const Call& c) { return c.serial == serial; });
    return call == calls_.end() ? nullptr : &*call;
}

Calls::Call* Calls::InState(std::initializer_list<State> states) {
    const auto call = std::find_if(calls_.begin(), calls_.end(), [&](const Call& c) {
        return std::find(states.begin(), states.end(), c.state) != states.end();
    });
    return call == calls_.end() ? nullptr : &*call;
}

bool Calls::Active() const {
    return std::any_of(calls_.begin(), calls_.end(),
                       [](const Call& c) { return c.state == kActive || c.state == kHeld; });
}

std::uint64_t Calls::Begin(bool incoming, State state, const std::string& number) {
    calls_.push_back({++last_serial_, incoming, state, number});
    return last_serial_;
}

void Calls::End(std::uint64_t serial, const std::string& report) {
    const auto gone = std::erase_if(calls_, [&](const Call& c) { return c.serial == serial; });
    if (gone != 0 && !report.empty()) modem_.Say({report});
}

void Calls::EndAll(std::initializer_list<State> states) {
    std::erase_if(calls_, [&](const Call& c) {
        return std::find(states.begin(), states.end(), c.state) != states.end();
    });
}

void Calls::Connect(std::uint64_t serial) {
    Call* call = Find(serial);
    if (call == nullptr) return;
    call->state = kActive;
    modem_.Say({"VOICE CONNECT"});
}

Reply Calls::Dial(const CommandLine& line) {
    if (line.text.starts_with("*99")) return modem_.data.Dial();
    const std::string number = line.text.substr(0, line.text.find(';'));
    if (!IsNumber(number)) return Reply::Error();
    const bool emergency = number == "112" || number == "999";
    if (!emergency && !modem_.sim.Ready()) return Reply::Error(*modem_.sim.Obstacle());
    if (!modem_.network.Registered()) return Reply::Error(Cme::NoNetwork);
    if (InState({kDialling, kAlerting, kRinging, kActive}) != nullptr) return Reply::Error(Cme::NotAllowed);
    const std::uint64_t call = Begin(false, kDialling, number);
    Reply reply = Reply::Ok(milliseconds(60));
    reply.after = [this, call, number] {
        if (number == kBusyNumber) {
            modem_.In(milliseconds(800), [this, call] { End(call, "BUSY"); });
            return;
        }
        modem_.In(seconds(1), [this, call] {
            Call* dialled = Find(call);
            if (dialled == nullptr || dialled->state != kDialling) return;
            dialled->state = kAlerting;
            modem_.Say({"RINGBACK"});
        });
        if (number == kNobodyThere) {
            modem_.In(seconds(30), [this, call] {
                const Call* dialled = Find(call);
                if (dialled != nullptr && dialled->state == kAlerting) End(call, "NO ANSWER");
            });
            return;
        }
        modem_.In(seconds(4), [this, call] {
            Call* dialled = Find(call);
            if (dialled != nullptr && dialled->state == kAlerting) Connect(call);
        });
    };
    return reply;
}

Reply Calls::Take() {
    Call* call = InState({kRinging});
    if (call == nullptr) return {.end = "NO CARRIER"};
    // Taken: it rings no more, but is there only a little later.
    call->state = kActive;
    Reply reply = Reply::Ok(milliseconds(200));
    reply.after = [this, serial = call->serial] {
        modem_.In(milliseconds(300), [this, serial] { Connect(serial); });
    };
    return reply;
}

Reply Calls::HangUpAll() {
    const bool any = !calls_.empty();
    calls_.clear();
    Reply reply = Reply::Ok(milliseconds(80));
    if (any) reply.after = [this] { modem_.In(milliseconds(200), [this] { modem_.Say({kEnded}); }); };
    return reply;
}

Reply Calls::List() const {
    Reply reply;
    int id = 0;
    for (const Call& call : calls_) {
        reply.lines.push_back("+CLCC: " + std::to_string(++id) + "," + (call.incoming ? "1" : "0") + "," +
                              std::to_string(call.state) + ",0," + (call.joined ? "1" : "0") + "," +
                              Quoted(call.number) + ",0,0");
    }
    return reply;
}

Reply Calls::Hold(const CommandLine& line) {
    const auto what = line.Number(0);
    if (line.form != Form::Set || !what || *what > 4) return Reply::Error(Cme::WrongParameters);
    if (calls_.empty()) return Reply::Error(Cme::NotAllowed);
    if (*what == 0) {
        // A waiting call goes before held ones.
        if (InState({kWaiting}) != nullptr)
            EndAll({kWaiting});
        else
            EndAll({kHeld});
    } else if (*what == 1) {
        EndAll({kActive});
        Call* next = InState({kWaiting, kHeld});
        if (next != nullptr) next->state = kActive;
    } else if (*what == 2) {
        const bool takes_waiting = InState({kWaiting}) != nullptr;
        for (Call& call : calls_) {
            if (call.state == kActive)
                call.state = kHeld;
            else if (call.state == (takes_waiting ? kWaiting : kHeld))
                call.state = kActive;
        }
    } else if (*what == 3) {
        for (Call& call : calls_) {
            if (call.state != kActive && call.state != kHeld) continue;
            call.state = kActive;
            call.joined = true;
        }
    } else {
        EndAll({kActive, kHeld});
    }
    return Reply::Ok(milliseconds(200));
}

void Calls::RingAgain(std::uint64_t serial, int times) {
    const Call* call = Find(serial);
    if (call == nullptr || call->state != kRinging) return;
    if (times == kRings) {
        End(serial, "STOPRING");
        return;
    }
    Modem::Report report = {"RING"};
    if (modem_.services.ShowsCaller()) report.push_back("+CLIP: " + Quoted(call->number) + ",,,,0");
    modem_.Say(report);
    modem_.In(seconds(3), [this, serial, times] { RingAgain(serial, times + 1); });
}

std::string Calls::Ring(const std::string& number) {
    if (!modem_.network.Registered()) return "the modem is not registered in a network: nobody can call it";
    if (const std::string to = modem_.services.DivertsAll(); !to.empty())
        return "all calls are diverted to " + to + " (AT+CCFC): the modem does not ring";
    if (calls_.empty()) {
        RingAgain(Begin(true, kRinging, number), 0);
        return {};
    }
    if (InState({kRinging, kWaiting, kDialling, kAlerting}) != nullptr || !modem_.services.CallsWait())
        return "the modem is in a call, and a second one cannot wait: the caller hears that it is busy";
    Begin(true, kWaiting, number);
    modem_.Say({"+CCWA: " + Quoted(number) + ",1"});
    return {};
}

std::string Calls::Answer() {
    const Call* call = InState({kDialling, kAlerting});
    if (call == nullptr) return "the modem has dialled nobody who could answer";
    Connect(call->serial);
    return {};
}

std::string Calls::Busy() {
    const Call* call = InState({kDialling, kAlerting});
    if (call == nullptr) return "the modem has dialled nobody who could be busy";
    End(call->serial, "BUSY");
    return {};
}

std::string Calls::HangUp() {
    if (calls_.empty()) return "there is no call that could end";
    const Call& call = calls_.back();
    const bool unanswered = call.state == kRinging;
    End(call.serial, call.state == kWaiting ? "" : unanswered ? "STOPRING" : kDropped);
    return {};
}

void Calls::NetworkLost() {
    while (!calls_.empty())
        HangUp();
}

void Calls::Describe(nlohmann::json& state) const {
    constexpr std::array<const char*, 6> kStates = {"active",   "held",    "dialling",
                                                    "alerting", "ringing", "waiting"};
    state = nlohmann::json::array();
    for (const Call& call : calls_) {
        state.push_back({{"number", call.number},
                         {"direction", call.incoming ? "incoming" : "outgoing"},
                         {"state", kStates.at(call.state)}});
    }
}

}  // namespace modemsim

#include "tools/modemsim/model/network.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/modemsim/model/modem.h"

namespace modemsim {

namespace {

using Form = CommandLine::Form;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr int kUnknownSignal = 99;
constexpr int kBestSignal = 31;
constexpr int kRadioOn = 1;

struct Operator {
    const char* name;
    const char* brief;
    const char* digits;
    int technology;
    const char* area;
    const char* cell;
    bool home;
    bool allowed;
};

// The test network 001/01 and others of the test country: none of them exists.
constexpr std::array<Operator, 3> kOperators = {{
    {"Testnet One", "TN1", "00101", 7, "1A2B", "00C3D4E5", true, true},
    {"Testnet Two", "TN2", "00102", 7, "2B3C", "00D4E5F6", false, true},
    {"Border Net", "BNET", "00199", 2, "3C4D", "00E5F607", false, false},
}};
constexpr std::array<const char*, 3> kNames = {"+CREG", "+CGREG", "+CEREG"};

}  // namespace

Network::Network(Modem& modem) : modem_(modem) {
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        modem.On(kNames[i],
                 [this, i](const CommandLine& line) { return Registration(kNames[i], reports_[i], line); });
    }
    modem.On("+CFUN", [this](const CommandLine& line) { return Functions(line); });
    modem.On("+COPS", [this](const CommandLine& line) { return Operators(line); });
    for (const char* name : {"+CSQ", "+ZRSSI", "+CIND", "^SYSINFO"}) {
        modem.On(name, [this, name](const CommandLine& line) {
            if (line.form == Form::Set) return Reply::Error();
            if (line.form == Form::Test) {
                const bool ranges = std::string(name) == "+CSQ";
                return ranges ? Reply::Line("+CSQ: (0-31,99),(0-7,99)") : Reply::Ok();
            }
            if (std::string(name) == "+CSQ") Step();
            return Reply::Line(SignalText(name));
        });
    }
}

bool Network::MayRegister() const {
    return functions_ == kRadioOn && selection_ != 2 && modem_.sim.Ready();
}

int Network::FoundStat() const {
    return kOperators.at(operator_).home ? kHome : kRoaming;
}

void Network::SetStat(int stat) {
    if (stat == stat_) return;
    stat_ = stat;
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        if (reports_[i] != 0)
            modem_.Say({std::string(kNames[i]) + ": " + Place(kNames[i], reports_[i] == 2)});
    }
    if (Registered()) return;
    modem_.calls.NetworkLost();
    modem_.data.NetworkLost();
    modem_.ussd.NetworkLost();
}

void Network::Look() {
    const std::uint64_t search = ++search_;
    if (!MayRegister()) {
        SetStat(kNone);
        return;
    }
    SetStat(kSearching);
    if (!coverage_) return;
    modem_.In(seconds(1), [this, search] {
        if (search == search_) SetStat(FoundStat());
    });
}

// What stands behind the name in answers and reports: the state, and where the modem is.
std::string Network::Place(const std::string& name, bool long_form) const {
    std::string text = std::to_string(stat_);
    if (!long_form || !Registered()) return text;
    const Operator& used = kOperators.at(operator_);
    text += ",\"" + std::string(used.area) + "\",\"" + used.cell + "\"";
    if (name == "+CREG") return text;
    text += "," + std::to_string(used.technology);
    return text + (name == "+CGREG" ? ",\"01\",0" : ",0");
}

Reply Network::Registration(const std::string& name, int& reports, const CommandLine& line) {
    if (line.form == Form::Read)
        return Reply::Line(name + ": " + std::to_string(reports) + "," + Place(name, reports == 2));
    if (line.form == Form::Test) return Reply::Line(name + ": (0-2)");
    const auto wanted = line.Number(0);
    if (line.form != Form::Set || !wanted || *wanted > 2) return Reply::Error(Cme::WrongParameters);
    reports = *wanted;
    return Reply::Ok();
}

Reply Network::Functions(const CommandLine& line) {
    if (line.form == Form::Read) return Reply::Line("+CFUN: " + std::to_string(functions_));
    if (line.form == Form::Test) return Reply::Line("+CFUN: (0,1,4),(0,1)");
    const auto wanted = line.Number(0);
    if (line.form != Form::Set || !wanted || (*wanted > 1 && *wanted != 4))
        return Reply::Error(Cme::WrongParameters);
    Reply reply = Reply::Ok(*wanted == kRadioOn ? milliseconds(500) : milliseconds(800));
    const bool changes = functions_ != *wanted;
    functions_ = *wanted;
    if (changes) {
        reply.after = [this] {
            if (functions_ == kRadioOn) {
                Look();
            } else {
                modem_.In(milliseconds(300), [this] { Look(); });
            }
        };
    }
    return reply;
}

Reply Network::Operators(const CommandLine& line) {
    switch (line.form) {
        case Form::Test:
            return Search();
        case Form::Set:
            return Choose(line);
        case Form::Read:
            break;
        case Form::Execute:
            return Reply::Error();
    }
    std::string text = "+COPS: " + std::to_string(selection_);
    if (Registered()) {
        const Operator& used = kOperators.at(operator_);
        const std::array<const char*, 3> names = {used.name, used.brief, used.digits};
        text += "," + std::to_string(name_form_) + ",\"" + names.at(static_cast<std::size_t>(name_form_)) +
                "\"," + std::to_string(used.technology);
    }
    return Reply::Line(text);
}

Reply Network::Search() const {
    if (!modem_.sim.Ready()) return Reply::Error(*modem_.sim.Obstacle());
    if (functions_ != kRadioOn) return Reply::Error(Cme::NoNetwork);
    Reply reply = Reply::Line("");
    reply.wait = seconds(4);
    std::string& text = reply.lines.front();
    text = "+COPS: ";
    // Out of reach of every network the search takes as long and finds none.
    for (std::size_t i = 0; i < kOperators.size() && coverage_; ++i) {
        const Operator& found = kOperators.at(i);
        const int stat = !found.allowed ? 3 : i == operator_ && Registered() ? 2 : 1;
        const auto entry = [&](int stat_there, int technology) {
            text += "(" + std::to_string(stat_there) + ",\"" + found.name + "\",\"" + found.brief + "\",\"" +
                    found.digits + "\"," + std::to_string(technology) + "),";
        };
        entry(stat, found.technology);
        // The home network can be had by the older technology too.
        if (found.home) entry(1, 2);
    }
    text += ",(0,1,2,3,4),(0,1,2)";
    return reply;
}

Reply Network::Choose(const CommandLine& line) {
    const auto mode = line.Number(0);
    const auto form = line.NumberOr(1, name_form_);
    if (!mode || *mode > 4 || !form || *form > 2) return Reply::Error(Cme::WrongParameters);
    if (!modem_.sim.Ready()) return Reply::Error(*modem_.sim.Obstacle());
    name_form_ = *form;
    if (*mode == 3) return Reply::Ok();
    std::size_t wanted = 0;
    if (*mode == 1 || *mode == 4) {
        const std::string& name = line.Text(2);
        const auto found = std::find_if(kOperators.begin(), kOperators.end(), [&](const Operator& o) {
            return name == o.name || name == o.brief || name == o.digits;
        });
        Reply refusal;
        if (found == kOperators.end() || !coverage_)
            refusal = Reply::Error(Cme::NoNetwork);
        else if (!found->allowed)
            refusal = Reply::Error(Cme::NotAllowedNetwork);
        if (!refusal.IsOk()) {
            refusal.wait = seconds(3);
            return refusal;
        }
        wanted = static_cast<std::size_t>(found - kOperators.begin());
    }
    const bool changes = wanted != operator_ || (*mode == 2) != (selection_ == 2);
    selection_ = *mode == 4 ? 1 : *mode;
    operator_ = wanted;
    Reply reply = Reply::Ok(milliseconds(1500));
    if (changes) reply.after = [this] { Look(); };
    return reply;
}

// ---- signal

void Network::Step() {
    // The first answer is the level that was set.
    if (movement_ != Signal::PerQuery) return;
    if (asked_) WalkOn();
    asked_ = true;
}

// One step up or down, or none; at its ends the signal turns back.
void Network::WalkOn() {
    constexpr int kLowest = 8;
    constexpr int kHighest = 28;
    signal_ = std::clamp(signal_ + static_cast<int>(modem_.Random(3)) - 1, kLowest, kHighest);
}

int Network::Level() const {
    return coverage_ && functions_ == kRadioOn ? signal_ : kUnknownSignal;
}

std::string Network::SignalText(const std::string& name) const {
    const int level = Level();
    const bool heard = level != kUnknownSignal;
    if (name == "+CSQ") return "+CSQ: " + std::to_string(level) + ",99";
    if (name == "+ZRSSI") {
        // Power of the reference signal in dBm, its quality in dB, a margin, and signal to noise in dB.
        if (!heard) return "+ZRSSI: -141,-20,-20,-20.0";
        return "+ZRSSI: " + std::to_string(2 * level - 137) + ",-8,-12," + std::to_string(level - 1) + ".5";
    }
    if (name == "+CIND") {
        const int bars = heard ? (level + 5) / 6 : 0;
        return "+CIND: 5," + std::to_string(std::min(bars, 5)) + "," + (Registered() ? "1" : "0") + "," +
               (modem_.calls.Active() ? "1" : "0") + ",0," + (stat_ == kRoaming ? "1" : "0") + ",1,0";
    }
    return "^SYSINFO: " + std::string(Registered() ? "2,3," : "0,0,") + (stat_ == kRoaming ? "1" : "0") +
           ",17," + (modem_.sim.Ready() ? "1" : "0") + ",0,10";
}

std::string Network::SetSignal(int level) {
    movement_ = Signal::Fixed;
    ++walk_;
    signal_ = level;
    modem_.Say({"^HRSSILVL:" + std::to_string(Level())});
    return {};
}

std::string Network::MoveSignal(Time every) {
    movement_ = Signal::Walking;
    walk_every_ = every;
    if (signal_ > kBestSignal) signal_ = 21;
    const std::uint64_t walk = ++walk_;
    const std::function<void()> step = [this, walk] {
        if (walk != walk_) return;
        WalkOn();
        modem_.Say({"^HRSSILVL:" + std::to_string(Level())});
        MoveSignal(walk_every_);
    };
    modem_.In(every, step);
    return {};
}

// ---- steering

std::string Network::Lose() {
    if (!coverage_) return "the network is lost already; 'network restore' brings it back";
    coverage_ = false;
    Look();
    return {};
}

std::string Network::Restore() {
    if (coverage_ && kOperators.at(operator_).home) return "the network is there already";
    coverage_ = true;
    operator_ = 0;
    Look();
    return {};
}

std::string Network::Roam() {
    constexpr std::size_t kAbroad = 1;
    if (operator_ == kAbroad) return "the modem is abroad already; 'network restore' takes it home";
    coverage_ = true;
    operator_ = kAbroad;
    Look();
    return {};
}

void Network::Restart() {
    functions_ = kRadioOn;
    reports_ = {2, 2, 2};
    stat_ = kNone;
    if (movement_ == Signal::Walking) MoveSignal(walk_every_);
    Look();
    // A modem that has just started has nothing to tell yet; the state is there to be asked for.
    modem_.TakeReports();
}

void Network::Describe(nlohmann::json& state) const {
    state["radio"] = functions_ == kRadioOn;
    state["coverage"] = coverage_;
    state["registration"] = stat_ == kHome        ? "home"
                            : stat_ == kRoaming   ? "roaming"
                            : stat_ == kSearching ? "searching"
                                                  : "none";
    if (Registered()) state["operator"] = kOperators.at(operator_).name;
    state["signal"] = Level();
}

}  // namespace modemsim

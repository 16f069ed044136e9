#include "tools/modemsim/model/sim.h"

#include <nlohmann/json.hpp>

#include "tools/modemsim/model/modem.h"
#include "tools/modemsim/pattern.h"

namespace modemsim {

namespace {

using Form = CommandLine::Form;
using std::chrono::milliseconds;

constexpr Time kCardTime = milliseconds(300);  // that the card takes to compare a code
constexpr char kImsi[] = "001010123456789";
constexpr char kIccid[] = "89440010123456789012";

bool IsCode(const std::string& text) {
    return text.size() >= 4 && text.size() <= 8 && text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

bool Sim::Code::Try(const std::string& attempt) {
    if (attempt == code) {
        left = most;
        return true;
    }
    if (left > 0) --left;
    return false;
}

Sim::Sim(Modem& modem) : modem_(modem) {
    // Commands that give one line once the card is ready.
    const auto when_ready = [&](const std::string& name, const std::string& text) {
        modem.On(name, [this, text](const CommandLine&) {
            return Ready() ? Reply::Line(text) : Reply::Error(*Obstacle());
        });
    };
    // Commands that tell attempts as long as there is a card.
    const auto attempts = [&](const std::string& name, auto tell) {
        modem.On(name, [this, tell](const CommandLine&) {
            return present_ ? Reply::Line(tell()) : Reply::Error(Cme::NoSim);
        });
    };
    when_ready("+CIMI", kImsi);
    when_ready("+ZIMSI", std::string("+ZIMSI: ") + kImsi);
    when_ready("+CNUM", "+CNUM: ,\"" + OwnNumber() + "\",145");
    modem.On("+CPIN", [this](const CommandLine& line) { return Pin(line); });
    modem.On("+CPWD", [this](const CommandLine& line) { return Password(line); });
    modem.On("+CLCK", [this](const CommandLine& line) { return Lock(line); });
    modem.On("+CRSM", [this](const CommandLine& line) { return File(line); });
    attempts("+CPINC", [this] {
        return "+CPINC: " + std::to_string(pin_.left) + "," + std::to_string(pin2_.left) + "," +
               std::to_string(puk_.left) + "," + std::to_string(puk2_.left);
    });
    attempts("%PINNUM", [this] { return "%PINNUM: " + Attempts(","); });
    attempts("+ZPINPUK",
             [this] { return "+ZPINPUK: " + std::to_string(pin_.left) + "," + std::to_string(puk_.left); });
    attempts("^CPIN", [this] {
        const std::string status = Status();
        const std::string left = status == "SIM PIN"   ? std::to_string(pin_.left)
                                 : status == "SIM PUK" ? std::to_string(puk_.left)
                                                       : "";
        return "^CPIN: " + status + "," + left + "," + Attempts(",");
    });
}

std::string Sim::OwnNumber() {
    return "+447700900111";
}

std::string Sim::Attempts(const char* separator) const {
    return std::to_string(puk_.left) + separator + std::to_string(pin_.left) + separator +
           std::to_string(puk2_.left) + separator + std::to_string(pin2_.left);
}

std::optional<Cme> Sim::Obstacle() const {
    if (!present_) return Cme::NoSim;
    if (puk_.Blocked()) return Cme::SimFailure;
    if (pin_.Blocked()) return Cme::PukRequired;
    if (asks_ && !verified_) return Cme::PinRequired;
    return std::nullopt;
}

std::optional<Cms> Sim::MessageObstacle() const {
    const auto obstacle = Obstacle();
    if (!obstacle) return std::nullopt;
    switch (*obstacle) {
        case Cme::NoSim:
            return Cms::NoSim;
        case Cme::PinRequired:
            return Cms::PinRequired;
        case Cme::PukRequired:
            return Cms::PukRequired;
        default:
            return Cms::SimFailure;
    }
}

std::string Sim::Status() const {
    const auto obstacle = Obstacle();
    if (obstacle == Cme::PukRequired) return "SIM PUK";
    if (obstacle == Cme::PinRequired) return "SIM PIN";
    return "READY";
}

void Sim::BecameReady() {
    modem_.Say({"+ZURDY: 1,1"});
    modem_.Say({std::string("+ZICCID: ") + kIccid});
    modem_.network.Look();
}

// The answer to a code that was put in: the card is slow, and says itself what it wants next.
Reply Sim::Check(Code& code, const std::string& attempt) {
    if (code.Blocked()) return Reply::Error(&code == &pin2_ ? Cme::Puk2Required : Cme::PukRequired);
    const bool right = code.Try(attempt);
    Reply reply = right ? Reply::Ok() : Reply::Error(Cme::WrongPassword);
    reply.wait = kCardTime;
    return reply;
}

Reply Sim::Pin(const CommandLine& line) {
    if (!present_) return Reply::Error(Cme::NoSim);
    if (line.form == Form::Read)
        return puk_.Blocked() ? Reply::Error(Cme::SimFailure) : Reply::Line("+CPIN: " + Status());
    if (line.form == Form::Test) return Reply::Ok();
    if (line.form != Form::Set) return Reply::Error();
    if (puk_.Blocked()) return Reply::Error(Cme::SimFailure);
    if (pin_.Blocked()) {
        if (line.args.size() < 2) return Reply::Error(Cme::PukRequired);
        return Unblock(pin_, puk_, line, IsCode(line.Text(1)) && puk_.Try(line.Text(0)));
    }
    const bool asked = Obstacle() == Cme::PinRequired;
    Reply reply = Check(pin_, line.Text(0));
    if (reply.IsOk() && asked) {
        verified_ = true;
        reply.after = [this] { BecameReady(); };
    }
    return reply;
}

Reply Sim::Unblock(Code& code, const Code& puk, const CommandLine& line, bool right) {
    if (!right) {
        Reply reply = Reply::Error(puk.Blocked() ? Cme::SimFailure : Cme::WrongPassword);
        reply.wait = kCardTime;
        return reply;
    }
    code.code = line.Text(1);
    code.left = code.most;
    verified_ = true;
    Reply reply = Reply::Ok(kCardTime);
    reply.after = [this] { BecameReady(); };
    return reply;
}

Reply Sim::Password(const CommandLine& line) {
    if (line.form != Form::Set || line.args.size() < 3) return Reply::Error();
    const std::string facility = UpperCase(line.Text(0));
    if (facility != "SC" && facility != "P2") return Reply::Error(Cme::NotSupported);
    if (facility == "SC" && !Ready()) return Reply::Error(*Obstacle());
    if (!present_) return Reply::Error(Cme::NoSim);
    if (!IsCode(line.Text(2))) return Reply::Error(Cme::WrongParameters);
    // The card changes its PIN only while it asks for it.
    if (facility == "SC" && !asks_) return Reply::Error(Cme::NotAllowed);
    Code& code = facility == "SC" ? pin_ : pin2_;
    Reply reply = Check(code, line.Text(1));
    if (reply.IsOk()) code.code = line.Text(2);
    return reply;
}

Reply Sim::Lock(const CommandLine& line) {
    const auto mode = line.Number(1);
    if (line.form != Form::Set || !mode || *mode > 2) return Reply::Error();
    if (!Ready()) return Reply::Error(*Obstacle());
    const std::string facility = UpperCase(line.Text(0));
    if (facility != "SC") {
        bool& locked = locks_[facility];
        if (*mode == 2) return Reply::Line("+CLCK: " + std::to_string(locked ? 1 : 0));
        locked = *mode == 1;
        return Reply::Ok(kCardTime);
    }
    if (*mode == 2) return Reply::Line("+CLCK: " + std::to_string(asks_ ? 1 : 0));
    Reply reply = Check(pin_, line.Text(2));
    if (reply.IsOk()) {
        asks_ = *mode == 1;
        verified_ = true;  // the code has just been given
    }
    return reply;
}

// The three files that are looked at: status words and data of a card.
Reply Sim::File(const CommandLine& line) const {
    constexpr int kReadBinary = 176;
    constexpr int kIccidFile = 0x2FE2;
    constexpr int kImsiFile = 0x6F07;
    constexpr int kProviderFile = 0x6F46;
    if (line.form != Form::Set || !line.Number(0) || !line.Number(1)) return Reply::Error();
    if (!present_) return Reply::Error(Cme::NoSim);
    const char* data = nullptr;
    if (*line.Number(0) == kReadBinary) {
        if (*line.Number(1) == kIccidFile) data = "98440010214365870921";
        if (*line.Number(1) == kImsiFile && Ready()) data = "080910101032547698";
        if (*line.Number(1) == kProviderFile) data = "01546573746E6574FFFFFFFFFFFFFFFFFF";
    }
    if (data == nullptr) return Reply::Line("+CRSM: 106,130");
    return Reply::Line("+CRSM: 144,0,\"" + std::string(data) + "\"");
}

std::string Sim::Pull() {
    if (!present_) return "there is no SIM in the modem; 'sim insert' puts it back";
    present_ = false;
    verified_ = false;
    modem_.Say({"+ZUSIMR: 0"});
    modem_.network.Look();
    return {};
}

std::string Sim::Insert() {
    if (present_) return "the SIM is in the modem already; 'sim pull' takes it out";
    present_ = true;
    modem_.Say({"+ZUSIMR: 1"});
    if (Ready()) BecameReady();
    return {};
}

std::string Sim::Lock() {
    if (!present_) return "there is no SIM in the modem; 'sim insert' puts it back";
    asks_ = true;
    verified_ = false;
    modem_.network.Look();
    return {};
}

void Sim::Describe(nlohmann::json& state) const {
    state["present"] = present_;
    state["status"] = present_ ? Status() : "absent";
    state["asks_for_pin"] = asks_;
    state["pin_left"] = pin_.left;
    state["puk_left"] = puk_.left;
}

}  // namespace modemsim

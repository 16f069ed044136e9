#include "tools/modemsim/model/ussd.h"

#include <array>
#include <nlohmann/json.hpp>

#include "tools/modemsim/model/modem.h"

namespace modemsim {

namespace {

using Form = CommandLine::Form;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr Time kNetworkTime = milliseconds(1800);
constexpr Time kPatience = seconds(60);  // then the network ends a dialogue

// What the service says at each place: the code that leads there, then the choices made.
struct Node {
    const char* path;
    bool asks;  // waits for a choice
    const char* text;
};

constexpr std::array<Node, 8> kMenu = {{
    {"*100#", false, "Your balance is 12.34. Thank you, and goodbye."},
    {"*101#", true, "Testnet: 1 Balance, 2 Data left, 3 Language"},
    {"*101#/1", false, "Your balance is 12.34. Thank you, and goodbye."},
    {"*101#/2", true, "Data left: 1 This month, 2 Today"},
    {"*101#/2/1", false, "3.2 GB until the end of the month."},
    {"*101#/2/2", false, "412 MB until midnight."},
    {"*101#/3", true, "Language: 1 English, 2 Cymraeg"},
    {"*101#/3/1", false, "Your language is English now."},
}};

const Node* At(const std::string& path) {
    for (const Node& node : kMenu) {
        if (path == node.path) return &node;
    }
    return nullptr;
}

std::string Text(bool asks, const std::string& text) {
    return std::string("+CUSD: ") + (asks ? "1" : "0") + ",\"" + text + "\",15";
}

}  // namespace

Ussd::Ussd(Modem& modem) : modem_(modem) {
    modem.On("+CUSD", [this](const CommandLine& line) { return Dialogue(line); });
}

Reply Ussd::Dialogue(const CommandLine& line) {
    constexpr int kEnd = 2;
    if (line.form == Form::Read) return Reply::Line("+CUSD: 1");
    if (line.form == Form::Test) return Reply::Line("+CUSD: (0-2)");
    const auto what = line.Number(0);
    if (line.form != Form::Set || !what || *what > kEnd) return Reply::Error(Cme::WrongParameters);
    if (*what == kEnd) open_.clear();
    const std::string& text = line.Text(1);
    if (*what != 1 || text.empty()) return Reply::Ok();
    if (!modem_.network.Registered()) return Reply::Error(Cme::NoNetwork);
    Reply reply = Reply::Ok();
    reply.after = [this, path = open_.empty() ? text : open_ + "/" + text] {
        modem_.In(kNetworkTime, [this, path] { Say(path); });
    };
    return reply;
}

void Ussd::Say(const std::string& path) {
    // The network has gone meanwhile, and the dialogue with it.
    if (!modem_.network.Registered()) return;
    const Node* node = At(path);
    ++turns_;
    open_.clear();
    if (node == nullptr) {
        modem_.Say({"+CUSD: 4"});
        return;
    }
    if (node->asks) {
        open_ = path;
        modem_.In(kPatience, [this, turn = turns_] {
            if (turn != turns_ || open_.empty()) return;
            open_.clear();
            modem_.Say({"+CUSD: 2"});
        });
    }
    modem_.Say({Text(node->asks, node->text)});
}

std::string Ussd::Push(const std::string& text) {
    if (!modem_.network.Registered()) return "the modem is not registered in a network";
    if (text.find('"') != std::string::npos) return "a USSD text cannot hold a double quote";
    modem_.Say({Text(false, text)});
    return {};
}

void Ussd::Describe(nlohmann::json& state) const {
    state["dialogue"] = open_;
}

}  // namespace modemsim

#include "tools/modemsim/model/messages.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/modemsim/model/modem.h"
#include "tools/modemsim/model/number.h"
#include "tools/modemsim/model/pdu.h"
#include "tools/modemsim/pattern.h"

namespace modemsim {

namespace {

using Form = CommandLine::Form;
using std::chrono::milliseconds;
using std::chrono::seconds;

// What a new modem has on its card.
struct Stored {
    int place;
    int status;
    const char* alpha;
    const char* pdu;
};
constexpr std::array<Stored, 5> kStored = {{
    {1, 0, "",
     "0791447700090000040C9144770009103200006211028003510023C7F79B0C6ABFE5EEB4FB1C0251E5E1B41BC42E87ED"
     "E539284C07E574B09A0B"},
    {2, 1, "Oksana",
     "0791447700090000040C9144770009406500086211022151000022041F04400438043204350442002C00200434043E00"
     "20043204350447043504400430"},
    {3, 1, "",
     "0791447700090000040C91447700097098000062119181542000A0D9775D0E8287E5E3321BF45CB668B7580C949E83C2"
     "74101D5D0691CBF037DD057AC2CBEEB4FB0C42BFEBF2B90ED47CBB5B46791A84D3C160AD184E0783B140D3301D94D3C1"
     "60ADD84C0783B9404279DA7D06D1D1E939A85D9ECFC3E73228EC2683C22038FA4D7F8392441608CE2E87E76517888A0E"
     "BBD7A0FCBB0E32BFE5A07B384D4FBBCF2C50D84D0689F3"},
    {4, 3, "",
     "079144770009000011000C914477000910320000AA214F37A89D07DDC37916485C06D1D16579199476836230503BEDAE"
     "D3CB73"},
    {5, 2, "", "079144770009000011000C914477000940650000AA164479D84CD781C661361B444797416FB3393D2E03"},
}};

constexpr std::size_t kCentreBytes = 8;  // of the service centre's address in front of those

bool StatusFits(int status, int wanted) {
    constexpr int kEvery = 4;
    return wanted == kEvery || status == wanted;
}

}  // namespace

Messages::Messages(Modem& modem) : modem_(modem), stores_({Store{"SM", 50, {}}, Store{"ME", 100, {}}}) {
    for (const Stored& stored : kStored) {
        const std::string pdu = stored.pdu;
        stores_[0].messages[stored.place] = {stored.status, stored.alpha, pdu, pdu.size() / 2 - kCentreBytes};
    }
    const auto command = [&](const std::string& name, Reply (Messages::*answer)(const CommandLine&)) {
        modem.On(name, [this, answer](const CommandLine& line) { return WhenReady(line, answer); });
    };
    command("+CPMS", &Messages::Storages);
    command("+CMGL", &Messages::List);
    command("+CMGR", &Messages::Read);
    command("+CMGD", &Messages::Delete);
    command("+CMGS", &Messages::Send);
    command("+CMGW", &Messages::Write);
    modem.On("+CNMI", [this](const CommandLine& line) { return Indications(line); });
    modem.On("+CMGF", [](const CommandLine& line) {
        if (line.form == Form::Read) return Reply::Line("+CMGF: 0");
        // There is no text mode.
        if (line.form == Form::Test) return Reply::Line("+CMGF: (0)");
        return line.Number(0) == 0 ? Reply::Ok() : Reply::Error(Cms::WrongTextParameter);
    });
    modem.On("+CSCA", [this](const CommandLine& line) {
        if (line.form == Form::Read)
            return Reply::Line("+CSCA: \"" + centre_ + "\"," + std::to_string(TypeOfNumber(centre_)));
        if (line.form != Form::Set || !IsNumber(line.Text(0))) return Reply::Error(Cms::WrongTextParameter);
        centre_ = line.Text(0);
        return Reply::Ok();
    });
    for (const char* name : {"+CMMS", "+ZTAG"})
        modem.On(name, [](const CommandLine&) { return Reply::Ok(); });
}

int Messages::Store::FreePlace() const {
    for (int place = 1; place <= places; ++place) {
        if (!messages.contains(place)) return place;
    }
    return 0;
}

Messages::Store* Messages::Find(const std::string& name) {
    const auto store =
        std::find_if(stores_.begin(), stores_.end(), [&](const Store& s) { return s.name == name; });
    return store == stores_.end() ? nullptr : &*store;
}

Reply Messages::WhenReady(const CommandLine& line, Reply (Messages::*answer)(const CommandLine&)) {
    const auto obstacle = modem_.sim.MessageObstacle();
    if (obstacle) return Reply::Error(*obstacle);
    return (this->*answer)(line);
}

// Of the three stores in use: places taken and places in all, with or without their names.
std::string Messages::Usage(bool names) const {
    std::string text;
    for (const std::size_t i : used_) {
        const Store& store = stores_.at(i);
        if (!text.empty()) text += ",";
        if (names) text += "\"" + store.name + "\",";
        text += std::to_string(store.messages.size()) + "," + std::to_string(store.places);
    }
    return text;
}

Reply Messages::Storages(const CommandLine& line) {
    if (line.form == Form::Read) return Reply::Line("+CPMS: " + Usage(true));
    if (line.form == Form::Test) return Reply::Line("+CPMS: (\"SM\",\"ME\"),(\"SM\",\"ME\"),(\"SM\",\"ME\")");
    std::array<std::size_t, 3> wanted = used_;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (line.Text(i).empty()) continue;
        const Store* store = Find(UpperCase(line.Text(i)));
        if (store == nullptr) return Reply::Error(Cms::WrongTextParameter);
        wanted[i] = static_cast<std::size_t>(store - stores_.data());
    }
    used_ = wanted;
    return Reply::Line("+CPMS: " + Usage(false));
}

Reply Messages::List(const CommandLine& line) {
    if (line.form == Form::Test) return Reply::Line("+CMGL: (0-4)");
    const auto wanted = line.NumberOr(0, kUnread);
    if (!wanted || *wanted > kAll) return Reply::Error(Cms::WrongPduParameter);
    Reply reply = Reply::Ok(milliseconds(100));
    for (auto& [place, message] : Reading().messages) {
        if (!StatusFits(message.status, *wanted)) continue;
        const std::string alpha = message.alpha.empty() ? "" : "\"" + message.alpha + "\"";
        reply.lines.push_back("+CMGL: " + std::to_string(place) + "," + std::to_string(message.status) + "," +
                              alpha + "," + std::to_string(message.length));
        reply.lines.push_back(message.pdu);
        if (message.status == kUnread) message.status = kRead;
    }
    return reply;
}

Reply Messages::Read(const CommandLine& line) {
    const auto place = line.Number(0);
    const auto found = Reading().messages.find(place.value_or(0));
    if (found == Reading().messages.end()) return Reply::Error(Cms::InvalidIndex);
    Message& message = found->second;
    const std::string alpha = message.alpha.empty() ? "" : "\"" + message.alpha + "\"";
    Reply reply{.lines = {"+CMGR: " + std::to_string(message.status) + "," + alpha + "," +
                              std::to_string(message.length),
                          message.pdu}};
    if (message.status == kUnread) message.status = kRead;
    return reply;
}

Reply Messages::Delete(const CommandLine& line) {
    const auto place = line.Number(0);
    const auto which = line.NumberOr(1, 0);
    Store& store = Reading();
    if (!place || !which || *which > 4) return Reply::Error(Cms::WrongPduParameter);
    if (*which == 0) {
        if (*place < 1 || *place > store.places) return Reply::Error(Cms::InvalidIndex);
        store.messages.erase(*place);
    } else {
        // 1 those that were read, 2 and those that were sent, 3 and those that were not, 4 all.
        constexpr std::array<std::array<bool, 4>, 4> kGoes = {{{false, true, false, false},
                                                               {false, true, false, true},
                                                               {false, true, true, true},
                                                               {true, true, true, true}}};
        std::erase_if(store.messages, [&](const auto& entry) {
            return kGoes.at(static_cast<std::size_t>(*which - 1))
                .at(static_cast<std::size_t>(entry.second.status));
        });
    }
    return Reply::Ok(milliseconds(100));
}

Reply Messages::Send(const CommandLine& line) {
    const auto length = line.Number(0);
    if (line.form == Form::Test) return Reply::Ok();
    if (line.form != Form::Set || !length || *length < 1) return Reply::Error(Cms::WrongPduParameter);
    if (!modem_.network.Registered()) return Reply::Error(Cms::NoNetwork);
    Reply reply;
    reply.prompt = [this, length](const std::string& text) {
        const auto message = ReadSubmit(text, static_cast<std::size_t>(*length));
        if (!message) return Reply::Error(Cms::WrongPduParameter);
        if (!modem_.network.Registered()) return Reply::Error(Cms::NoNetwork);
        return Sent(*message);
    };
    return reply;
}

Reply Messages::Sent(const Submit& message) {
    constexpr int kReferences = 256;
    last_reference_ = (last_reference_ + 1) % kReferences;
    sent_to_.push_back(message.to);
    Reply reply = Reply::Line("+CMGS: " + std::to_string(last_reference_));
    reply.wait = milliseconds(1200);
    reply.after = [this, message, reference = static_cast<std::uint8_t>(last_reference_)] {
        if (message.wants_report && indications_[3] == 1) {
            modem_.In(seconds(2), [this, message, reference] {
                const Pdu report = StatusReport(reference, message.to, modem_.Clock());
                modem_.Say({"+CDS: " + std::to_string(report.length), report.hex});
            });
        }
        // To the own number: it comes back.
        if (message.to == Sim::OwnNumber())
            modem_.In(seconds(1),
                      [this, message] { Take({DeliverOf(message, message.to, modem_.Clock())}); });
    };
    return reply;
}

Reply Messages::Write(const CommandLine& line) {
    const auto length = line.Number(0);
    const auto status = line.NumberOr(1, kUnsent);
    if (line.form != Form::Set || !length || *length < 1 || !status || *status > kSent)
        return Reply::Error(Cms::WrongPduParameter);
    if (stores_.at(used_[1]).FreePlace() == 0) return Reply::Error(Cms::MemoryFull);
    Reply reply;
    reply.prompt = [this, length, status](const std::string& text) {
        const bool hex = text.find_first_not_of("0123456789ABCDEFabcdef") == std::string::npos;
        const std::size_t centre =
            hex && text.size() >= 2 ? std::stoul(text.substr(0, 2), nullptr, 16) + 1 : 0;
        if (centre == 0 || text.size() != 2 * (centre + static_cast<std::size_t>(*length)))
            return Reply::Error(Cms::WrongPduParameter);
        Store& store = stores_.at(used_[1]);
        const int place = store.FreePlace();
        if (place == 0) return Reply::Error(Cms::MemoryFull);
        store.messages[place] = {*status, "", UpperCase(text), static_cast<std::size_t>(*length)};
        Reply written = Reply::Line("+CMGW: " + std::to_string(place));
        written.wait = milliseconds(150);
        return written;
    };
    return reply;
}

Reply Messages::Indications(const CommandLine& line) {
    if (line.form == Form::Read) {
        std::string text = "+CNMI: ";
        for (std::size_t i = 0; i < indications_.size(); ++i)
            text += (i == 0 ? "" : ",") + std::to_string(indications_[i]);
        return Reply::Line(text);
    }
    if (line.form == Form::Test) return Reply::Line("+CNMI: (0-2),(0,1),(0),(0,1),(0)");
    if (line.form != Form::Set) return Reply::Error();
    std::array<int, 5> wanted = indications_;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const auto value = line.NumberOr(i, wanted[i]);
        if (!value || *value > 3) return Reply::Error(Cms::WrongTextParameter);
        wanted[i] = *value;
    }
    indications_ = wanted;
    return Reply::Ok();
}

// All parts of a message, or none of them.
bool Messages::Take(const std::vector<Pdu>& pdus) {
    Store& store = stores_.at(used_[2]);
    if (store.messages.size() + pdus.size() > static_cast<std::size_t>(store.places)) return false;
    for (const Pdu& pdu : pdus) {
        const int place = store.FreePlace();
        store.messages[place] = {kUnread, "", pdu.hex, pdu.length};
        if (indications_[1] == 1) modem_.Say({"+CMTI: \"" + store.name + "\"," + std::to_string(place)});
    }
    return true;
}

std::string Messages::Deliver(const std::string& from, const std::string& text) {
    if (!modem_.network.Registered())
        return "the modem is not registered in a network: no message reaches it";
    if (!modem_.sim.Ready()) return "the SIM is not ready to take a message";
    std::string reason;
    const auto pdus = DeliverPdus(from, text, modem_.Clock(), ++last_long_one_, reason);
    if (!pdus) return reason;
    if (!Take(*pdus)) return "the store for messages that come in (AT+CPMS) is full";
    return {};
}

void Messages::Describe(nlohmann::json& state) const {
    constexpr std::array<const char*, 4> kNames = {"unread", "read", "unsent", "sent"};
    for (const Store& store : stores_) {
        nlohmann::json& list = state[store.name];
        list = nlohmann::json::array();
        for (const auto& [place, message] : store.messages) {
            list.push_back({{"place", place},
                            {"status", kNames.at(static_cast<std::size_t>(message.status))},
                            {"pdu", message.pdu}});
        }
    }
    state["sent_to"] = sent_to_;
}

}  // namespace modemsim

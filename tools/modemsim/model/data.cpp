#include "tools/modemsim/model/data.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/modemsim/model/modem.h"
#include "tools/modemsim/pattern.h"

namespace modemsim {

namespace {

using Form = CommandLine::Form;
using std::chrono::milliseconds;

constexpr int kMostContexts = 16;
constexpr char kRefusedApn[] = "refused.example";  // this network's subscribers may not use it

// Addresses that no host in the world has.
struct Addresses {
    std::string type;
    std::string own;
    std::string gateway;
    std::string first_name_server;
    std::string second_name_server;
};

Addresses Of(const std::string& type, int cid) {
    if (type == "IPV6") {
        const std::string net = "2001:db8:64:" + std::to_string(cid);
        return {type, net + "::22", net + "::1", "2001:db8::53", "2001:db8:1::53"};
    }
    const std::string net = "10.64." + std::to_string(11 + cid);
    return {"IP", net + ".34", net + ".33", "192.0.2.53", "198.51.100.53"};
}

// One address for each family that the context carries.
std::vector<Addresses> AllOf(const std::string& type, int cid) {
    if (type == "IPV4V6") return {Of("IP", cid), Of("IPV6", cid)};
    return {Of(type, cid)};
}

}  // namespace

Data::Data(Modem& modem) : modem_(modem) {
    contexts_[1] = {.apn = "internet.example", .address = "0.0.0.0", .active = true};
    contexts_[2] = {.type = "IPV4V6", .apn = "ims"};
    modem.On("+CGDCONT", [this](const CommandLine& line) { return Define(line); });
    modem.On("+CGATT", [this](const CommandLine& line) { return Attach(line); });
    modem.On("+CGPADDR", [this](const CommandLine& line) { return Addresses(line); });
    modem.On("$QCPDPP", [this](const CommandLine& line) {
        const auto cid = line.Number(0);
        return line.form == Form::Set && cid && contexts_.contains(*cid) ? Reply::Ok()
                                                                         : Reply::Error(Cme::WrongParameters);
    });
    // Both switch a context on and off; the second also tells the host what it needs to use it.
    for (const bool tells : {false, true}) {
        modem.On(tells ? "+ZGACT" : "+CGACT", [this, tells](const CommandLine& line) {
            if (line.form == Form::Read && !tells) return ActivationState();
            if (line.form != Form::Set || !line.Number(0) || *line.Number(0) > 1)
                return Reply::Error(Cme::WrongParameters);
            const auto cid = line.NumberOr(1, 1);
            return cid ? Activate(*line.Number(0), *cid, tells) : Reply::Error(Cme::WrongParameters);
        });
    }
}

bool Data::Attached() const {
    return attached_ && modem_.network.Registered();
}

bool Data::AnyActive() const {
    return std::any_of(contexts_.begin(), contexts_.end(), [](const auto& c) { return c.second.active; });
}

void Data::DeactivateAll() {
    for (auto& [cid, context] : contexts_)
        context.active = false;
}

Reply Data::Define(const CommandLine& line) {
    if (line.form == Form::Read) {
        Reply reply;
        for (const auto& [cid, context] : contexts_) {
            reply.lines.push_back("+CGDCONT: " + std::to_string(cid) + ",\"" + context.type + "\",\"" +
                                  context.apn + "\",\"" + context.address + "\"," +
                                  std::to_string(context.data_compression) + "," +
                                  std::to_string(context.header_compression));
        }
        return reply;
    }
    if (line.form == Form::Test) return Reply::Line("+CGDCONT: (1-16),\"IP\",,,(0-2),(0-4)");
    const auto cid = line.Number(0);
    if (line.form != Form::Set || !cid || *cid < 1 || *cid > kMostContexts)
        return Reply::Error(Cme::WrongParameters);
    const auto context = contexts_.find(*cid);
    const bool active = context != contexts_.end() && context->second.active;
    if (line.args.size() == 1) {
        if (active) return Reply::Error(Cme::NotAllowed);
        contexts_.erase(*cid);
        return Reply::Ok();
    }
    const std::string type = UpperCase(line.Text(1));
    const auto data = line.NumberOr(4, 0);
    const auto header = line.NumberOr(5, 0);
    if ((type != "IP" && type != "IPV6" && type != "IPV4V6") || !data || !header)
        return Reply::Error(Cme::WrongParameters);
    contexts_[*cid] = {type, line.Text(2), line.Text(3), *data, *header, active};
    return Reply::Ok();
}

Reply Data::Attach(const CommandLine& line) {
    if (line.form == Form::Read) return Reply::Line("+CGATT: " + std::string(Attached() ? "1" : "0"));
    const auto wanted = line.Number(0);
    if (line.form != Form::Set || !wanted || *wanted > 1) return Reply::Error(Cme::WrongParameters);
    if (*wanted == 1 && !modem_.network.Registered()) return Reply::Error(Cme::NoNetwork);
    Reply reply = Reply::Ok(milliseconds(600));
    attached_ = *wanted == 1;
    if (!attached_ && AnyActive()) {
        DeactivateAll();
        reply.after = [this] { modem_.Say({"+ZCONSTAT: 0"}); };
    }
    return reply;
}

void Data::TellAddresses(int cid) const {
    const auto context = contexts_.find(cid);
    if (context == contexts_.end() || !context->second.active) return;
    Modem::Report report;
    for (const auto& a : AllOf(context->second.type, cid)) {
        report.push_back("+ZGIPDNS: " + std::to_string(cid) + ",1,\"" + a.type + "\",\"" + a.own + "\",\"" +
                         a.gateway + "\",\"" + a.first_name_server + "\",\"" + a.second_name_server + "\"");
    }
    report.emplace_back("+ZCONSTAT: 1");
    modem_.Say(report);
}

Reply Data::Activate(int state, int cid, bool report) {
    const auto context = contexts_.find(cid);
    if (context == contexts_.end()) return Reply::Error(Cme::WrongParameters);
    if (state == 1) {
        if (!Attached()) return Reply::Error(Cme::NoNetwork);
        if (context->second.apn == kRefusedApn) {
            Reply refusal = Reply::Error(Cme::NotSubscribed);
            refusal.wait = milliseconds(800);
            return refusal;
        }
        context->second.active = true;
    } else {
        context->second.active = false;
    }
    Reply reply = Reply::Ok(milliseconds(state == 1 ? 500 : 300));
    if (report) {
        reply.after = [this, state, cid] {
            modem_.In(milliseconds(200), [this, state, cid] {
                if (state == 1)
                    TellAddresses(cid);
                else
                    modem_.Say({"+ZCONSTAT: 0"});
            });
        };
    }
    return reply;
}

Reply Data::ActivationState() const {
    Reply reply;
    for (const auto& [cid, context] : contexts_)
        reply.lines.push_back("+CGACT: " + std::to_string(cid) + "," + (context.active ? "1" : "0"));
    return reply;
}

Reply Data::Addresses(const CommandLine& line) const {
    if (line.form == Form::Read) return Reply::Error();
    Reply reply;
    for (const auto& [cid, context] : contexts_) {
        if (line.Number(0).value_or(cid) != cid) continue;
        std::string text = "+CGPADDR: " + std::to_string(cid);
        for (const auto& address : AllOf(context.type, cid)) {
            if (context.active) text += ",\"" + address.own + "\"";
        }
        reply.lines.push_back(text);
    }
    return reply.lines.empty() ? Reply::Error(Cme::WrongParameters) : reply;
}

Reply Data::Dial() {
    const Reply begun = Activate(1, 1, false);
    if (!begun.IsOk()) return begun;
    return {.end = "CONNECT 150000000", .wait = milliseconds(400)};
}

std::string Data::Drop() {
    if (!AnyActive()) return "no context is active: there is no connection to drop";
    DeactivateAll();
    modem_.Say({"+ZCONSTAT: 0"});
    return {};
}

void Data::NetworkLost() {
    if (AnyActive()) Drop();
}

void Data::Restart() {
    attached_ = true;
    DeactivateAll();
}

void Data::Describe(nlohmann::json& state) const {
    state = nlohmann::json::array();
    for (const auto& [cid, context] : contexts_) {
        nlohmann::json entry = {
            {"cid", cid}, {"type", context.type}, {"apn", context.apn}, {"active", context.active}};
        if (context.active) {
            for (const auto& address : AllOf(context.type, cid))
                entry["addresses"].push_back(address.own);
        }
        state.push_back(entry);
    }
}

}  // namespace modemsim

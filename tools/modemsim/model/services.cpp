#include "tools/modemsim/model/services.h"

#include <memory>

#include "tools/modemsim/model/modem.h"
#include "tools/modemsim/model/number.h"

namespace modemsim {

namespace {

using Form = CommandLine::Form;
using std::chrono::milliseconds;

constexpr Time kNetworkTime = milliseconds(700);  // that the network takes to answer
constexpr int kNoAnswer = 2;                      // the reason that has a time

}  // namespace

Services::Services(Modem& modem) : modem_(modem) {
    // Numbers that are kept and given back.
    const auto level = [&](const std::string& name, int value, int most, const std::string& tail) {
        const auto kept = std::make_shared<int>(value);
        modem.On(name, [name, kept, most, tail](const CommandLine& line) {
            if (line.form == Form::Read) return Reply::Line(name + ": " + std::to_string(*kept) + tail);
            const auto wanted = line.Number(0);
            if (line.form != Form::Set || !wanted || *wanted > most)
                return Reply::Error(Cme::WrongParameters);
            *kept = *wanted;
            return Reply::Ok();
        });
    };
    level("+CLVL", 5, 100, "");
    level("+CMVL", 5, 100, "");
    level("+CLIR", 0, 2, ",4");
    modem.On("+CLIP", [this](const CommandLine& line) {
        if (line.form == Form::Read) return Reply::Line("+CLIP: " + std::to_string(shows_caller_) + ",1");
        const auto wanted = line.Number(0);
        if (line.form != Form::Set || !wanted || *wanted > 1) return Reply::Error(Cme::WrongParameters);
        shows_caller_ = *wanted;
        return Reply::Ok();
    });
    modem.On("+CCFC", [this](const CommandLine& line) { return Diverts(line); });
    modem.On("+CCWA", [this](const CommandLine& line) { return Waiting(line); });
}

std::string Services::DivertsAll() const {
    return diverts_.front().active ? diverts_.front().number : std::string();
}

Reply Services::Diverts(const CommandLine& line) {
    enum Mode { kDisable = 0, kEnable = 1, kQuery = 2, kRegister = 3, kErase = 4 };
    const auto reason = line.Number(0);
    const auto mode = line.Number(1);
    if (line.form != Form::Set || !reason || *reason > 5 || !mode || *mode > kErase)
        return Reply::Error(Cme::WrongParameters);
    if (!modem_.network.Registered()) return Reply::Error(Cme::NoNetwork);
    Reply reply = Reply::Ok(kNetworkTime);
    // 4 is every reason, 5 every one but "always".
    const std::size_t first = *reason == 4 ? 0 : *reason == 5 ? 1 : static_cast<std::size_t>(*reason);
    const std::size_t last = *reason >= 4 ? diverts_.size() - 1 : first;
    for (std::size_t i = first; i <= last; ++i) {
        Divert& divert = diverts_.at(i);
        if (*mode == kQuery) {
            std::string text = "+CCFC: " + std::string(divert.active ? "1" : "0") + ",1";
            if (divert.active) {
                text += ",\"" + divert.number + "\"," + std::to_string(TypeOfNumber(divert.number));
                if (i == kNoAnswer) text += ",,," + std::to_string(divert.seconds);
            }
            reply.lines.push_back(text);
        } else if (*mode == kRegister) {
            if (!IsNumber(line.Text(2))) return Reply::Error(Cme::WrongParameters);
            divert = {true, line.Text(2), line.NumberOr(7, divert.seconds).value_or(divert.seconds)};
        } else if (*mode == kErase) {
            divert = {};
        } else {
            if (*mode == kEnable && divert.number.empty()) return Reply::Error(Cme::NotAllowed);
            divert.active = *mode == kEnable;
        }
    }
    return reply;
}

Reply Services::Waiting(const CommandLine& line) {
    if (line.form == Form::Read) return Reply::Line("+CCWA: 1");
    const auto mode = line.Number(1);
    if (line.form != Form::Set || !line.Number(0) || !mode || *mode > 2)
        return Reply::Error(Cme::WrongParameters);
    if (!modem_.network.Registered()) return Reply::Error(Cme::NoNetwork);
    Reply reply = Reply::Ok(kNetworkTime);
    if (*mode == 2)
        reply.lines = {std::string("+CCWA: ") + (waiting_ ? "1" : "0") + ",1"};
    else
        waiting_ = *mode == 1;
    return reply;
}

}  // namespace modemsim

#include "tools/modemsim/model/toolkit.h"

#include <array>
#include <nlohmann/json.hpp>

#include "tools/modemsim/model/modem.h"

namespace modemsim {

namespace {

using Form = CommandLine::Form;
using std::chrono::milliseconds;

constexpr Time kCardTime = milliseconds(200);
constexpr char kMenu[] =
    "\"Testnet services\",1,\"Balance\",2,\"News\",3,\"Send a greeting\",4,\"Delete all\"";
constexpr char kSubmenu[] = "+ZPSTM: \"News\",1,\"Weather\",2,\"Sport\"";

}  // namespace

Toolkit::Toolkit(Modem& modem) : modem_(modem) {
    modem.On("+ZSTM", [this](const CommandLine& line) {
        if (line.form != Form::Execute) return Reply::Error();
        if (!modem_.sim.Ready()) return Reply::Error(*modem_.sim.Obstacle());
        place_ = Place::Menu;
        return Reply::Line(std::string("+ZSTM: ") + kMenu);
    });
    modem.On("+ZSELM", [this](const CommandLine& line) { return Select(line); });
    modem.On("+ZSELI", [this](const CommandLine& line) { return SelectItem(line); });
    modem.On("+ZBK", [this](const CommandLine&) { return Back(); });
    modem.On("+ZINPR", [this](const CommandLine& line) {
        return Need(Place::Text, [this, text = line.Text(1)] { Show("Greeting sent: " + text); });
    });
    modem.On("+ZINKR", [this](const CommandLine& line) {
        return Need(Place::Key,
                    [this, key = line.Text(1)] { Show(key == "1" ? "All deleted" : "Nothing deleted"); });
    });
    modem.On("+ZDISTR", [this](const CommandLine&) { return Need(Place::Shown, [this] { Leave(); }); });
    for (const char* name : {"+ZUTP", "+ZUTR"})
        modem.On(name, [](const CommandLine&) { return Reply::Ok(); });
}

// OK when the card waits for just this, and then what it does next.
Reply Toolkit::Need(Place place, const std::function<void()>& then) {
    if (!modem_.sim.Ready()) return Reply::Error(*modem_.sim.Obstacle());
    if (place_ != place) return Reply::Error(Cme::NotAllowed);
    Reply reply = Reply::Ok();
    reply.after = [this, then] { modem_.In(kCardTime, then); };
    return reply;
}

void Toolkit::Show(const std::string& text) {
    place_ = Place::Shown;
    modem_.Say({"+ZDIST: \"" + text + "\""});
}

void Toolkit::Leave() {
    place_ = Place::Closed;
    modem_.Say({"+ZEND"});
}

Reply Toolkit::Select(const CommandLine& line) {
    const int item = line.Number(0).value_or(0);
    if (item < 1 || item > 4) return Reply::Error(Cme::WrongParameters);
    return Need(Place::Menu, [this, item] {
        if (item == 1) {
            Show("Your balance is 12.34");
        } else if (item == 2) {
            place_ = Place::Submenu;
            modem_.Say({kSubmenu});
        } else if (item == 3) {
            place_ = Place::Text;
            modem_.Say({"+ZGINP: \"Your greeting\",1,20"});
        } else {
            place_ = Place::Key;
            modem_.Say({"+ZGINK: \"Delete all? 1 yes, 2 no\""});
        }
    });
}

Reply Toolkit::SelectItem(const CommandLine& line) {
    const int item = line.Number(0).value_or(0);
    if (item < 1 || item > 2) return Reply::Error(Cme::WrongParameters);
    return Need(Place::Submenu,
                [this, item] { Show(item == 1 ? "Rain, later dry" : "The match ended 2 to 1"); });
}

// From the submenu to the menu, from everything else out of it.
Reply Toolkit::Back() {
    if (place_ == Place::Submenu)
        return Need(place_, [this] {
            place_ = Place::Menu;
            modem_.Say({std::string("+ZSTI: ") + kMenu});
        });
    if (place_ == Place::Closed) return Reply::Error(Cme::NotAllowed);
    return Need(place_, [this] { Leave(); });
}

void Toolkit::Describe(nlohmann::json& state) const {
    constexpr std::array<const char*, 6> kNames = {"nothing", "a choice", "a choice of the submenu",
                                                   "a text",  "a key",    "that its text is shown"};
    state["waits_for"] = kNames.at(static_cast<std::size_t>(place_));
}

}  // namespace modemsim

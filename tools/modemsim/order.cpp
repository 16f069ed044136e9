#include "tools/modemsim/order.h"

#include <algorithm>
#include <array>
#include <vector>

#include "tools/modemsim/model/number.h"
#include "tools/modemsim/words.h"

namespace modemsim {

namespace {

using Kind = Order::Kind;

// What follows the words of an order.
enum class Shape {
    Nothing,
    Number,
    NumberAndText,
    Text,
    Quoted,
    Level,
    Time,
    TimeOrNothing,
    Pieces,
    Count,
    CountAndTime,
    Switch
};

struct Row {
    std::string_view verb;
    std::string_view object;  // the second word, empty when there is none
    Kind kind;
    Shape shape;
    std::string_view arguments;
    std::string_view help;
};

constexpr std::array<Row, 31> kRows = {{
    {"ring", "", Kind::Ring, Shape::Number, "NUMBER", "somebody calls"},
    {"answer", "", Kind::Answer, Shape::Nothing, "", "whom the modem has dialled answers"},
    {"busy", "", Kind::Busy, Shape::Nothing, "", "whom the modem has dialled is busy"},
    {"hangup", "", Kind::HangUp, Shape::Nothing, "", "the other party hangs up, or gives up ringing"},
    {"message", "", Kind::Message, Shape::NumberAndText, "NUMBER TEXT", "a message comes in"},
    {"ussd", "", Kind::Ussd, Shape::Text, "TEXT", "the network sends a USSD text"},
    {"network", "lose", Kind::LoseNetwork, Shape::Nothing, "", "out of reach of every network"},
    {"network", "restore", Kind::RestoreNetwork, Shape::Nothing, "", "the home network is there (again)"},
    {"network", "roam", Kind::Roam, Shape::Nothing, "", "abroad, in another network"},
    {"sim", "pull", Kind::PullSim, Shape::Nothing, "", "the SIM is taken out"},
    {"sim", "insert", Kind::InsertSim, Shape::Nothing, "", "the SIM is put back"},
    {"sim", "lock", Kind::LockSim, Shape::Nothing, "",
     "the SIM asks for its PIN (1234), now and at every start"},
    {"signal", "move", Kind::MoveSignal, Shape::TimeOrNothing, "[TIME]",
     "the signal moves and is reported, each TIME (5s)"},
    {"signal", "", Kind::SetSignal, Shape::Level, "LEVEL", "the signal is at 0 to 31, or 99 for none"},
    {"data", "drop", Kind::DropData, Shape::Nothing, "", "the network ends the data connection"},
    {"raw", "", Kind::Raw, Shape::Text, "TEXT", "the modem sends this line, with line breaks around it"},
    {"send", "", Kind::Send, Shape::Quoted, "\"TEXT\"",
     "the modem sends these bytes: \\r \\n \\t \\\" \\\\ \\xHH"},
    {"unplug", "", Kind::Unplug, Shape::TimeOrNothing, "[TIME]",
     "the modem is pulled out (and back after TIME)"},
    {"replug", "", Kind::Replug, Shape::Nothing, "", "the modem is plugged in again"},
    {"fault", "delay", Kind::Delay, Shape::Time, "TIME",
     "every answer comes TIME later; the lines behind it wait"},
    {"fault", "split", Kind::Split, Shape::Pieces, "SIZES [gap TIME]",
     "everything comes in pieces of such sizes: 1,5,20"},
    {"fault", "glue", Kind::Glue, Shape::Time, "TIME", "what is sent within TIME comes in one piece"},
    {"fault", "late", Kind::Late, Shape::Time, "TIME", "the next answer comes TIME late, others overtake it"},
    {"fault", "mute", Kind::Mute, Shape::TimeOrNothing, "[TIME]", "nothing is sent (for TIME)"},
    {"fault", "garbage", Kind::Garbage, Shape::Count, "N", "N random bytes in front of everything"},
    {"fault", "storm", Kind::Storm, Shape::CountAndTime, "N [TIME]", "N reports at once (or every TIME)"},
    {"fault", "echo", Kind::Echo, Shape::Switch, "on|off", "the modem echoes what it gets"},
    {"fault", "off", Kind::FaultsOff, Shape::Nothing, "", "none of these faults any more"},
    {"state", "", Kind::State, Shape::Nothing, "", "prints what the modem is at, as JSON"},
    {"help", "", Kind::Help, Shape::Nothing, "", "prints this list"},
    {"quit", "", Kind::Quit, Shape::Nothing, "", "the simulator ends"},
}};

std::string Usage(const Row& row) {
    std::string text(row.verb);
    for (const std::string_view part : {row.object, row.arguments}) {
        if (!part.empty()) text += " " + std::string(part);
    }
    return text;
}

// The first words, or the second ones of `verb`, once each.
std::vector<std::string_view> Known(std::string_view verb) {
    std::vector<std::string_view> words;
    for (const Row& row : kRows) {
        const std::string_view word = verb.empty() ? row.verb : row.verb == verb ? row.object : "";
        if (!word.empty() && std::find(words.begin(), words.end(), word) == words.end())
            words.push_back(word);
    }
    return words;
}

// What stands for `verb` where no order begins with it: it may be the second word of one.
std::string UnknownVerb(std::string_view verb) {
    for (const Row& row : kRows)
        if (row.object == verb)
            return "unknown word " + Quoted(verb) + ", did you mean " +
                   Quoted(std::string(row.verb) + " " + std::string(row.object)) + "?";
    return UnknownWord(verb, Known(""));
}

const Row* FindRow(Words& words, std::string& reason) {
    const std::string_view verb = words.Next();
    if (verb.empty()) {
        reason = "an order is missing; known are" + ListOf(Known(""));
        return nullptr;
    }
    const auto of_verb = [&](const Row& row) { return row.verb == verb; };
    if (std::none_of(kRows.begin(), kRows.end(), of_verb)) {
        reason = UnknownVerb(verb);
        return nullptr;
    }
    const Row* plain = nullptr;
    for (const Row& row : kRows) {
        if (row.verb != verb) continue;
        if (row.object.empty()) {
            plain = &row;
        } else if (row.object == words.Peek()) {
            words.Next();
            return &row;
        }
    }
    if (plain == nullptr) {
        reason = words.AtEnd() ? Quoted(verb) + " needs one of" + ListOf(Known(verb))
                               : "behind " + Quoted(verb) + ": " + UnknownWord(words.Peek(), Known(verb));
    }
    return plain;
}

bool ReadPhone(Words& words, Order& order, std::string& reason) {
    order.number = words.Next();
    if (IsNumber(order.number)) return true;
    reason = order.number.empty()
                 ? "a telephone number is missing"
                 : Quoted(order.number) + " is no telephone number: digits, and a + in front";
    return false;
}

bool ReadText(Words& words, Order& order, std::string& reason) {
    order.text = words.Rest();
    words = Words("");
    if (!order.text.empty()) return true;
    reason = "a text is missing";
    return false;
}

bool ReadLevel(Words& words, Order& order, std::string& reason) {
    const auto level = ReadNumber(words.Next(), 0, 99, reason);
    if (level && *level > 31 && *level != 99) {
        reason = Quoted(std::to_string(*level)) + " is no signal level: 0 to 31, or 99 for none";
        return false;
    }
    order.count = level.value_or(0);
    return level.has_value();
}

bool ReadSpan(Words& words, Order& order, std::string& reason) {
    const auto time = ReadTime(words.Next(), reason);
    order.time = time.value_or(Time(0));
    if (time && time->count() == 0) reason = "the time must be above 0";
    return time && time->count() != 0;
}

bool ReadCount(Words& words, std::uint64_t most, Order& order, std::string& reason) {
    const auto count = ReadNumber(words.Next(), 1, most, reason);
    order.count = count.value_or(0);
    return count.has_value();
}

bool ReadArguments(const Row& row, Words& words, Order& order, std::string& reason) {
    switch (row.shape) {
        case Shape::Nothing:
            return true;
        case Shape::Number:
            return ReadPhone(words, order, reason);
        case Shape::NumberAndText:
            return ReadPhone(words, order, reason) && ReadText(words, order, reason);
        case Shape::Text:
            return ReadText(words, order, reason);
        case Shape::Quoted: {
            const auto bytes = ReadQuoted(words.Rest(), reason);
            words = Words("");
            order.text = bytes.value_or("");
            return bytes.has_value();
        }
        case Shape::Level:
            return ReadLevel(words, order, reason);
        case Shape::TimeOrNothing:
            if (words.AtEnd()) return true;
            [[fallthrough]];
        case Shape::Time:
            return ReadSpan(words, order, reason);
        case Shape::Pieces: {
            const auto pieces = ReadPieces(words, reason);
            order.pieces = pieces.value_or(Pieces());
            return pieces.has_value();
        }
        case Shape::Count:
            return ReadCount(words, kMaxNoise, order, reason);
        case Shape::CountAndTime:
            return ReadCount(words, kMaxStorm, order, reason) &&
                   (words.AtEnd() || ReadSpan(words, order, reason));
        case Shape::Switch: {
            const std::string_view word = words.Next();
            order.on = word == "on";
            if (word != "on" && word != "off") reason = "'on' or 'off' is missing";
            return word == "on" || word == "off";
        }
    }
    return false;
}

}  // namespace

std::optional<Order> ReadOrder(std::string_view text, std::string& reason) {
    if (text.size() > kMaxOrder) {
        reason = "the order is longer than " + std::to_string(kMaxOrder) + " characters";
        return std::nullopt;
    }
    Words words(text);
    const Row* row = FindRow(words, reason);
    if (row == nullptr) return std::nullopt;
    Order order;
    order.kind = row->kind;
    if (!ReadArguments(*row, words, order, reason)) {
        reason += "; the order is: " + Usage(*row);
        return std::nullopt;
    }
    if (!words.AtEnd()) {
        reason = Quoted(words.Rest()) + " is too much; the order is: " + Usage(*row);
        return std::nullopt;
    }
    return order;
}

bool NeedsModem(Order::Kind kind) {
    return kind < Kind::Raw;
}

bool FitsScenario(Order::Kind kind) {
    return kind < Kind::State;
}

std::string OrderHelp() {
    constexpr std::size_t kColumn = 32;
    std::string help;
    for (const Row& row : kRows) {
        std::string line = "  " + Usage(row);
        line.resize(std::max(kColumn, line.size() + 2), ' ');
        help += line + std::string(row.help) + "\n";
    }
    return help;
}

}  // namespace modemsim

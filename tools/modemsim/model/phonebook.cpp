#include "tools/modemsim/model/phonebook.h"

#include <nlohmann/json.hpp>

#include "tools/modemsim/model/modem.h"
#include "tools/modemsim/pattern.h"

namespace modemsim {

namespace {

using Form = CommandLine::Form;
using std::chrono::milliseconds;

constexpr std::size_t kLongestNumber = 40;
constexpr std::size_t kLongestName = 16;
constexpr std::size_t kLongestText = 60;

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

}  // namespace

Phonebook::Phonebook(Modem& modem) : modem_(modem) {
    books_["SM"] = {250,
                    {{1, {"+447700900123", "Anna Example", {"02079460123", "", "anna@example.com"}}},
                     {2, {"+447700900456", "Oksana"}},
                     {5, {"07700900789", "Depot, Leeds"}},
                     {9, {"121", "Voice mail"}}}};
    books_["ME"] = {500, {}};
    modem.On("+CPBS", [this](const CommandLine& line) { return Storage(line); });
    for (const bool long_form : {false, true}) {
        const std::string prefix = long_form ? "+Z" : "+";
        modem.On(prefix + "CPBR",
                 [this, long_form](const CommandLine& line) { return Read(line, long_form); });
        modem.On(prefix + "CPBW",
                 [this, long_form](const CommandLine& line) { return Write(line, long_form); });
    }
}

Reply Phonebook::Storage(const CommandLine& line) {
    if (!modem_.sim.Ready()) return Reply::Error(*modem_.sim.Obstacle());
    if (line.form == Form::Read) {
        const Book& book = books_.at(used_);
        return Reply::Line("+CPBS: " + Quoted(used_) + "," + std::to_string(book.entries.size()) + "," +
                           std::to_string(book.places));
    }
    if (line.form == Form::Test) return Reply::Line("+CPBS: (\"SM\",\"ME\")");
    const std::string name = UpperCase(line.Text(0));
    if (!books_.contains(name)) return Reply::Error(Cme::WrongParameters);
    used_ = name;
    return Reply::Ok();
}

Reply Phonebook::Read(const CommandLine& line, bool long_form) const {
    if (!modem_.sim.Ready()) return Reply::Error(*modem_.sim.Obstacle());
    const Book& book = books_.at(used_);
    const std::string name = long_form ? "+ZCPBR: " : "+CPBR: ";
    if (line.form == Form::Test) {
        return Reply::Line(name + "(1-" + std::to_string(book.places) + ")," +
                           std::to_string(kLongestNumber) + "," + std::to_string(kLongestName) +
                           (long_form ? ",40,40,60" : ""));
    }
    const auto first = line.Number(0);
    const auto last = line.NumberOr(1, first.value_or(0));
    if (line.form != Form::Set || !first || !last) return Reply::Error(Cme::WrongParameters);
    if (*first < 1 || *first > book.places) return Reply::Error(Cme::InvalidIndex);
    Reply reply = Reply::Ok(milliseconds(100));
    for (auto entry = book.entries.lower_bound(*first); entry != book.entries.end() && entry->first <= *last;
         ++entry) {
        const Entry& e = entry->second;
        std::string text = name + std::to_string(entry->first) + "," + Quoted(e.number) + ",";
        if (!long_form) text += std::to_string(e.number.starts_with('+') ? 145 : 129) + ",";
        text += Quoted(e.name);
        for (const std::string& more : e.more) {
            if (long_form) text += "," + Quoted(more);
        }
        reply.lines.push_back(text);
    }
    return reply;
}

Reply Phonebook::Write(const CommandLine& line, bool long_form) {
    if (!modem_.sim.Ready()) return Reply::Error(*modem_.sim.Obstacle());
    Book& book = books_.at(used_);
    auto place = line.NumberOr(0, 0);
    if (line.form != Form::Set || !place) return Reply::Error(Cme::WrongParameters);
    Entry entry{line.Text(1), line.Text(3)};
    bool empty = entry.number.empty() && entry.name.empty();
    for (std::size_t i = 0; long_form && i < entry.more.size(); ++i) {
        entry.more.at(i) = line.Text(4 + i);
        empty = empty && entry.more.at(i).empty();
        if (entry.more.at(i).size() > kLongestText) return Reply::Error(Cme::WrongParameters);
    }
    // Without a place it is the first free one.
    for (int free = 1; *place == 0 && free <= book.places; ++free) {
        if (!book.entries.contains(free)) place = free;
    }
    if (*place == 0) return Reply::Error(Cme::MemoryFull);
    if (*place > book.places) return Reply::Error(Cme::InvalidIndex);
    if (entry.number.size() > kLongestNumber || entry.name.size() > kLongestText)
        return Reply::Error(Cme::WrongParameters);
    if (empty) {
        if (line.Number(0).value_or(0) == 0) return Reply::Error(Cme::WrongParameters);
        book.entries.erase(*place);
    } else {
        book.entries[*place] = entry;
    }
    return Reply::Ok(milliseconds(100));
}

void Phonebook::Describe(nlohmann::json& state) const {
    for (const auto& [name, book] : books_) {
        nlohmann::json& list = state[name];
        list = nlohmann::json::array();
        for (const auto& [place, entry] : book.entries)
            list.push_back({{"place", place}, {"number", entry.number}, {"name", entry.name}});
    }
}

}  // namespace modemsim

#include "tools/modemsim/recording.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "tools/modemsim/serial.h"
#include "tools/modemsim/trace.h"
#include "tools/modemsim/words.h"

namespace modemsim {

namespace {

constexpr std::array<std::string_view, 5> kHeaderWords = {"program", "device", "started", "settings",
                                                          kRedactedHeader};
constexpr std::array<std::pair<std::string_view, Entry::Kind>, 6> kEvents = {{
    {"open", Entry::Kind::Open},
    {"close", Entry::Kind::Close},
    {"gone", Entry::Kind::Gone},
    {"back", Entry::Kind::Back},
    {"settings", Entry::Kind::Settings},
    {"end", Entry::Kind::End},
}};

constexpr auto kEventWords = [] {
    std::array<std::string_view, kEvents.size()> words;
    for (std::size_t i = 0; i < words.size(); ++i)
        words[i] = kEvents[i].first;
    return words;
}();

// "12.003456": seconds, up to six digits behind the point.
std::optional<Time> ReadSeconds(std::string_view word, std::string& reason) {
    constexpr auto decimal = [](std::string_view digits) {
        return !digits.empty() && digits.find_first_not_of("0123456789") == std::string_view::npos;
    };
    const std::size_t point = word.find('.');
    const std::string_view whole = word.substr(0, point);
    std::string part(point == std::string_view::npos ? "0" : word.substr(point + 1));
    if (!decimal(whole) || !decimal(part) || part.size() > 6) {
        reason = Quoted(word) + " is not a time in seconds, such as 12.003456";
        return std::nullopt;
    }
    part.resize(6, '0');
    const auto most = std::chrono::duration_cast<std::chrono::seconds>(kMaxRecordingTime).count();
    const auto seconds = ReadNumber(whole, 0, static_cast<std::uint64_t>(most), reason);
    const auto fraction = ReadNumber(part, 0, 999'999, reason);
    if (!seconds || !fraction) return std::nullopt;
    return std::chrono::seconds(*seconds) + Time(static_cast<Time::rep>(*fraction));
}

class Parser {
  public:
    explicit Parser(ParsedRecording& result) : result_(result) {}

    void File(std::string_view text);

  private:
    void Fail(std::string reason) {
        if (result_.problems.size() < kMaxProblems)
            result_.problems.push_back({result_.recording.name, line_, std::move(reason)});
    }
    void Line(std::string_view line);
    void First(std::string_view line);
    void Header(std::string_view line);
    void Event(Words words, Time at);
    void Bytes(std::string_view line, Entry::Kind kind, Time at);
    void Add(Entry::Kind kind, Time at, std::string text) {
        result_.recording.entries.push_back({kind, at, std::move(text), line_});
    }

    ParsedRecording& result_;
    std::size_t line_ = 0;
    bool begun_ = false;  // the first line was right
    bool timed_ = false;  // a line with a time has come: the head is over
    Time last_{0};
};

void Parser::First(std::string_view line) {
    constexpr std::string_view kName = "modem recording ";
    begun_ = line == kRecordingHead;
    if (begun_)
        Add(Entry::Kind::Header, Time(0), std::string(line));
    else if (line.starts_with(kName))
        Fail("version " + Quoted(line.substr(kName.size())) +
             " of the form, this program reads 1: take the program that made the file");
    else
        Fail("this is no recording: it does not begin with '" + std::string(kRecordingHead) + "'");
}

void Parser::Header(std::string_view line) {
    Words words(line);
    const std::string_view word = words.Next();
    std::string reason;
    if (std::find(kHeaderWords.begin(), kHeaderWords.end(), word) == kHeaderWords.end())
        return Fail(UnknownWord(word, kHeaderWords));
    if (word == kRedactedHeader) {
        if (!words.AtEnd()) return Fail("nothing stands behind 'redacted'");
        result_.recording.redacted = true;
    } else if (words.AtEnd()) {
        return Fail("nothing stands behind " + Quoted(word));
    } else if (word == "settings" && !ReadLineSettings(words.Rest(), reason)) {
        return Fail(reason);
    }
    Add(Entry::Kind::Header, Time(0), std::string(line));
}

void Parser::Event(Words words, Time at) {
    const std::string_view word = words.Next();
    const auto* const event =
        std::find_if(kEvents.begin(), kEvents.end(), [&](const auto& e) { return e.first == word; });
    std::string reason;
    if (event == kEvents.end()) {
        Fail(word.empty() ? "an event is missing behind '--'" : UnknownWord(word, kEventWords));
    } else if (event->second == Entry::Kind::Settings) {
        if (ReadLineSettings(words.Rest(), reason))
            Add(event->second, at, std::string(words.Rest()));
        else
            Fail(reason);
    } else if (!words.AtEnd()) {
        Fail(Quoted(words.Rest()) + " stands behind " + Quoted(word));
    } else {
        Add(event->second, at, {});
    }
}

void Parser::Bytes(std::string_view line, Entry::Kind kind, Time at) {
    // One blank parts the text from the arrow; any further one belongs to it.
    const std::size_t arrow = line.find(kind == Entry::Kind::ToModem ? "->" : "<-");
    line.remove_prefix(std::min(line.size(), arrow + 3));
    std::string reason;
    std::size_t taken = 0;
    auto bytes = ReadEscaped(line, '\0', taken, reason);
    if (!bytes) return Fail(reason);
    if (bytes->empty()) return Fail("the text that passed is missing");
    Add(kind, at, std::move(*bytes));
}

void Parser::Line(std::string_view line) {
    if (line.size() > kMaxRecordingLine)
        return Fail("the line is longer than " + std::to_string(kMaxRecordingLine) + " characters");
    const auto odd = std::find_if(line.begin(), line.end(),
                                  [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t'; });
    if (odd != line.end()) return Fail("a control character stands in the file: is it a text?");
    if (line_ == 1) return First(line);
    Words words(line);
    if (words.AtEnd() || words.Peek().front() == '#')
        return Add(Entry::Kind::Comment, last_, std::string(line));
    const char first = words.Peek().front();
    if (first < '0' || first > '9') {
        if (timed_) return Fail("the line does not begin with a time");
        return Header(line);
    }
    timed_ = true;
    std::string reason;
    const auto at = ReadSeconds(words.Next(), reason);
    if (!at) return Fail(reason);
    if (*at < last_) return Fail("the time is earlier than that of the line before");
    last_ = *at;
    const std::string_view arrow = words.Next();
    if (arrow == "->") return Bytes(line, Entry::Kind::ToModem, *at);
    if (arrow == "<-") return Bytes(line, Entry::Kind::FromModem, *at);
    if (arrow == "--") return Event(words, *at);
    Fail(Quoted(arrow) + " stands where the direction is expected: -> to the modem, <- from it, -- an event");
}

void Parser::File(std::string_view text) {
    line_ = 1;
    if (text.empty()) return Fail("the file is empty");
    for (line_ = 0; !text.empty();) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        // Mail turns line breaks into those of another system.
        if (line.ends_with('\r')) line.remove_suffix(1);
        ++line_;
        Line(line);
        // Whatever this is, complaints about each of its lines would tell no more.
        if (!begun_) return;
    }
}

}  // namespace

ParsedRecording ParseRecording(const std::string& name, std::string_view text) {
    ParsedRecording result;
    result.recording.name = name;
    Parser(result).File(text);
    return result;
}

ParsedRecording LoadRecording(const std::string& path) {
    std::string reason;
    const auto text = ReadRegularFile(path, kMaxRecordingBytes, reason);
    if (text) return ParseRecording(path, *text);
    ParsedRecording result;
    result.recording.name = path;
    result.problems.push_back({path, 0, reason});
    return result;
}

std::string FormatEntry(const Entry& entry) {
    if (entry.kind == Entry::Kind::Comment || entry.kind == Entry::Kind::Header) return entry.text + "\n";
    const long long us = entry.at.count();
    char time[40];
    std::snprintf(time, sizeof time, "%6lld.%06lld ", us / 1'000'000, us % 1'000'000);
    std::string line = time;
    if (entry.Bytes()) {
        std::string text = Visible(entry.text);
        // Blanks at either end are easily lost on the way.
        if (text.back() == ' ') text.replace(text.size() - 1, 1, "\\x20");
        if (text.front() == ' ') text.replace(0, 1, "\\x20");
        line += entry.kind == Entry::Kind::ToModem ? "-> " : "<- ";
        return line + text + "\n";
    }
    const auto* const event =
        std::find_if(kEvents.begin(), kEvents.end(), [&](const auto& e) { return e.second == entry.kind; });
    line += "-- " + std::string(event->first);
    if (entry.kind == Entry::Kind::Settings) line += " " + entry.text;
    return line + "\n";
}

}  // namespace modemsim

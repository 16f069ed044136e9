#include "tools/modemsim/redactor.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include "tools/modemsim/pattern.h"
#include "tools/modemsim/redact_message.h"
#include "tools/modemsim/redact_rules.h"
#include "tools/modemsim/scenario.h"
#include "tools/modemsim/words.h"

namespace modemsim {

namespace {

constexpr std::size_t kLongestLine = 65536;  // what goes on without an end is no line
constexpr std::size_t kIdentity = 10;        // digits from which on a bare number names somebody
constexpr std::size_t kNumber = 4;           // digits of a number where one is expected
constexpr std::size_t kCell = 4;             // hexadecimal digits of an area or cell
constexpr std::size_t kHexData = 16;         // hexadecimal digits that are no counter
constexpr std::size_t kToolkitText = 4;      // characters
constexpr char kEndOfText = '\x1A';
constexpr char kCancel = '\x1B';

bool IsAlnum(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0;
}

std::string ShapeOf(std::string_view text) {
    std::string shape(text);
    for (char& c : shape) {
        if (IsAlnum(c))
            c = '0';
        else if (static_cast<unsigned char>(c) >= 0x80)
            c = '?';
    }
    return shape;
}

// Reports of the modem that look like words of a text.
bool IsCallReport(std::string_view line) {
    constexpr std::array<std::string_view, 6> kWhole = {"STOPRING", "ANSWER", "CHUP",
                                                        "CHUPR",    "RING",   "RINGBACKLOCAL"};
    constexpr std::array<std::string_view, 5> kBegin = {"HANGUP:", "RINGBACK",
                                                        "ZVCONNECT:", "ZVMAIL:", "ZREFRESH:"};
    return std::find(kWhole.begin(), kWhole.end(), line) != kWhole.end() ||
           std::any_of(kBegin.begin(), kBegin.end(),
                       [&](std::string_view begin) { return line.starts_with(begin); });
}

bool MeansSomething(std::string_view text) {
    return IsWellKnown(text) || IsResultCode(text) || IsCallReport(text) || UpperCase(text).starts_with("AT");
}

// How many characters of `text` are a name: "+CREG", "RING", "IMEI".
std::size_t NameLength(std::string_view text) {
    std::size_t at =
        !text.empty() && std::string_view("+^$%!*&#").find(text.front()) != std::string_view::npos;
    while (at < text.size() && IsAlnum(text[at]))
        ++at;
    return at;
}

// "+CREG: ...", but no text that happens to hold a colon.
bool HasName(std::string_view line) {
    const std::size_t length = NameLength(line);
    return length > 1 && length < line.size() && line[length] == ':';
}

// Where the parameter ends: at a comma, or at the semicolon before the next command, outside quotation marks.
std::size_t ParameterEnd(std::string_view text, bool commands) {
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') quoted = !quoted;
        if (!quoted && (text[i] == ',' || (commands && text[i] == ';'))) return i;
    }
    return text.size();
}

template <typename Is>
std::size_t RunAt(std::string_view text, std::size_t from, Is is) {
    const auto begin = text.begin() + static_cast<std::ptrdiff_t>(from);
    return static_cast<std::size_t>(std::find_if_not(begin, text.end(), is) - begin);
}

bool IsWordCharacter(char c) {
    return IsAlnum(c) || c == '_';
}

}  // namespace

std::string Redactor::StandIn(Kind kind, std::string_view text) {
    switch (kind) {
        case Kind::Text:
            return stand_ins_.Text(text);
        case Kind::Dialled:
            return stand_ins_.Dialled(text);
        case Kind::Hex:
            return stand_ins_.Hex(text);
        case Kind::Message:
            return RedactMessage(text, stand_ins_);
        default:
            return stand_ins_.Secret(text);
    }
}

std::string Redactor::Replace(Kind kind, std::string_view text) {
    if (shape_) return ShapeOf(text);
    std::string result = StandIn(kind, text);
    // What became a word that means something would be taken for it.
    for (int attempt = 0; attempt < 8 && MeansSomething(result) && !MeansSomething(text); ++attempt)
        result = stand_ins_.Secret(result);
    return result;
}

// Outside quotation marks: what is private there is known by its length or its place.
std::string Redactor::Bare(std::string_view text, char kind) {
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t dotted = RunAt(text, i, [](char c) { return IsDigit(c) || c == '.'; });
        const bool at_word = i > 0 && (IsWordCharacter(text[i - 1]) || text[i - 1] == '.');
        if (!at_word && dotted > 6 && IsDottedAddress(text.substr(i, dotted))) {
            result += Replace(Kind::Text, text.substr(i, dotted));
            i += dotted;
            continue;
        }
        const std::size_t hex = RunAt(text, i, [](char c) { return HexDigit(c) >= 0; });
        const std::size_t digits = RunAt(text, i, IsDigit);
        const bool measure = i > 0 && text[i - 1] == '-';
        const bool whole_word = !at_word && (i + hex == text.size() || !IsWordCharacter(text[i + hex]));
        if ((kind == 'n' && digits >= kNumber) || (digits == hex && digits >= kIdentity)) {
            result += Replace(Kind::Dialled, text.substr(i, digits));
            i += digits;
        } else if (hex >= kHexData || (kind == 'h' && hex > 0) ||
                   (kind == 'c' && hex >= kCell && whole_word && !measure)) {
            result += Replace(Kind::Hex, text.substr(i, hex));
            i += hex;
        } else if (digits >= kIdentity) {
            result += Replace(Kind::Dialled, text.substr(i, digits));
            i += digits;
        } else {
            // A run of digits is judged as a whole: its tail is another number.
            const std::size_t kept = std::max<std::size_t>(digits, 1);
            result += text.substr(i, kept);
            i += kept;
        }
    }
    return result;
}

// What stands between quotation marks.
std::string Redactor::QuotedParameter(std::string_view text, char kind) {
    if (text.empty()) return {};
    if (kind == 's') return Replace(Kind::Secret, text);
    if (kind == 'p' && IsHexText(text)) return Replace(Kind::Message, text);
    if ((kind == 'h' || kind == 'c') && IsHexText(text)) return Replace(Kind::Hex, text);
    if (IsWellKnown(text)) return std::string(text);
    return Replace(Kind::Text, text);
}

std::string Redactor::Parameter(std::string_view text, char kind) {
    if (kind == 'k') return std::string(text);
    const std::size_t open = text.find('"');
    if (open == std::string_view::npos) {
        const std::string_view value = text.substr(std::min(text.find_first_not_of(' '), text.size()));
        const std::string blanks(text.size() - value.size(), ' ');
        if (kind == 's') return blanks + Replace(Kind::Secret, value);
        if (kind == 'p' && IsHexText(value)) return blanks + Replace(Kind::Message, value);
        if (kind == 't' && value.size() >= kToolkitText) return blanks + Replace(Kind::Text, value);
        return Bare(text, kind);
    }
    std::size_t close = text.find('"', open + 1);
    if (close == std::string_view::npos) close = text.size();
    std::string result = Bare(text.substr(0, open), kind) + '"';
    result += QuotedParameter(text.substr(open + 1, close - open - 1), kind);
    if (close < text.size()) result += '"' + Parameter(text.substr(close + 1), kind);
    return result;
}

// Parameters and, in a line of the daemon's, the commands behind them.
std::string Redactor::Parameters(std::string_view text, std::string_view kinds, bool daemon) {
    std::string result;
    if (kinds == "w") {
        const std::size_t open = text.find('"');
        const std::size_t last = text.rfind('"');
        if (open == std::string_view::npos) return Bare(text, 'd');
        // With a single mark the text goes on in the next line.
        const std::size_t close = last == open ? text.size() : last;
        result = Bare(text.substr(0, open), 'd') + '"';
        result += QuotedParameter(text.substr(open + 1, close - open - 1), 'd');
        if (!daemon && close == text.size()) text_ = Text::Quoted;
        return result + Bare(text.substr(close), 'd');
    }
    for (std::size_t i = 0; true; ++i) {
        const std::size_t end = ParameterEnd(text, daemon);
        result += Parameter(text.substr(0, end), kinds[std::min(i, kinds.size() - 1)]);
        if (end == text.size()) return result;
        result += text[end];
        const bool next_command = text[end] == ';';
        text.remove_prefix(end + 1);
        if (next_command) return result + Commands("AT" + std::string(text)).substr(2);
    }
}

// "AT+CREG=2", "ATD07700900123;", "AT+CMEE=1;+CPIN=\"1234\"".
std::string Redactor::Commands(const std::string& line) {
    const std::string_view rest = std::string_view(line).substr(2);
    const std::string upper = UpperCase(rest);
    if (upper.starts_with("D") || upper.starts_with("+CDV")) {
        const std::size_t name = upper.starts_with("D") ? 1 : 4;
        return line.substr(0, 2 + name) + Parameters(rest.substr(name), "n", true);
    }
    std::size_t name = NameLength(rest);
    // A name ends with letters; a digit behind it is a value ("S0", "E1").
    const std::string_view kinds = FindRedactRule(std::string_view(upper).substr(0, name)).request;
    if (name == 0 && !rest.empty()) name = 1;
    std::size_t values = name;
    while (values < rest.size() && (rest[values] == '=' || rest[values] == '?'))
        ++values;
    return line.substr(0, 2 + values) + Parameters(rest.substr(values), kinds, true);
}

// The text of a message, alone in its line.
std::string Redactor::Body(const std::string& line) {
    const bool message = line.size() >= kHexData && IsHexText(line);
    return Replace(message ? Kind::Message : Kind::Text, line);
}

std::string Redactor::FromDaemon(const std::string& line, char end) {
    const bool body = prompted_ || end == kEndOfText;
    if (end == kEndOfText || end == kCancel) prompted_ = false;
    if (line.empty()) return {};
    if (body || !UpperCase(line).starts_with("AT")) return Body(line);
    text_ = Text::None;
    return Commands(line);
}

std::string Redactor::FromTheModem(const std::string& line, char end) {
    if (line.empty()) return {};
    if (end == kEndOfText || end == kCancel) return Body(line);  // sent back
    if (IsCallReport(line)) return line;
    if (IsResultCode(line)) {
        text_ = Text::None;
        prompted_ = false;
        return line;
    }
    // In the text of a message only the modem's own kind of name counts.
    if (HasName(line) && (text_ == Text::None || !IsAlnum(line.front()))) {
        const std::string name = UpperCase(std::string_view(line).substr(0, NameLength(line)));
        if (name == "+CMGR" || name == "+CMGL")
            text_ = Text::Messages;
        else if (name == "+CMT" || name == "+CDS" || name == "+CBM")
            text_ = Text::Message;
        return line.substr(0, name.size() + 1) +
               Parameters(std::string_view(line).substr(name.size() + 1), FindRedactRule(name).answer, false);
    }
    if (text_ == Text::Quoted) {
        const std::size_t close = std::min(line.rfind('"'), line.size());
        if (close != line.size()) text_ = Text::None;
        return Replace(Kind::Text, line.substr(0, close)) + Bare(line.substr(close), 'd');
    }
    if (text_ != Text::None) {
        if (text_ == Text::Message && IsHexText(line)) text_ = Text::None;
        return Body(line);
    }
    if (UpperCase(line).starts_with("AT")) return Commands(line);  // sent back
    return Parameters(line, "d", false);
}

void Redactor::EndLine(Way way, char end) {
    Stream& stream = Of(way);
    const std::string line = std::exchange(stream.line, {});
    stream.done += way == Way::ToModem ? FromDaemon(line, end) : FromTheModem(line, end);
    stream.line_begins = end == '\n' || end == '\r';
}

void Redactor::Feed(Way way, std::string_view bytes) {
    Stream& stream = Of(way);
    for (const char c : bytes) {
        if (c == '\r' || c == '\n' || c == kEndOfText || c == kCancel) {
            EndLine(way, c);
            stream.done += c;
            continue;
        }
        stream.line += c;
        if (way == Way::FromModem && stream.line_begins && stream.line == "> ") {
            // Nothing ends a prompt.
            stream.done += std::exchange(stream.line, {});
            stream.line_begins = false;
            prompted_ = true;
            text_ = Text::Messages;  // the modem may send it back
        } else if (stream.line.size() == kLongestLine) {
            Finish(way);
        }
    }
}

void Redactor::Finish(Way way) {
    Stream& stream = Of(way);
    // The beginning of a number may be too short to be known for one.
    stream.done += Replace(Kind::Secret, std::exchange(stream.line, {}));
}

std::string Redactor::Take(Way way) {
    return std::exchange(Of(way).done, {});
}

}  // namespace modemsim

#include "tools/modemsim/words.h"

#include <algorithm>
#include <vector>

namespace modemsim {

namespace {

constexpr std::string_view kBlanks = " \t";

// Insertions, deletions, replacements and swapped neighbours that turn one word into the other.
std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::vector<std::size_t>> cost(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            const std::size_t replaced = cost[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            cost[i][j] = std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
        }
    }
    return cost[a.size()][b.size()];
}

}  // namespace

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::string Quoted(std::string_view word) {
    return "'" + std::string(word) + "'";
}

std::string ListOf(std::span<const std::string_view> words) {
    std::string text;
    for (const std::string_view word : words)
        text += " " + std::string(word);
    return text;
}

std::string UnknownWord(std::string_view word, std::span<const std::string_view> known) {
    const std::string_view nearest = Nearest(word, known);
    const std::string text = "unknown word " + Quoted(word);
    if (!nearest.empty()) return text + ", did you mean " + Quoted(nearest) + "?";
    return text + " (known here:" + ListOf(known) + ")";
}

void Words::Skip() {
    const std::size_t start = rest_.find_first_not_of(kBlanks);
    rest_ = start == std::string_view::npos ? std::string_view() : rest_.substr(start);
}

std::string_view Words::Peek() const {
    return rest_.substr(0, rest_.find_first_of(kBlanks));
}

std::string_view Words::Next() {
    const std::string_view word = Peek();
    rest_.remove_prefix(word.size());
    Skip();
    return word;
}

std::string_view Words::Rest() const {
    const std::size_t last = rest_.find_last_not_of(kBlanks);
    return last == std::string_view::npos ? std::string_view() : rest_.substr(0, last + 1);
}

std::optional<std::uint64_t> ReadNumber(std::string_view word, std::uint64_t low, std::uint64_t high,
                                        std::string& reason) {
    const std::string range = std::to_string(low) + " to " + std::to_string(high);
    if (word.empty()) {
        reason = "a number from " + range + " is missing";
        return std::nullopt;
    }
    std::uint64_t value = 0;
    for (const char c : word) {
        if (c < '0' || c > '9') {
            reason = Quoted(word) + " is not a number";
            return std::nullopt;
        }
        // Past the range the digits no longer matter, and so cannot overflow.
        if (value <= high) value = value * 10 + static_cast<std::uint64_t>(c - '0');
    }
    if (value < low || value > high) {
        reason = Quoted(word) + " is not in the range " + range;
        return std::nullopt;
    }
    return value;
}

std::optional<Time> ReadTime(std::string_view word, std::string& reason) {
    if (word.empty()) {
        reason = "a time is missing (such as 300ms or 2s)";
        return std::nullopt;
    }
    const std::size_t unit_at = word.find_first_not_of("0123456789.");
    const std::string_view number = word.substr(0, unit_at);
    const std::string_view unit =
        unit_at == std::string_view::npos ? std::string_view() : word.substr(unit_at);
    std::int64_t scale = 0;
    if (unit == "ms")
        scale = 1'000;
    else if (unit == "s")
        scale = 1'000'000;
    else if (unit == "min")
        scale = 60'000'000;
    const std::size_t point = number.find('.');
    const std::string_view whole = number.substr(0, point);
    const std::string_view part = point == std::string_view::npos ? "0" : number.substr(point + 1);
    if (scale == 0 || whole.empty() || part.empty() || part.size() > 3 ||
        part.find('.') != std::string_view::npos) {
        reason = Quoted(word) + " is not a time (such as 300ms, 1.5s or 2min)";
        return std::nullopt;
    }
    std::int64_t value = 0;
    for (const char c : whole) {
        value = value * 10 + (c - '0');
        if (Time(value * scale) > kMaxTime) {
            reason = Quoted(word) + " is longer than 24 hours";
            return std::nullopt;
        }
    }
    std::int64_t fraction = 0;
    std::int64_t unit_part = scale;
    for (const char c : part) {
        unit_part /= 10;
        fraction += (c - '0') * unit_part;
    }
    const Time time(value * scale + fraction);
    if (time > kMaxTime) {
        reason = Quoted(word) + " is longer than 24 hours";
        return std::nullopt;
    }
    return time;
}

std::optional<std::string> ReadEscaped(std::string_view text, char end, std::size_t& taken,
                                       std::string& reason) {
    std::string value;
    std::size_t i = 0;
    for (; i < text.size() && (end == '\0' || text[i] != end); ++i) {
        if (text[i] != '\\') {
            value += text[i];
            continue;
        }
        ++i;
        const char kind = i < text.size() ? text[i] : '\0';
        if (kind == 'r') {
            value += '\r';
        } else if (kind == 'n') {
            value += '\n';
        } else if (kind == 't') {
            value += '\t';
        } else if (kind == '"' || kind == '\\') {
            value += kind;
        } else if (kind == 'x') {
            const int high = i + 1 < text.size() ? HexDigit(text[i + 1]) : -1;
            const int low = i + 2 < text.size() ? HexDigit(text[i + 2]) : -1;
            if (high < 0 || low < 0) {
                reason = "\\x needs two hexadecimal digits";
                return std::nullopt;
            }
            value += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            reason = "unknown escape " +
                     (i < text.size() ? "'\\" + std::string(1, kind) + "'" : "at the end") +
                     ": known are \\r \\n \\t \\\" \\\\ \\xHH";
            return std::nullopt;
        }
    }
    taken = i;
    return value;
}

std::optional<std::string> ReadQuoted(std::string_view text, std::string& reason) {
    if (text.empty() || text.front() != '"') {
        reason = "a text in double quotes is missing";
        return std::nullopt;
    }
    text.remove_prefix(1);
    std::size_t taken = 0;
    auto value = ReadEscaped(text, '"', taken, reason);
    if (!value) return std::nullopt;
    if (taken == text.size()) {
        reason = "the closing double quote is missing";
        return std::nullopt;
    }
    if (taken + 1 != text.size()) {
        reason = Quoted(text.substr(taken + 1)) + " stands behind the closing double quote";
        return std::nullopt;
    }
    return value;
}

std::optional<Pieces> ReadPieces(Words& words, std::string& reason) {
    std::string_view sizes = words.Next();
    Pieces pieces;
    if (sizes.empty()) {
        reason = "sizes are missing: 'whole', or numbers of bytes such as 1,5,20";
        return std::nullopt;
    }
    if (sizes == "whole") return pieces;
    while (true) {
        const std::size_t comma = sizes.find(',');
        const auto size = ReadNumber(sizes.substr(0, comma), 1, kMaxAnswer, reason);
        if (!size) return std::nullopt;
        if (pieces.sizes.size() == kMaxPieceSizes) {
            reason = "more than " + std::to_string(kMaxPieceSizes) + " sizes";
            return std::nullopt;
        }
        pieces.sizes.push_back(static_cast<std::size_t>(*size));
        if (comma == std::string_view::npos) break;
        sizes.remove_prefix(comma + 1);
    }
    if (words.Peek() == "gap") {
        words.Next();
        const auto gap = ReadTime(words.Next(), reason);
        if (!gap) return std::nullopt;
        pieces.gap = *gap;
    }
    return pieces;
}

std::string_view Nearest(std::string_view word, std::span<const std::string_view> candidates) {
    constexpr std::size_t kLongestGuess = 32;  // no keyword is near a longer word
    if (word.size() > kLongestGuess) return {};
    std::string_view nearest;
    // Up to a third of the letters wrong (at least one): beyond that a guess does more harm than good.
    std::size_t best = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string_view candidate : candidates) {
        const std::size_t distance = Distance(word, candidate);
        if (distance < best) {
            best = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

}  // namespace modemsim

#include "tools/modemsim/pattern.h"

namespace modemsim {

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return upper;
}

std::optional<Pattern> Pattern::Compile(std::string_view text, std::string& reason) {
    if (text.empty()) {
        reason = "a command line is missing";
        return std::nullopt;
    }
    Pattern pattern;
    pattern.text_ = text;
    std::string part;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '*') {
            pattern.parts_.push_back(UpperCase(part));
            part.clear();
            continue;
        }
        if (c == '\\') {
            ++i;
            if (i == text.size() || (text[i] != '*' && text[i] != '\\')) {
                reason = "unknown escape in a command line: only \\* and \\\\ are known here";
                return std::nullopt;
            }
            c = text[i];
        }
        part += c;
        ++pattern.fixed_;
    }
    pattern.parts_.push_back(UpperCase(part));
    return pattern;
}

bool Pattern::Matches(std::string_view line) const {
    const std::string upper = UpperCase(line);
    if (Exact()) return upper == parts_.front();
    const std::string& head = parts_.front();
    const std::string& tail = parts_.back();
    if (upper.size() < head.size() + tail.size() || !upper.starts_with(head) || !upper.ends_with(tail))
        return false;
    // Between head and tail the earliest place of each part leaves the most room to the parts behind it.
    const std::size_t end = upper.size() - tail.size();
    std::size_t from = head.size();
    for (std::size_t i = 1; i + 1 < parts_.size(); ++i) {
        const std::size_t found = upper.find(parts_[i], from);
        if (found == std::string::npos || found + parts_[i].size() > end) return false;
        from = found + parts_[i].size();
    }
    return true;
}

bool Pattern::CloserThan(const Pattern& other) const {
    return Exact() != other.Exact() ? Exact() : fixed_ > other.fixed_;
}

}  // namespace modemsim

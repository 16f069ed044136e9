#include "tools/modemsim/model/at_line.h"

#include <cctype>

#include "tools/modemsim/pattern.h"

namespace modemsim {

namespace {

std::string Bare(std::string_view word) {
    while (word.starts_with(' '))
        word.remove_prefix(1);
    while (word.ends_with(' '))
        word.remove_suffix(1);
    if (word.size() >= 2 && word.front() == '"' && word.back() == '"') word = word.substr(1, word.size() - 2);
    return std::string(word);
}

std::vector<std::string> Part(std::string_view text) {
    std::vector<std::string> args;
    std::size_t from = 0;
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') quoted = !quoted;
        if (text[i] != ',' || quoted) continue;
        args.push_back(Bare(text.substr(from, i - from)));
        from = i + 1;
    }
    args.push_back(Bare(text.substr(from)));
    return args;
}

}  // namespace

const std::string& CommandLine::Text(std::size_t i) const {
    static const std::string none;
    return i < args.size() ? args[i] : none;
}

std::optional<int> CommandLine::Number(std::size_t i) const {
    constexpr int kMost = 100'000'000;  // above every number of the command set
    const std::string& digits = Text(i);
    if (digits.empty()) return std::nullopt;
    int value = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9' || value > kMost) return std::nullopt;
        value = value * 10 + (c - '0');
    }
    return value;
}

std::optional<int> CommandLine::NumberOr(std::size_t i, int otherwise) const {
    return Text(i).empty() ? otherwise : Number(i);
}

std::optional<CommandLine> ReadCommandLine(std::string_view line) {
    if (UpperCase(line.substr(0, 2)) != "AT") return std::nullopt;
    line.remove_prefix(2);
    CommandLine command;
    if (line.empty()) return command;
    // A basic command is one letter, and all behind it is its own.
    if (std::isalpha(static_cast<unsigned char>(line.front())) != 0) {
        command.name = UpperCase(line.substr(0, 1));
        command.text = line.substr(1);
        return command;
    }
    const std::size_t end = line.find_first_of("=?");
    command.name = UpperCase(line.substr(0, end));
    if (end == std::string_view::npos) return command;
    const std::string_view rest = line.substr(end);
    if (rest == "?") {
        command.form = CommandLine::Form::Read;
    } else if (rest == "=?") {
        command.form = CommandLine::Form::Test;
    } else {
        command.form = CommandLine::Form::Set;
        command.text = rest.substr(1);
        command.args = Part(command.text);
    }
    return command;
}

}  // namespace modemsim

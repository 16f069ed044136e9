#include "tools/shared/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

#include "tools/shared/text.h"

namespace {

// The value of a variable; an empty one counts as none.
std::string_view Environment(const char* name) {
    const char* const value = getenv(name);
    return value == nullptr ? std::string_view() : value;
}

// False where the environment names a character set that is not UTF-8.
bool TerminalTakesUtf8() {
    for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const std::string_view value = Environment(name);
        if (value.empty()) continue;
        const std::string lower = Lower(value);
        return lower.find("utf-8") != std::string::npos || lower.find("utf8") != std::string::npos;
    }
    return true;
}

}  // namespace

bool ParseColour(std::string_view text, Colour& colour) {
    if (text == "auto")
        colour = Colour::automatic;
    else if (text == "always")
        colour = Colour::always;
    else if (text == "never")
        colour = Colour::never;
    else
        return false;
    return true;
}

std::string Look::Wrap(std::string_view code, std::string_view text) const {
    if (!colours) return std::string(text);
    return std::string("\033[").append(code).append("m").append(text).append("\033[0m");
}

Look LookFor(int descriptor, Colour colour) {
    const bool automatic =
        IsTerminal(descriptor) && Environment("NO_COLOR").empty() && Environment("TERM") != "dumb";
    const bool colours = colour == Colour::automatic ? automatic : colour == Colour::always;
    return {colours, TerminalWidth(descriptor), TerminalTakesUtf8()};
}

bool IsTerminal(int descriptor) {
    return isatty(descriptor) == 1;
}

size_t TerminalWidth(int descriptor) {
    if (!IsTerminal(descriptor)) return 0;
    constexpr size_t kUsual = 80;
    winsize size = {};
    if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col != 0) return size.ws_col;
    return kUsual;
}

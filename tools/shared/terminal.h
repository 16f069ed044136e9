#ifndef AT_TOOLS_SHARED_TERMINAL_H
#define AT_TOOLS_SHARED_TERMINAL_H

#include <cstddef>
#include <string>
#include <string_view>

// What is printed for a terminal differs from what is printed for a program or a file: colours, and lines no
// longer than the terminal is wide.

enum class Colour { automatic, always, never };

// "auto", "always" or "never"; false when it is none of them.
bool ParseColour(std::string_view text, Colour& colour);

// How the output is to look. What is painted goes around text whose width is settled already.
struct Look {
    bool colours = false;
    size_t width = 0;  // columns of the terminal; 0: no terminal, lines are as long as their text
    bool utf8 = true;  // otherwise drawings are made of ASCII characters

    std::string Bold(std::string_view text) const { return Wrap("1", text); }
    std::string Dim(std::string_view text) const { return Wrap("2", text); }
    std::string Good(std::string_view text) const { return Wrap("32", text); }
    std::string Bad(std::string_view text) const { return Wrap("31", text); }

  private:
    std::string Wrap(std::string_view code, std::string_view text) const;
};

// For this descriptor. Automatic colours: it is a terminal that knows them, and NO_COLOR is unset or empty.
Look LookFor(int descriptor, Colour colour = Colour::automatic);

bool IsTerminal(int descriptor);

// Columns of the terminal, 80 where it does not say; 0 when the descriptor is no terminal.
size_t TerminalWidth(int descriptor);

#endif

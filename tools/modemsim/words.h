#ifndef AT_TOOLS_MODEMSIM_WORDS_H
#define AT_TOOLS_MODEMSIM_WORDS_H

// The small pieces that scenario lines are made of: words, numbers, times, quoted texts. The readers give
// nullopt and a reason when the text is not what it should be.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tools/modemsim/timing.h"

namespace modemsim {

// Walks over the words of a line; blanks and tabs part them.
class Words {
  public:
    explicit Words(std::string_view text) : rest_(text) { Skip(); }

    bool AtEnd() const { return rest_.empty(); }
    std::string_view Peek() const;
    std::string_view Next();
    // Everything that was not taken, without blanks at either end.
    std::string_view Rest() const;

  private:
    void Skip();

    std::string_view rest_;
};

std::optional<std::uint64_t> ReadNumber(std::string_view word, std::uint64_t low, std::uint64_t high,
                                        std::string& reason);

// "300ms", "2s", "1.5s", "1min": at most kMaxTime, down to a thousandth of the unit.
std::optional<Time> ReadTime(std::string_view word, std::string& reason);

// A text with \r \n \t \" \\ \xHH up to the character `end`, or up to its end when that is NUL. `taken`: what
// was read of it, without the character.
std::optional<std::string> ReadEscaped(std::string_view text, char end, std::size_t& taken,
                                       std::string& reason);

// A text in double quotes with \r \n \t \" \\ \xHH, and nothing behind it.
std::optional<std::string> ReadQuoted(std::string_view text, std::string& reason);

// The value of a hexadecimal digit, -1 for any other character.
int HexDigit(char c);

// The word between single quotes, for messages.
std::string Quoted(std::string_view word);

// "whole", or sizes such as 1,5,20, and "gap TIME".
std::optional<Pieces> ReadPieces(Words& words, std::string& reason);

// " a b c".
std::string ListOf(std::span<const std::string_view> words);

// "unknown word 'WORD'", and which of the known ones was probably meant, or all of them.
std::string UnknownWord(std::string_view word, std::span<const std::string_view> known);

// The candidate that `word` was probably meant to be, or an empty text.
std::string_view Nearest(std::string_view word, std::span<const std::string_view> candidates);

}  // namespace modemsim

#endif

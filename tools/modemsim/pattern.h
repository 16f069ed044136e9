#ifndef AT_TOOLS_MODEMSIM_PATTERN_H
#define AT_TOOLS_MODEMSIM_PATTERN_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace modemsim {

// What a command line must look like for a rule to answer it: the line itself, in which each * stands for any
// run of characters (none included), \* for a star and \\ for a backslash. Letters match in either case, as
// in a modem.
class Pattern {
  public:
    // nullopt and `reason` for an empty text, a lone backslash or one before any other character.
    static std::optional<Pattern> Compile(std::string_view text, std::string& reason);

    bool Matches(std::string_view line) const;

    // The text as it was written.
    const std::string& Text() const { return text_; }
    // Which of two that match answers: the exact line, else the one with more characters outside stars.
    bool CloserThan(const Pattern& other) const;
    // The same text, whatever the case of its letters.
    bool Same(const Pattern& other) const { return parts_ == other.parts_; }

  private:
    bool Exact() const { return parts_.size() == 1; }

    std::string text_;
    std::vector<std::string>
        parts_;              // the texts between the stars, in upper case: one more than there are stars
    std::size_t fixed_ = 0;  // characters in them
};

// `text` with a to z in upper case; other bytes stay.
std::string UpperCase(std::string_view text);

}  // namespace modemsim

#endif

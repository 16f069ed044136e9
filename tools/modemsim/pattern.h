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
    // True without a star: such a rule comes before every pattern.
    bool Exact() const { return parts_.size() == 1; }
    // Characters outside stars; of several patterns that match, the one with the most of them answers.
    std::size_t Fixed() const { return fixed_; }

  private:
    std::string text_;
    std::vector<std::string>
        parts_;  // the texts between the stars, in upper case: one more than there are stars
    std::size_t fixed_ = 0;
};

// `text` with a to z in upper case; other bytes stay.
std::string UpperCase(std::string_view text);

}  // namespace modemsim

#endif

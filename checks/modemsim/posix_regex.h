#ifndef AT_CHECKS_MODEMSIM_POSIX_REGEX_H
#define AT_CHECKS_MODEMSIM_POSIX_REGEX_H

#include <regex.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace modemsim {

// Extended regular expressions of the C library.
class Regex {
  public:
    explicit Regex(const std::string& pattern) {
        if (regcomp(&compiled_, pattern.c_str(), REG_EXTENDED) != 0) abort();
    }
    ~Regex() { regfree(&compiled_); }
    Regex(const Regex&) = delete;
    Regex& operator=(const Regex&) = delete;

    // The first match in `text` at or behind `at` and its groups (at most 9), and moves `at` behind it.
    // Empty: none.
    std::vector<std::string> Next(const std::string& text, std::size_t& at) const {
        regmatch_t found[10];
        std::vector<std::string> groups;
        if (at > text.size() || regexec(&compiled_, text.c_str() + at, 10, found, 0) != 0) return groups;
        for (std::size_t i = 0; i <= compiled_.re_nsub && i < 10; ++i) {
            groups.push_back(found[i].rm_so < 0
                                 ? std::string()
                                 : text.substr(at + static_cast<std::size_t>(found[i].rm_so),
                                               static_cast<std::size_t>(found[i].rm_eo - found[i].rm_so)));
        }
        at += static_cast<std::size_t>(found[0].rm_eo);
        return groups;
    }

    // The groups when all of `text` matches.
    std::vector<std::string> Whole(const std::string& text) const {
        std::size_t at = 0;
        std::vector<std::string> groups = Next(text, at);
        return groups.empty() || groups[0].size() != text.size() ? std::vector<std::string>() : groups;
    }

  private:
    regex_t compiled_ = {};
};

}  // namespace modemsim

#endif

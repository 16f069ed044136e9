#ifndef AT_TOOLS_ATCTL_COMPLETE_H
#define AT_TOOLS_ATCTL_COMPLETE_H

#include <span>
#include <string>
#include <vector>

// What may stand where somebody presses the tabulator: `atctl complete` is asked by the shells' completions,
// so that these know whatever the program knows.

struct OptionWords {
    std::string name;  // "--json"
    std::string about;
    bool takes_value = false;
};

// A subcommand, or the program itself under the name "".
struct SubcommandWords {
    std::string name;
    std::string about;
    std::vector<OptionWords> options;
};

struct Candidate {
    std::string word;
    std::string about;
    bool more = false;  // something belongs directly behind the word: the value of a field
};

// The words that can stand for the last of `words`, which are those behind "atctl" and may end with an
// unfinished or an empty one. A word that ends with "=" wants more behind it.
std::vector<Candidate> Complete(std::span<const std::string> words,
                                const std::vector<SubcommandWords>& subcommands);

#endif

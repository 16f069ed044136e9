#ifndef AT_TOOLS_ATCTL_ERROR_WORDS_H
#define AT_TOOLS_ATCTL_ERROR_WORDS_H

#include <cstdint>
#include <string_view>

// What the number in a modem's error text means, for results 3 (CMS) and 4 and 11 (CME). Empty when the text
// is no number, or one that has no common meaning.
std::string_view ErrorWords(uint8_t result, std::string_view text);

#endif

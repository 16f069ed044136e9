#ifndef AT_TOOLS_ATCTL_MEANING_H
#define AT_TOOLS_ATCTL_MEANING_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/atctl/answer.h"

// What the rows say of their fields: "0 off, 1 on", or "of oper: 0 long name, 1 short name", is a list of
// values.

struct Listed {
    int32_t number;
    std::string_view words;
};

// The values that a meaning lists; empty when it is no such list.
std::vector<Listed> ListedValues(std::string_view meaning);

// The words of this value where its field's meaning lists it, else "".
std::string_view WordsOf(const Value& value);

// The words of this value, or the whole meaning where it is not listed.
std::string MeaningOf(const Value& value);

#endif

#ifndef AT_TOOLS_MODEMSIM_MODEL_NUMBER_H
#define AT_TOOLS_MODEMSIM_MODEL_NUMBER_H

#include <string>

namespace modemsim {

// 145 for an international number, 129 for any other.
int TypeOfNumber(const std::string& number);

// What may be dialled: digits, *, # and a plus in front, 1 to 40 characters.
bool IsNumber(const std::string& text);

}  // namespace modemsim

#endif

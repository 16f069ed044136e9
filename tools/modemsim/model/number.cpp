#include "tools/modemsim/model/number.h"

namespace modemsim {

int TypeOfNumber(const std::string& number) {
    return number.starts_with('+') ? 145 : 129;
}

bool IsNumber(const std::string& text) {
    const std::size_t digits = text.starts_with('+') ? 1 : 0;
    return text.size() > digits && text.size() <= 40 &&
           text.find_first_not_of("0123456789*#", digits) == std::string::npos;
}

}  // namespace modemsim

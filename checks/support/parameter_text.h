#ifndef AT_CHECKS_SUPPORT_PARAMETER_TEXT_H
#define AT_CHECKS_SUPPORT_PARAMETER_TEXT_H

#include <iterator>
#include <random>
#include <string>

// Parameters as a modem might send them, and worse.
inline std::string ParameterText(std::mt19937& random) {
    static const std::string pieces[] = {"1",  "23",        "-7",   "99999999999", ",",   ",",        ",",
                                         "\"", "\"Net A\"", "\"\"", ";",           " ",   "(",        ")",
                                         "OK", "READY",     "\t",   "\xfd",        "0x1", "ABCDEF01", "."};
    std::string text;
    const size_t count = random() % 40;
    for (size_t i = 0; i < count; ++i)
        text += pieces[random() % std::size(pieces)];
    if (random() % 8 == 0) text += std::string(random() % 1200, "5A \xfe,"[random() % 5]);
    return text;
}

#endif

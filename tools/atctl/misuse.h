#ifndef AT_TOOLS_ATCTL_MISUSE_H
#define AT_TOOLS_ATCTL_MISUSE_H

#include <stdexcept>

// What the user has to change before anything can be sent. The text is one line for standard error.
class Misuse : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

#endif

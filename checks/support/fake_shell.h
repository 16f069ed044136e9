#ifndef AT_CHECKS_SUPPORT_FAKE_SHELL_H
#define AT_CHECKS_SUPPORT_FAKE_SHELL_H

#include <string>
#include <vector>

// Replaces system() of the C library inside a check: commands are noted, not run.

struct FakeShell {
    std::vector<std::string> commands;  // in order
    int status = 0;                     // what system() returns
    void Reset() { *this = FakeShell(); }
};

FakeShell& Shell();

#endif

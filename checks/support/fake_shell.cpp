#include "checks/support/fake_shell.h"

FakeShell& Shell() {
    static FakeShell shell;
    return shell;
}

// The linker takes this before the C library's own.
extern "C" int system(const char* command) {
    if (command == nullptr) return 1;
    Shell().commands.push_back(command);
    return Shell().status;
}

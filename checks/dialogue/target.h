#ifndef AT_CHECKS_DIALOGUE_TARGET_H
#define AT_CHECKS_DIALOGUE_TARGET_H

#include <stddef.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

// What the daemon under check was built for. The checks always run on this machine; the daemon may need an
// emulator, and then its records and its store are those of its own machine.
//   AT_SERVER    the daemon
//   AT_CFGCTL    cfgctl of the same build
//   AT_EMULATOR  what runs both, in words parted by blanks; empty for programs of this machine

// The words that start `program` of the daemon's build with `arguments`.
std::vector<std::string> TargetCommand(const char* program, const std::vector<std::string>& arguments = {});

// True when there is an emulator: what is preloaded or seen in /proc is the emulator's.
bool TargetIsEmulated();

// True when the daemon's byte order, which its program file tells, is not this machine's.
bool TargetSwapsBytes();

// An integer as it stands in a record of the daemon.
template <typename T>
T GetInteger(const std::string& bytes, size_t offset) {
    unsigned char raw[sizeof(T)];
    memcpy(raw, bytes.data() + offset, sizeof raw);
    if (TargetSwapsBytes()) std::reverse(raw, raw + sizeof raw);
    T value;
    memcpy(&value, raw, sizeof raw);
    return value;
}

template <typename T>
void PutInteger(std::string& bytes, size_t offset, T value) {
    unsigned char raw[sizeof(T)];
    memcpy(raw, &value, sizeof raw);
    if (TargetSwapsBytes()) std::reverse(raw, raw + sizeof raw);
    memcpy(bytes.data() + offset, raw, sizeof raw);
}

#endif

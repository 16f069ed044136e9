#include "checks/dialogue/target.h"

#include <elf.h>
#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <bit>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "platform/platform.h"

namespace {

std::string Setting(const char* name) {
    const char* value = getenv(name);
    if (value == nullptr) throw std::runtime_error(std::string(name) + " is not set; see target.h");
    return value;
}

bool ReadByteOrder() {
    const std::string path = Setting("AT_SERVER");
    std::ifstream file(path, std::ios::binary);
    char head[EI_NIDENT] = {};
    if (!file.read(head, sizeof head) || memcmp(head, ELFMAG, SELFMAG) != 0)
        throw std::runtime_error(path + " is no program");
    return (head[EI_DATA] == ELFDATA2MSB) != (std::endian::native == std::endian::big);
}

// Runs cfgctl and gives its exit status; `output` is what it printed.
int RunCfgctl(const std::vector<std::string>& arguments, std::string& output) {
    std::vector<std::string> words = TargetCommand("AT_CFGCTL", arguments);
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe for cfgctl");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    pid_t child = -1;
    const int error = posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    char buffer[4096];
    ssize_t got = 0;
    while (error == 0 && (got = read(ends[0], buffer, sizeof buffer)) > 0)
        output.append(buffer, static_cast<size_t>(got));
    close(ends[0]);
    int status = -1;
    if (error != 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        throw std::runtime_error(words[0] + " did not run");
    return WEXITSTATUS(status);
}

}  // namespace

std::vector<std::string> TargetCommand(const char* program, const std::vector<std::string>& arguments) {
    std::vector<std::string> words;
    const char* emulator = getenv("AT_EMULATOR");
    std::istringstream parts(emulator != nullptr ? emulator : "");
    for (std::string word; parts >> word;)
        words.push_back(word);
    words.push_back(Setting(program));
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

bool TargetIsEmulated() {
    const char* emulator = getenv("AT_EMULATOR");
    return emulator != nullptr && emulator[0] != '\0';
}

bool TargetSwapsBytes() {
    static const bool swaps = ReadByteOrder();
    return swaps;
}

// The store is seen through the target's own cfgctl: its file is laid out by word size and byte order.

const char* cfg_get(const char* key) {
    thread_local std::string value;
    value.clear();
    const int status = RunCfgctl({"get", key}, value);
    if (status > 1) throw std::runtime_error(std::string("cfgctl get ") + key + " failed");
    if (!value.empty()) value.pop_back();  // the line feed
    return status == 0 ? value.c_str() : nullptr;
}

int cfg_set(const char* key, const char* value) {
    std::string output;
    return RunCfgctl({"set", key, value}, output);
}
